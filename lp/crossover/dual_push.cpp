#include "lp/crossover/dual_push.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::crossover {
namespace {

constexpr double kNoChange = 0.01;  // of the tolerance: less is no motion of a multiplier
constexpr double kGoodShare = 0.1;  // of the largest pivot: those as large may leave

}  // namespace

DualPush::DualPush(Path& path)
    : path_(path), core_(path.core), d_(static_cast<std::size_t>(core_.total()), 0.0) {
  rho_.resize(core_.m());
  row_.resize(core_.n());
}

void DualPush::run() {
  left_ = path_.basics_to_push();
  if (left_.empty()) return;
  path_.compute_reduced_costs(d_);
  path_.was_refactored();
  std::sort(left_.begin(), left_.end(), [&](int a, int b) {
    const double za = std::fabs(path_.multiplier(a)), zb = std::fabs(path_.multiplier(b));
    return za > zb || (za == zb && a < b);
  });
  group_size_ = left_.size();
  while (!left_.empty() && !path_.must_stop()) {
    path_.tell(false, static_cast<int>(left_.size()));
    group_size_ = std::min(group_size_, left_.size());
    if (group_size_ == 1) {
      push_one(left_.back());
    } else {
      push_group();
    }
    if (path_.was_refactored()) {
      std::erase_if(left_, [&](int j) { return core_.basis.nonbasic(j); });
      path_.compute_reduced_costs(d_);
    }
  }
  for (int j = 0; j < core_.total(); ++j) {
    if (core_.basis.nonbasic(j) && !core_.is_fixed(j)) path_.take_reduced_cost(j, d_[j]);
  }
}

/* Changes of the nonbasics' multipliers by `scale` times rho'N. */
void DualPush::price(const SparseVector& rho, double scale) {
  index_.clear();
  change_.clear();
  row_.clear();
  core_.price(rho, row_);
  for_nonzeros(row_, [&](int j) {
    index_.push_back(j);
    change_.push_back(scale * row_.array[j]);
  });
  for_nonzeros(rho, [&](int i) {
    const int j = core_.n() + i;
    if (!core_.basis.nonbasic(j) || core_.is_fixed(j)) return;
    index_.push_back(j);
    change_.push_back(scale * rho.array[i]);
  });
}

/* d -= step * change keeps the signs; two passes as in the primal's. */
DualPush::Block DualPush::ratio_test(double least) const {
  const double tolerance = core_.dual_tolerance();
  const auto room = [&](int j, double a) {  // kInf where it may go on for ever
    const int move = core_.basis.move(j);
    if (move == 0) return a > 0 ? d_[j] : -d_[j];
    return (move > 0) == (a > 0) ? move * d_[j] : kInf;
  };
  double reach = 1;
  const std::size_t size = index_.size();
  for (std::size_t k = 0; k < size; ++k) {
    const double a = change_[k];
    if (std::fabs(a) <= least) continue;
    const double relaxed = std::max(0.0, room(index_[k], a)) + tolerance;
    if (relaxed < reach * std::fabs(a)) reach = relaxed / std::fabs(a);
  }
  core_.charge(static_cast<std::int64_t>(size));
  Block block;
  if (reach >= 1) return block;
  double largest = 0;
  for (std::size_t k = 0; k < size; ++k) {
    const double a = std::fabs(change_[k]);
    if (a <= least || a <= largest) continue;
    const double tight = std::max(0.0, room(index_[k], change_[k]));
    if (tight > reach * a) continue;
    largest = a;
    block = {index_[k], tight / a};
  }
  core_.charge(static_cast<std::int64_t>(size));
  return block;
}

void DualPush::move_multipliers(double step) {
  if (step <= 0) return;
  for (std::size_t k = 0; k < index_.size(); ++k) d_[index_[k]] -= step * change_[k];
}

void DualPush::push_group() {
  const auto first = left_.end() - static_cast<std::ptrdiff_t>(group_size_);
  rho_.clear();
  rho_.count = 0;
  for (auto j = first; j != left_.end(); ++j) {
    const int p = core_.basis.position(*j);
    rho_.array[p] = path_.multiplier(*j);
    rho_.index[rho_.count++] = p;
  }
  core_.btran(rho_, rho_density_);
  price(rho_, 1);
  const Block block = ratio_test(kNoChange * core_.dual_tolerance());
  move_multipliers(block.step);
  if (block.variable < 0) {
    for (auto j = first; j != left_.end(); ++j) path_.set_multiplier(*j, 0);
    path_.result.counts.dual_pushes += static_cast<int>(group_size_);
    left_.erase(first, left_.end());
    group_size_ *= 2;
    return;
  }
  for (auto j = first; j != left_.end(); ++j)
    path_.set_multiplier(*j, (1 - block.step) * path_.multiplier(*j));
  leave_one_of_group(block.variable);
  group_size_ = std::max<std::size_t>(1, group_size_ / 2);
}

/* Of the group, the one with the largest multiplier among those with large entries in the column of k. */
bool DualPush::leave_one_of_group(int k) {
  const SparseVector& column = path_.load_column(k);
  const auto first = left_.end() - static_cast<std::ptrdiff_t>(group_size_);
  double largest = 0;
  for (auto j = first; j != left_.end(); ++j)
    largest = std::max(largest, std::fabs(column.array[core_.basis.position(*j)]));
  auto best = left_.end();
  double size = -1;
  for (auto j = first; j != left_.end(); ++j) {
    if (std::fabs(column.array[core_.basis.position(*j)]) < kGoodShare * largest) continue;
    const double z = std::fabs(path_.multiplier(*j));
    if (z > size) {
      size = z;
      best = j;
    }
  }
  if (best == left_.end() || largest == 0) return false;
  const int p = core_.basis.position(*best);
  path_.load_row(p);
  if (path_.judge_pivot(k, p) != Path::Trust::good) return false;
  left_.erase(best);
  exchange(k, p);
  return true;
}

void DualPush::exchange(int k, int p) {
  const int out = core_.basis.head(p);
  const double z = path_.multiplier(out);
  d_[out] = z;
  d_[k] = 0;
  path_.set_multiplier(k, 0);
  path_.exchange(k, p, core_.basis.value(k), z > 0 ? 1 : -1);
  ++path_.result.counts.dual_pushes;
  ++path_.result.counts.dual_exchanges;
}

/* Nothing can be done for it: it keeps its multiplier. */
void DualPush::set_aside(int j) {
  left_.erase(std::find(left_.begin(), left_.end(), j));
}

void DualPush::push_one(int j) {
  const int p = core_.basis.position(j);
  const SparseVector& row = path_.load_row(p);
  price(row, path_.multiplier(j));
  const double least =
      std::max(kNoChange * core_.dual_tolerance(), Path::kLeastPivot * std::fabs(path_.multiplier(j)));
  const Block block = ratio_test(least);
  if (block.variable < 0) {
    move_multipliers(1);
    path_.set_multiplier(j, 0);
    ++path_.result.counts.dual_pushes;
    left_.pop_back();
    group_size_ = 2;
    return;
  }
  path_.load_column(block.variable);
  switch (path_.judge_pivot(block.variable, p)) {
    case Path::Trust::good:
      break;
    case Path::Trust::refactored:
      return;  // once more
    case Path::Trust::bad:
      set_aside(j);
      return;
  }
  move_multipliers(block.step);
  path_.set_multiplier(j, (1 - block.step) * path_.multiplier(j));
  left_.pop_back();
  exchange(block.variable, p);
}

}  // namespace tovik::lp::crossover
