#include "lp/presolve/operations.h"

#include <tuple>
#include <utility>

#include "lp/presolve/dominated_column.h"
#include "lp/presolve/doubleton_equation.h"
#include "lp/presolve/fixed_column.h"
#include "lp/presolve/forcing_row.h"
#include "lp/presolve/free_column.h"
#include "lp/presolve/free_row.h"
#include "lp/presolve/parallel_columns.h"
#include "lp/presolve/parallel_rows.h"
#include "lp/presolve/singleton_row.h"
#include "lp/presolve/slack_column.h"
#include "lp/presolve/sparsify.h"
#include "lp/presolve/zero_cost_column.h"

namespace tovik::lp::presolve {
namespace {

struct None {};
constexpr None none;

/* A function of an operation, or none. Without a default: a line that leaves one out does not compile. */
template <class F>
class Step {
 public:
  constexpr Step(F* function) : function_(function) {}
  constexpr Step(None) : function_(nullptr) {}
  constexpr explicit operator bool() const { return function_ != nullptr; }
  template <class... Arguments>
  constexpr auto operator()(Arguments&&... arguments) const {
    return function_(std::forward<Arguments>(arguments)...);
  }

 private:
  F* function_;
};

/* Rows of a record, by its fields. */
template <class R>
class RowFields {
 public:
  constexpr RowFields(None) {}
  constexpr RowFields(int R::*one) : one_(one) {}
  constexpr RowFields(int R::*one, int R::*two) : one_(one), two_(two) {}
  void flag(const R& record, std::vector<char>& flags) const {
    if (one_ != nullptr) flags[record.*one_] = 1;
    if (two_ != nullptr) flags[record.*two_] = 1;
  }

