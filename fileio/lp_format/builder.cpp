#include "fileio/lp_format/builder.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "include/tovik.h"

namespace tovik::fileio::lp_format {
namespace {

constexpr const char* kKindNames[kRowKinds] = {"Row", "Quadratic constraint", "Indicator", "Lazy Constraint",
                                               "User Cut"};

constexpr std::int64_t kFirstReserve = 60000;  // a hint beyond this is believed only when the data comes

/* Room for what is expected, or for what a file of that length may hold. */
std::size_t room(std::int64_t expected, std::size_t bytes, std::size_t bytes_each) {
  const auto hint = static_cast<std::size_t>(std::clamp<std::int64_t>(expected, 0, kFirstReserve));
  return std::min(std::max(hint, bytes / bytes_each), static_cast<std::size_t>(kMaxEntries));
}

NamedRow named_row(std::string_view name, const Expression& expression, const RowLimits& limits) {
  return {std::string(name), {expression.columns, expression.values}, limits.sense, limits.rhs};
}

/* Names of the rows in order: the given ones, and c<position> for the others, made distinct from the given
 * ones. */
NameTable row_names(NameTable&& given, const std::vector<int>& ids) {
  if (static_cast<std::size_t>(given.size()) == ids.size()) return std::move(given);
  NameTable names;
  names.reserve(static_cast<int>(ids.size()));
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (ids[i] >= 0) {
      names.intern(given.name(ids[i]));
      continue;
    }
    std::string name = "c" + std::to_string(i + 1);
    while (given.find(name) != NameTable::kNone) name += '_';
    names.intern(name);
  }
  return names;
}

}  // namespace

Builder::Builder(const ReadOptions& options, std::size_t bytes, Messages& messages)
    : messages_(messages), row_start_(1, 0) {
  constexpr std::size_t kBytesPerTerm = 16, kBytesPerLine = 64, kBytesPerName = 8;
  const std::size_t rows = room(options.expected_rows, bytes, kBytesPerLine),
                    columns = room(options.expected_columns, bytes, kBytesPerLine),
                    terms = room(options.expected_nonzeros, bytes, kBytesPerTerm);
  model_.rhs.reserve(rows);
  model_.sense.reserve(rows);
  row_start_.reserve(rows + 1);
  columns_.reserve_text(columns, columns * kBytesPerName);
  model_.objective.reserve(columns);
  model_.lower.reserve(columns);
  model_.upper.reserve(columns);
  notes_.reserve(columns);
  term_column_.reserve(terms);
  term_value_.reserve(terms);
}

int Builder::column(std::string_view name, const NameTable::Key& key) {
  const NameTable::Interned entry = columns_.intern(name, key);
  if (!entry.added) return entry.id;
  if (entry.id >= kMaxEntries) {
    messages_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_COLUMNS));
    return -1;
  }
  model_.objective.push_back(0);
  model_.lower.push_back(0);
  model_.upper.push_back(kInfinity);
  notes_.push_back(0);
  if (!model_.types.empty()) model_.types.push_back('C');
  return entry.id;
}

bool Builder::set_objective(std::string_view name, const Expression& expression, int line) {
  has_objective_ = true;
  model_.objective_name = name;
  model_.objective_offset = expression.constant;
  bool finite = std::isfinite(expression.constant);
  for (std::size_t k = 0; k < expression.columns.size(); ++k) {
    double& cost = model_.objective[static_cast<std::size_t>(expression.columns[k])];
    cost += expression.values[k];
    finite = finite && std::isfinite(cost);
  }
  model_.quadratic_objective = expression.quadratic;
  return finite || messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NUMBER_CONVERSION, line, "inf"));
}

bool Builder::register_name(std::string_view name, RowKind kind, int line) {
  if (name.empty()) return true;
  const std::size_t k = static_cast<std::size_t>(kind);
  if (used_names_[k].intern(name).added) return true;
  return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, line, kKindNames[k], name));
}

bool Builder::add_row(std::string_view name, const Expression& expression, RowLimits limits, int line) {
  const std::size_t terms = term_column_.size() + expression.columns.size();
  if (static_cast<std::int64_t>(model_.rhs.size()) >= kMaxEntries) {
    return messages_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_ROWS));
  }
  if (static_cast<std::int64_t>(terms) > kMaxEntries) {
    return messages_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_COEFFICIENTS));
  }
  if (!register_name(name, RowKind::row, line)) return false;
  row_name_.push_back(name.empty() ? -1 : used_names_[0].size() - 1);
  term_column_.insert(term_column_.end(), expression.columns.begin(), expression.columns.end());
  term_value_.insert(term_value_.end(), expression.values.begin(), expression.values.end());
  row_start_.push_back(static_cast<std::int64_t>(terms));
  model_.sense.push_back(limits.sense);
  model_.rhs.push_back(limits.rhs);
  if (limits.sense == 'R') model_.range.resize(model_.rhs.size(), 0.0);
  if (limits.sense == 'R') model_.range.back() = limits.range;
  return true;
}

