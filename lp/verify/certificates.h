/* Checks of the two certificates on the user's own data: multipliers that prove a problem infeasible, and a
 * direction along which it is unbounded. Both may come from anywhere: an engine, presolve, a caller.
 *
 * The vectors of lp are used, its matrix only through each_entry(j, f), which calls f(row, value) for the
 * entries of column j. Sums are compensated. */
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "lp/base/lp_data.h"
#include "lp/base/sum.h"
#include "lp/verify/point.h"

namespace tovik::lp::verify {

inline constexpr double kNegligible = 1e-9;     // share of the largest multiplier, or of the terms of a sum
inline constexpr double kNoMultiplier = 1e-13;  // share of the largest: less is set to zero from the start

struct FarkasProof {
  std::vector<double> multipliers;  // by row; the largest magnitude is 1
  double gap = 0;                   // by which the proof holds
};

/* By how much y proves that no x within its bounds meets the rows: the least value that the rows demand of
 * y'Ax less the largest that the box allows. 0 when it is no proof beyond rounding. Multipliers of rounding
 * size that would need an infinite bound are set to zero. */
template <class EachEntry>
double farkas_gap(const LpData& lp, EachEntry each_entry, std::vector<double>& y) {
  CompensatedSum gap;
  double magnitude = 0;
  const auto add = [&](double w, double bound) {
    gap.add_product(w, bound);
    magnitude = std::max(magnitude, std::fabs(w * bound));
  };
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (y[i] == 0) continue;
    const double bound = y[i] > 0 ? lp.row_lower[i] : lp.row_upper[i];
    if (!std::isinf(bound)) {
      add(y[i], bound);
    } else if (std::fabs(y[i]) <= kNegligible) {
      y[i] = 0;
    } else {
      return 0;
    }
  }
  for (int j = 0; j < lp.num_columns(); ++j) {
    CompensatedSum sum;
    double terms = 0;
    each_entry(j, [&](int i, double a) {
      sum.add_product(a, y[i]);
      terms += std::fabs(a * y[i]);
    });
    const double z = sum.value();
    if (z == 0) continue;
    const double bound = z > 0 ? lp.upper[j] : lp.lower[j];
    if (!std::isinf(bound)) {
      add(-z, bound);
    } else if (std::fabs(z) > kNegligible * terms) {
      return 0;
    }
  }
  return gap.value() > kNegligible * magnitude ? gap.value() : 0;
}

/* Multipliers by row, of either sign as a whole, brought to size 1 and tried: the combination of the rows may
 * lie below or above what the box allows. False when neither is a proof. */
template <class EachEntry>
bool check_farkas(const LpData& lp, EachEntry each_entry, std::vector<double> y, FarkasProof& proof) {
  double largest = 0;
  for (const double v : y) largest = std::max(largest, std::fabs(v));
  if (!(largest > 0) || std::isinf(largest)) return false;
  for (double& v : y) {
    v /= largest;
    if (std::fabs(v) < kNoMultiplier) v = 0;
  }
  for (const double side : {1.0, -1.0}) {
    std::vector<double> candidate = y;
    for (double& v : candidate) v *= side;
    const double gap = farkas_gap(lp, each_entry, candidate);
    if (!(gap > 0)) continue;
    proof.multipliers = std::move(candidate);
    proof.gap = gap;
    return true;
  }
  return false;
}

/* Whether a direction by columns leaves no bound and no row's side that is finite, and improves the
 * objective. It is brought to size 1, and entries of rounding size that would leave a bound are set to zero.
 * Rounding is small against the terms of a sum; in a badly scaled model that says nothing about its size. */
template <class EachEntry>
bool check_ray(const LpData& lp, EachEntry each_entry, std::vector<double>& ray) {
  double largest = 0;
  for (const double v : ray) largest = std::max(largest, std::fabs(v));
  if (!(largest > 0)) return false;
  CompensatedSum slope;
  double slope_terms = 0;
  std::vector<double> terms(static_cast<size_t>(lp.num_rows()), 0.0);
  for (int j = 0; j < lp.num_columns(); ++j) {
    ray[j] /= largest;
    if ((ray[j] > 0 && lp.upper[j] < kInf) || (ray[j] < 0 && lp.lower[j] > -kInf)) {
      if (std::fabs(ray[j]) > kNegligible) return false;
      ray[j] = 0;
    }
    if (ray[j] == 0) continue;
    slope.add_product(lp.cost[j], ray[j]);
    slope_terms += std::fabs(lp.cost[j] * ray[j]);
    each_entry(j, [&](int i, double a) { terms[i] += std::fabs(a * ray[j]); });
  }
  if (!(slope.value() < -kNegligible * slope_terms)) return false;
  const std::vector<double> activity = activities(lp.num_rows(), each_entry, ray);
  for (int i = 0; i < lp.num_rows(); ++i) {
    const double negligible = kNegligible * terms[i];
    if (activity[i] > negligible && lp.row_upper[i] < kInf) return false;
    if (activity[i] < -negligible && lp.row_lower[i] > -kInf) return false;
  }
  return true;
}

}  // namespace tovik::lp::verify
