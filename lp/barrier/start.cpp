#include "lp/barrier/start.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::barrier {
namespace {

constexpr double kShift = 1.5;         // times the worst violation
constexpr double kSmallVector = 1e-6;  // right-hand sides less than that ...
constexpr double kInstead = 1e-3;      // ... are taken as this in all entries

std::vector<double> or_small(const std::vector<double>& v) {
  return largest_magnitude(v) < kSmallVector ? std::vector<double>(v.size(), kInstead) : v;
}

/* Values and their slacks: the least-norm solution of A x = b, or its mean magnitude everywhere. */
void start_values(const Form& form, std::vector<double> estimate, bool averaged, Point& point) {
  if (averaged) {
    double mean = 0;
    for (const double v : estimate) mean += std::fabs(v);
    mean /= std::max(1, form.n);
    for (int j = 0; j < form.n; ++j) {
      if (form.has_lower[j]) estimate[j] = form.has_upper[j] ? std::min(mean, 0.5 * form.u[j]) : mean;
    }
  }
  double least = 0;
  for (int j = 0; j < form.n; ++j) {
    if (form.has_lower[j]) least = std::min(least, estimate[j]);
    if (form.has_upper[j]) least = std::min(least, form.u[j] - estimate[j]);
  }
  const double shift = 1 - kShift * least;
  for (int j = 0; j < form.n; ++j) {
    point.x[j] = estimate[j];
    if (form.has_lower[j]) point.x[j] += shift;
    if (form.has_upper[j]) point.w[j] = form.u[j] - estimate[j] + shift;
  }
}

/* Multipliers of the bounds from the reduced costs. */
void start_multipliers(const Form& form, std::vector<double> reduced, Point& point) {
  constexpr double kComplementary = 0.05;  // of the costs: less is nearly on the boundary from the start
  if (largest_magnitude(form.c) == 0) {
    for (int j = 0; j < form.n; ++j) {
      point.z[j] = form.has_lower[j];
      point.v[j] = form.has_upper[j];
    }
    return;
  }
  if (std::sqrt(dot(reduced, reduced)) < kComplementary * std::sqrt(dot(form.c, form.c))) {
    for (int j = 0; j < form.n; ++j) reduced[j] += kComplementary * form.c[j];
    for (double& v : point.y) v *= 1 - kComplementary;
  }
  double least = 0;
  for (int j = 0; j < form.n; ++j) {
    if (!form.has_lower[j]) continue;
    point.z[j] = form.has_upper[j] ? 0.5 * reduced[j] : reduced[j];
    least = std::min(least, point.z[j]);
    if (!form.has_upper[j]) continue;
    point.v[j] = -0.5 * reduced[j];
    least = std::min(least, point.v[j]);
  }
  const double shift = 1 - kShift * least;
  for (int j = 0; j < form.n; ++j) {
    if (form.has_lower[j]) point.z[j] += shift;
    if (form.has_upper[j]) point.v[j] += shift;
  }
}

/* Moves both sides such that products are of one size. */
void level(const Form& form, Point& point) {
  double values = 0, multipliers = 0;
  for (int j = 0; j < form.n; ++j) {
    if (form.has_lower[j]) values += point.x[j];
    values += point.w[j];
    multipliers += point.z[j] + point.v[j];
  }
  const double products = sum_of_products(point);
  const double more_value = 0.5 * products / multipliers;
  const double more_multiplier = 0.5 * products / values;
  for (int j = 0; j < form.n; ++j) {
    if (form.has_lower[j]) {
      point.x[j] += more_value;
      point.z[j] += more_multiplier;
    }
    if (form.has_upper[j]) {
      point.w[j] += more_value;
      point.v[j] += more_multiplier;
    }
  }
}

}  // namespace

bool make_start(Session& session, Start start, Point& point) {
  const Form& form = session.form;
  const bool averaged = start == Start::mean || start == Start::mean_zero_dual;
  const bool zero_dual = start == Start::estimate_zero_dual || start == Start::mean_zero_dual;
  point = Point(form);
  const std::vector<double> ones(static_cast<std::size_t>(form.n), 1.0);
  if (session.failed(session.kkt.factorize(ones, session.regularization, session.control))) return false;

  std::vector<double> rows = or_small(form.b);
  std::vector<double> estimate(static_cast<std::size_t>(form.n), 0.0);
  session.kkt.solve(rows, estimate, session.control);
  start_values(form, std::move(estimate), averaged, point);

  std::vector<double> reduced = or_small(form.c);
  if (!zero_dual) {
    std::vector<double> nothing(static_cast<std::size_t>(form.m), 0.0);
    session.kkt.solve(nothing, reduced, session.control);  // A'y - c
    point.y = std::move(nothing);
    for (double& v : reduced) v = -v;
  }
  start_multipliers(form, std::move(reduced), point);
  if (form.pairs > 0) level(form, point);
  return true;
}

}  // namespace tovik::lp::barrier
