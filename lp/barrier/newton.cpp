#include "lp/barrier/newton.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik::lp::barrier {
namespace {
constexpr double kLargestWeight = 1e24;  // of a column in the factor
}  // namespace

cholesky::State Newton::prepare(const Point& at, const Regularization& regularization, Control& control) {
  at_ = &at;
  for (int j = 0; j < form_.n; ++j) {
    double weight = form_.has_lower[j] ? at.z[j] / at.x[j] : 0;
    if (form_.has_upper[j]) weight += at.v[j] / at.w[j];
    d_[j] = std::min(weight, kLargestWeight);
  }
  return kkt_.factorize(d_, regularization, control);
}

void Newton::solve_once(const Blocks& wanted, Kkt::Accuracy accuracy, Point& step, Control& control) {
  const Point& at = *at_;
  for (int j = 0; j < form_.n; ++j) {
    double right = wanted.dual[j];
    if (form_.has_lower[j]) right -= wanted.lower_pairs[j] / at.x[j];
    if (form_.has_upper[j]) right += (wanted.upper_pairs[j] - at.v[j] * wanted.upper[j]) / at.w[j];
    dual_[j] = right;
  }
  constexpr double kTicksPerColumn = 6, kTicksPerEntry = 1;  // the residuals and steps around it included
  control.add_work(static_cast<std::uint64_t>(kTicksPerColumn * form_.n +
                                              kTicksPerEntry * static_cast<double>(form_.a.index.size())));
  primal_ = wanted.primal;
  kkt_.solve(primal_, dual_, accuracy, control);
  ++solves_;
  step.y = primal_;
  step.x = dual_;
  for (int j = 0; j < form_.n; ++j) {
    if (form_.has_lower[j]) step.z[j] = (wanted.lower_pairs[j] - at.z[j] * step.x[j]) / at.x[j];
    if (!form_.has_upper[j]) continue;
    step.w[j] = wanted.upper[j] - step.x[j];
    step.v[j] = (wanted.upper_pairs[j] - at.v[j] * step.w[j]) / at.w[j];
  }
}

/* Fills left_; the largest residual relative to the block's largest term. */
double Newton::measure(const Blocks& wanted, const Point& step) {
  const Point& at = *at_;
  left_.primal = wanted.primal;
  add_product(form_, -1, step.x, left_.primal);
  left_.dual = wanted.dual;
  add_transposed_product(form_, -1, step.y, left_.dual);
  double dual_terms = largest_magnitude(wanted.dual);
  double dual_left = 0, pairs_left = 0;
  for (int j = 0; j < form_.n; ++j) {
    left_.dual[j] += step.v[j] - step.z[j];
    dual_terms = std::max({dual_terms, std::fabs(step.z[j]), std::fabs(step.v[j])});
    dual_left = std::max(dual_left, std::fabs(left_.dual[j]));
    if (form_.has_lower[j]) {
      left_.lower_pairs[j] = wanted.lower_pairs[j] - at.z[j] * step.x[j] - at.x[j] * step.z[j];
      const double terms = std::fabs(wanted.lower_pairs[j]) + std::fabs(at.z[j] * step.x[j]) + 1e-300;
      pairs_left = std::max(pairs_left, std::fabs(left_.lower_pairs[j]) / terms);
    }
    if (form_.has_upper[j]) {
      left_.upper[j] = wanted.upper[j] - step.x[j] - step.w[j];
      left_.upper_pairs[j] = wanted.upper_pairs[j] - at.v[j] * step.w[j] - at.w[j] * step.v[j];
      const double terms = std::fabs(wanted.upper_pairs[j]) + std::fabs(at.v[j] * step.w[j]) + 1e-300;
      pairs_left = std::max(pairs_left, std::fabs(left_.upper_pairs[j]) / terms);
    }
  }
  const double primal_terms =
      std::max(largest_magnitude(wanted.primal),
               std::min(1e-3 * largest_magnitude(step.x), 1 + largest_magnitude(form_.b)));
  const auto share = [](double part, double whole) { return part > 0 ? part / std::max(whole, 1e-300) : 0; };
  const double worst = std::max(
      {share(largest_magnitude(left_.primal), primal_terms), share(dual_left, dual_terms), pairs_left});
  return std::isfinite(worst) ? worst : kInf;
}

/* Takes away what the step misses, of which left_ is full; false where that helps little. */
bool Newton::improve(const Blocks& wanted, Kkt::Accuracy accuracy, Point& step, Control& control) {
  constexpr double kLittle = 0.5;
  solve_once(left_, accuracy, correction_, control);
  tried_ = step;
  add(form_, 1, correction_, tried_);
  const double now = measure(wanted, tried_);
  if (!(now < trust_)) {
    measure(wanted, step);
    return false;
  }
  std::swap(step, tried_);
  const bool enough = now < kLittle * trust_;
  trust_ = now;
  return enough;
}

void Newton::solve(const Blocks& wanted, const Precision& precision, Point& step, Control& control) {
  constexpr int kIteratedRounds = 2;
  solve_once(wanted, Kkt::Accuracy::of_factor, step, control);
  trust_ = measure(wanted, step);
  for (int round = 0; round < refinements_ && trust_ > precision.enough && trust_ < kInf; ++round) {
    if (!improve(wanted, Kkt::Accuracy::of_factor, step, control)) break;
  }
  for (int round = 0; round < kIteratedRounds && trust_ > precision.poor && trust_ < kInf; ++round) {
    if (!improve(wanted, Kkt::Accuracy::iterated, step, control)) break;
  }
}

}  // namespace tovik::lp::barrier
