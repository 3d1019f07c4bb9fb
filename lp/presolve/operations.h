/* What each operation of the stack can do: a table with one line for each, filled from the rules' files. */
#pragma once

#include "lp/presolve/stack.h"
#include "lp/presolve/undo.h"

namespace tovik::lp::presolve {

struct Operation {
  const char* name;
  void (*undo)(Record, Undo&);
};

const Operation& operation(Op op);

}  // namespace tovik::lp::presolve
