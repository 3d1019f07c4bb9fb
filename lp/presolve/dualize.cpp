#include "lp/presolve/dualize.h"

#include <cmath>
#include <utility>

namespace tovik::lp::presolve {
namespace {

// Measured on models with many more columns than rows and on their duals: from a ratio of two on the smaller
// side was ahead, by a factor of 2 to 30, unless ranges and boxes made the dual wide.
constexpr double kManyRows = 2;       // primal rows per dual row from which the dual is preferred
constexpr double kManyColumns = 1.5;  // dual columns per primal row up to which it is
constexpr double kLeastRows = 200;

double reference_bound(const LpData& lp, int j) {
  const bool low = lp.lower[j] != -kInf, high = lp.upper[j] != kInf;
  if (low && high) return lp.cost[j] >= 0 ? lp.lower[j] : lp.upper[j];
  return low ? lp.lower[j] : high ? lp.upper[j] : 0;
}

bool at_upper(const LpData& lp, const DualForm& dual, int j) {
  return lp.lower[j] == -kInf ? lp.upper[j] != kInf : dual.reference[j] != lp.lower[j];
}

void add_rows(const LpData& primal, DualForm& dual) {
  const int n = primal.num_columns();
  LpData& lp = dual.lp;
  dual.row_of.assign(static_cast<size_t>(n), -1);
  for (int j = 0; j < n; ++j) {
    if (primal.lower[j] == primal.upper[j]) continue;
    const bool free = primal.lower[j] == -kInf && primal.upper[j] == kInf;
    const bool high = !free && at_upper(primal, dual, j);
    dual.row_of[j] = static_cast<int>(lp.row_lower.size());
    lp.row_lower.push_back(free || high ? primal.cost[j] : -kInf);
    lp.row_upper.push_back(free || !high ? primal.cost[j] : kInf);
  }
  lp.matrix.rows = static_cast<int>(lp.row_lower.size());
}

/* A column of y, its row's entries times sign. */
int add_column(const Matrix& rows, int i, double sign, double cost, DualForm& dual) {
  LpData& lp = dual.lp;
  for (int k = rows.start[i]; k < rows.start[i + 1]; ++k) {
    const int row = dual.row_of[rows.index[k]];
    if (row < 0) continue;
    lp.matrix.index.push_back(row);
    lp.matrix.value.push_back(sign * rows.value[k]);
  }
  lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
  lp.cost.push_back(cost);
  lp.lower.push_back(0);
  lp.upper.push_back(kInf);
  return lp.matrix.columns++;
}

void add_row_duals(const LpData& primal, const std::vector<double>& activity, DualForm& dual) {
  const Matrix rows = transpose(primal.matrix);
  const int m = primal.num_rows();
  dual.low_of.assign(static_cast<size_t>(m), -1);
  dual.high_of.assign(static_cast<size_t>(m), -1);
  for (int i = 0; i < m; ++i) {
    const double low = primal.row_lower[i] - activity[i], high = primal.row_upper[i] - activity[i];
    if (low != -kInf) dual.low_of[i] = add_column(rows, i, 1, -low, dual);
    if (primal.row_lower[i] == primal.row_upper[i]) {
      dual.lp.lower.back() = -kInf;
    } else if (high != kInf) {
      dual.high_of[i] = add_column(rows, i, -1, high, dual);
    }
  }
}

void add_excess(const LpData& primal, DualForm& dual) {
  LpData& lp = dual.lp;
  dual.excess_of.assign(static_cast<size_t>(primal.num_columns()), -1);
  for (int j = 0; j < primal.num_columns(); ++j) {
    if (dual.row_of[j] < 0 || primal.lower[j] == -kInf || primal.upper[j] == kInf) continue;
    dual.excess_of[j] = lp.matrix.columns++;
    lp.matrix.index.push_back(dual.row_of[j]);
    lp.matrix.value.push_back(at_upper(primal, dual, j) ? 1 : -1);
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    lp.cost.push_back(primal.upper[j] - primal.lower[j]);
    lp.lower.push_back(0);
    lp.upper.push_back(kInf);
  }
}

/* Status and value of column j. */
void place_column(const LpData& primal, const DualForm& dual, const Answer& solution, int j, Answer& point) {
  const int row = dual.row_of[j], excess = dual.excess_of[j];
  const bool high = at_upper(primal, dual, j);
  const bool free = primal.lower[j] == -kInf && primal.upper[j] == kInf;
  const BasisStatus resting = free ? BasisStatus::free : high ? BasisStatus::upper : BasisStatus::lower;
  if (row < 0 || solution.row_status[row] == BasisStatus::basic) {
    point.column_status[j] = resting;
    point.x[j] = dual.reference[j];
  } else if (excess >= 0 && solution.column_status[excess] == BasisStatus::basic) {
    point.column_status[j] = high ? BasisStatus::lower : BasisStatus::upper;
    point.x[j] = high ? primal.lower[j] : primal.upper[j];
  } else {
    point.column_status[j] = BasisStatus::basic;
    point.x[j] = dual.reference[j] - solution.y[row];
  }
}

void place_row(const LpData& primal, const DualForm& dual, const Answer& solution, int i, Answer& point) {
  const int low = dual.low_of[i], high = dual.high_of[i];
  const bool low_basic = low >= 0 && solution.column_status[low] == BasisStatus::basic;
  const bool high_basic = high >= 0 && solution.column_status[high] == BasisStatus::basic;
  point.row_status[i] = low_basic ? BasisStatus::lower : high_basic ? BasisStatus::upper : BasisStatus::basic;
  if (low_basic && primal.row_lower[i] == primal.row_upper[i])
    point.row_status[i] = Undo::side(BasisStatus::lower, point.y[i]);
}

}  // namespace

DualForm dualize(const LpData& primal) {
  DualForm dual;
  const int n = primal.num_columns();
  std::vector<double> activity(static_cast<size_t>(primal.num_rows()), 0.0);
  dual.reference.resize(static_cast<size_t>(n));
  dual.lp.offset = -primal.offset;
  for (int j = 0; j < n; ++j) {
    const double r = dual.reference[j] = reference_bound(primal, j);
    if (r == 0) continue;
    dual.lp.offset -= primal.cost[j] * r;
    for (int k = primal.matrix.start[j]; k < primal.matrix.start[j + 1]; ++k)
      activity[primal.matrix.index[k]] += primal.matrix.value[k] * r;
  }
  add_rows(primal, dual);
  add_row_duals(primal, activity, dual);
  add_excess(primal, dual);
  return dual;
}

std::vector<double> row_multipliers(const DualForm& dual, const std::vector<double>& columns) {
  std::vector<double> y(dual.low_of.size(), 0.0);
  for (size_t i = 0; i < y.size(); ++i) {
    if (dual.low_of[i] >= 0) y[i] = columns[dual.low_of[i]];
    if (dual.high_of[i] >= 0) y[i] -= columns[dual.high_of[i]];
  }
  return y;
}

Answer undualize(const LpData& primal, const DualForm& dual, const Answer& solution) {
  Answer point;
  const auto n = static_cast<size_t>(primal.num_columns());
  const auto m = static_cast<size_t>(primal.num_rows());
  point.x.resize(n);
  point.d.resize(n);
  point.column_status.resize(n);
  point.y = row_multipliers(dual, solution.x);
  point.row_status.resize(m);
  for (int i = 0; i < primal.num_rows(); ++i) place_row(primal, dual, solution, i, point);
  for (int j = 0; j < primal.num_columns(); ++j) {
    place_column(primal, dual, solution, j, point);
    double d = primal.cost[j];
    for (int k = primal.matrix.start[j]; k < primal.matrix.start[j + 1]; ++k)
      d -= primal.matrix.value[k] * point.y[primal.matrix.index[k]];
    point.d[j] = point.column_status[j] == BasisStatus::basic ? 0 : d;
    if (primal.lower[j] == primal.upper[j]) point.column_status[j] = Undo::side(point.column_status[j], d);
  }
  return point;
}

bool dualization_pays(const LpData& primal) {
  double dual_rows = 0, dual_columns = 0;
  for (int j = 0; j < primal.num_columns(); ++j) {
    if (primal.lower[j] == primal.upper[j]) continue;
    dual_rows += 1;
    dual_columns += primal.lower[j] != -kInf && primal.upper[j] != kInf;
  }
  for (int i = 0; i < primal.num_rows(); ++i) {
    const bool low = primal.row_lower[i] != -kInf, high = primal.row_upper[i] != kInf;
    dual_columns += low && high && primal.row_lower[i] < primal.row_upper[i] ? 2 : low || high;
  }
  const double rows = primal.num_rows();
  return rows >= kLeastRows && rows >= kManyRows * dual_rows && dual_columns <= kManyColumns * rows;
}

}  // namespace tovik::lp::presolve
