#include "lp/barrier/form.h"

#include <algorithm>
#include <cmath>

#include "lp/simplex/scaling.h"
#include "lp/verify/bounds.h"

namespace tovik::lp::barrier {
namespace {

/* The power of two that brings a largest magnitude to between 1 and 2; 1 for nothing. */
double power_of_two(double largest) {
  return largest > 0 && std::isfinite(largest) ? std::exp2(std::floor(std::log2(largest))) : 1;
}

}  // namespace

Form::Form(const LpData& lp) : lp_(lp) {
  choose_columns();
  choose_rows();
  fill_matrix();
  scale_sides_and_costs();
  for (const char bound : has_lower) pairs += bound;
  for (const char bound : has_upper) pairs += bound;
  rows = transpose(a);
  a = transpose(rows);  // rows ascend in its columns, whatever the LP's order was
}

void Form::choose_columns() {
  const int columns = lp_.num_columns();
  column_of_.assign(static_cast<std::size_t>(columns), -1);
  shift_.assign(static_cast<std::size_t>(columns), 0);
  for (int j = 0; j < columns; ++j) {
    const bool below = lp_.lower[j] > -kInf;
    const bool above = lp_.upper[j] < kInf;
    shift_[j] = below ? lp_.lower[j] : above ? lp_.upper[j] : 0;
    largest_cost = std::max(largest_cost, std::fabs(lp_.cost[j]));
    if (verify::is_fixed(lp_.lower[j], lp_.upper[j])) continue;
    column_of_[j] = static_cast<int>(original_column_.size());
    original_column_.push_back(j);
    sign_.push_back(!below && above ? -1 : 1);
    has_lower.push_back(below || above);
    has_upper.push_back(below && above);
  }
  structurals = static_cast<int>(original_column_.size());
}

void Form::choose_rows() {
  row_of_.assign(static_cast<std::size_t>(lp_.num_rows()), -1);
  for (int i = 0; i < lp_.num_rows(); ++i) {
    for (const double side : {lp_.row_lower[i], lp_.row_upper[i]}) {
      if (!std::isinf(side)) largest_side = std::max(largest_side, std::fabs(side));
    }
    if (lp_.row_lower[i] == -kInf && lp_.row_upper[i] == kInf) continue;
    row_of_[i] = m++;
    original_row_.push_back(i);
  }
}

void Form::fill_matrix() {
  Matrix kept;  // without slacks, unscaled
  kept.rows = m;
  kept.columns = structurals;
  for (int j = 0; j < structurals; ++j) {
    const int original = original_column_[j];
    for (int k = lp_.matrix.start[original]; k < lp_.matrix.start[original + 1]; ++k) {
      const int i = row_of_[lp_.matrix.index[k]];
      if (i < 0 || lp_.matrix.value[k] == 0) continue;
      kept.index.push_back(i);
      kept.value.push_back(sign_[j] * lp_.matrix.value[k]);
    }
    kept.start.push_back(static_cast<int>(kept.index.size()));
  }
  const simplex::Scaling scaling = simplex::compute_scaling(kept, 0);
  const auto row_scale = [&](int i) { return scaling.row.empty() ? 1.0 : scaling.row[i]; };
  const auto column_scale = [&](int j) { return scaling.column.empty() ? 1.0 : scaling.column[j]; };
  a = std::move(kept);
  for (int j = 0; j < structurals; ++j) {
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) a.value[k] *= row_scale(a.index[k]) * column_scale(j);
    value_unit.push_back(column_scale(j));
    const int original = original_column_[j];
    c.push_back(sign_[j] * lp_.cost[original] * column_scale(j));
    u.push_back(has_upper[j] ? (lp_.upper[original] - lp_.lower[original]) / column_scale(j) : 0);
  }
  for (int i = 0; i < m; ++i) {
    const double low = lp_.row_lower[original_row_[i]];
    const double high = lp_.row_upper[original_row_[i]];
    b.push_back(row_scale(i) * (low > -kInf ? low : high));
    residual_unit.push_back(1 / row_scale(i));
    multiplier_unit.push_back(row_scale(i));
    if (verify::is_fixed(low, high)) continue;
    a.index.push_back(i);
    a.value.push_back(low > -kInf ? -1 : 1);
    a.start.push_back(static_cast<int>(a.index.size()));
    const bool ranged = low > -kInf && high < kInf;
    has_lower.push_back(1);
    has_upper.push_back(ranged);
    c.push_back(0);
    u.push_back(ranged ? row_scale(i) * (high - low) : 0);
    value_unit.push_back(1 / row_scale(i));
    original_column_.push_back(-1);
  }
  n = static_cast<int>(c.size());
  a.columns = n;
  offset = lp_.offset;
  for (int j = 0; j < lp_.num_columns(); ++j) {  // what stands still at its shift
    if (shift_[j] == 0) continue;
    offset += lp_.cost[j] * shift_[j];
    for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k) {
      const int i = row_of_[lp_.matrix.index[k]];
      if (i >= 0) b[i] -= row_scale(i) * lp_.matrix.value[k] * shift_[j];
    }
  }
}

void Form::scale_sides_and_costs() {
  const double side = power_of_two(std::max(largest_magnitude(b), largest_magnitude(u) * 1e-3));
  const double cost = power_of_two(largest_magnitude(c));
  for (double& v : b) v /= side;
  for (double& v : u) v /= side;
  for (double& v : c) v /= cost;
  for (double& v : residual_unit) v *= side;
  for (double& v : multiplier_unit) v *= cost;
  for (double& v : value_unit) {
    cost_unit.push_back(cost / v);
    v *= side;
  }
  objective_unit = side * cost;
}

std::vector<double> Form::original_values(const std::vector<double>& x) const {
  std::vector<double> values = shift_;
  for (int j = 0; j < structurals; ++j) {
    const int original = original_column_[j];
    const double value = values[original] + sign_[j] * value_unit[j] * x[j];
    values[original] = std::clamp(value, lp_.lower[original], lp_.upper[original]);
  }
  return values;
}

std::vector<double> Form::original_multipliers(const std::vector<double>& y) const {
  std::vector<double> values(row_of_.size(), 0.0);
  for (int i = 0; i < m; ++i) values[original_row_[i]] = multiplier_unit[i] * y[i];
  return values;
}

std::vector<double> Form::original_direction(const std::vector<double>& x) const {
  std::vector<double> values(column_of_.size(), 0.0);
  for (int j = 0; j < structurals; ++j) values[original_column_[j]] = sign_[j] * value_unit[j] * x[j];
  return values;
}

void add_product(const Form& form, double factor, const std::vector<double>& x, std::vector<double>& out) {
  const Matrix& a = form.a;
  for (int j = 0; j < form.n; ++j) {
    const double t = factor * x[j];
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) out[a.index[k]] += a.value[k] * t;
  }
}

void add_transposed_product(const Form& form, double factor, const std::vector<double>& y,
                            std::vector<double>& out) {
  const Matrix& a = form.a;
  for (int j = 0; j < form.n; ++j) {
    double sum = 0;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) sum += a.value[k] * y[a.index[k]];
    out[j] += factor * sum;
  }
}

double dot(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

double largest_magnitude(const std::vector<double>& v) {
  double largest = 0;
  for (const double entry : v) largest = std::max(largest, std::fabs(entry));
  return largest;
}

}  // namespace tovik::lp::barrier
