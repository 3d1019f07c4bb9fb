/* A point against the data of its LP: what follows from it, and by how much it violates what.
 *
 * The vectors of the LP are used; its matrix only through each_entry(j, f), which calls f(row, value) for the
 * entries of column j, so that it may lie anywhere. Sums are compensated. Cost: one pass over the matrix for
 * the sums, one over rows and columns for the violations. */
#pragma once

#include <span>
#include <vector>

#include "lp/base/answer.h"
#include "lp/base/lp_data.h"
#include "lp/base/sum.h"
#include "lp/verify/bounds.h"

namespace tovik::lp::verify {

/* Entries of a matrix that is at hand. */
inline auto entries_of(const Matrix& matrix) {
  return [&matrix](int j, auto f) {
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) f(matrix.index[k], matrix.value[k]);
  };
}

inline std::vector<double> values(const std::vector<CompensatedSum>& sums) {
  std::vector<double> result;
  result.reserve(sums.size());
  for (const CompensatedSum& sum : sums) result.push_back(sum.value());
  return result;
}

/* A x. */
template <class EachEntry>
std::vector<double> activities(int rows, EachEntry each_entry, std::span<const double> x) {
  std::vector<CompensatedSum> sums(static_cast<size_t>(rows));
  for (size_t j = 0; j < x.size(); ++j) {
    if (x[j] == 0) continue;
    each_entry(static_cast<int>(j), [&](int i, double a) { sums[i].add_product(a, x[j]); });
  }
  return values(sums);
}

/* c_j - a_j'y, as a sum to which the caller may add more. */
template <class EachEntry>
CompensatedSum reduced_cost(double cost, int j, EachEntry each_entry, std::span<const double> y) {
  CompensatedSum sum;
  sum.add(cost);
  each_entry(j, [&](int i, double a) { sum.add_product(-a, y[i]); });
  return sum;
}

/* c'x + offset. */
double objective(const LpData& lp, std::span<const double> x);

/* A point by columns (x, d) and rows (activity, y). Duals are judged where there are any: of an integer
 * solution nobody asks for them. Without statuses each dual is judged by where its value stands. */
struct Point {
  std::span<const double> x, activity;
  std::span<const double> d, y;                            // may be empty
  std::span<const BasisStatus> column_status, row_status;  // may be empty
};

/* Largest violations and where they are. `reach` serves points without statuses: as near a bound as that, a
 * value stands at it (status_at). */
Violation measure_violation(const LpData& lp, const Point& point, double reach = 0);
Violation measure_violation(const LpData& lp, const Answer& answer);

}  // namespace tovik::lp::verify
