/* The LP writer. Columns that stand in no expression come with a zero in the objective, so that the file
 * knows them. Numbers have 15 significant digits. */
#include <cmath>
#include <string>

#include "fileio/lp_lines.h"
#include "fileio/lp_names.h"
#include "fileio/model_writer.h"
#include "fileio/number_text.h"
#include "fileio/special_rows.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace lp {
namespace {

constexpr std::string_view kRangePrefix = "Rg";

/* One kind of names: its made-up letter, and its word in the announcement of made-up names. */
struct Kind {
  char letter;
  const char* words;
};
constexpr Kind kColumns{'x', "variable names"}, kRows{'c', "row names"}, kSets{'s', "sos names"},
    kQuadratic{'q', "quadratic constraint names"}, kIndicators{'i', "indicator names"},
    kUserCuts{'u', "user cut names"}, kLazy{'l', "lazy constraint names"};

class Writer {
 public:
  Writer(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out)
      : source_(source),
        model_(source.model),
        families_(source.model.families()),
        options_(options),
        log_(log),
        out_(out),
        lines_(out) {}

  int run() {
    name_everything();
    write_objective();
    write_constraints();
    write_cuts("User Cuts", families_.user_cuts, user_cuts_);
    write_cuts("Lazy Constraints", families_.lazy_constraints, lazy_);
    write_bounds();
    write_types("Binaries", "B");
    write_types("Generals", "IN");
    write_types("Semi-Continuous", "SN");
    write_sets();
    lines_.header("End");
    return lines_.finite() ? 0 : TVK_ERROR_NUMBER_NOT_REPRESENTABLE;
  }

 private:
  void name_everything();
  WriterNames names_of(const model::NameTable& table, Kind kind, int count, const NameRules& rules);
  void find_range_columns();

  void write_objective();
  void write_quadratic_objective();
  void write_terms(model::VectorView terms);
  void write_end(char sense, double rhs);
  void write_constraints();
  void write_row(int i);
  void write_range(int i);
  void write_quadratic_row(int k);
  void write_indicator(int k);
  void write_cuts(std::string_view header, const model::RowPool& rows, const WriterNames& names);
  void write_bounds();
  void write_bounds_of(int j);
  void bound_line(double lower, std::string_view name, double upper);
  void write_types(std::string_view header, std::string_view types);
  void write_sets();

  char type_of(int j) const {
    const auto types = model_.column_types();
    return types.empty() ? 'C' : types[static_cast<std::size_t>(j)];
  }