 private:
  int R::*one_ = nullptr;
  int R::*two_ = nullptr;
};

template <class R>
struct Operation {
  using Record = R;
  const char* name;
  void (*undo)(const R&, Undo&);
  // None: what the operation takes away is all that changes.
  Step<void(const R&, std::vector<double>& x)> point;
  Step<void(const R&, std::vector<double>& y)> duals;
  Step<void(const R&, Basis&)> basis;
  Step<bool(const R&, LinearForm&)> form;
  Step<void(const R&, LinearForm&)> form_back;
  RowFields<R> sides_used;  // of rows that stay
};

constexpr std::tuple kOperations{
    Operation<FreeRow>{.name = "free row",
                       .undo = undo_free_row,
                       .point = none,
                       .duals = none,
                       .basis = none,
                       .form = none,
                       .form_back = none,
                       .sides_used = none},
    Operation<SingletonRow>{.name = "singleton row",
                            .undo = undo_singleton_row,
                            .point = none,
                            .duals = none,
                            .basis = basis_of_singleton_row,
                            .form = none,
                            .form_back = none,
                            .sides_used = none},
    Operation<ForcingRow>{.name = "forcing row",
                          .undo = undo_forcing_row,
                          .point = none,
                          .duals = none,
                          .basis = none,
                          .form = none,
                          .form_back = none,
                          .sides_used = none},
    Operation<FixedColumn>{.name = "fixed column",
                           .undo = undo_fixed_column,
                           .point = none,
                           .duals = none,
                           .basis = none,
                           .form = form_of_fixed_column,
                           .form_back = none,
                           .sides_used = none},
    Operation<Doubleton>{.name = "doubleton equation",
                         .undo = undo_doubleton,
                         .point = none,
                         .duals = none,
                         .basis = basis_of_doubleton,
                         .form = form_of_doubleton,
                         .form_back = none,
                         .sides_used = none},
    Operation<FreeColumn>{.name = "free column",
                          .undo = undo_free_column,
                          .point = none,
                          .duals = none,
                          .basis = none,
                          .form = form_of_free_column,
                          .form_back = none,
                          .sides_used = none},
    Operation<SlackInEquation>{.name = "slack in equation",
                               .undo = undo_slack_in_equation,
                               .point = none,
                               .duals = duals_of_slack_in_equation,
                               .basis = basis_of_slack_in_equation,
                               .form = form_of_slack_in_equation,
                               .form_back = none,
                               .sides_used = &SlackInEquation::row},
    Operation<SlackInRow>{.name = "slack in row",
                          .undo = undo_slack_in_row,
                          .point = none,
                          .duals = none,
                          .basis = basis_of_slack_in_row,
                          .form = form_of_slack_in_row,
                          .form_back = none,
                          .sides_used = &SlackInRow::row},
    Operation<ParallelRows>{.name = "parallel rows",
                            .undo = undo_parallel_rows,
                            .point = none,
                            .duals = duals_of_parallel_rows,
                            .basis = basis_of_parallel_rows,
                            .form = none,
                            .form_back = none,
                            .sides_used = &ParallelRows::kept},
    Operation<ParallelColumns>{.name = "parallel columns",
                               .undo = undo_parallel_columns,
                               .point = point_of_parallel_columns,
                               .duals = none,
                               .basis = basis_of_parallel_columns,
                               .form = form_of_parallel_columns,
                               .form_back = form_back_of_parallel_columns,
                               .sides_used = none},
    Operation<ZeroCostColumn>{.name = "zero-cost column",
                              .undo = undo_zero_cost_column,
                              .point = none,
                              .duals = none,
                              .basis = none,
                              .form = form_of_zero_cost_column,
                              .form_back = none,
                              .sides_used = none},
    Operation<RowAddition>{.name = "row addition",
                           .undo = undo_row_addition,
                           .point = none,
                           .duals = duals_of_row_addition,
                           .basis = none,
                           .form = none,
                           .form_back = none,
                           .sides_used = {&RowAddition::target, &RowAddition::source}},
    Operation<RowMadeEquation>{.name = "row made equation",
                               .undo = undo_row_made_equation,
                               .point = none,
                               .duals = none,
                               .basis = none,
                               .form = none,
                               .form_back = none,
                               .sides_used = &RowMadeEquation::row},
};

using Operations = std::remove_const_t<decltype(kOperations)>;
template <std::size_t k>
using RecordOf = typename std::tuple_element_t<k, Operations>::Record;
constexpr auto kIndices = std::make_index_sequence<static_cast<std::size_t>(Op::count)>();

template <std::size_t... k>
constexpr bool in_order(std::index_sequence<k...>) {
  return ((RecordOf<k>::kOp == static_cast<Op>(k)) && ...);
}
static_assert(std::tuple_size_v<Operations> == static_cast<std::size_t>(Op::count),
              "a line for each operation");
static_assert(in_order(kIndices), "in the order of the enumeration");

template <class F, std::size_t k>
void visit_as(const Stack& stack, int at, F& f) {
  f(std::get<k>(kOperations), stack.read<RecordOf<k>>(at));
}

/* f(line of the table, record) for operation `at` of the stack. */
template <class F, std::size_t... k>
void visit(const Stack& stack, int at, F& f, std::index_sequence<k...>) {
  static constexpr void (*kVisitors[])(const Stack&, int, F&) = {visit_as<F, k>...};
  kVisitors[static_cast<std::size_t>(stack.op(at))](stack, at, f);
}

template <class F>
void forward(const Stack& stack, F f) {
  for (int k = 0; k < stack.size(); ++k) visit(stack, k, f, kIndices);
}

template <class F>
void backward(const Stack& stack, F f) {
  for (int k = stack.size() - 1; k >= 0; --k) visit(stack, k, f, kIndices);
}

}  // namespace

const char* name_of(Op op) {
  static constexpr auto names =
      std::apply([](const auto&... line) { return std::array{line.name...}; }, kOperations);
  return names[static_cast<std::size_t>(op)];
}

void undo_all(const Stack& stack, Undo& undo) {
  backward(stack, [&](const auto& line, const auto& record) { line.undo(record, undo); });
}

void uncrush_form_all(const Stack& stack, LinearForm& form) {
  backward(stack, [&](const auto& line, const auto& record) {
    if (line.form_back) line.form_back(record, form);
  });
}

void crush_point_all(const Stack& stack, std::vector<double>& x) {
  forward(stack, [&](const auto& line, const auto& record) {
    if (line.point) line.point(record, x);
  });
}

void crush_duals_all(const Stack& stack, std::vector<double>& y) {
  forward(stack, [&](const auto& line, const auto& record) {
    if (line.duals) line.duals(record, y);
  });
}

void crush_basis_all(const Stack& stack, Basis& basis) {
  forward(stack, [&](const auto& line, const auto& record) {
    if (line.basis) line.basis(record, basis);
  });
}

bool crush_form_all(const Stack& stack, LinearForm& form) {
  bool has_image = true;
  forward(stack, [&](const auto& line, const auto& record) {
    if (has_image && line.form) has_image = line.form(record, form);
  });
  return has_image;
}

void flag_rows_used(const Stack& stack, std::vector<char>& used) {
  forward(stack, [&](const auto& line, const auto& record) { line.sides_used.flag(record, used); });
}

}  // namespace tovik::lp::presolve
