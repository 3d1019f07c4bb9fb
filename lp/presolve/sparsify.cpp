#include "lp/presolve/sparsify.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr int kMostFill = 1;         // entries that one addition may create
constexpr int kLongEquation = 200;   // longer ones are not tried
constexpr double kMostFactor = 1e3;  // of an addition
constexpr double kCancels = 1e-12;   // relative to the entry
constexpr double kNearlyCancels = 1e-4;
constexpr int kWorkPerEntry = 10;

class Sparsifier {
 public:
  explicit Sparsifier(Workspace& ws) : ws_(ws), value_(static_cast<size_t>(ws.num_columns()), 0.0) {}
  bool run();

 private:
  bool use_equation(int e);
  bool improve(int q, int e, double s);

  Workspace& ws_;
  std::vector<double> value_;  // the equation, spread out
  std::int64_t limit_ = 0;
};

bool Sparsifier::run() {
  limit_ = ws_.work() + kWorkPerEntry * ws_.entries_left();
  bool changed = false;
  for (int e = 0; e < ws_.num_rows() && ws_.work() < limit_ && !ws_.done(); ++e) {
    if (!ws_.row_alive(e) || !ws_.equation(e)) continue;
    if (ws_.row_length(e) < 2 || ws_.row_length(e) > kLongEquation) continue;
    changed |= use_equation(e);
  }
  return changed;
}

/* Rows worth a look share one of the two shortest columns: with fewer than two cancellations nothing is won.
 */
bool Sparsifier::use_equation(int e) {
  const View equation = ws_.row(e);
  const std::vector<int> index(equation.index, equation.index + equation.length);
  for (int k = 0; k < equation.length; ++k) value_[equation.index[k]] = equation.value[k];
  int first = -1, second = -1;
  for (const int j : index) {
    if (first < 0 || ws_.column_length(j) < ws_.column_length(first)) {
      second = first;
      first = j;
    } else if (second < 0 || ws_.column_length(j) < ws_.column_length(second)) {
      second = j;
    }
  }
  bool changed = false;
  for (const int j : {first, second}) {
    const View column = ws_.column(j);
    const std::vector<int> rows(column.index, column.index + column.length);
    const std::vector<double> values(column.value, column.value + column.length);
    for (size_t k = 0; k < rows.size() && ws_.work() < limit_; ++k) {
      if (rows[k] != e) changed |= improve(rows[k], e, -values[k] / value_[j]);
    }
  }
  for (const int j : index) value_[j] = 0;
  return changed;
}

bool Sparsifier::improve(int q, int e, double s) {
  if (std::fabs(s) > kMostFactor || std::fabs(s) < 1 / kMostFactor) return false;
  const View row = ws_.row(q);
  ws_.add_work(row.length);
  int common = 0, cancelled = 0;
  for (int k = 0; k < row.length; ++k) {
    const double a = value_[row.index[k]];
    if (a == 0) continue;
    ++common;
    const double left = std::fabs(row.value[k] + s * a);
    if (left <= kCancels * std::fabs(row.value[k])) {
      ++cancelled;
    } else if (left <= kNearlyCancels * std::fabs(row.value[k])) {
      return false;
    }
  }
  const int fill = ws_.row_length(e) - common;
  if (fill > kMostFill || cancelled <= fill + 1 || !ws_.allow(Rule::sparsify)) return false;
  ws_.stack.push(RowAddition{.target = q, .source = e, .factor = s});
  ws_.add_row_multiple(q, s, e, -1);
  ws_.counts.coefficients_modified += cancelled + fill;
  return true;
}

}  // namespace

bool sparsify_rows(Workspace& ws) {
  if (!ws.enabled(Rule::sparsify) || ws.done()) return false;
  return Sparsifier(ws).run();
}

void undo_row_addition(const RowAddition& record, Undo& undo) {
  double& y = undo.point.y[record.source];
  CleanSum sum = undo.sum_from(y);
  sum.subtract(-record.factor * undo.point.y[record.target]);
  y = sum.value();
}

void duals_of_row_addition(const RowAddition& record, std::vector<double>& y) {
  y[record.source] -= record.factor * y[record.target];
}

}  // namespace tovik::lp::presolve
