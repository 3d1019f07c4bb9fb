#include <algorithm>
#include <array>
#include <cmath>

#include "fileio/basis/basis_file.h"
#include "fileio/basis/card_file.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

enum class Code { pair_upper, pair_lower, upper, lower, basic, basic_row, free_column, free_row };

struct CodeWord {
  std::string_view word;
  Code code;
  std::size_t names;
  enum class Value { none, optional, required } value;
};

constexpr CodeWord kCodes[] = {
    {"XU", Code::pair_upper, 2, CodeWord::Value::optional},
    {"XL", Code::pair_lower, 2, CodeWord::Value::optional},
    {"UL", Code::upper, 1, CodeWord::Value::none},
    {"LL", Code::lower, 1, CodeWord::Value::none},
    {"BS", Code::basic, 1, CodeWord::Value::optional},
    {"BR", Code::basic_row, 1, CodeWord::Value::required},
    {"SC", Code::free_column, 1, CodeWord::Value::required},
    {"SR", Code::free_row, 1, CodeWord::Value::required},
};

class Reader {
 public:
  Reader(ByteSource& source, const model::Model& model, ReaderLog& log, BasisFile& basis)
      : model_(model),
        log_(log),
        basis_(basis),
        cards_(source, log),
        columns_(model.column_names()),
        rows_(model.row_names()),
        vertices_only_(!model.column_types().empty() || model.families().has_mixed_integer()) {}

  ReadFailure run();

 private:
  bool record();
  bool check_shape(const CodeWord& word);
  bool apply(Code code, const double* value);
  bool pair(int row_status, const double* value);
  bool rest_at(int status);
  bool basic(const double* value);
  int column(std::string_view name);
  int row(std::string_view name);
  void set_basic_column(int j, const double* value);
  bool between_column(double value);
  void set_row(int i, int status, double value);
  void complete_nonbasic_columns();
  void derive_values();
  void derive_slacks();
  std::string_view field(std::size_t k) const { return cards_.fields()[k]; }

  const model::Model& model_;
  ReaderLog& log_;
  BasisFile& basis_;
  CardFile cards_;
  CardNames columns_, rows_;
  std::vector<double> value_;           // of columns
  std::vector<char> column_has_value_;  // columns whose value the file gives
  std::vector<double> slack_;           // of rows
  std::vector<char> row_has_value_;
  const bool vertices_only_;
};

ReadFailure Reader::run() {
  const auto columns = static_cast<std::size_t>(model_.num_columns());
  basis_.column_status.assign(columns, TVK_AT_LOWER);
  basis_.row_status.assign(static_cast<std::size_t>(model_.num_rows()), TVK_BASIC);
  value_.assign(columns, 0.0);
  column_has_value_.assign(columns, 0);
  slack_.assign(static_cast<std::size_t>(model_.num_rows()), 0.0);
  row_has_value_.assign(slack_.size(), 0);
  while (cards_.next() && record()) {
  }
  cards_.close();
  if (cards_.failure()) return cards_.failure();
  const auto count =
      std::ranges::count(basis_.column_status, TVK_BASIC) + std::ranges::count(basis_.row_status, TVK_BASIC);
  if (ReadFailure failure = basic_count_failure(static_cast<int>(count), model_.num_rows())) return failure;
  complete_nonbasic_columns();
  derive_values();
  return {};
}

bool Reader::record() {
  for (const CodeWord& word : kCodes) {
    if (field(0).size() != word.word.size() || !starts_with_keyword(field(0), word.word)) continue;
    if (!check_shape(word)) return false;
    double value = 0;
    const bool has_value = cards_.fields().size() == word.names + 2;
    if (has_value && !cards_.read_number(field(word.names + 1), value)) return false;
    return apply(word.code, has_value ? &value : nullptr);
  }
  return cards_.fail(TVK_ERROR_LINE_BASIS_INDICATOR, field(0));
}

bool Reader::check_shape(const CodeWord& word) {
  const std::size_t count = cards_.fields().size(), without = word.names + 1;
  if (word.value == CodeWord::Value::required && count == without) {
    log_.warn("Line %d: Missing basic value.\n", cards_.line());
    return cards_.fail(ReadFailure::plain(TVK_ERROR_BASIS_INCOMPLETE));
  }
  const bool fine = count == without || (word.value != CodeWord::Value::none && count == without + 1);
  return fine || cards_.fail(TVK_ERROR_LINE_ENTRY_COUNT);
}

int Reader::column(std::string_view name) {
  const int j = columns_.find(name);
  if (j < 0) cards_.unknown_name(name, "a variable");
  return j;
}

int Reader::row(std::string_view name) {
  const int i = rows_.find(name);
  if (i < 0) cards_.unknown_name(name, "a row");
  return i;
}

