#include "lp/barrier/point.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::barrier {
namespace {

constexpr double kSmallest = 1e-30;  // of a value or multiplier of a pair

/* The pair that blocks a step, with what it moves by. */
struct Blocking {
  double step = kInf;
  double value = 0, change = 0;  // of the side that reaches 0
  double other = 0, other_change = 0;
};

struct BlockingPairs {
  Blocking primal, dual;
};

BlockingPairs blocking_pairs(const Form& form, const Point& at, const Point& step) {
  BlockingPairs found;
  for_pairs(form, at, step, [&](double value, double multiplier, double dvalue, double dmultiplier) {
    if (dvalue < 0 && value < -dvalue * found.primal.step)
      found.primal = {value / -dvalue, value, dvalue, multiplier, dmultiplier};
    if (dmultiplier < 0 && multiplier < -dmultiplier * found.dual.step)
      found.dual = {multiplier / -dmultiplier, multiplier, dmultiplier, value, dvalue};
  });
  return found;
}

/* A step short of the boundary such that the product of its pair comes near `target`. */
double shorten(const Blocking& blocking, double other_step, double target) {
  constexpr double kShare = 0.9;          // of the longest step, at least
  constexpr double kDistance = 1 - 1e-6;  // at most
  if (blocking.step >= 1 / kDistance) return 1;
  const double other = blocking.other + other_step * blocking.other_change;
  double step = kShare * blocking.step;
  if (other > 0) step = std::max(step, (blocking.value - target / other) / -blocking.change);
  return std::min({step, kDistance * blocking.step, 1.0});
}

}  // namespace

void measure_residuals(const Form& form, const Point& at, double tau, Blocks& missing) {
  for (int i = 0; i < form.m; ++i) missing.primal[i] = tau * form.b[i];
  add_product(form, -1, at.x, missing.primal);
  for (int j = 0; j < form.n; ++j) {
    missing.upper[j] = form.has_upper[j] ? tau * form.u[j] - at.x[j] - at.w[j] : 0;
    missing.dual[j] = tau * form.c[j] - at.z[j] + at.v[j];
  }
  add_transposed_product(form, -1, at.y, missing.dual);
}

double sum_of_products(const Point& at) {
  return dot(at.x, at.z) + dot(at.w, at.v);
}

double sum_of_products(const Form& form, const Point& at, const Point& step, double primal, double dual) {
  double sum = 0;
  for_pairs(form, at, step, [&](double value, double multiplier, double dvalue, double dmultiplier) {
    sum += (value + primal * dvalue) * (multiplier + dual * dmultiplier);
  });
  return sum;
}

Steps longest_steps(const Form& form, const Point& at, const Point& step, double limit) {
  const BlockingPairs pairs = blocking_pairs(form, at, step);
  return {std::min(limit, pairs.primal.step), std::min(limit, pairs.dual.step)};
}

std::array<Steps, kWeights> longest_steps(const Form& form, const Point& at, const Point& step,
                                          const Point& extra, const Weights& weights) {
  Weights primal, dual;  // largest shares of a value that a whole step takes away
  primal.fill(1);
  dual.fill(1);
  const auto look = [&weights](double value, double change, double more, Weights& largest) {
    constexpr double kNoSmaller = 1e-300;  // its inverse is finite
    const double share = -1 / std::max(value, kNoSmaller);
    for (int k = 0; k < kWeights; ++k) {
      const double taken = share * (change + weights[k] * more);
      largest[k] = largest[k] > taken ? largest[k] : taken;
    }
  };
  for (int j = 0; j < form.n; ++j) {
    if (!form.has_lower[j]) continue;
    look(at.x[j], step.x[j], extra.x[j], primal);
    look(at.z[j], step.z[j], extra.z[j], dual);
    if (!form.has_upper[j]) continue;
    look(at.w[j], step.w[j], extra.w[j], primal);
    look(at.v[j], step.v[j], extra.v[j], dual);
  }
  std::array<Steps, kWeights> steps;
  for (int k = 0; k < kWeights; ++k) steps[k] = {1 / primal[k], 1 / dual[k]};
  return steps;
}

Steps interior_steps(const Form& form, const Point& at, const Point& step) {
  constexpr double kTargetShare = 0.1;  // of the mean product at the boundary
  if (form.pairs == 0) return {};
  const BlockingPairs pairs = blocking_pairs(form, at, step);
  const Steps longest{std::min(1.0, pairs.primal.step), std::min(1.0, pairs.dual.step)};
  const double mean = sum_of_products(form, at, step, longest.primal, longest.dual) / form.pairs;
  const double target = kTargetShare * std::max(0.0, mean);
  return {shorten(pairs.primal, longest.dual, target), shorten(pairs.dual, longest.primal, target)};
}

void move(const Form& form, const Point& step, const Steps& steps, Point& at) {
  for (int i = 0; i < form.m; ++i) at.y[i] += steps.dual * step.y[i];
  for (int j = 0; j < form.n; ++j) {
    at.x[j] += steps.primal * step.x[j];
    if (!form.has_lower[j]) continue;
    at.x[j] = std::max(at.x[j], kSmallest);
    at.z[j] = std::max(at.z[j] + steps.dual * step.z[j], kSmallest);
    if (!form.has_upper[j]) continue;
    at.w[j] = std::max(at.w[j] + steps.primal * step.w[j], kSmallest);
    at.v[j] = std::max(at.v[j] + steps.dual * step.v[j], kSmallest);
  }
}

void add(const Form& form, double factor, const Point& from, Point& to) {
  for (int i = 0; i < form.m; ++i) to.y[i] += factor * from.y[i];
  for (int j = 0; j < form.n; ++j) {
    to.x[j] += factor * from.x[j];
    to.w[j] += factor * from.w[j];
    to.z[j] += factor * from.z[j];
    to.v[j] += factor * from.v[j];
  }
}

double primal_value(const Form& form, const Point& at) {
  return dot(form.c, at.x);
}

double dual_value(const Form& form, const Point& at) {
  return dot(form.b, at.y) - dot(form.u, at.v);
}

}  // namespace tovik::lp::barrier
