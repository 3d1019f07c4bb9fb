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
inline constexpr double kNoDigit = 1e-28;       // the same, of multipliers with twice the digits

struct FarkasProof {
  std::vector<double> multipliers;  // by row; the largest magnitude is 1
  double gap = 0;                   // by which the proof holds
  /* By how much all sides and bounds together may give way before it does not: less than a tolerance means that points
   * within the tolerance are not excluded. */
  double margin = 0;
  /* The combination of the rows is 0 in columns without a bound, but for the rounding of its terms; else but for noise
   * that the gap outweighs. */
  bool clean = true;
};

/* Multipliers by row, or a direction by column, with digits beyond those of a double where they are known (`low`, else
 * empty). */
struct Multipliers {
  std::vector<double> high, low;
  double error = 0;  // of each entry that is not 0
};

/* By how much y proves that no x within its bounds meets the rows: the least value that the rows demand of y'Ax less
 * the largest that the box allows. 0 when it is no proof. Multipliers of rounding size that would need an infinite
 * bound are set to zero. Fills margin and `clean` of the proof.
 *
 * The gap is judged against its own rounding error and against what columns without a bound, whose entry of y'A is
 * rounding noise, contribute at values as large as the largest bound or side of the LP; a gap that is no small share
 * of its largest term needs no such look where the multipliers are doubles. */
template <class EachEntry>
double farkas_gap(const LpData& lp, EachEntry each_entry, Multipliers& y, FarkasProof& proof) {
  constexpr double kRounding = 0x1p-90;  // of the terms, of sums with twice the digits
  CompensatedSum gap;
  double magnitude = 0;  // of the largest term
  double terms_of_gap = 0;
  double largest_bound = 1;
  double weights = 0;  // of the sides and bounds in the gap
  double noise = 0;    // sum of |z_j| over the columns whose z_j is taken for 0
  proof.clean = true;
  const auto add = [&](double w, double w_low, double bound) {
    gap.add_product(w, bound);
    if (w_low != 0) gap.add_product(w_low, bound);
    magnitude = std::max(magnitude, std::fabs(w * bound));
    terms_of_gap += std::fabs(w * bound);
    weights += std::fabs(w);
    largest_bound = std::max(largest_bound, std::fabs(bound));
  };
  const auto low = [&](int i) { return y.low.empty() ? 0.0 : y.low[i]; };
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (y.high[i] == 0) continue;
    const double bound = y.high[i] > 0 ? lp.row_lower[i] : lp.row_upper[i];
    if (!std::isinf(bound)) {
      add(y.high[i], low(i), bound);
    } else if (std::fabs(y.high[i]) <=
               (y.low.empty() ? kNegligible : std::max(kNegligible * kNegligible, y.error))) {
      y.high[i] = 0;
      if (!y.low.empty()) y.low[i] = 0;
    } else {
      return 0;
    }
  }
  for (int j = 0; j < lp.num_columns(); ++j) {
    CompensatedSum sum;
    double relative = 0, absolute = 0;  // what of z may be noise
    each_entry(j, [&](int i, double a) {
      if (y.high[i] == 0) return;
      sum.add_product(a, y.high[i]);
      if (low(i) != 0) sum.add_product(a, low(i));
      relative += kNegligible * std::fabs(a * y.high[i]);
      absolute += std::max(kNoMultiplier, y.error) * std::fabs(a);
    });
    const double z = sum.value();
    if (z == 0) continue;
    const double bound = z > 0 ? lp.upper[j] : lp.lower[j];
    if (!std::isinf(bound)) {
      add(-z, -sum.rest(), bound);
    } else if (std::fabs(z) > relative + absolute) {
      return 0;
    } else {
      noise += std::fabs(z);
      proof.clean = proof.clean && std::fabs(z) <= relative;
    }
  }
  const double v = gap.value();
  proof.margin = weights > 0 ? v / weights : 0;
  if (proof.clean && y.low.empty() && v > kNegligible * magnitude) return v;
  return v > kRounding * terms_of_gap + 2 * noise * largest_bound ? v : 0;
}

/* Multipliers of either sign as a whole, brought to size 1 and tried: the combination of the rows may lie below or
 * above what the box allows. False when neither is a proof. */
