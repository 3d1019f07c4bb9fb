#include "lp/simplex/scaling.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {
namespace {

constexpr double kWellScaledLow = 0.2;
constexpr double kWellScaledHigh = 5.0;
constexpr double kLargestFactor = 1048576.0;  // 2^20

double power_of_two(double x) {
  x = std::clamp(x, 1.0 / kLargestFactor, kLargestFactor);
  return std::exp2(std::round(std::log2(x)));
}

/* One pass: every row, then every column is divided by sqrt(min * max) of its entries. Returns the largest
 * ratio max/min within a column after the pass. */
double geometric_pass(const Matrix& a, std::vector<double>& row, std::vector<double>& column) {
  std::vector<double> row_min(row.size(), kInf), row_max(row.size(), 0.0);
  for (int j = 0; j < a.columns; ++j) {
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
      const double v = std::fabs(a.value[k]) * column[j];
      if (v == 0) continue;
      const int i = a.index[k];
      row_min[i] = std::min(row_min[i], v);
      row_max[i] = std::max(row_max[i], v);
    }
  }
  for (size_t i = 0; i < row.size(); ++i) {
    if (row_max[i] > 0) row[i] = 1.0 / std::sqrt(row_min[i] * row_max[i]);
  }
  double spread = 1;
  for (int j = 0; j < a.columns; ++j) {
    double low = kInf, high = 0;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
      const double v = std::fabs(a.value[k]) * row[a.index[k]];
      if (v == 0) continue;
      low = std::min(low, v);
      high = std::max(high, v);
    }
    if (high > 0) {
      column[j] = 1.0 / std::sqrt(low * high);
      spread = std::max(spread, high / low);
    }
  }
  return spread;
}

}  // namespace

double scale_factor(double smallest, double largest) {
  return largest > 0 ? power_of_two(1.0 / std::sqrt(smallest * largest)) : 1.0;
}

Scaling compute_scaling(const Matrix& a, int mode) {
  Scaling scaling;
  if (mode < 0) return scaling;
  double low = kInf, high = 0;
  for (double v : a.value) {
    const double size = std::fabs(v);
    if (size == 0) continue;
    low = std::min(low, size);
    high = std::max(high, size);
  }
  if (high == 0 || (low >= kWellScaledLow && high <= kWellScaledHigh)) return scaling;
  std::vector<double> row(static_cast<size_t>(a.rows), 1.0), column(static_cast<size_t>(a.columns), 1.0);
  const int passes = mode == 0 ? 8 : 20;
  double spread = kInf;
  for (int pass = 0; pass < passes; ++pass) {
    const double next = geometric_pass(a, row, column);
    if (next > 0.85 * spread || next < 1e3) break;
    spread = next;
  }
  for (double& r : row) r = power_of_two(r);
  for (int j = 0; j < a.columns; ++j) {
    double largest = 0;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
      largest = std::max(largest, std::fabs(a.value[k]) * row[a.index[k]]);
    }
    column[j] = largest > 0 ? power_of_two(1.0 / largest) : 1.0;
  }
  scaling.row = std::move(row);
  scaling.column = std::move(column);
  return scaling;
}

}  // namespace tovik::lp::simplex
