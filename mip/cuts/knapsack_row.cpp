#include "mip/cuts/knapsack_row.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kWhole = 1e-6;  // a value counts as 0 or 1
constexpr double kTight = 0.2;   // slack of a row relative to its norm
constexpr std::size_t kLongest = 5000;

}  // namespace

bool KnapsackRow::is_tight(const RelaxationRow& row, double sign, std::span<const double> x) {
  double activity = 0, norm = 0;
  for (std::size_t k = 0; k < row.columns.size(); ++k) {
    activity += row.values[k] * x[row.columns[k]];
    norm += row.values[k] * row.values[k];
  }
  return (sign > 0 ? row.upper - activity : activity - row.lower) <= kTight * std::sqrt(norm);
}

/* sign * row as a knapsack of binaries. False where a column has no bound that could stand for it, or nothing is
 * fractional. */
bool KnapsackRow::read(const Worker& worker, const RelaxationRow& row, double sign,
                       std::span<const double> x) {
  items_.clear();
  listed_.clear();
  lp::CompensatedSum capacity;
  capacity.add(sign > 0 ? row.upper : -row.lower);
  bool possible = row.columns.size() <= kLongest;
  for (std::size_t k = 0; possible && k < row.columns.size(); ++k) {
    possible = relax_column(worker, row.columns[k], sign * row.values[k], x, capacity);
  }
  bool fractional = false;
  std::sort(listed_.begin(), listed_.end());
  for (const int j : listed_) {
    const double a = value_[j];
    value_[j] = 0;
    if (!possible || a == 0) continue;
    if (a < 0) capacity.add(-a);
    const double value = std::clamp(a < 0 ? 1 - x[j] : x[j], 0.0, 1.0);
    items_.push_back({j, std::fabs(a), value, a < 0});
    fractional = fractional || (value > kWhole && value < 1 - kWhole);
  }
  listed_.erase(std::unique(listed_.begin(), listed_.end()), listed_.end());
  capacity_ = capacity.value();
  return possible && fractional && capacity_ > 0;
}

/* Binaries are kept; any other column takes the bound at which it weighs least, at best at the relaxation's optimum. */
bool KnapsackRow::relax_column(const Worker& worker, int j, double a, std::span<const double> x,
                               lp::CompensatedSum& capacity) {
  const Domain& domain = worker.domain;
  const double lower = domain.global_lower(j), upper = domain.global_upper(j);
  if (lower == upper) {
    capacity.add_product(-a, lower);
    return true;
  }
  if (domain.is_binary_globally(j)) {
    listed_.push_back(j);
    value_[j] += a;
    return true;
  }
  const VariableBounds& table = worker.global.variable_bounds;
  const VariableBound* best = nullptr;
  double at = a > 0 ? lower : upper;
  for (const VariableBound& b : a > 0 ? table.lower(j) : table.upper(j)) {
    const double v = b.at(x[b.binary]);
    if (domain.is_fixed_globally(b.binary) || (a > 0 ? v < at : v > at)) continue;
    at = v;
    best = &b;
  }
  if (best == nullptr) {
    capacity.add_product(-a, std::isinf(at) ? 0 : at);
    return !std::isinf(at);
  }
  capacity.add_product(-a, best->constant);
  listed_.push_back(best->binary);
  value_[best->binary] += a * best->slope;
  return true;
}

}  // namespace tovik::mip
