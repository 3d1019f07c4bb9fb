/* Columns that presolve must not remove: indices in ascending order, each once, kept in step with the model's
 * columns. They belong to the problem and go when a whole new model comes in. */
#pragma once

#include <span>
#include <vector>

#include "env/problem.h"

namespace tovik::model {

/* Replaces the list; an index may be given twice. 1003, 1004, 1201 with the index. */
Status copy_protected(Environment& env, Problem& problem, int count, const int* columns);
/* One flag for each column, or empty when none is protected. */
std::vector<char> protected_flags(const Problem& problem);
/* After columns were deleted. */
void drop_protected(Problem& problem, int first, int last) noexcept;
void drop_protected(Problem& problem, std::span<const int> marks) noexcept;  // one a column; 1 deletes

}  // namespace tovik::model
