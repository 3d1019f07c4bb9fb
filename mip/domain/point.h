/* A point against a mixed-integer problem: by how much it misses what. Sums are compensated. */
#pragma once

#include <span>
#include <vector>

#include "mip/domain/problem.h"

namespace tovik::mip {

struct PointViolation {
  double integrality = 0;  // largest distance from an integer
  double row = 0, bound = 0;
  double object = 0;  // least change of a value that satisfies the worst object
  double primal() const { return row > bound ? row : bound; }
};

PointViolation measure(const Problem& problem, std::span<const double> x);
double objective(const Problem& problem, std::span<const double> x);

/* The distance to the next integer. */
double fractionality(double value);

/* Least change that satisfies one object; 0 when it holds. */
double violation(const SemiColumn& semi, std::span<const double> x);
double violation(const OrderedSet& set, std::span<const double> x);
double violation(const Indicator& indicator, std::span<const double> x);

}  // namespace tovik::mip
