#include "lp/presolve/dependent_rows.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <utility>
#include <vector>

#include "lp/presolve/free_row.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kPivot = 0.05;       // share of the row's largest entry that a pivot must have
constexpr double kCancelled = 1e-11;  // relative to the largest term that met in an entry
constexpr double kVanishes = 1e-12;   // the same for the combination of the equations
constexpr double kLargeFactor = 1e6;  // multipliers beyond are not trusted
constexpr int kWorkPerEntry = 20;     // of the equations
constexpr std::int64_t kLeastWork = 20000;

using Sparse = std::vector<std::pair<int, double>>;

class Elimination {
 public:
  explicit Elimination(Workspace& ws);
  bool run();

 private:
  std::int64_t flag_equations(std::vector<char>& in);
  void exclude_independent();
  void reduce(int i);
  void scatter(int j, double value);
  void subtract_pivot_row(int k);
  void finish_row(int i);
  int choose_pivot() const;
  bool is_dependent(int i);
  Sparse combination(int i) const;

  Workspace& ws_;
  std::vector<int> rows_;      // equations that may depend on each other, short ones first
  std::vector<int> count_;     // by column: entries in rows_
  std::vector<int> pivot_of_;  // by column: pivot that eliminates it, or -1
  struct Pivot {
    int row;
    int column;
    double value;
    Sparse rest;     // of the reduced row, without the pivot
    Sparse factors;  // pivots that were subtracted from the row, with their multipliers
  };
  std::vector<Pivot> pivots_;
  Sparse factors_;                         // of the row at hand
  std::vector<double> value_, magnitude_;  // the row at hand, and the largest term in each entry
  std::vector<int> touched_;
  std::priority_queue<int, std::vector<int>, std::greater<>> pending_;
  std::vector<int> gone_;
  std::int64_t limit_ = 0;
};

Elimination::Elimination(Workspace& ws)
    : ws_(ws),
      count_(static_cast<size_t>(ws.num_columns()), 0),
      pivot_of_(static_cast<size_t>(ws.num_columns()), -1),
      value_(static_cast<size_t>(ws.num_columns()), 0.0),
      magnitude_(static_cast<size_t>(ws.num_columns()), 0.0) {}

/* Flags them and counts their entries, in each column and in all. */
std::int64_t Elimination::flag_equations(std::vector<char>& in) {
  std::int64_t entries = 0;
  for (int i = 0; i < ws_.num_rows(); ++i) {
    if (!ws_.row_alive(i) || !ws_.equation(i) || ws_.row_length(i) == 0) continue;
    in[i] = 1;
    const View row = ws_.row(i);
    entries += row.length;
    for (int k = 0; k < row.length; ++k) ++count_[row.index[k]];
  }
  return entries;
}

/* An equation with a column that no other one has is independent of them; without it others may be too. */
void Elimination::exclude_independent() {
  std::vector<char> in(static_cast<size_t>(ws_.num_rows()), 0);
  const std::int64_t entries = flag_equations(in);
  std::vector<int> single;
  for (int j = 0; j < ws_.num_columns(); ++j) {
    if (count_[j] == 1) single.push_back(j);
  }
  while (!single.empty()) {
    const int j = single.back();
    single.pop_back();
    if (count_[j] != 1) continue;
    const View column = ws_.column(j);
    ws_.add_work(column.length);
    int i = -1;
    for (int k = 0; k < column.length && i < 0; ++k) i = in[column.index[k]] ? column.index[k] : -1;
    in[i] = 0;
    const View row = ws_.row(i);
    ws_.add_work(row.length);
    for (int k = 0; k < row.length; ++k) {
      if (--count_[row.index[k]] == 1) single.push_back(row.index[k]);
    }
  }
  for (int i = 0; i < ws_.num_rows(); ++i) {
    if (in[i]) rows_.push_back(i);
  }
  std::stable_sort(rows_.begin(), rows_.end(),
                   [&](int a, int b) { return ws_.row_length(a) < ws_.row_length(b); });
  ws_.add_work(entries);
  limit_ = ws_.work() + std::max(kLeastWork, kWorkPerEntry * entries);
}

bool Elimination::run() {
  exclude_independent();
  bool changed = false;
  for (const int i : rows_) {
    if (ws_.work() > limit_ || ws_.done()) break;
    reduce(i);
    finish_row(i);
  }
  for (const int i : gone_) {
    if (ws_.done() || !ws_.allow(Rule::dependent_rows)) break;
    ws_.stack.push(FreeRow{.row = i});
    ws_.remove_row(i, RemovalReason::redundant);
    changed = true;
  }
  return changed;
}

void Elimination::scatter(int j, double value) {
  if (magnitude_[j] == 0) {
    touched_.push_back(j);
    if (pivot_of_[j] >= 0) pending_.push(pivot_of_[j]);
  }
  magnitude_[j] = std::max(magnitude_[j], std::fabs(value));
  value_[j] += value;
  if (std::fabs(value_[j]) <= kCancelled * magnitude_[j]) value_[j] = 0;
}

