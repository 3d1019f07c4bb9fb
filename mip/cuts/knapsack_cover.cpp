#include "mip/cuts/knapsack_cover.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace tovik::mip {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMargin = 1e-6;  // of the capacity: by which a cover exceeds it
constexpr double kWhole = 1e-6;   // a value counts as 0 or 1
constexpr int kLargestTable = 2000;

}  // namespace

bool KnapsackCover::find(double capacity, bool with_continuous) {
  capacity_ = capacity;
  margin_ = kMargin * std::max(1.0, std::fabs(capacity));
  with_continuous_ = with_continuous;
  work_ += static_cast<std::int64_t>(items_.size());
  if (!choose()) return false;
  in_cover_.assign(items_.size(), 0);
  for (const std::size_t k : cover_) in_cover_[k] = 1;
  return with_continuous ? begin_with_continuous() : begin();
}

/* Items at 1, then those that add most; then out with what is not needed, the least valuable first. */
bool KnapsackCover::choose() {
  order_.clear();
  double most = 0;
  for (std::size_t k = 0; k < items_.size(); ++k) {
    if (items_[k].value <= kWhole) continue;
    // Alone too heavy: no cover is needed to say so, unless s may make up for it.
    if (!with_continuous_ && items_[k].weight > capacity_ + margin_) continue;
    order_.push_back(k);
    most += items_[k].weight;
  }
  if (!(most > capacity_ + margin_)) return false;
  const auto gain = [&](std::size_t k) { return items_[k].weight * items_[k].value; };
  std::sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) {
    const bool one_a = items_[a].value > 1 - kWhole, one_b = items_[b].value > 1 - kWhole;
    if (one_a != one_b) return one_a;
    return gain(a) != gain(b) ? gain(a) > gain(b) : a < b;
  });
  work_ += static_cast<std::int64_t>(order_.size());
  cover_.clear();
  double sum = 0;
  for (const std::size_t k : order_) {
    if (sum > capacity_ + margin_) break;
    cover_.push_back(k);
    sum += items_[k].weight;
  }
  by_value_ = cover_;
  std::sort(by_value_.begin(), by_value_.end(), [&](std::size_t a, std::size_t b) {
    if (items_[a].value != items_[b].value) return items_[a].value < items_[b].value;
    return items_[a].weight != items_[b].weight ? items_[a].weight < items_[b].weight : a < b;
  });
  for (const std::size_t k : by_value_) {
    if (sum - items_[k].weight > capacity_ + margin_) {
      sum -= items_[k].weight;
      std::erase(cover_, k);
    }
  }
  return cover_.size() > 1 || with_continuous_;
}

bool KnapsackCover::is_lighter(std::size_t a, std::size_t b) const {
  return items_[a].weight != items_[b].weight ? items_[a].weight < items_[b].weight : a < b;
}

bool KnapsackCover::table_is_full() const {
  return static_cast<int>(least_weight_.size()) > kLargestTable;
}

/* The largest value that can be had within a capacity. A little more counts as within: coefficients get smaller by it. */
int KnapsackCover::best_value(double capacity) const {
  const auto end = std::upper_bound(least_weight_.begin(), least_weight_.end(), capacity + margin_);
  return static_cast<int>(end - least_weight_.begin()) - 1;
}

void KnapsackCover::lift_item(Item& item, bool down) {
  if (down) {
    item.lifted = std::max(0.0, best_value(room_ + item.weight) - side_);
    side_ += item.lifted;
    room_ += item.weight;
  } else if (item.weight <= room_ + margin_) {
    item.lifted = std::max(0.0, side_ - std::max(0, best_value(room_ - item.weight)));
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
bool KnapsackCover::begin() {
  std::vector<std::size_t> first, ones, fractional;
  for (const std::size_t k : cover_) (items_[k].value < 1 - kWhole ? first : ones).push_back(k);
  if (first.empty()) return false;
  for (std::size_t k = 0; k < items_.size(); ++k) {
    if (in_cover_[k] == 0 && items_[k].value > kWhole) fractional.push_back(k);
  }
  room_ = capacity_;
  for (const std::size_t k : ones) room_ -= items_[k].weight;
  if (room_ < 0) return false;
  std::sort(first.begin(), first.end(), [&](std::size_t a, std::size_t b) { return is_lighter(a, b); });
  least_weight_.assign(1, 0.0);
  for (const std::size_t k : first) {
    items_[k].lifted = 1;
    least_weight_.push_back(least_weight_.back() + items_[k].weight);
  }
  side_ = static_cast<double>(first.size()) - 1;
  std::sort(fractional.begin(), fractional.end(), [&](std::size_t a, std::size_t b) {
    return items_[a].value != items_[b].value ? items_[a].value > items_[b].value : a < b;
  });
  std::vector<std::size_t> late;
  for (const std::size_t k : fractional) {
    if (items_[k].weight > room_ + margin_) {
      late.push_back(k);
    } else {
      lift_item(items_[k], false);
    }
  }
  for (const std::size_t k : ones) lift_item(items_[k], true);
  for (const std::size_t k : late) {
    if (!table_is_full()) lift_item(items_[k], false);
  }
  return true;
}

/* Members count by what they exceed the excess of the cover by at most. */
bool KnapsackCover::begin_with_continuous() {
  excess_ = -capacity_;
  for (const std::size_t k : cover_) excess_ += items_[k].weight;
  side_ = -excess_;
  std::vector<double> heavy;
  for (const std::size_t k : cover_) {
    items_[k].lifted = std::min(items_[k].weight, excess_);
    side_ += items_[k].lifted;
    if (items_[k].weight > excess_) heavy.push_back(items_[k].weight);
  }
  if (heavy.empty()) return false;
  std::sort(heavy.begin(), heavy.end(), std::greater<>());
  sums_.assign(1, 0.0);
  for (const double a : heavy) sums_.push_back(sums_.back() + a);
  for (std::size_t k = 0; k < items_.size(); ++k) {
    if (in_cover_[k] == 0 && items_[k].value > kWhole)
      items_[k].lifted = lifted_with_continuous(items_[k].weight);
  }
  return true;
}

/* Of an item that is no member: flat and steep in turns, as the heaviest members are used up. */
double KnapsackCover::lifted_with_continuous(double weight) const {
  const auto next = std::upper_bound(sums_.begin(), sums_.end(), weight);  // sums[h] <= weight < sums[h + 1]
  const auto h = static_cast<double>(next - sums_.begin() - 1);
  const double past = next == sums_.end() ? weight - sums_.back() : std::max(0.0, weight - (*next - excess_));
  return h * excess_ + past;
}

void KnapsackCover::complete() {
  std::vector<std::size_t> others;
  for (std::size_t k = 0; k < items_.size(); ++k) {
    if (in_cover_[k] == 0 && items_[k].value <= kWhole) others.push_back(k);
  }
  work_ += static_cast<std::int64_t>(others.size());
  if (with_continuous_) {
    for (const std::size_t k : others) items_[k].lifted = lifted_with_continuous(items_[k].weight);
    return;
  }
  std::sort(others.begin(), others.end(), [&](std::size_t a, std::size_t b) { return is_lighter(b, a); });
  for (const std::size_t k : others) {
    if (table_is_full()) return;
    lift_item(items_[k], false);
  }
}

}  // namespace tovik::mip
