/* Problem objects: a copy, the end of one, and the removal of small numbers. */
#pragma once

#include <memory>

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::model {

/* Name, type, model and protected columns; neither solution nor basis. */
Status clone_problem(Environment& env, Problem& source, std::unique_ptr<Problem>& copy);

/* 1009 for a problem that is no object of its own but belongs to another one. */
Status free_problem(Problem& problem);

/* Sets values smaller in magnitude than eps to zero, entries of the matrix and of families removed with them.
 * 1023 for a fixed problem. */
Status remove_small(Problem& problem, double eps);

}  // namespace tovik::model