void Elimination::subtract_pivot_row(int k) {
  const Pivot& pivot = pivots_[k];
  const double factor = value_[pivot.column] / pivot.value;
  value_[pivot.column] = 0;
  factors_.emplace_back(k, factor);
  ws_.add_work(static_cast<std::int64_t>(pivot.rest.size()) + 1);
  for (const auto& [j, a] : pivot.rest) scatter(j, -factor * a);
}

/* Subtracts earlier pivot rows, in their order: a pivot row has no entries in columns of earlier pivots. */
void Elimination::reduce(int i) {
  factors_.clear();
  const View row = ws_.row(i);
  ws_.add_work(row.length);
  for (int k = 0; k < row.length; ++k) scatter(row.index[k], row.value[k]);
  while (!pending_.empty()) {
    const int k = pending_.top();
    pending_.pop();
    if (value_[pivots_[k].column] != 0) subtract_pivot_row(k);
  }
}

/* The entry with the fewest others in its column among those that are large enough; -1 for an empty row. */
int Elimination::choose_pivot() const {
  double largest = 0;
  for (const int j : touched_) largest = std::max(largest, std::fabs(value_[j]));
  int best = -1;
  for (const int j : touched_) {
    if (value_[j] == 0 || std::fabs(value_[j]) < kPivot * largest) continue;
    if (best < 0 || count_[j] < count_[best]) best = j;
  }
  return best;
}

/* The reduced row becomes a pivot row, or it has vanished. */
void Elimination::finish_row(int i) {
  const int column = choose_pivot();
  if (column >= 0) {
    Pivot pivot{i, column, value_[column], {}, factors_};
    for (const int j : touched_) {
      if (value_[j] != 0 && j != column) pivot.rest.emplace_back(j, value_[j]);
    }
    pivot_of_[column] = static_cast<int>(pivots_.size());
    pivots_.push_back(std::move(pivot));
  }
  for (const int j : touched_) value_[j] = magnitude_[j] = 0;
  touched_.clear();
  if (column < 0 && is_dependent(i)) gone_.push_back(i);
}

/* Multipliers of the other equations whose sum is equation i, from the factors of the elimination. */
Sparse Elimination::combination(int i) const {
  std::vector<double> weight(pivots_.size(), 0.0);
  int last = -1;
  for (const auto& [k, factor] : factors_) {
    weight[k] += factor;
    last = std::max(last, k);
  }
  Sparse result{{i, -1.0}};
  for (int k = last; k >= 0; --k) {
    if (weight[k] == 0) continue;
    for (const auto& [earlier, factor] : pivots_[k].factors) weight[earlier] -= weight[k] * factor;
    result.emplace_back(pivots_[k].row, weight[k]);
  }
  return result;
}

/* Forms the combination from the equations themselves. True when nothing is left, on the right-hand side as
 * well. */
bool Elimination::is_dependent(int i) {
  const Sparse sum = combination(i);
  double side = 0, side_scale = 1, largest = 0;
  for (const auto& [row, factor] : sum) {
    const View view = ws_.row(row);
    ws_.add_work(2 * view.length);
    largest = std::max(largest, std::fabs(factor));
    for (int k = 0; k < view.length; ++k) {
      const double term = factor * view.value[k];
      if (magnitude_[view.index[k]] == 0) touched_.push_back(view.index[k]);
      magnitude_[view.index[k]] = std::max(magnitude_[view.index[k]], std::fabs(term));
      value_[view.index[k]] += term;
    }
    side += factor * ws_.row_lower[row];
    side_scale = std::max(side_scale, std::fabs(factor * ws_.row_lower[row]));
  }
  bool vanishes = largest <= kLargeFactor;
  for (const int j : touched_) {
    vanishes &= std::fabs(value_[j]) <= kVanishes * magnitude_[j];
    value_[j] = magnitude_[j] = 0;
  }
  touched_.clear();
  if (!vanishes) return false;
  if (std::fabs(side) > infeasibility_tolerance(ws_, side_scale)) {
    PresolveStatus status;
    status.code = StatusCode::dependent_row_infeasible;
    status.row = i;
    for (const auto& [row, factor] : sum) {
      if (factor != 0) status.multipliers.emplace_back(row, side > 0 ? factor : -factor);
    }
    ws_.declare_infeasible(std::move(status));
    return false;
  }
  return std::fabs(side) <= kExact * side_scale;
}

}  // namespace

bool remove_dependent_rows(Workspace& ws) {
  if (!ws.enabled(Rule::dependent_rows) || ws.settings.dependency == 0 || ws.done()) return false;
  return Elimination(ws).run();
}

}  // namespace tovik::lp::presolve
