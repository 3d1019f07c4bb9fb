#include "lp/presolve/dual_bounds.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr int kWorkPerEntry = 12;     // entries touched per entry of the columns that give bounds
constexpr double kSmallEntry = 1e-3;  // share of a column's largest entry below which no bound is derived
constexpr double kGain = 1e-3;        // relative improvement that makes a new bound worth having
constexpr double kLargeDual = 1e8;    // bounds beyond are too coarse to use
constexpr double kLargePrimal = 1e7;  // the same for implied bounds of columns
constexpr double kInside = 1e-3;      // relative distance that makes an implied bound strict
constexpr double kRelax = 1e-9;       // added to a derived bound, for rounding
constexpr double kPlain = 1e-4;       // relative contradiction that is no rounding
constexpr int kLongColumn = 100;      // implied bounds of longer columns are not looked for

/* Does a row keep column j strictly away from its (finite) upper or lower bound? */
bool bound_implied_strictly(Workspace& ws, int j, bool is_upper) {
  const double bound = is_upper ? ws.upper[j] : ws.lower[j];
  if (std::isinf(bound)) return false;
  const double margin = kInside * std::max(1.0, std::fabs(bound));
  const View v = ws.column(j);
  if (v.length > kLongColumn) return false;
  ws.add_work(v.length);
  for (int k = 0; k < v.length; ++k) {
    const double a = v.value[k];
    const double implied = is_upper ? ws.implied_upper(v.index[k], j, a) : ws.implied_lower(v.index[k], j, a);
    if (std::fabs(implied) > kLargePrimal) continue;
    if (is_upper ? implied >= bound - margin : implied <= bound + margin) continue;
    if (std::fabs(a) >= kSmallEntry * ws.activity(v.index[k]).largest) return true;
  }
  return false;
}

}  // namespace

DualBounds::DualBounds(Workspace& ws, bool implied) : ws_(ws) {
  const auto rows = static_cast<size_t>(ws.num_rows());
  const auto columns = static_cast<size_t>(ws.num_columns());
  lower_.resize(rows);
  upper_.resize(rows);
  derived_lower_.resize(rows);
  derived_upper_.resize(rows);
  sign_used_.resize(rows);
  gave_.resize(columns);
  queued_.resize(columns);
  not_negative_.resize(columns);
  not_positive_.resize(columns);
  find_signs(implied);
}

void DualBounds::find_signs(bool implied) {
  for (int j = 0; j < ws_.num_columns(); ++j) {
    if (!ws_.column_alive(j) || ws_.column_length(j) == 0) continue;
    not_negative_[j] = ws_.upper[j] == kInf;
    not_positive_[j] = ws_.lower[j] == -kInf;
    if (implied && ws_.lower[j] < ws_.upper[j]) {
      if (!not_negative_[j]) not_negative_[j] = bound_implied_strictly(ws_, j, true);
      if (!not_positive_[j]) not_positive_[j] = bound_implied_strictly(ws_, j, false);
    }
    if (not_negative_[j] || not_positive_[j]) order_.push_back(j);
  }
  // Short columns first: their bounds are the best and lean on the fewest rows.
  std::stable_sort(order_.begin(), order_.end(),
                   [&](int a, int b) { return ws_.column_length(a) < ws_.column_length(b); });
}

void DualBounds::compute(const std::vector<char>& excluded) {
  contradiction_ = -1;
  for (int i = 0; i < ws_.num_rows(); ++i) {
    lower_[i] = ws_.row_upper[i] == kInf && !ws_.equation(i) ? 0.0 : -kInf;
    upper_[i] = ws_.row_lower[i] == -kInf && !ws_.equation(i) ? 0.0 : kInf;
  }
  std::fill(derived_lower_.begin(), derived_lower_.end(), 0);
  std::fill(derived_upper_.begin(), derived_upper_.end(), 0);
  std::fill(sign_used_.begin(), sign_used_.end(), 0);
  std::fill(gave_.begin(), gave_.end(), 0);
  std::fill(queued_.begin(), queued_.end(), 1);  // excluded and unsigned columns are never queued
  queue_.clear();
  std::int64_t entries = 0;
  for (const int j : order_) {
    if (!ws_.column_alive(j) || (!excluded.empty() && excluded[j])) continue;
    queue_.push_back(j);
    entries += ws_.column_length(j);
  }
  const std::int64_t limit = ws_.work() + kWorkPerEntry * entries;
  for (size_t k = 0; k < queue_.size() && ws_.work() <= limit && contradiction_ < 0; ++k) {
    queued_[queue_[k]] = 0;
    visit(queue_[k]);
  }
}

