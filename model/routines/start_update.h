/* Keeps the starting basis of a problem in step with the rows and columns of its model, so that a solve after
 * adding or deleting some starts from the last one. A new row's slack is basic, a new column non-basic at the
 * bound nearest to zero or free. Deletion drops the entries; where the rest is no basis any more (one basic
 * variable for each row), Start::balanced says so: an optimizer makes one of it, queries find none. */
#pragma once

#include <span>

#include "env/problem.h"

namespace tovik::model {

/* Reserves room for so many more rows and columns, so that extend_start cannot fail. */
void reserve_start(Problem& problem, int rows, int columns);
/* Adds entries for the last rows and columns of the model that have none yet. */
void extend_start(Problem& problem) noexcept;
void drop_start_rows(Problem& problem, int first, int last) noexcept;
void drop_start_columns(Problem& problem, int first, int last) noexcept;
void drop_start_rows(Problem& problem, std::span<const int> marks) noexcept;  // one a row; 1 deletes
void drop_start_columns(Problem& problem, std::span<const int> marks) noexcept;

}  // namespace tovik::model
