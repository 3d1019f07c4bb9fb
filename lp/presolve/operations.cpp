#include "lp/presolve/operations.h"

#include <array>

#include "lp/presolve/fixed_column.h"
#include "lp/presolve/forcing_row.h"
#include "lp/presolve/free_row.h"
#include "lp/presolve/singleton_row.h"

namespace tovik::lp::presolve {

const Operation& operation(Op op) {
  static constexpr auto table = [] {
    std::array<Operation, static_cast<size_t>(Op::count)> t{};
    const auto set = [&t](Op code, Operation entry) { t[static_cast<size_t>(code)] = entry; };
    set(Op::free_row, {"free row", undo_free_row});
    set(Op::singleton_row, {"singleton row", undo_singleton_row});
    set(Op::forcing_row, {"forcing row", undo_forcing_row});
    set(Op::fixed_column, {"fixed column", undo_fixed_column});
    return t;
  }();
  return table[static_cast<size_t>(op)];
}

void undo_all(const Stack& stack, Undo& undo) {
  for (int k = stack.size() - 1; k >= 0; --k) operation(stack.op(k)).undo(stack.record(k), undo);
}

}  // namespace tovik::lp::presolve
