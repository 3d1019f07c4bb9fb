#include <algorithm>
#include <cmath>

#include "fileio/basis/basis_file.h"
#include "fileio/basis/card_file.h"
#include "fileio/stream/number_text.h"
#include "include/tovik.h"
#include "model/store/default_names.h"

namespace tovik::fileio {
namespace {

/* The records of one basis. */
class Records {
 public:
  Records(const model::Model& model, const BasisView& basis, ReaderLog& log, TextWriter& out)
      : model_(model),
        basis_(basis),
        columns_(card_names(model.column_names(), model::kColumnFamily, model.num_columns(), log)),
        rows_(card_names(model.row_names(), model::kRowFamily, model.num_rows(), log)),
        out_(out) {}
  void pairs(bool values);
  void upper_columns();
  void values_of_others();
  bool finite() const { return finite_; }  // each value that was written

 private:
  int column_status(int j) const { return basis_.column_status[static_cast<std::size_t>(j)]; }
  int row_status(int i) const { return basis_.row_status[static_cast<std::size_t>(i)]; }
  double primal(int j) const { return basis_.primal[static_cast<std::size_t>(j)]; }
  double slack(int i) const;
  void record(std::string_view code, std::string_view name, std::string_view other, const double* value);

  const model::Model& model_;
  const BasisView& basis_;
  WriterNames columns_, rows_;
  TextWriter& out_;
  bool finite_ = true;
};

void Records::record(std::string_view code, std::string_view name, std::string_view other,
                     const double* value) {
  constexpr int kWidth = 23, kDigits = 15;
  char* p = copy_text(copy_text(out_.room(2 * kMaxNameLength + 64), code), name);
  if (!other.empty()) p = copy_text(copy_text(p, "  "), other);
  if (value != nullptr) {
    finite_ = finite_ && std::isfinite(*value);
    char text[kNumberText];
    const auto length = static_cast<std::size_t>(write_exponent(text, *value, kDigits) - text);
    p = copy_text(p, "  ");
    for (std::size_t k = length; k < kWidth; ++k) *p++ = ' ';
    p = copy_text(p, {text, length});
  }
  *p++ = '\n';
  out_.advance_to(p);
}

/* As many rows are non-basic as columns are basic. */
void Records::pairs(bool values) {
  int row = 0;
  for (int j = 0; j < model_.num_columns(); ++j) {
    if (column_status(j) != TVK_BASIC) continue;
    while (row_status(row) == TVK_BASIC) ++row;
    const bool upper =
        model_.sense()[static_cast<std::size_t>(row)] == 'G' || row_status(row) == TVK_AT_UPPER;
    const double value = values ? primal(j) : 0;
    record(upper ? " XU " : " XL ", columns_[j], rows_[row], values ? &value : nullptr);
    ++row;
  }
}

void Records::upper_columns() {
  for (int j = 0; j < model_.num_columns(); ++j) {
    if (column_status(j) == TVK_AT_UPPER) record(" UL ", columns_[j], "", nullptr);
  }
}

double Records::slack(int i) const {
  const auto at = static_cast<std::size_t>(i);
  if (!basis_.slack.empty()) return basis_.slack[at];
  double slack = model_.rhs()[at];
  const model::RowView row = model_.row(i);
  for (int k = 0; k < row.count; ++k) slack -= row.value[k] * primal(row.index[k]);
  return slack;
}

/* Basic rows, and what is between its bounds; a row of these stands in a pair before. */
void Records::values_of_others() {
  for (int i = 0; i < model_.num_rows(); ++i) {
    const double value = slack(i);
    if (row_status(i) == TVK_BASIC) record(" BR ", rows_[i], "", &value);
    if (row_status(i) == TVK_FREE_SUPER) record(" SR ", rows_[i], "", &value);
  }
  for (int j = 0; j < model_.num_columns(); ++j) {
    const double value = primal(j);
    if (column_status(j) == TVK_FREE_SUPER) record(" SC ", columns_[j], "", &value);
  }
}

}  // namespace

ReadFailure basic_count_failure(int basic, int rows) {
  if (basic == rows) return {};
  ReadFailure failure = ReadFailure::at(TVK_ERROR_BASIC_VARIABLE_COUNT, std::abs(basic - rows));
  failure.arguments = ReadFailure::Arguments::is;
  failure.text = basic > rows ? "extra" : "too few";
  return failure;
}

bool is_superbasis(const model::Model& model, const BasisView& basis) {
  const bool mixed_integer = !model.column_types().empty() || model.families().has_mixed_integer();
  return !basis.primal.empty() && !mixed_integer;
}

ReadFailure write_basis(const WriteSource& source, const BasisView& basis, ReaderLog& log, TextWriter& out) {
  const model::Model& model = source.model;
  const int rows = model.num_rows();
  const auto basic =
      std::ranges::count(basis.column_status, TVK_BASIC) + std::ranges::count(basis.row_status, TVK_BASIC);
  if (ReadFailure failure = basic_count_failure(static_cast<int>(basic), rows)) return failure;
  Records records(model, basis, log, out);
  out.put("NAME          " + title(source.name));
  out.print("  Iterations %d  Rows %d  Cols %d\n", basis.iterations, rows, model.num_columns());
  const bool values = is_superbasis(model, basis);
  records.pairs(values);
  records.upper_columns();
  if (values) records.values_of_others();
  out.put("ENDATA\n");
  return records.finite() ? ReadFailure() : ReadFailure::plain(TVK_ERROR_NUMBER_NOT_REPRESENTABLE);
}

}  // namespace tovik::fileio
