#include "mip/cuts/cover.h"

#include <algorithm>
#include <cmath>

#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr double kMargin = 1e-6;  // of the capacity: by which a cover exceeds it
constexpr double kWhole = 1e-6;   // a value counts as 0 or 1
constexpr double kTight = 0.2;    // slack of a row relative to its norm
constexpr std::size_t kLongest = 5000;
constexpr int kLargestTable = 2000;

}  // namespace

Verdict CoverCuts::call(Worker& worker, const Moment& moment) {
  const std::span<const double> x = worker.relaxation->primal();
  work_ = 0;
  bool found = false;
  for (int i = 0; i < worker.global.problem.num_rows(); ++i) {
    if (work_ > moment.budget || worker.must_stop()) break;
    const RelaxationRow row = worker.row(i);
    double activity = 0, norm = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) {
      activity += row.values[k] * x[row.columns[k]];
      norm += row.values[k] * row.values[k];
    }
    work_ += static_cast<std::int64_t>(row.columns.size());
    for (const double sign : {1.0, -1.0}) {
      const double slack = sign > 0 ? row.upper - activity : activity - row.lower;
      if (!(slack <= kTight * std::sqrt(norm)) || !read_row(worker, row, sign, x)) continue;
      if (!choose_cover() || !lift()) continue;
      Cut cut;
      cut.kind = CutClass::cover;
      write(&cut);
      if (cut.columns.empty() || !finish_cut(worker, x, &cut)) continue;
      worker.out.cuts.push_back(std::move(cut));
      found = true;
    }
  }
  worker.out.work += work_;
  return found ? Verdict::found : Verdict::nothing;
}

/* sign * row as a knapsack of binaries. False where a column has no bound that could stand for it, or nothing is
 * fractional. */
bool CoverCuts::read_row(const Worker& worker, const RelaxationRow& row, double sign,
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
  margin_ = kMargin * std::max(1.0, std::fabs(capacity_));
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

/* Items at 1, then those that add most; then out with what is not needed, the least valuable first. */
bool CoverCuts::choose_cover() {
  std::vector<std::size_t> order(items_.size());
  for (std::size_t k = 0; k < order.size(); ++k) order[k] = k;
  const auto gain = [&](std::size_t k) { return items_[k].weight * items_[k].value; };
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    const bool one_a = items_[a].value > 1 - kWhole, one_b = items_[b].value > 1 - kWhole;
    if (one_a != one_b) return one_a;
    return gain(a) != gain(b) ? gain(a) > gain(b) : a < b;
  });
  cover_.clear();
  double sum = 0;
  for (const std::size_t k : order) {
    if (items_[k].value <= kWhole || sum > capacity_ + margin_) break;
    if (items_[k].weight > capacity_ + margin_) continue;  // alone too heavy: no cover is needed to say so
    cover_.push_back(k);
    sum += items_[k].weight;
  }
  if (!(sum > capacity_ + margin_)) return false;
  std::vector<std::size_t> by_value = cover_;
  std::sort(by_value.begin(), by_value.end(), [&](std::size_t a, std::size_t b) {
    if (items_[a].value != items_[b].value) return items_[a].value < items_[b].value;
    return items_[a].weight != items_[b].weight ? items_[a].weight < items_[b].weight : a < b;
  });
  for (const std::size_t k : by_value) {
    if (sum - items_[k].weight > capacity_ + margin_) {
      sum -= items_[k].weight;
      std::erase(cover_, k);
    }
  }
  return cover_.size() > 1;
}

/* The largest value that can be had within a capacity. A little more counts as within: coefficients get smaller by it. */
int CoverCuts::best_value(double capacity) const {
  const auto end = std::upper_bound(least_weight_.begin(), least_weight_.end(), capacity + margin_);
  return static_cast<int>(end - least_weight_.begin()) - 1;
}

void CoverCuts::lift_item(Item& item, bool down) {
  if (down) {
    item.lifted = std::max(0, best_value(room_ + item.weight) - side_);
    side_ += item.lifted;
    room_ += item.weight;
  } else if (item.weight <= room_ + margin_) {
    item.lifted = std::max(0, side_ - std::max(0, best_value(room_ - item.weight)));
  } else {
    return;
  }
  if (item.lifted == 0) return;
  const auto a = static_cast<std::size_t>(item.lifted);
  least_weight_.resize(least_weight_.size() + a, kInf);
  for (std::size_t w = least_weight_.size(); w-- > 1;) {
    const double before = least_weight_[w > a ? w - a : 0];
    least_weight_[w] = std::min(least_weight_[w], before + item.weight);
  }
  work_ += static_cast<std::int64_t>(least_weight_.size());
}

/* Members below 1 make the cut; members at 1 are lifted down between the items of value and the others. */
bool CoverCuts::lift() {
  std::vector<std::size_t> first, ones, fractional, others;
  std::vector<char> in_cover(items_.size());
  for (const std::size_t k : cover_) {
    in_cover[k] = 1;
    (items_[k].value < 1 - kWhole ? first : ones).push_back(k);
  }
  if (first.empty()) return false;
  for (std::size_t k = 0; k < items_.size(); ++k) {
    if (in_cover[k] == 0) (items_[k].value > kWhole ? fractional : others).push_back(k);
  }
  room_ = capacity_;
  for (const std::size_t k : ones) room_ -= items_[k].weight;
  if (room_ < 0) return false;
  const auto lighter = [&](std::size_t a, std::size_t b) {
    return items_[a].weight != items_[b].weight ? items_[a].weight < items_[b].weight : a < b;
  };
  std::sort(first.begin(), first.end(), lighter);
  least_weight_.assign(1, 0.0);
  for (const std::size_t k : first) {
    items_[k].lifted = 1;
    least_weight_.push_back(least_weight_.back() + items_[k].weight);
  }
  side_ = static_cast<int>(first.size()) - 1;
  std::sort(fractional.begin(), fractional.end(), [&](std::size_t a, std::size_t b) {
    return items_[a].value != items_[b].value ? items_[a].value > items_[b].value : a < b;
  });
  std::sort(others.begin(), others.end(), [&](std::size_t a, std::size_t b) { return lighter(b, a); });
  std::vector<std::size_t> late;
  for (const std::size_t k : fractional) {
    if (items_[k].weight > room_ + margin_) {
      late.push_back(k);
    } else {
      lift_item(items_[k], false);
    }
  }
  for (const std::size_t k : ones) lift_item(items_[k], true);
  for (const std::vector<std::size_t>* rest : {&late, &others}) {
    for (const std::size_t k : *rest) {
      if (static_cast<int>(least_weight_.size()) > kLargestTable) return true;
      lift_item(items_[k], false);
    }
  }
  return true;
}

void CoverCuts::write(Cut* cut) const {
  int side = side_;
  for (const Item& item : items_) {
    if (item.lifted == 0) continue;
    cut->columns.push_back(item.column);
    cut->values.push_back(item.complemented ? -item.lifted : item.lifted);
    if (item.complemented) side -= item.lifted;
  }
  cut->side = side;
}

}  // namespace tovik::mip
