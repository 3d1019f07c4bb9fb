#include "lp/barrier/basis_guess.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lp/simplex/scaling.h"

namespace tovik::lp::barrier {
namespace {

constexpr double kNoMultiplier = 1e-12;  // less counts as this

double rank(double value, double multiplier, double lower, double upper) {
  if (lower >= upper) return -1;
  const double distance = std::min(value - lower, upper - value);
  return std::max(0.0, distance) / (std::fabs(multiplier) + kNoMultiplier);
}

BasisStatus nonbasic_at(double value, double multiplier, double lower, double upper) {
  if (lower == -kInf && upper == kInf) return BasisStatus::free;
  if (lower == -kInf) return BasisStatus::upper;
  if (upper == kInf) return BasisStatus::lower;
  if (lower < upper && value - lower != upper - value)
    return value - lower < upper - value ? BasisStatus::lower : BasisStatus::upper;
  return multiplier < 0 ? BasisStatus::upper : BasisStatus::lower;
}

}  // namespace

Basis guess_basis(const LpData& lp, const GuessedFrom& point) {
  const int columns = lp.num_columns();
  const int rows = lp.num_rows();
  const simplex::Scaling scaling = simplex::compute_scaling(lp.matrix, 0);
  std::vector<double> weight(static_cast<std::size_t>(columns + rows));
  Basis basis;
  for (int j = 0; j < columns; ++j) {
    const double unit = scaling.column.empty() ? 1 : scaling.column[j];
    weight[j] = rank(point.x[j], point.d[j], lp.lower[j], lp.upper[j]) / (unit * unit);
    basis.columns.push_back(nonbasic_at(point.x[j], point.d[j], lp.lower[j], lp.upper[j]));
  }
  for (int i = 0; i < rows; ++i) {
    const double unit = scaling.row.empty() ? 1 : scaling.row[i];
    weight[columns + i] =
        rank(point.activity[i], point.y[i], lp.row_lower[i], lp.row_upper[i]) * (unit * unit);
    basis.rows.push_back(nonbasic_at(point.activity[i], point.y[i], lp.row_lower[i], lp.row_upper[i]));
  }
  std::vector<int> order(weight.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return weight[a] > weight[b]; });
  for (int k = 0; k < rows; ++k) {
    const int variable = order[k];
    (variable < columns ? basis.columns[variable] : basis.rows[variable - columns]) = BasisStatus::basic;
  }
  return basis;
}

}  // namespace tovik::lp::barrier