void Reader::set_basic_column(int j, const double* value) {
  const auto at = static_cast<std::size_t>(j);
  basis_.column_status[at] = TVK_BASIC;
  if (value == nullptr) return;
  value_[at] = *value;
  column_has_value_[at] = 1;
}

/* A record with an unknown name is skipped. */
bool Reader::apply(Code code, const double* value) {
  switch (code) {
    case Code::pair_upper:
      return pair(TVK_AT_UPPER, value);
    case Code::pair_lower:
      return pair(TVK_AT_LOWER, value);
    case Code::upper:
      return rest_at(TVK_AT_UPPER);
    case Code::lower:
      return rest_at(TVK_AT_LOWER);
    case Code::basic:
      return basic(value);
    case Code::basic_row:
      set_row(row(field(1)), TVK_BASIC, *value);
      return true;
    case Code::free_column:
      return between_column(*value);
    case Code::free_row:
      if (vertices_only_) return cards_.fail(ReadFailure::plain(TVK_ERROR_NO_SUPERBASES));
      set_row(row(field(1)), TVK_FREE_SUPER, *value);
      return true;
  }
  return true;
}

bool Reader::between_column(double value) {
  const int j = column(field(1));
  if (j < 0) return true;
  const auto at = static_cast<std::size_t>(j);
  const bool free = model_.lower()[at] <= -kInfinity && model_.upper()[at] >= kInfinity;
  if (vertices_only_ && !free) return cards_.fail(ReadFailure::plain(TVK_ERROR_NO_SUPERBASES));
  basis_.column_status[at] = TVK_FREE_SUPER;
  value_[at] = value;
  column_has_value_[at] = 1;
  return true;
}

void Reader::set_row(int i, int status, double value) {
  if (i < 0) return;
  const auto at = static_cast<std::size_t>(i);
  basis_.row_status[at] = status;
  slack_[at] = value;
  row_has_value_[at] = 1;
}

bool Reader::pair(int row_status, const double* value) {
  const int j = column(field(1)), i = row(field(2));
  if (j < 0 || i < 0) return true;
  set_basic_column(j, value);
  basis_.row_status[static_cast<std::size_t>(i)] = row_status;
  return true;
}

bool Reader::rest_at(int status) {
  const int j = columns_.find(field(1));
  const int i = j < 0 ? rows_.find(field(1)) : -1;
  if (j >= 0) basis_.column_status[static_cast<std::size_t>(j)] = status;
  if (i >= 0) basis_.row_status[static_cast<std::size_t>(i)] = status;
  if (j < 0 && i < 0) cards_.unknown_name(field(1), "a variable");
  return true;
}

bool Reader::basic(const double* value) {
  const int j = columns_.find(field(1));
  const int i = j < 0 ? rows_.find(field(1)) : -1;
  if (j >= 0) set_basic_column(j, value);
  if (i >= 0) basis_.row_status[static_cast<std::size_t>(i)] = TVK_BASIC;
  if (j < 0 && i < 0) cards_.unknown_name(field(1), "a variable");
  return true;
}

/* A column cannot rest at an infinite bound. */
void Reader::complete_nonbasic_columns() {
  for (std::size_t j = 0; j < basis_.column_status.size(); ++j) {
    int& status = basis_.column_status[j];
    const bool lower = model_.lower()[j] > -kInfinity, upper = model_.upper()[j] < kInfinity;
    if (status == TVK_AT_LOWER && !lower) status = upper ? TVK_AT_UPPER : TVK_FREE_SUPER;
    if (status == TVK_AT_UPPER && !upper) status = lower ? TVK_AT_LOWER : TVK_FREE_SUPER;
  }
}

void Reader::derive_values() {
  for (std::size_t j = 0; j < value_.size(); ++j) {
    const int status = basis_.column_status[j];
    if (status == TVK_AT_LOWER) value_[j] = model_.lower()[j];
    if (status == TVK_AT_UPPER) value_[j] = model_.upper()[j];
    if (status == TVK_BASIC && column_has_value_[j] == 0) return;
  }
  if (std::ranges::find(column_has_value_, 1) == column_has_value_.end()) return;
  basis_.primal = std::move(value_);
  derive_slacks();
}

/* A row at its other end has its range as slack. */
void Reader::derive_slacks() {
  for (std::size_t i = 0; i < slack_.size(); ++i) {
    const int status = basis_.row_status[i];
    const bool inside = status == TVK_BASIC || status == TVK_FREE_SUPER;
    if (inside && row_has_value_[i] == 0) return;
    if (inside) continue;
    const double range = model_.sense()[i] == 'R' ? model_.range()[i] : 0;
    slack_[i] = (status == TVK_AT_UPPER) == (range > 0) ? -range : 0;
  }
  basis_.slack = std::move(slack_);
}

}  // namespace

ReadFailure read_basis(ByteSource& source, const model::Model& model, ReaderLog& log, BasisFile& basis) {
  return Reader(source, model, log, basis).run();
}

}  // namespace tovik::fileio
