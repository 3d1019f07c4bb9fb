#include "mip/cuts/cover.h"

#include <algorithm>
#include <cmath>

#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr double kWhole = 1e-6;  // a value counts as 0 or 1
constexpr double kTight = 0.2;   // slack of a row relative to its norm
constexpr std::size_t kLongest = 5000;

}  // namespace

Verdict CoverCuts::call(Worker& worker, const Moment& moment) {
  const std::span<const double> x = worker.relaxation->primal();
  std::int64_t work = -cover_.work();
  bool found = false;
  for (int i = 0; i < worker.global.problem.num_rows(); ++i) {
    if (work + cover_.work() > moment.budget || worker.must_stop()) break;
    const RelaxationRow row = worker.row(i);
    double activity = 0, norm = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) {
      activity += row.values[k] * x[row.columns[k]];
      norm += row.values[k] * row.values[k];
    }
    work += static_cast<std::int64_t>(row.columns.size());
    for (const double sign : {1.0, -1.0}) {
      const double slack = sign > 0 ? row.upper - activity : activity - row.lower;
      if (!(slack <= kTight * std::sqrt(norm)) || !read_row(worker, row, sign, x)) continue;
      if (!cover_.find(capacity_, false)) continue;
      cover_.complete();
      Cut cut;
      cut.kind = CutClass::cover;
      write(&cut);
      if (cut.columns.empty() || !finish_cut(worker, x, &cut)) continue;
      worker.out.cuts.push_back(std::move(cut));
      found = true;
    }
  }
  worker.out.work += work + cover_.work();
  return found ? Verdict::found : Verdict::nothing;
}

/* sign * row as a knapsack of binaries. False where a column has no bound that could stand for it, or nothing is
 * fractional. */
bool CoverCuts::read_row(const Worker& worker, const RelaxationRow& row, double sign,
                         std::span<const double> x) {
  items_.clear();
  cover_.clear();
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
    items_.push_back({j, a < 0});
    cover_.add(std::fabs(a), value);
    fractional = fractional || (value > kWhole && value < 1 - kWhole);
  }
  listed_.erase(std::unique(listed_.begin(), listed_.end()), listed_.end());
  capacity_ = capacity.value();
  return possible && fractional && capacity_ > 0;
}

/* Binaries are kept; any other column takes the bound at which it weighs least, at best at the relaxation's optimum. */
bool CoverCuts::relax_column(const Worker& worker, int j, double a, std::span<const double> x,
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

void CoverCuts::write(Cut* cut) const {
  double side = cover_.side();
  for (std::size_t k = 0; k < items_.size(); ++k) {
    const double lifted = cover_.coefficient(k);
    if (lifted == 0) continue;
    cut->columns.push_back(items_[k].column);
    cut->values.push_back(items_[k].complemented ? -lifted : lifted);
    if (items_[k].complemented) side -= lifted;
  }
  cut->side = side;
}

}  // namespace tovik::mip