template <class EachEntry>
bool check_farkas(const LpData& lp, EachEntry each_entry, Multipliers y, FarkasProof& proof) {
  double largest = 0;
  for (const double v : y.high) largest = std::max(largest, std::fabs(v));
  if (!(largest > 0) || std::isinf(largest)) return false;
  const double scale = std::exp2(-std::ceil(std::log2(largest)));  // exact
  for (std::size_t i = 0; i < y.high.size(); ++i) {
    const bool none = std::fabs(y.high[i]) < (y.low.empty() ? kNoMultiplier : kNoDigit) * largest;
    y.high[i] = none ? 0 : y.high[i] * scale;
    if (!y.low.empty()) y.low[i] = none ? 0 : y.low[i] * scale;
  }
  y.error *= scale;
  for (const double side : {1.0, -1.0}) {
    Multipliers candidate = y;
    for (double& v : candidate.high) v *= side;
    for (double& v : candidate.low) v *= side;
    const double gap = farkas_gap(lp, each_entry, candidate, proof);
    if (!(gap > 0)) continue;
    proof.gap = gap / (scale * largest);
    proof.multipliers = std::move(candidate.high);
    for (double& v : proof.multipliers) v /= scale * largest;
    return true;
  }
  return false;
}
template <class EachEntry>
bool check_farkas(const LpData& lp, EachEntry each_entry, std::vector<double> y, FarkasProof& proof) {
  return check_farkas(lp, each_entry, Multipliers{std::move(y), {}, 0}, proof);
}

/* Whether a direction by columns leaves no bound and no row's side that is finite, and improves the objective. It is
 * brought to size 1, and entries of rounding size that would leave a bound are set to zero. Rounding is small against
 * the terms of a sum; in a badly scaled model that says nothing about its size. A slope that is a small share of its
 * terms counts where the direction is known to more digits than a double has. */
template <class EachEntry>
bool check_ray(const LpData& lp, EachEntry each_entry, Multipliers& ray) {
  constexpr double kRounding = 0x1p-80;  // of the terms, of sums with twice the digits
  double largest = 0;
  for (const double v : ray.high) largest = std::max(largest, std::fabs(v));
  if (!(kNegligible * largest > ray.error) || std::isinf(largest)) return false;
  const bool has_low = !ray.low.empty();
  CompensatedSum slope;
  double slope_error = 0;
  std::vector<double> negligible(static_cast<std::size_t>(lp.num_rows()), 0.0);
  std::vector<CompensatedSum> activity(static_cast<std::size_t>(lp.num_rows()));
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double entry = ray.high[j];
    if ((entry > 0 && lp.upper[j] < kInf) || (entry < 0 && lp.lower[j] > -kInf)) {
      if (std::fabs(entry) > std::max(kNegligible * largest, ray.error)) return false;
      ray.high[j] = 0;
      if (has_low) ray.low[j] = 0;
    }
    if (ray.high[j] == 0) continue;
    slope.add_product(lp.cost[j], ray.high[j]);
    if (has_low) slope.add_product(lp.cost[j], ray.low[j]);
    slope_error +=
        std::fabs(lp.cost[j]) * ((has_low ? kRounding : kNegligible) * std::fabs(ray.high[j]) + ray.error);
    each_entry(j, [&](int i, double a) {
      activity[i].add_product(a, ray.high[j]);
      if (has_low) activity[i].add_product(a, ray.low[j]);
      negligible[i] += std::fabs(a) * (kNegligible * std::fabs(ray.high[j]) + ray.error);
    });
  }
  if (!(slope.value() < -slope_error)) return false;
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (activity[i].value() > negligible[i] && lp.row_upper[i] < kInf) return false;
    if (activity[i].value() < -negligible[i] && lp.row_lower[i] > -kInf) return false;
  }
  for (double& v : ray.high) v = std::fabs(v) <= ray.error ? 0 : v / largest;
  return true;
}
template <class EachEntry>
bool check_ray(const LpData& lp, EachEntry each_entry, std::vector<double>& ray) {
  Multipliers digits{std::move(ray), {}, 0};
  const bool is_ray = check_ray(lp, each_entry, digits);
  ray = std::move(digits.high);
  return is_ray;
}

}  // namespace tovik::lp::verify
