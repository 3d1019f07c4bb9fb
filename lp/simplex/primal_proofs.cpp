/* What the primal simplex checks against the model's own data before it claims anything. */
#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/simplex/basis_refinement.h"
#include "lp/simplex/primal.h"

namespace tovik::lp::simplex {
namespace {
constexpr double kNegligible = 1e-9;  // entries of a ray or of a combined row that may meet an infinite bound
constexpr double kNoDigit = 1e-18;    // the same of refined multipliers
constexpr double kMargin = 1e-9;      // rounding allowed for in a sum, relative to its terms
}  // namespace

/* max |A x + s| relative to the largest value. */
double Primal::residual() const {
  std::vector<double> sum(static_cast<size_t>(core_.m()), 0.0);
  double size = 1;
  const auto add = [&](int j, double value) {
    if (value == 0) return;
    size = std::max(size, std::fabs(value));
    if (j >= core_.n()) {
      sum[j - core_.n()] += value;
      return;
    }
    const Matrix& a = core_.matrix();
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) sum[a.index[k]] += value * a.value[k];
  };
  for (int j = 0; j < core_.total(); ++j) {
    if (core_.basis.nonbasic(j)) add(j, core_.basis.value(j));
  }
  for (int p = 0; p < core_.m(); ++p) add(core_.basis.head(p), core_.values.x(p));
  double largest = 0;
  for (double s : sum) largest = std::max(largest, std::fabs(s));
  return largest / size;
}

/* y = B^-T c of the first phase combines the rows A x + s = 0 to sum_j z_j x_j = 0; proven when that sum is
 * negative over the whole box. Where a column without a bound spoils that, however little, it is told in spoiler_. */
bool Primal::prove_infeasible() {
  changes_.clear();
  int count = 0;
  for (int p = 0; p < core_.m(); ++p) {
    if (violation_[p] == 0) continue;
    changes_.index[count++] = p;
    changes_.array[p] = violation_[p];
  }
  changes_.count = count;
  core_.factor.btran(changes_, 1.0);
  farkas_ = changes_.array;
  changes_.count = -1;
  changes_.clear();
  double largest = 0;
  double size = 0;
  for (int j = 0; j < core_.total(); ++j) {
    const double z = core_.model.column_dot(j, farkas_);
    const double bound = z > 0 ? core_.model.upper(j) : core_.model.lower(j);
    if (z == 0 || (std::fabs(z) <= kNegligible && std::fabs(bound) == kInf)) continue;
    largest += z * bound;
    size += std::fabs(z * bound);
  }
  core_.charge(static_cast<std::int64_t>(core_.matrix().index.size()));
  if (!(largest < -kMargin * size)) return false;
  spoiler_ = find_spoiler({farkas_, {}, 0});
  if (spoiler_.variable < 0) return true;
  verify::Multipliers refined = refine_multipliers(core_, farkas_);
  spoiler_ = find_spoiler(refined);
  farkas_ = std::move(refined.high);
  if (spoiler_.variable >= 0 && !core_.basis.nonbasic(spoiler_.variable)) spoiler_ = {};
  return spoiler_.variable < 0;
}

/* The column without a bound whose entry of y'[A I] is the largest that is no rounding noise. */
Primal::Spoiler Primal::find_spoiler(const verify::Multipliers& y) const {
  const bool has_low = !y.low.empty();
  const Matrix& a = core_.matrix();
  double longest = 0;
  for (const double v : y.high) longest = std::max(longest, std::fabs(v));
  const double relative = has_low ? kNoDigit : kNegligible;
  const double absolute = has_low ? std::max(kNoDigit * longest, y.error) : 0;
  Spoiler worst;
  for (int j = 0; j < core_.total(); ++j) {
    if (core_.model.lower(j) != -kInf && core_.model.upper(j) != kInf) continue;
    CompensatedSum sum;
    double noise = 0;
    const auto add = [&](int i, double entry) {
      sum.add_product(entry, y.high[i]);
      if (has_low) sum.add_product(entry, y.low[i]);
      noise += std::fabs(entry) * (relative * std::fabs(y.high[i]) + absolute);
    };
    if (j >= core_.n()) {
      add(j - core_.n(), 1.0);
    } else {
      for (int k = a.start[j]; k < a.start[j + 1]; ++k) add(a.index[k], a.value[k]);
    }
    const double z = sum.value();
    const double bound = z > 0 ? core_.model.upper(j) : core_.model.lower(j);
    if (std::isinf(bound) && std::fabs(z) > noise && std::fabs(z) > std::fabs(worst.entry)) worst = {j, z};
  }
  core_.charge(static_cast<std::int64_t>(a.index.size()));
  return worst;
}

/* The first phase goes on with the column that keeps its optimum from being a proof, although its reduced cost is below
 * the tolerance. */
bool Primal::enter_spoiler() {
  const Spoiler q = std::exchange(spoiler_, {});
  entering_ = q.variable;
  direction_ = q.entry > 0 ? 1.0 : -1.0;
  load_entering();
  core_.values.set_dual(q.variable, -q.entry);
  return true;
}

/* The ray: x_q moves by direction_, x_B by -direction_ * column_. */
bool Primal::prove_unbounded() {
  const int q = entering_;
  const double end = direction_ > 0 ? core_.model.upper(q) : core_.model.lower(q);
  if (std::fabs(end) != kInf) return false;
  const double negligible = kNegligible * std::max(1.0, column_largest_);
  std::vector<double> sum(static_cast<size_t>(core_.m()), 0.0);
  double slope = core_.model.cost(q) * direction_;
  double slope_size = std::fabs(slope);
  const Matrix& a = core_.matrix();
  const auto add = [&](int j, double amount) {
    if (j >= core_.n()) {
      sum[j - core_.n()] += amount;
      return;
    }
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) sum[a.index[k]] += amount * a.value[k];
  };
  add(q, direction_);
  for (int p = 0; p < core_.m(); ++p) {
    const double change = -direction_ * column_.array[p];
    if (std::fabs(change) <= negligible) continue;
    const int j = core_.basis.head(p);
    if (std::fabs(change > 0 ? core_.model.upper(j) : core_.model.lower(j)) != kInf) return false;
    add(j, change);
    slope += core_.model.cost(j) * change;
    slope_size += std::fabs(core_.model.cost(j) * change);
  }
  double residual = 0;
  for (double s : sum) residual = std::max(residual, std::fabs(s));
  return residual <= 1e2 * negligible &&
         slope < -std::max(core_.dual_tolerance() * 0.5, kMargin * slope_size);
}

}  // namespace tovik::lp::simplex
