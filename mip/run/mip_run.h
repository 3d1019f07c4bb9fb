/* One mixed-integer optimization of a problem: search, log, limits, the incumbent into the problem. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::mip::run {

/* What a mixed-integer optimization leaves besides the solution. */
struct SearchResult {
  double best_bound = 0;  // in the user's sense; +-1e75: none
  std::int64_t nodes = 0, nodes_left = 0, solutions = 0, iterations = 0;
  int threads = 1;  // that searched
};

/* 3003 and its kin for a problem that is none; 1017's like for quadratic parts. */
Status check_mixed_integer(const tovik::Problem& problem);

/* Goes on with the tree of the last run where that met a limit and nothing has changed. Leaves status and incumbent. */
Status run_branch_and_cut(Environment& env, tovik::Problem& problem);

/* Of the last optimization; null: none. */
const SearchResult* search_result(const tovik::Problem& problem);

}  // namespace tovik::mip::run
