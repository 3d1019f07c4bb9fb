/* The dual's proof of infeasibility: a row of B^-1 combines the rows of the model to one that no point can
 * meet. */
#include <algorithm>
#include <cmath>

#include "lp/simplex/dual.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kNegligible = 1e-9;  // share of the terms that make up an entry
constexpr double kByRows = 0.1;       // denser rows of B^-1 are multiplied with the columns

double bound_product(double w, double low, double high) {
  return w > 0 ? w * low : w * high;
}

}  // namespace

/* add(j, z_j, size of its terms) for the entries of z = rho'[A I]: by rows of the row copy where rho is
 * sparse, else by columns. */
template <class Add>
void Dual::each_row_term(Add add) {
  const Matrix& matrix = core_.matrix();
  double longest = 0;
  for (const double r : farkas_value_) longest = std::max(longest, std::fabs(r));
  for (size_t k = 0; k < farkas_index_.size(); ++k)
    add(core_.n() + farkas_index_[k], farkas_value_[k], longest);
  if (static_cast<double>(farkas_index_.size()) > kByRows * core_.m()) {
    for (int j = 0; j < core_.n(); ++j) {
      double z = 0;
      double terms = 0;
      for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
        const double term = matrix.value[k] * rho_.array[matrix.index[k]];
        z += term;
        terms += std::fabs(term);
      }
      if (z != 0) add(j, z, terms);
    }
    core_.charge(static_cast<std::int64_t>(matrix.index.size()));
    return;
  }
  if (farkas_row_.dimension() != core_.n()) {
    farkas_row_.resize(core_.n());
    farkas_terms_.assign(static_cast<size_t>(core_.n()), 0.0);
  }
  farkas_row_.count = 0;
  std::int64_t touched = 0;
  for (size_t k = 0; k < farkas_index_.size(); ++k) {
    const auto index = core_.rows.row_index(farkas_index_[k]);
    const auto value = core_.rows.row_value(farkas_index_[k]);
    for (size_t e = 0; e < index.size(); ++e) {
      const int j = index[e];
      const double term = value[e] * farkas_value_[k];
      if (farkas_terms_[j] == 0) {
        if (term == 0) continue;
        farkas_row_.index[farkas_row_.count++] = j;
      }
      farkas_row_.array[j] += term;
      farkas_terms_[j] += std::fabs(term);
    }
    touched += static_cast<std::int64_t>(index.size());
  }
  for (int k = 0; k < farkas_row_.count; ++k) {
    const int j = farkas_row_.index[k];
    if (farkas_row_.array[j] != 0) add(j, farkas_row_.array[j], farkas_terms_[j]);
    farkas_row_.array[j] = 0;
    farkas_terms_[j] = 0;
  }
  farkas_row_.count = 0;
  core_.charge(touched);
}

/* The row says: sum of z_j x_j = 0 with z = rho'[A I]. Infeasible when no point within the bounds can meet
 * it, whatever the accuracy of rho. */
bool Dual::prove_infeasible() {
  farkas_index_.clear();
  farkas_value_.clear();
  const auto keep = [&](int i) {
    if (rho_.array[i] == 0) return;
    farkas_index_.push_back(i);
    farkas_value_.push_back(rho_.array[i]);
  };
  if (rho_.count >= 0) {
    for (int k = 0; k < rho_.count; ++k) keep(rho_.index[k]);
  } else {
    for (int i = 0; i < core_.m(); ++i) keep(i);
  }
  double least = 0;  // smallest and largest value of the row's activity over the bounds
  double largest = 0;
  double scale = 0;
  core_.ensure_rows();
  each_row_term([&](int j, double z, double terms) {
    if (std::fabs(z) <= kNegligible * terms &&
        (core_.model.lower(j) == -kInf || core_.model.upper(j) == kInf))
      return;
    least += bound_product(z, core_.model.lower(j), core_.model.upper(j));
    largest -= bound_product(-z, core_.model.lower(j), core_.model.upper(j));
    scale = std::max(scale, std::fabs(z));
  });
  const double needed = core_.primal_tolerance() * std::max(scale, 1e-12);
  if (!(least > needed) && !(largest < -needed)) return false;
  if (least > needed) {
    for (double& y : farkas_value_) y = -y;
  }
  return true;
}

std::vector<double> Dual::farkas() const {
  std::vector<double> y(static_cast<size_t>(core_.m()), 0.0);
  for (size_t k = 0; k < farkas_index_.size(); ++k) y[farkas_index_[k]] = farkas_value_[k];
  return y;
}

}  // namespace tovik::lp::simplex
