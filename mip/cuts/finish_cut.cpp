// What every cut passes before it is handed out.
#include <algorithm>
#include <cmath>

#include "lp/base/sum.h"
#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr double kSmallShare = 1e-5;  // coefficients below this share of the largest are dropped
constexpr double kWidest = 1e5;       // largest by smallest coefficient of what is left
constexpr double kLargestSide = 1e9;  // by the largest coefficient
constexpr double kLeastEfficacy = 1e-4;
constexpr double kLeastViolation = 1e-5;
constexpr double kRounding = 1e-11;  // of the terms of a side

}  // namespace

bool finish_cut(const Worker& worker, std::span<const double> x, Cut* cut) {
  double largest = 0;
  for (const double v : cut->values) largest = std::max(largest, std::fabs(v));
  if (!(largest > 0) || std::isinf(largest)) return false;
  // A power of two: exact.
  const double scale = std::exp2(-std::floor(std::log2(largest)));
  lp::CompensatedSum side;
  side.add(cut->side * scale);
  double terms = std::fabs(cut->side * scale), activity = 0, norm = 0;
  bool integral = true;
  std::size_t kept = 0;
  for (std::size_t k = 0; k < cut->columns.size(); ++k) {
    const int j = cut->columns[k];
    const double a = cut->values[k] * scale;
    if (std::fabs(a) < kSmallShare) {
      // The column takes the bound at which it weighs least.
      const double at = a > 0 ? worker.domain.lower(j) : worker.domain.upper(j);
      if (std::isinf(at)) return false;
      side.add_product(-a, at);
      terms = std::max(terms, std::fabs(a * at));
      continue;
    }
    cut->columns[kept] = j;
    cut->values[kept++] = a;
    activity += a * x[j];
    norm += a * a;
    terms = std::max(terms, std::fabs(a * x[j]));
    integral = integral && worker.global.problem.is_integer[j] != 0 && a == std::round(a);
  }
  cut->columns.resize(kept);
  cut->values.resize(kept);
  if (kept == 0) return false;
  const auto longest = static_cast<std::size_t>(1000 + worker.global.problem.num_columns() / 10);
  if (kept > longest) return false;
  const double smallest = *std::min_element(cut->values.begin(), cut->values.end(),
                                            [](double a, double b) { return std::fabs(a) < std::fabs(b); });
  if (2 > kWidest * std::fabs(smallest)) return false;
  cut->side = side.value() + kRounding * std::max(1.0, terms);
  // Integer coefficients on integer columns: so is the side.
  if (integral) cut->side = std::floor(cut->side + 1e-9);
  cut->is_integral = integral;
  if (std::fabs(cut->side) > kLargestSide) return false;
  const double violation = activity - cut->side;
  return violation > kLeastViolation && violation > kLeastEfficacy * std::sqrt(norm);
}

}  // namespace tovik::mip
