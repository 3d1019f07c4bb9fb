/* Filters of the solution pool, for the exported routines: what callers state is checked, kept, and holds for the pool at once. */
#pragma once

#include <vector>

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::model {

struct FilterArguments {
  SolutionFilter::Kind kind;
  double lower, upper;
  int count;
  const int* column;
  const double* coefficient;  // of a diversity filter null: all 1
  const double* reference;    // of a diversity filter
  const char* name;           // null: by its number
};
Status add_filter(Environment& env, Problem& problem, const FilterArguments& arguments);

/* All of them or none; their arrays have the sizes that they should have. Codes of the content. */
Status add_filters(Environment& env, Problem& problem, std::vector<SolutionFilter> filters);

struct FilterOutput {
  double *lower, *upper;  // null: not wanted
  int* count;
  int* column;
  double* coefficient;
  double* reference;  // of a diversity filter
  int space;
  int* surplus;
};
/* 1200 no such filter, 1003 one of the other kind. */
Status get_filter(const Problem& problem, SolutionFilter::Kind kind, int which, const FilterOutput& out);

Status delete_filters(Environment& env, Problem& problem, int begin, int end);
Status delete_set_of_filters(Problem& problem, int* delstat);

}  // namespace tovik::model
