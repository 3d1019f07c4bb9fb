/* Filters of the solution pool as rows of a mixed-integer problem, so that a search for many solutions does not look where
 * there are none that pass. */
#pragma once

#include <span>

#include "env/solution_filter.h"
#include "mip/domain/problem.h"

namespace tovik::mip::run {

/* The problem with a row more for each filter that is linear on it: a range filter is, and a diversity filter where its columns
 * are integers between 0 and 1. The first columns of the problem are the user's. */
mip::Problem with_filter_rows(const mip::Problem& problem, std::span<const SolutionFilter> filters);

}  // namespace tovik::mip::run
