#include "lp/simplex/lagrange.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tovik::lp::simplex {
namespace {

constexpr double kBlend = 0.1;      // share of a new point in the running mean
constexpr double kFirstStep = 0.1;  // in units of value / |violation|^2
constexpr double kLongestStep = 2.0;
constexpr double kLeastScale = 0.02;  // stands for the value while that is next to nothing
constexpr double kGrow = 1.1, kShrink = 0.66;
constexpr int kPatience = 10;  // steps without progress before the step length shrinks

class Lagrange {
 public:
  explicit Lagrange(const LpData& lp) : lp_(lp) { box(); }
  std::vector<double> run(int steps, Control& control);

 private:
  void box();
  double evaluate(const std::vector<double>& y, std::vector<double>& activity) const;
  double direction(size_t i, double y, double mean) const;

  const LpData& lp_;
  std::vector<double> lower_, upper_;
};

/* Finite bounds for each column: its own, those that its rows imply, or a guess. */
void Lagrange::box() {
  lower_ = lp_.lower;
  upper_ = lp_.upper;
  const Matrix& a = lp_.matrix;
  std::vector<double> least(lp_.row_lower.size(), 0.0);
  for (int j = 0; j < a.columns; ++j) {
    for (int k = a.start[j]; k < a.start[j + 1]; ++k)
      least[a.index[k]] += a.value[k] * (a.value[k] > 0 ? lp_.lower[j] : lp_.upper[j]);
  }
  for (int j = 0; j < a.columns; ++j) {
    if (std::isinf(lower_[j])) lower_[j] = std::isinf(upper_[j]) ? 0.0 : upper_[j] - 1.0;
    if (!std::isinf(upper_[j])) continue;
    double implied = kInf, guess = 1;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
      const int i = a.index[k];
      const double side = lp_.row_upper[i];
      if (a.value[k] <= 0 || side == kInf) continue;
      guess = std::max(guess, std::fabs(side));
      if (!std::isinf(least[i])) implied = std::min(implied, (side - least[i]) / a.value[k]);
    }
    upper_[j] = lower_[j] + (implied < kInf ? std::max(0.0, implied) : guess);
  }
}

/* Value of the Lagrangian at y; the activity of a point that attains it. */
double Lagrange::evaluate(const std::vector<double>& y, std::vector<double>& activity) const {
  const Matrix& a = lp_.matrix;
  std::fill(activity.begin(), activity.end(), 0.0);
  double value = 0;
  for (size_t i = 0; i < y.size(); ++i) {
    if (y[i] != 0) value += y[i] * (y[i] > 0 ? lp_.row_lower[i] : lp_.row_upper[i]);
  }
  for (int j = 0; j < a.columns; ++j) {
    double d = lp_.cost[j];
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) d -= a.value[k] * y[a.index[k]];
    const double x = d > 0 ? lower_[j] : upper_[j];
    if (x == 0) continue;
    value += d * x;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) activity[a.index[k]] += a.value[k] * x;
  }
  return value;
}

/* By how much the mean activity misses the side that the multiplier prices. */
double Lagrange::direction(size_t i, double y, double mean) const {
  const double below = lp_.row_lower[i] - mean;
  const double above = lp_.row_upper[i] - mean;
  if (y > 0) return below;
  if (y < 0) return above;
  return below > 0 ? below : above < 0 ? above : 0.0;
}

std::vector<double> Lagrange::run(int steps, Control& control) {
  const size_t m = lp_.row_lower.size();
  std::vector<double> best(m, 0.0), y(m), violation(m), mean(m), activity(m);
  double value = evaluate(best, mean);
  double step = kFirstStep;
  int failures = 0;
  for (int count = 0; count < steps; ++count) {
    double square = 0;
    for (size_t i = 0; i < m; ++i) {
      violation[i] = direction(i, best[i], mean[i]);
      square += violation[i] * violation[i];
    }
    if (square < 1e-12) break;
    const double length = step * std::max(std::fabs(value), kLeastScale) / square;
    for (size_t i = 0; i < m; ++i) {
      y[i] = best[i] + length * violation[i];
      if (lp_.row_lower[i] == -kInf) y[i] = std::min(y[i], 0.0);
      if (lp_.row_upper[i] == kInf) y[i] = std::max(y[i], 0.0);
    }
    const double found = evaluate(y, activity);
    for (size_t i = 0; i < m; ++i) mean[i] += kBlend * (activity[i] - mean[i]);
    if (found > value) {
      value = found;
      double agreement = 0;  // of the new direction with the one that led here
      for (size_t i = 0; i < m; ++i) agreement += direction(i, y[i], activity[i]) * violation[i];
      best.swap(y);
      failures = 0;
      if (agreement > 0) step = std::min(kLongestStep, step * kGrow);
    } else if (++failures >= kPatience) {
      step *= kShrink;
      failures = 0;
    }
    control.add_work(lp_.matrix.index.size());
    if (control.poll() != Stop::none || control.poll_clock() != Stop::none) break;
  }
  return best;
}

}  // namespace

std::vector<double> approximate_duals(const LpData& lp, int steps, Control& control) {
  return Lagrange(lp).run(steps, control);
}

}  // namespace tovik::lp::simplex
