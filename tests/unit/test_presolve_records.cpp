/* Records of the presolve stack: each lists all of its fields, and comes back as it was written. */
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "lp/presolve/dominated_column.h"
#include "lp/presolve/doubleton_equation.h"
#include "lp/presolve/fixed_column.h"
#include "lp/presolve/forcing_row.h"
#include "lp/presolve/free_column.h"
#include "lp/presolve/free_row.h"
#include "lp/presolve/operations.h"
#include "lp/presolve/parallel_columns.h"
#include "lp/presolve/parallel_rows.h"
#include "lp/presolve/singleton_row.h"
#include "lp/presolve/slack_column.h"
#include "lp/presolve/sparsify.h"
#include "lp/presolve/zero_cost_column.h"

namespace tovik::lp::presolve {
namespace {

using Records =
    std::tuple<FreeRow, SingletonRow, ForcingRow, FixedColumn, Doubleton, FreeColumn, SlackInEquation,
               SlackInRow, ParallelRows, ParallelColumns, ZeroCostColumn, RowAddition, RowMadeEquation>;
static_assert(std::tuple_size_v<Records> == static_cast<std::size_t>(Op::count));

/* Gives each field a value that no other field has; flags and statuses by the bits of `pattern`. */
class Filler {
 public:
  explicit Filler(unsigned pattern) : pattern_(pattern) {}
  template <class... Fields>
  void operator()(Fields&... fields) {
    (fill(fields), ...);
  }

 private:
  static constexpr int kMost = 64;
  unsigned take(unsigned most) {
    const unsigned value = pattern_ % (most + 1);
    pattern_ /= most + 1;
    return value;
  }
  void fill(int& value) { value = next_++; }
  void fill(double& value) { value = next_++ / 8.0; }
  void fill(bool& value) { value = take(1) != 0; }
  void fill(BasisStatus& value) { value = static_cast<BasisStatus>(take(3)); }
  void fill(View& view) { view = {static_cast<int>(take(2)), numbers(), reals()}; }
  void fill(Reals& view) { view = {static_cast<int>(take(2)), reals()}; }
  void fill(ColumnEntries& column) {
    fill(column.copied);
    if (column.copied) fill(column.entries);
  }
  void fill(RowViews& rows) {
    static constexpr int kStart[] = {0, 2, 2, 5};
    rows = {static_cast<int>(take(3)), kStart, numbers(), reals()};
  }
  const int* numbers() {
    for (int& value : ints_) value = next_++;
    return kept_ints_.emplace_back(std::begin(ints_), std::end(ints_)).data();
  }
  const double* reals() {
    std::vector<double> values;
    for (int k = 0; k < 8; ++k) values.push_back(next_++ / 8.0);
    return kept_reals_.emplace_back(values).data();
  }

  unsigned pattern_;
  int next_ = 1;
  int ints_[8] = {};
  std::vector<std::vector<int>> kept_ints_;
  std::vector<std::vector<double>> kept_reals_;
};

/* All fields as text, and their places. */
class Printer {
 public:
  template <class... Fields>
  void operator()(const Fields&... fields) {
    (places.insert(&fields), ...);
    count += sizeof...(fields);
    (print(fields), ...);
  }
  std::set<const void*> places;
  std::size_t count = 0;
  std::ostringstream text;

 private:
  template <class T>
  void list(int length, const T* values) {
    for (int k = 0; k < length; ++k) text << values[k] << ' ';
    text << "; ";
  }
  template <class T>
  void print(const T& value) {
    text << value << "; ";
  }
  void print(const BasisStatus& at) { text << static_cast<int>(at) << "; "; }
  void print(const View& view) {
    list(view.length, view.index);
    list(view.length, view.value);
  }
  void print(const Reals& reals) { list(reals.length, reals.value); }
  void print(const ColumnEntries& column) {
    text << column.copied << "; ";
    if (column.copied) print(column.entries);
  }
  void print(const RowViews& rows) {
    text << rows.count << "; ";
    for (int k = 0; k < rows.count; ++k) print(rows[k]);
  }
};

template <class R>
std::string text_of(const R& record) {
  Printer printer;
  R::fields(record, printer);
  return printer.text.str();
}

template <class R>
void expect_round_trips() {
  SCOPED_TRACE(name_of(R::kOp));
  Stack stack;
  std::vector<std::string> written;
  for (unsigned pattern = 0; pattern < 700; pattern += 7) {  // neighbours of other lengths on the stack
    Filler filler(pattern);
    R record{};
    R::fields(record, filler);
    Printer fields;
    R::fields(record, fields);
    ASSERT_EQ(fields.places.size(), fields.count) << "a field is listed twice";
    stack.push(record);
    written.push_back(text_of(record));
  }
  for (int k = 0; k < stack.size(); ++k) {
    ASSERT_EQ(stack.op(k), R::kOp);
    ASSERT_EQ(text_of(stack.read<R>(k)), written[k]);
  }
}

TEST(PresolveRecords, ComeBackAsWritten) {
  std::apply([](const auto&... record) { (expect_round_trips<std::decay_t<decltype(record)>>(), ...); },
             Records{});
}

}  // namespace
}  // namespace tovik::lp::presolve
