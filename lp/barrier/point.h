/* Points, directions and right-hand sides of the method, in the space of its form.
 *
 *   primal   A x = b tau,  x + w = u tau        (tau 1 but in the embedding)
 *   dual     A'y + z - v = c tau
 *   pairs    x_j z_j for columns with a lower bound, w_j v_j for those with an upper one
 *
 * Entries of z, w and v where there is no such bound are 0 and stay so. */
#pragma once

#include <array>
#include <vector>

#include "lp/barrier/form.h"

namespace tovik::lp::barrier {

struct Point {
  Point() = default;
  explicit Point(const Form& form)
      : x(form.n, 0.0), w(form.n, 0.0), y(form.m, 0.0), z(form.n, 0.0), v(form.n, 0.0) {}
  std::vector<double> x, w, y, z, v;
};

/* By block what the equations miss (target less value), or what a direction is asked to bring. */
struct Blocks {
  Blocks() = default;
  explicit Blocks(const Form& form)
      : primal(form.m, 0.0),
        upper(form.n, 0.0),
        dual(form.n, 0.0),
        lower_pairs(form.n, 0.0),
        upper_pairs(form.n, 0.0) {}
  std::vector<double> primal, upper, dual;
  std::vector<double> lower_pairs, upper_pairs;
};

/* primal, upper and dual of `missing` at the point; tau as above. */
void measure_residuals(const Form& form, const Point& at, double tau, Blocks& missing);

/* Sum of the products of all pairs, now and after steps. */
double sum_of_products(const Point& at);
double sum_of_products(const Form& form, const Point& at, const Point& step, double primal, double dual);

/* Calls f(value, multiplier, value's change, multiplier's change) for all pairs. */
template <class F>
void for_pairs(const Form& form, const Point& at, const Point& step, F f) {
  for (int j = 0; j < form.n; ++j) {
    if (form.has_lower[j]) f(at.x[j], at.z[j], step.x[j], step.z[j]);
    if (form.has_upper[j]) f(at.w[j], at.v[j], step.w[j], step.v[j]);
  }
}

struct Steps {
  double primal = 1, dual = 1;
};

/* The longest steps, at most 1 (or `limit`), that leave all pairs nonnegative. */
Steps longest_steps(const Form& form, const Point& at, const Point& step, double limit = 1);

/* The same for step + weight * extra, by weight. */
inline constexpr int kWeights = 8;
using Weights = std::array<double, kWeights>;
std::array<Steps, kWeights> longest_steps(const Form& form, const Point& at, const Point& step,
                                          const Point& extra, const Weights& weights);

/* Steps a little short of the boundary, such that the products of the blocking pairs stay near the rest (S. Mehrotra, On
 * the implementation of a primal-dual interior point method, 1992). */
Steps interior_steps(const Form& form, const Point& at, const Point& step);

/* at += steps * step; pairs stay above a smallest positive number. */
void move(const Form& form, const Point& step, const Steps& steps, Point& at);

/* to += factor * from, all blocks. */
void add(const Form& form, double factor, const Point& from, Point& to);

/* Primal and dual objective in the form's scale, without its offset. */
double primal_value(const Form& form, const Point& at);
double dual_value(const Form& form, const Point& at);

}  // namespace tovik::lp::barrier