bool Builder::add_quadratic_row(std::string_view name, const Expression& expression, RowLimits limits,
                                int line) {
  if (!register_name(name, RowKind::quadratic, line)) return false;
  model_.quadratic_rows.push_back({named_row(name, expression, limits), expression.quadratic});
  return true;
}

bool Builder::add_indicator(std::string_view name, const Expression& expression, RowLimits limits, int column,
                            bool active_at_one, int line) {
  if (!register_name(name, RowKind::indicator, line)) return false;
  model_.indicators.push_back({named_row(name, expression, limits), column, active_at_one});
  return true;
}

bool Builder::add_lazy_constraint(std::string_view name, const Expression& expression, RowLimits limits,
                                  int line) {
  if (!register_name(name, RowKind::lazy, line)) return false;
  model_.lazy_constraints.push_back(named_row(name, expression, limits));
  return true;
}

bool Builder::add_user_cut(std::string_view name, const Expression& expression, RowLimits limits, int line) {
  if (!register_name(name, RowKind::user_cut, line)) return false;
  model_.user_cuts.push_back(named_row(name, expression, limits));
  return true;
}

bool Builder::add_set(std::string_view name, char type, int line) {
  if (!name.empty() && !used_set_names_.intern(name).added) {
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, line, "SOS", name));
  }
  model_.sets.push_back({std::string(name), type, {}});
  return true;
}

void Builder::add_set_member(int column, double weight) {
  model_.sets.back().members.index.push_back(column);
  model_.sets.back().members.value.push_back(weight);
}

bool Builder::count_bound() {
  return ++bounds_ < kMaxEntries || messages_.fail(ReadFailure::plain(TVK_ERROR_SIZE_LIMITS_TOO_LARGE));
}

void Builder::set_lower(int column, double value) {
  const std::size_t j = static_cast<std::size_t>(column);
  model_.lower[j] = std::clamp(value, -kInfinity, kInfinity);
  notes_[j] |= kLowerGiven;
}

void Builder::set_upper(int column, double value) {
  const std::size_t j = static_cast<std::size_t>(column);
  model_.upper[j] = std::clamp(value, -kInfinity, kInfinity);
  notes_[j] |= kUpperGiven;
}

void Builder::open_type_section() {
  if (model_.types.empty()) model_.types.assign(model_.objective.size(), 'C');
}

/* Semi-continuous and integral make semi-integer, in either order. */
void Builder::type_of(int column, char wanted) {
  char& type = model_.types[static_cast<std::size_t>(column)];
  const bool semicontinuous = type == 'S' || type == 'N';
  type = semicontinuous ? 'N' : wanted;
}

void Builder::declare_integer(int column) {
  type_of(column, 'I');
}

void Builder::declare_binary(int column) {
  type_of(column, 'B');
  notes_[static_cast<std::size_t>(column)] |= kBinary;
}

void Builder::declare_semicontinuous(int column) {
  char& type = model_.types[static_cast<std::size_t>(column)];
  type = type == 'C' || type == 'S' ? 'S' : 'N';
}

/* Binary columns get the bounds that the file left open, 0 and 1. */
void Builder::finalize_binaries() {
  bool other_bounds = false;
  for (std::size_t j = 0; j < notes_.size(); ++j) {
    if ((notes_[j] & kBinary) == 0) continue;
    if ((notes_[j] & kUpperGiven) == 0) model_.upper[j] = 1;
    for (const double bound : {model_.lower[j], model_.upper[j]}) other_bounds |= bound != 0 && bound != 1;
  }
  if (other_bounds)
    messages_.log().warning("Warning:  Binary variables declared with bounds other than 0 and 1.\n");
}

void Builder::transpose_rows() {
  std::vector<std::int64_t>& start = model_.start;
  start.assign(model_.objective.size() + 1, 0);
  for (const int j : term_column_) ++start[static_cast<std::size_t>(j) + 1];
  for (std::size_t j = 1; j < start.size(); ++j) start[j] += start[j - 1];
  model_.index.resize(term_column_.size());
  model_.value.resize(term_column_.size());
  std::vector<std::int64_t> next(start.begin(), start.end() - 1);
  for (std::size_t i = 0; i + 1 < row_start_.size(); ++i) {
    for (std::int64_t k = row_start_[i]; k < row_start_[i + 1]; ++k) {
      const std::size_t term = static_cast<std::size_t>(k);
      const std::size_t place =
          static_cast<std::size_t>(next[static_cast<std::size_t>(term_column_[term])]++);
      model_.index[place] = static_cast<int>(i);
      model_.value[place] = term_value_[term];
    }
  }
  std::vector<int>().swap(term_column_);
  std::vector<double>().swap(term_value_);
}

void Builder::finish(FileModel& model) {
  finalize_binaries();
  transpose_rows();
  if (!model_.range.empty()) model_.range.resize(model_.rhs.size(), 0.0);
  model_.columns = std::move(columns_);
  model_.rows = row_names(std::move(used_names_[0]), row_name_);
  model = std::move(model_);
  fold_range_columns(model);
}

}  // namespace tovik::fileio::lp_format
