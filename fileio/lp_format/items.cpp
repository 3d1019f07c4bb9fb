#include "fileio/lp_format/items.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "fileio/record/model_reader.h"
#include "fileio/record/special_rows.h"

namespace tovik::fileio::lp_format {

/* Columns that stand in no expression come with a zero, so that the file knows them. */
void ItemWriter::objective() {
  lines_.label(names_.objective);
  const std::vector<char> elsewhere = columns_in_families(families_, model_.num_columns());
  const auto cost = model_.objective();
  for (int j = 0; j < model_.num_columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    const bool mentioned = cost[at] != 0 || model_.column(j).count != 0;
    if (cost[at] != 0 || (!mentioned && (elsewhere.empty() || elsewhere[at] == 0)))
      lines_.term(cost[at], names_.columns[j]);
  }
  if (!families_.quadratic_objective.empty()) quadratic_objective();
  if (model_.objective_offset() != 0) lines_.constant(model_.objective_offset());
  lines_.end();
}

/* The bracket is halved by the reader. */
void ItemWriter::quadratic_objective() {
  lines_.piece(" + [");
  lines_.begin_expression();
  for (const model::QuadraticTerm& term : families_.quadratic_objective.terms()) {
    lines_.product(2 * term.value, names_.columns[term.column], names_.columns[term.other]);
  }
  lines_.piece(" ] / 2");
}

/* The names of a row lie all over the memory: they are sent for some rows ahead, first where their texts are,
 * then the texts. */
void ItemWriter::rows(int begin, int end) {
  constexpr int kAhead = 4;
  std::array<model::VectorView, 2 * kAhead> coming;
  const auto slot = [&coming](int i) -> model::VectorView& {
    return coming[static_cast<std::size_t>(i) % coming.size()];
  };
  for (int i = begin; i < end + 2 * kAhead; ++i) {
    if (i >= begin + 2 * kAhead) row(i - 2 * kAhead, slot(i));
    if (i >= begin + kAhead && i < end + kAhead) names_.columns.prefetch_texts(slot(i - kAhead));
    if (i < end) names_.columns.prefetch_places(slot(i) = model_.row(i));
  }
}

void ItemWriter::row(int i, model::VectorView view) {
  const auto at = static_cast<std::size_t>(i);
  const char sense = model_.sense()[at];
  lines_.label(names_.rows[i]);
  if (sense == 'R') return ranged_row(i, view);
  terms(view);
  end(sense, model_.rhs()[at]);
}

/* An infinite range leaves one side. */
void ItemWriter::ranged_row(int i, model::VectorView view) {
  const auto at = static_cast<std::size_t>(i);
  const double rhs = model_.rhs()[at], range = model_.range()[at];
  const double low = range < 0 ? rhs + range : rhs;
  const std::string* const column = range_column(at);
  const bool one_side = range >= kInfinity || range <= -kInfinity;
  const bool two_sides = column == nullptr && !one_side;
  if (two_sides) {
    lines_.number(" ", low);
    lines_.piece(" <=");
  }
  terms(view);
  if (one_side) return end(range > 0 ? 'G' : 'L', rhs);
  if (two_sides) return end('L', range < 0 ? rhs : rhs + range);
  lines_.term(-1, *column);
  end('E', low);
}

/* A row without terms still needs a column. */
void ItemWriter::terms(model::VectorView terms) {
  for (int k = 0; k < terms.count; ++k) lines_.term(terms.value[k], names_.columns[terms.index[k]]);
  if (terms.count == 0) lines_.term(0, names_.columns.size() > 0 ? names_.columns[0] : "x1");
}

void ItemWriter::end(char sense, double rhs) {
  switch (sense) {
    case 'L':
      lines_.number(" <= ", rhs);
      break;
    case 'G':
      lines_.number(" >= ", rhs);
      break;
    case 'E':
      lines_.number("  = ", rhs);
      break;
    default:
      lines_.number("  ? ", rhs);
  }
  lines_.end();
}

void ItemWriter::quadratic_row(int k) {
  const auto at = static_cast<std::size_t>(k);
  const model::RowPool& linear = families_.quadratic_rows.linear();
  const auto products = families_.quadratic_rows.terms(k);
  lines_.label(names_.quadratic[k]);
  if (linear.row(k).count > 0 || products.empty()) terms(linear.row(k));
  if (!products.empty()) {
    lines_.piece(linear.row(k).count > 0 ? " + [" : " [");
    lines_.begin_expression();
    for (const model::QuadraticTerm& term : products) {
      lines_.product(term.value, names_.columns[term.column], names_.columns[term.other]);
    }
    lines_.piece(" ]");
  }
  end(linear.sense()[at], linear.rhs()[at]);
}

void ItemWriter::indicator(int k) {
  const auto at = static_cast<std::size_t>(k);
  const model::Indicators& indicators = families_.indicators;
  lines_.label(names_.indicators[k]);
  lines_.term(1, names_.columns[indicators.column()[at]]);
  lines_.piece(indicators.complemented(k) ? " = 0 ->" : " = 1 ->");
  lines_.begin_expression();
  terms(indicators.rows().row(k));
  end(indicators.rows().sense()[at], indicators.rows().rhs()[at]);
}

void ItemWriter::cut(const model::RowPool& rows, const WriterNames& names, int k) {
  const auto at = static_cast<std::size_t>(k);
  lines_.label(names[k]);
  terms(rows.row(k));
  end(rows.sense()[at], rows.rhs()[at]);
}

void ItemWriter::set(int k) {
  const model::VectorView members = families_.sets.members(k);
  lines_.label(names_.sets[k]);
  lines_.piece(families_.sets.type()[static_cast<std::size_t>(k)] == '1' ? " S1 ::" : " S2 ::");
  for (int m = 0; m < members.count; ++m) lines_.member(names_.columns[members.index[m]], members.value[m]);
  lines_.end();
}

/* What the reader assumes without a statement: 0 and infinity, for binary columns 0 and 1. */
void ItemWriter::bounds(int j) {
  const auto at = static_cast<std::size_t>(j);
  const double lower = model_.lower()[at], upper = model_.upper()[at];
  const bool binary = type_of(model_, j) == 'B';
  if (lower != 0 || (binary ? upper != 1 : !(upper >= kInfinity))) every_bound(j);
}

void ItemWriter::every_bound(int j) {
  const auto at = static_cast<std::size_t>(j);
  const double lower = model_.lower()[at], upper = model_.upper()[at];
  const std::string_view name = names_.columns[j];
  if (lower <= -kInfinity && upper >= kInfinity) {
    lines_.statement(name, " Free");
  } else if (lower == upper) {
    lines_.statement(name, " = ", lower);
  } else if (upper >= kInfinity && type_of(model_, j) != 'B') {
    lines_.statement(name, " >= ", lower);
  } else {
    lines_.statement(lower, name, upper);
  }
}

void ItemWriter::range_column_bounds(int i) {
  const auto at = static_cast<std::size_t>(i);
  if (const std::string* const column = range_column(at))
    lines_.statement(0, *column, std::fabs(model_.range()[at]));
}

void ItemWriter::columns_of_types(std::string_view header, std::string_view types) {
  if (model_.column_types().empty()) return;
  bool open = false;
  for (int j = 0; j < model_.num_columns(); ++j) {
    if (types.find(type_of(model_, j)) == std::string_view::npos) continue;
    if (!open) lines_.header(header);
    open = true;
    lines_.name(names_.columns[j]);
  }
  if (open) lines_.end();
}

void ItemWriter::column_list(std::span<const int> columns) {
  for (const int j : columns) lines_.name(names_.columns[j]);
  if (!columns.empty()) lines_.end();
}

void ItemWriter::whole() {
  header(model_.objective_sense() >= 0 ? "Minimize" : "Maximize");
  objective();
  all_constraints();
  all_cuts();
  header("Bounds");
  for (int j = 0; j < model_.num_columns(); ++j) bounds(j);
  for (std::size_t i = 0; i < names_.range_columns.size(); ++i) range_column_bounds(static_cast<int>(i));
  columns_of_types("Binaries", "B");
  columns_of_types("Generals", "IN");
  columns_of_types("Semi-Continuous", "SN");
  if (!families_.sets.empty()) header("SOS");
  for (int k = 0; k < families_.sets.size(); ++k) set(k);
  header("End");
}

void ItemWriter::all_constraints() {
  const int quadratic = families_.quadratic_rows.size(), indicators = families_.indicators.size();
  if (model_.num_rows() + quadratic + indicators == 0) return;
  header("Subject To");
  rows(0, model_.num_rows());
  for (int k = 0; k < quadratic; ++k) quadratic_row(k);
  for (int k = 0; k < indicators; ++k) indicator(k);
}

void ItemWriter::all_cuts() {
  const int cuts = families_.user_cuts.size(), lazy = families_.lazy_constraints.size();
  if (cuts > 0) header("User Cuts");
  for (int k = 0; k < cuts; ++k) user_cut(k);
  if (lazy > 0) header("Lazy Constraints");
  for (int k = 0; k < lazy; ++k) lazy_constraint(k);
}

}  // namespace tovik::fileio::lp_format
