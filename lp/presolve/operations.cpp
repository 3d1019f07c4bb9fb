#include "lp/presolve/operations.h"

#include <array>

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

const Operation& operation(Op op) {
  static constexpr auto table = [] {
    std::array<Operation, static_cast<size_t>(Op::count)> t{};
    const auto set = [&t](Op code, Operation entry) { t[static_cast<size_t>(code)] = entry; };
    set(Op::free_row, {"free row", undo_free_row});
    set(Op::singleton_row, {"singleton row", undo_singleton_row});
    set(Op::forcing_row, {"forcing row", undo_forcing_row});
    set(Op::fixed_column, {"fixed column", undo_fixed_column});
    set(Op::doubleton, {"doubleton equation", undo_doubleton});
    set(Op::free_column, {"free column", undo_free_column});
    set(Op::slack_in_equation, {"slack in equation", undo_slack_in_equation});
    set(Op::slack_in_row, {"slack in row", undo_slack_in_row});
    set(Op::row_made_equation, {"row made equation", undo_row_made_equation});
    set(Op::parallel_rows, {"parallel rows", undo_parallel_rows});
    set(Op::parallel_columns, {"parallel columns", undo_parallel_columns});
    set(Op::zero_cost_column, {"zero-cost column", undo_zero_cost_column});
    set(Op::row_addition, {"row addition", undo_row_addition});
    return t;
  }();
  return table[static_cast<size_t>(op)];
}

void undo_all(const Stack& stack, Undo& undo) {
  for (int k = stack.size() - 1; k >= 0; --k) operation(stack.op(k)).undo(stack.record(k), undo);
}

}  // namespace tovik::lp::presolve
