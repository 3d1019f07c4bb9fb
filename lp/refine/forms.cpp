#include "lp/refine/forms.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lp/verify/point.h"

namespace tovik::lp::refine {
namespace {

struct SingletonColumn {
  int row;
  double value, cost, lower, upper;
};

void append(LpData& lp, const SingletonColumn& column) {
  lp.matrix.index.push_back(column.row);
  lp.matrix.value.push_back(column.value);
  lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
  ++lp.matrix.columns;
  lp.cost.push_back(column.cost);
  lp.lower.push_back(column.lower);
  lp.upper.push_back(column.upper);
}

/* The bound nearest to zero, 0 where there is none; and where a nonbasic column stands there. */
double resting_value(double low, double high) {
  if (low == -kInf) return high == kInf ? 0 : high;
  return std::fabs(high) < std::fabs(low) ? high : low;
}
BasisStatus resting_status(double low, double high, double value) {
  return value == low ? BasisStatus::lower : value == high ? BasisStatus::upper : BasisStatus::free;
}

}  // namespace

EquationForm::EquationForm(const LpData& original)
    : lp_(original),
      original_columns_(original.num_columns()),
      activity_column_(original.row_lower.size(), -1) {
  for (int i = 0; i < original.num_rows(); ++i) {
    if (original.row_lower[i] == original.row_upper[i]) continue;
    activity_column_[i] = lp_.num_columns();
    append(lp_, {i, -1, 0, original.row_lower[i], original.row_upper[i]});
    lp_.row_lower[i] = lp_.row_upper[i] = 0;
  }
}

Basis EquationForm::basis(const Basis& original) const {
  Basis result{original.columns, original.rows, {}};
  result.columns.resize(lp_.cost.size());
  for (int i = 0; i < lp_.num_rows(); ++i) {
    if (activity_column_[i] < 0) continue;
    result.columns[activity_column_[i]] = original.rows[i];
    result.rows[i] = BasisStatus::lower;
  }
  return result;
}

Basis EquationForm::original_basis(const Basis& of_form) const {
  Basis result{of_form.columns, of_form.rows, {}};
  for (int i = 0; i < lp_.num_rows(); ++i) {
    if (activity_column_[i] >= 0 && result.rows[i] != BasisStatus::basic)
      result.rows[i] = of_form.columns[activity_column_[i]];
  }
  result.columns.resize(static_cast<std::size_t>(original_columns_));
  return result;
}

std::vector<Extended> EquationForm::point(const std::vector<double>& x,
                                          const std::vector<double>& activity) const {
  std::vector<Extended> result(x.begin(), x.end());
  for (int i = 0; i < lp_.num_rows(); ++i)
    if (activity_column_[i] >= 0) result.emplace_back(activity[i]);
  return result;
}

LpData EquationForm::elastic() const {
  LpData lp = lp_;
  lp.cost.assign(lp.cost.size(), 0.0);
  lp.offset = 0;
  for (int i = 0; i < lp_.num_rows(); ++i) {
    append(lp, {i, 1, 1, 0, kInf});
    append(lp, {i, -1, 1, 0, kInf});
  }
  return lp;
}

Iterate EquationForm::elastic_start() const {
  const std::size_t n = lp_.cost.size();
  const std::size_t m = lp_.row_lower.size();
  std::vector<double> x(n);
  for (int j = 0; j < original_columns_; ++j) x[j] = resting_value(lp_.lower[j], lp_.upper[j]);
  const std::vector<double> activity =
      verify::activities(lp_.num_rows(), verify::entries_of(lp_.matrix),
                         std::span(x).first(static_cast<std::size_t>(original_columns_)));
  Iterate at;
  at.y.resize(m);
  at.basis.rows.assign(m, BasisStatus::lower);
  at.basis.columns.assign(n + 2 * m, BasisStatus::lower);
  std::vector<double> misses(2 * m, 0.0);
  for (std::size_t i = 0; i < m; ++i) {
    const int r = activity_column_[i];
    double side = lp_.row_lower[i];
    if (r >= 0) {
      side = x[r] = std::clamp(activity[i], lp_.lower[r], lp_.upper[r]);
      if (side > lp_.lower[r] && side < lp_.upper[r]) {
        at.basis.columns[r] = BasisStatus::basic;
        continue;
      }
    }
    const std::size_t miss = 2 * i + (activity[i] > side ? 1 : 0);
    misses[miss] = std::fabs(activity[i] - side);
    at.basis.columns[n + miss] = BasisStatus::basic;
  }
  for (std::size_t j = 0; j < n; ++j) {
    if (at.basis.columns[j] != BasisStatus::basic)
      at.basis.columns[j] = resting_status(lp_.lower[j], lp_.upper[j], x[j]);
  }
  for (const double v : x) at.x.emplace_back(v);
  for (const double v : misses) at.x.emplace_back(v);
  return at;
}

double EquationForm::missed(const Iterate& elastic, int i) const {
  const std::size_t below = lp_.cost.size() + 2 * static_cast<std::size_t>(i);
  return elastic.x[below].value() - elastic.x[below + 1].value();
}

LpData EquationForm::allow_misses(Iterate& elastic_iterate) const {
  LpData lp = elastic();
  std::copy(lp_.cost.begin(), lp_.cost.end(), lp.cost.begin());
  std::vector<BasisStatus>& columns = elastic_iterate.basis.columns;
  for (std::size_t j = lp_.cost.size(); j < lp.cost.size(); ++j) {
    lp.cost[j] = 0;
    lp.lower[j] = lp.upper[j] = elastic_iterate.x[j].value();
    elastic_iterate.x[j] = Extended(lp.lower[j]);
    if (columns[j] == BasisStatus::basic)
      elastic_iterate.basis.rows[(j - lp_.cost.size()) / 2] = BasisStatus::basic;
    columns[j] = BasisStatus::lower;
  }
  return lp;
}

LpData EquationForm::recession() const {
  LpData lp = lp_;
  lp.row_lower.assign(lp.row_lower.size(), 0.0);
  lp.row_upper = lp.row_lower;
  lp.offset = 0;
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double reach = j < original_columns_ ? 1.0 : kInf;
    lp.lower[j] = lp_.lower[j] > -kInf ? 0.0 : -reach;
    lp.upper[j] = lp_.upper[j] < kInf ? 0.0 : reach;
  }
  return lp;
}

/* No direction at all but in columns that may go both ways, which stand at -1. */
Iterate EquationForm::recession_start() const {
  const LpData lp = recession();
  Iterate at;
  at.y.resize(lp.row_lower.size());
  at.basis.rows.assign(lp.row_lower.size(), BasisStatus::basic);
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double v = resting_value(lp.lower[j], lp.upper[j]);
    at.x.emplace_back(v);
    at.basis.columns.push_back(resting_status(lp.lower[j], lp.upper[j], v));
  }
  return at;
}

}  // namespace tovik::lp::refine
