/* The operations of the stack, each undone or crushed by what the table in operations.cpp says of it: its
 * undo, its image of points, duals, linear forms and bases, and the kept rows whose sides it used. Signs and
 * statuses are those of undo.h; everything is in original indices. */
#pragma once

#include <vector>

#include "lp/presolve/crush_types.h"
#include "lp/presolve/stack.h"
#include "lp/presolve/undo.h"

namespace tovik::lp::presolve {

const char* name_of(Op op);

/* From the last operation to the first. */
void undo_all(const Stack& stack, Undo& undo);
void uncrush_form_all(const Stack& stack, LinearForm& form);

/* From the first operation to the last. What an operation takes away keeps its old value. */
void crush_point_all(const Stack& stack, std::vector<double>& x);
void crush_duals_all(const Stack& stack, std::vector<double>& y);
void crush_basis_all(const Stack& stack, Basis& basis);
bool crush_form_all(const Stack& stack, LinearForm& form);  // false: the form has no image

/* Flags the rows that stayed after the operation and whose sides it used. */
void flag_rows_used(const Stack& stack, std::vector<char>& used);

}  // namespace tovik::lp::presolve