DualBounds::Sums DualBounds::sums(const View& column) const {
  Sums sum;
  for (int k = 0; k < column.length; ++k) {
    const double a = column.value[k];
    const int i = column.index[k];
    sum.largest = std::max(sum.largest, std::fabs(a));
    const double least = a > 0 ? a * lower_[i] : a * upper_[i];
    const double most = a > 0 ? a * upper_[i] : a * lower_[i];
    if (least == -kInf) {
      ++sum.infinite_least;
    } else {
      sum.least += least;
      sum.scale = std::max(sum.scale, std::fabs(least));
    }
    if (most == kInf) {
      ++sum.infinite_most;
    } else {
      sum.most += most;
      sum.scale = std::max(sum.scale, std::fabs(most));
    }
  }
  return sum;
}

DualBounds::Range DualBounds::reduced_cost(int j) {
  const View column = ws_.column(j);
  ws_.add_work(column.length);
  const Sums sum = sums(column);
  const double c = ws_.cost[j];
  return {sum.infinite_most > 0 ? -kInf : c - sum.most, sum.infinite_least > 0 ? kInf : c - sum.least,
          std::max(std::fabs(c), sum.scale)};
}

void DualBounds::visit(int j) {
  const View column = ws_.column(j);
  if (not_negative_[j]) propagate(j, column, true);
  if (not_positive_[j]) propagate(j, column, false);
}

/* sum a_ij y_i <= c_j (or >=): each term is at most (at least) what the least (most) of the others leaves. */
void DualBounds::propagate(int j, const View& column, bool above) {
  ws_.add_work(column.length);
  const Sums sum = sums(column);
  const int infinite = above ? sum.infinite_least : sum.infinite_most;
  if (infinite > 1) return;
  const double total = above ? sum.least : sum.most;
  const double rounding = kRelax * std::max(sum.scale, std::fabs(ws_.cost[j]));
  int gave = 0, last = -1;
  for (int k = 0; k < column.length && contradiction_ < 0; ++k) {
    const double a = column.value[k];
    const int i = column.index[k];
    const double own = (a > 0) == above ? a * lower_[i] : a * upper_[i];
    if (std::fabs(a) < kSmallEntry * sum.largest || (infinite == 1 && !std::isinf(own))) continue;
    const double rest = infinite == 1 ? total : total - own;
    if (!tighten(i, (a > 0) == above, (ws_.cost[j] - rest) / a, rounding / std::fabs(a))) continue;
    ++gave;
    last = i;
  }
  if (gave == 0) return;
  gave_[j] = 1;
  // The signs that the other rows have by their type are part of the argument.
  for (int k = 0; k < column.length; ++k) {
    const int i = column.index[k];
    if (gave == 1 && i == last) continue;
    const bool by_lower = (column.value[k] > 0) == above;
    if (by_lower ? lower_[i] != -kInf && !derived_lower_[i] : upper_[i] != kInf && !derived_upper_[i])
      sign_used_[i] = 1;
  }
}

bool DualBounds::tighten(int i, bool is_upper, double value, double slack) {
  if (!(std::fabs(value) <= kLargeDual)) return false;
  const double old = is_upper ? upper_[i] : lower_[i];
  value += is_upper ? slack : -slack;
  const double gain = is_upper ? old - value : value - old;
  if (gain <=
      kGain * std::max({ws_.settings.optimality, std::fabs(value), std::isinf(old) ? 0.0 : std::fabs(old)}))
    return false;
  (is_upper ? upper_[i] : lower_[i]) = value;
  (is_upper ? derived_upper_[i] : derived_lower_[i]) = 1;
  if (lower_[i] - upper_[i] > kPlain * std::max({1.0, std::fabs(lower_[i]), std::fabs(upper_[i])}))
    contradiction_ = i;
  const View row = ws_.row(i);
  ws_.add_work(row.length);
  for (int k = 0; k < row.length; ++k) {
    const int j = row.index[k];
    if (queued_[j]) continue;
    queued_[j] = 1;
    queue_.push_back(j);
  }
  return true;
}

}  // namespace tovik::lp::presolve
