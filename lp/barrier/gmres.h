/* Flexible GMRES (Y. Saad, A flexible inner-outer preconditioned GMRES algorithm, 1993): improves x towards K x = g with
 * a preconditioner that solves K nearly.
 *
 * apply(in, out) is out = K in; precondition(v) replaces v by the preconditioner's answer. Ends when the residual is at
 * most `target` times that of the first x, or after `steps` steps. Memory 2 * steps vectors. */
#pragma once

#include <cmath>
#include <utility>
#include <vector>

#include "lp/barrier/form.h"

namespace tovik::lp::barrier {

struct GmresLimits {
  int steps = 15;
  double target = 1e-8;
};

template <class Apply, class Precondition>
void gmres(Apply apply, Precondition precondition, const std::vector<double>& g, const GmresLimits& limits,
           std::vector<double>& x) {
  using Vector = std::vector<double>;
  Vector product(g.size());
  apply(x, product);
  Vector direction(g.size());
  for (std::size_t i = 0; i < g.size(); ++i) direction[i] = g[i] - product[i];
  double residual = std::sqrt(dot(direction, direction));
  const double goal = limits.target * residual;
  if (!(residual > 0) || !std::isfinite(residual)) return;

  std::vector<Vector> basis, preconditioned, columns;  // columns: of the triangular matrix after rotations
  std::vector<std::pair<double, double>> rotations;
  Vector right{residual};
  while (static_cast<int>(columns.size()) < limits.steps && std::fabs(right.back()) > goal) {
    const double norm = std::sqrt(dot(direction, direction));
    if (!(norm > 0) || !std::isfinite(norm)) break;
    for (double& v : direction) v /= norm;
    basis.push_back(direction);
    precondition(direction);
    preconditioned.push_back(std::move(direction));
    apply(preconditioned.back(), product);
    Vector column;
    for (const Vector& v : basis) {
      const double h = dot(v, product);
      for (std::size_t i = 0; i < product.size(); ++i) product[i] -= h * v[i];
      column.push_back(h);
    }
    const double rest = std::sqrt(dot(product, product));
    for (std::size_t k = 0; k < rotations.size(); ++k) {
      const auto [cosine, sine] = rotations[k];
      const double first = column[k];
      column[k] = cosine * first + sine * column[k + 1];
      column[k + 1] = -sine * first + cosine * column[k + 1];
    }
    const double length = std::hypot(column.back(), rest);
    if (!(length > 0) || !std::isfinite(length)) {
      preconditioned.pop_back();
      break;
    }
    const double cosine = column.back() / length, sine = rest / length;
    rotations.emplace_back(cosine, sine);
    column.back() = length;
    columns.push_back(std::move(column));
    const double last = right.back();
    right.back() = cosine * last;
    right.push_back(-sine * last);
    direction = product;
  }
  Vector weights(columns.size());
  for (std::size_t k = columns.size(); k-- > 0;) {
    double sum = right[k];
    for (std::size_t l = k + 1; l < columns.size(); ++l) sum -= columns[l][k] * weights[l];
    weights[k] = sum / columns[k][k];
  }
  for (std::size_t k = 0; k < columns.size(); ++k) {
    for (std::size_t i = 0; i < x.size(); ++i) x[i] += weights[k] * preconditioned[k][i];
  }
}

}  // namespace tovik::lp::barrier
