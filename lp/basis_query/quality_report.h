/* Measures of the stored solution by name, as solution files tell them. */
#pragma once

#include <utility>
#include <vector>

#include "env/problem.h"

namespace tovik::lp::run {

/* Which measures make sense. */
struct QualityScope {
  bool duals = false;
  bool basis = false;
};

/* The tolerances in force, then the measures that the solution allows, in the order of files. */
std::vector<std::pair<const char*, double>> quality_report(Environment& env, Problem& problem,
                                                           const QualityScope& scope);

/* The same of a solution of a mixed-integer problem that is not the stored one. */
std::vector<std::pair<const char*, double>> quality_of_point(const Environment& env, const Problem& problem,
                                                             const Solution& solution);

}  // namespace tovik::lp::run