  const WriteSource& source_;
  const model::Model& model_;
  const model::Families& families_;
  const WriteOptions& options_;
  ReaderLog& log_;
  TextWriter& out_;
  Lines lines_;
  std::string objective_;
  WriterNames columns_, rows_, sets_, quadratic_, indicators_, user_cuts_, lazy_;
  /* By row: the name of its range column; empty where the row is written with two sides or is not ranged. */
  std::vector<std::string> range_column_;
  bool rewritten_ = false;
};

WriterNames Writer::names_of(const model::NameTable& table, Kind kind, int count, const NameRules& rules) {
  if (options_.generic_names || count == 0) return WriterNames::made_up(kind.letter, count);
  WriterNames names = WriterNames::from(table, kind.letter, count, rules);
  if (names.origin() == WriterNames::Origin::made_up)
    log_.warn("Default %s %c1, %c2 ... being created.\n", kind.words, kind.letter, kind.letter);
  rewritten_ = rewritten_ || names.origin() == WriterNames::Origin::rewritten;
  return names;
}

void Writer::name_everything() {
  const bool minimize = model_.objective_sense() >= 0;
  const LpLabelRules label(Section::constraints);
  columns_ = names_of(model_.column_names(), kColumns, model_.num_columns(), LpColumnRules());
  rows_ = names_of(model_.row_names(), kRows, model_.num_rows(), label);
  sets_ = names_of(families_.sets.names(), kSets, families_.sets.size(), LpNameRules());
  quadratic_ = names_of(families_.quadratic_rows.names(), kQuadratic, families_.quadratic_rows.size(), label);
  indicators_ = names_of(families_.indicators.names(), kIndicators, families_.indicators.size(), label);
  user_cuts_ = names_of(families_.user_cuts.names(), kUserCuts, families_.user_cuts.size(), label);
  lazy_ = names_of(families_.lazy_constraints.names(), kLazy, families_.lazy_constraints.size(), label);
  const std::string& own = model_.objective_name();
  const LpLabelRules objective_rules(minimize ? Section::minimize : Section::maximize);
  objective_ = own.empty() || options_.generic_names ? "obj" : single_name(own, objective_rules, rewritten_);
  if (rewritten_) log_.warning("Warning:  Output names have been modified to conform to LP format.\n");
  find_range_columns();
}

/* A ranged row becomes an equation with a bounded column of its own where the name of that column is free. */
void Writer::find_range_columns() {
  if (!model_.has_ranges()) return;
  NameTable taken;
  for (int j = 0; j < columns_.size(); ++j) {
    if (columns_[j].starts_with(kRangePrefix)) taken.intern(columns_[j]);
  }
  range_column_.resize(static_cast<std::size_t>(model_.num_rows()));
  for (int i = 0; i < model_.num_rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (model_.sense()[at] != 'R' || !(std::fabs(model_.range()[at]) < kInfinity)) continue;
    const std::string name = std::string(kRangePrefix) + std::string(rows_[i]);
    if (name.size() <= kMaxNameLength && taken.find(name) == NameTable::kNone) range_column_[at] = name;
  }
}

void Writer::write_objective() {
  lines_.header("\\Problem name: " + title(source_.name));
  lines_.header("");
  lines_.header(model_.objective_sense() >= 0 ? "Minimize" : "Maximize");
  lines_.label(objective_);
  const std::vector<char> elsewhere = columns_in_families(families_, model_.num_columns());
  const auto cost = model_.objective();
  for (int j = 0; j < model_.num_columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    const bool mentioned = cost[at] != 0 || model_.column(j).count != 0;
    if (cost[at] != 0 || (!mentioned && (elsewhere.empty() || elsewhere[at] == 0)))
      lines_.term(cost[at], columns_[j]);
  }
  if (!families_.quadratic_objective.empty()) write_quadratic_objective();
  if (model_.objective_offset() != 0) lines_.constant(model_.objective_offset());
  lines_.end();
}

/* The bracket is halved by the reader. */
void Writer::write_quadratic_objective() {
  lines_.piece(" + [");
  lines_.begin_expression();
  for (const model::QuadraticTerm& term : families_.quadratic_objective.terms()) {
    lines_.product(2 * term.value, columns_[term.column], columns_[term.other]);
  }
  lines_.piece(" ] / 2");
}

/* A row without terms still needs a column. */
void Writer::write_terms(model::VectorView terms) {
  for (int k = 0; k < terms.count; ++k) lines_.term(terms.value[k], columns_[terms.index[k]]);
  if (terms.count == 0) lines_.term(0, columns_.size() > 0 ? columns_[0] : "x1");
}

void Writer::write_end(char sense, double rhs) {
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

void Writer::write_constraints() {
  if (rows_.size() + quadratic_.size() + indicators_.size() == 0) return;
  lines_.header("Subject To");
  for (int i = 0; i < rows_.size(); ++i) write_row(i);
  for (int k = 0; k < quadratic_.size(); ++k) write_quadratic_row(k);
  for (int k = 0; k < indicators_.size(); ++k) write_indicator(k);
}

void Writer::write_row(int i) {
  const auto at = static_cast<std::size_t>(i);
  const char sense = model_.sense()[at];
  lines_.label(rows_[i]);
  if (sense == 'R') return write_range(i);
  write_terms(model_.row(i));
  write_end(sense, model_.rhs()[at]);
}

/* An infinite range leaves one side. */
void Writer::write_range(int i) {
  const auto at = static_cast<std::size_t>(i);
  const double rhs = model_.rhs()[at], range = model_.range()[at];
  const double low = range < 0 ? rhs + range : rhs;
  if (range_column_[at].empty() && range > -kInfinity && range < kInfinity) {
    lines_.number(" ", low);
    lines_.piece(" <=");
    write_terms(model_.row(i));
    return write_end('L', range < 0 ? rhs : rhs + range);
  }
  write_terms(model_.row(i));
  if (range >= kInfinity) return write_end('G', rhs);
  if (range <= -kInfinity) return write_end('L', rhs);
  lines_.term(-1, range_column_[at]);
  write_end('E', low);
}

void Writer::write_quadratic_row(int k) {
  const auto at = static_cast<std::size_t>(k);
  const model::RowPool& linear = families_.quadratic_rows.linear();
  const auto terms = families_.quadratic_rows.terms(k);
  lines_.label(quadratic_[k]);
  if (linear.row(k).count > 0 || terms.empty()) write_terms(linear.row(k));
  if (!terms.empty()) {
    lines_.piece(linear.row(k).count > 0 ? " + [" : " [");
    lines_.begin_expression();
    for (const model::QuadraticTerm& term : terms) {
      lines_.product(term.value, columns_[term.column], columns_[term.other]);
    }
    lines_.piece(" ]");
  }
  write_end(linear.sense()[at], linear.rhs()[at]);
}

void Writer::write_indicator(int k) {
  const auto at = static_cast<std::size_t>(k);
  const model::Indicators& indicators = families_.indicators;
  lines_.label(indicators_[k]);
  lines_.term(1, columns_[indicators.column()[at]]);
  lines_.piece(indicators.complemented(k) ? " = 0 ->" : " = 1 ->");
  lines_.begin_expression();
  write_terms(indicators.rows().row(k));
  write_end(indicators.rows().sense()[at], indicators.rows().rhs()[at]);
}

void Writer::write_cuts(std::string_view header, const model::RowPool& rows, const WriterNames& names) {
  if (rows.empty()) return;
  lines_.header(header);
  for (int k = 0; k < rows.size(); ++k) {
    const auto at = static_cast<std::size_t>(k);
    lines_.label(names[k]);
    write_terms(rows.row(k));
    write_end(rows.sense()[at], rows.rhs()[at]);
  }
}

void Writer::write_bounds() {
  lines_.header("Bounds");
  for (int j = 0; j < model_.num_columns(); ++j) write_bounds_of(j);
  for (std::size_t i = 0; i < range_column_.size(); ++i) {
    if (range_column_[i].empty()) continue;
    bound_line(0, range_column_[i], std::fabs(model_.range()[i]));
  }
}

/* What the reader assumes without a statement: 0 and infinity, for binary columns 0 and 1. */
void Writer::write_bounds_of(int j) {
  const auto at = static_cast<std::size_t>(j);
  const double lower = model_.lower()[at], upper = model_.upper()[at];
  const bool binary = type_of(j) == 'B';
  if (lower == 0 && (binary ? upper == 1 : upper >= kInfinity)) return;
  if (lower <= -kInfinity && upper >= kInfinity) {
    lines_.header(' ' + std::string(columns_[j]) + " Free");
  } else if (lower == upper) {
    lines_.number(' ' + std::string(columns_[j]) + " = ", lower);
    lines_.end();
  } else if (upper >= kInfinity && !binary) {
    lines_.number(' ' + std::string(columns_[j]) + " >= ", lower);
    lines_.end();
  } else {
    bound_line(lower, columns_[j], upper);
  }
}

/* A statement stands on one line, however long. */
void Writer::bound_line(double lower, std::string_view name, double upper) {
  char text[kMaxNameLength + 2 * kNumberText + 32];
  char* p = text;
  *p++ = ' ';
  p = lower <= -kInfinity ? copy_text(p, "-inf") : lines_.write_number(p, lower);
  p = copy_text(copy_text(copy_text(p, " <= "), name), " <= ");
  p = upper >= kInfinity ? copy_text(p, "inf") : lines_.write_number(p, upper);
  lines_.header({text, static_cast<std::size_t>(p - text)});
}

void Writer::write_types(std::string_view header, std::string_view types) {
  bool open = false;
  for (int j = 0; j < model_.num_columns(); ++j) {
    if (types.find(type_of(j)) == std::string_view::npos) continue;
    if (!open) lines_.header(header);
    open = true;
    lines_.piece(' ' + std::string(columns_[j]));
  }
  if (open) lines_.end();
}

void Writer::write_sets() {
  if (families_.sets.empty()) return;
  lines_.header("SOS");
  for (int k = 0; k < families_.sets.size(); ++k) {
    const model::VectorView members = families_.sets.members(k);
    lines_.label(sets_[k]);
    lines_.piece(families_.sets.type()[static_cast<std::size_t>(k)] == '1' ? " S1 ::" : " S2 ::");
    for (int m = 0; m < members.count; ++m) {
      lines_.number(' ' + std::string(columns_[members.index[m]]) + ':', members.value[m]);
    }
    lines_.end();
  }
}

}  // namespace
}  // namespace lp

int write_lp(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out) {
  return lp::Writer(source, options, log, out).run();
}

}  // namespace tovik::fileio
