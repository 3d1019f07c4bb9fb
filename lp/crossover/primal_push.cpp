#include "lp/crossover/primal_push.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::crossover {
namespace {

constexpr double kNoChange = 0.01;  // of the tolerance: less is no motion of a basic
constexpr double kGoodShare = 0.1;  // of the largest pivot: those as large may enter

double target_of(const simplex::Core& core, int j) {
  const double lower = core.model.lower(j), upper = core.model.upper(j);
  if (const int move = core.basis.move(j); move != 0) return move > 0 ? lower : upper;
  if (lower == -kInf && upper == kInf) return 0;
  const double x = core.basis.value(j);
  return x - lower <= upper - x ? lower : upper;
}

}  // namespace

PrimalPush::PrimalPush(Path& path)
    : path_(path), core_(path.core), target_(static_cast<std::size_t>(core_.total()), 0.0) {
  change_.resize(core_.m());
}

/* Those that belong to their bounds first, all at once. */
void PrimalPush::run() {
  core_.compute_primal();
  left_ = path_.nonbasics_to_push();
  for (const int j : left_) target_[j] = target_of(core_, j);
  std::sort(left_.begin(), left_.end(), [&](int a, int b) {
    const bool a_belongs = core_.basis.move(a) != 0, b_belongs = core_.basis.move(b) != 0;
    if (a_belongs != b_belongs) return b_belongs;
    const double wa = std::fabs(way(a)), wb = std::fabs(way(b));
    return wa > wb || (wa == wb && a < b);
  });
  group_size_ = static_cast<std::size_t>(
      std::count_if(left_.begin(), left_.end(), [&](int j) { return core_.basis.move(j) != 0; }));
  if (group_size_ == 0) group_size_ = left_.size();
  while (!left_.empty() && !path_.must_stop()) {
    path_.tell(true, static_cast<int>(left_.size()));
    group_size_ = std::min(group_size_, left_.size());
    if (group_size_ == 1) {
      push_one(left_.back());
    } else {
      push_group();
    }
    if (path_.was_refactored()) std::erase_if(left_, [&](int j) { return !core_.basis.nonbasic(j); });
  }
}

/* The variable has reached its aim. */
void PrimalPush::arrive(int j) {
  path_.put_at_bound(j, target_[j] == core_.model.lower(j) ? 1 : -1);
  ++path_.result.counts.primal_pushes;
}

/* Nothing can be done for it: it stays between its bounds. */
void PrimalPush::set_aside(int j) {
  left_.erase(std::find(left_.begin(), left_.end(), j));
}

void PrimalPush::push_group() {
  const auto first = left_.end() - static_cast<std::ptrdiff_t>(group_size_);
  change_.clear();
  for (auto j = first; j != left_.end(); ++j) core_.model.add_column(*j, way(*j), change_);
  core_.charge(change_.count + static_cast<std::int64_t>(group_size_));
  core_.ftran(change_, change_density_);
  const Block block = ratio_test(change_, kNoChange * core_.primal_tolerance());
  move_basics(change_, block.step);
  if (block.position < 0) {
    for (auto j = first; j != left_.end(); ++j) arrive(*j);
    left_.erase(first, left_.end());
    group_size_ *= 2;
    return;
  }
  if (block.step > 0) {
    for (auto j = first; j != left_.end(); ++j)
      path_.move_nonbasic(*j, core_.basis.value(*j) + block.step * way(*j));
  }
  enter_one_of_group(block.position, block.leaving_move);
  group_size_ = std::max<std::size_t>(1, group_size_ / 2);
}

/* Of the group, the one farthest from its aim among those with large entries in row p. */
bool PrimalPush::enter_one_of_group(int p, int leaving_move) {
  path_.load_row(p);
  const auto first = left_.end() - static_cast<std::ptrdiff_t>(group_size_);
  double largest = 0;
  std::vector<double> entries;
  for (auto j = first; j != left_.end(); ++j) {
    entries.push_back(std::fabs(path_.row_entry(*j)));
    largest = std::max(largest, entries.back());
  }
  auto best = left_.end();
  double longest = -1;
  for (auto j = first; j != left_.end(); ++j) {
    if (entries[static_cast<std::size_t>(j - first)] < kGoodShare * largest) continue;
    const double length = core_.model.is_free(*j) ? kInf : std::fabs(way(*j));
    if (length > longest) {
      longest = length;
      best = j;
    }
  }
  if (best == left_.end() || largest == 0) return false;
  const int q = *best;
  path_.load_column(q);
  if (path_.judge_pivot(q, p) != Path::Trust::good) return false;
  left_.erase(best);
  exchange(q, p, leaving_move);
  return true;
}

void PrimalPush::exchange(int q, int p, int leaving_move) {
  path_.exchange(q, p, core_.basis.value(q), leaving_move);
  ++path_.result.counts.primal_pushes;
  ++path_.result.counts.primal_exchanges;
}

void PrimalPush::push_one(int j) {
  const SparseVector& column = path_.load_column(j);
  const double length = way(j);
  change_.clear();
  change_.copy(column);
  for_nonzeros(change_, [&](int p) { change_.array[p] *= length; });
  const double least = std::max(kNoChange * core_.primal_tolerance(), Path::kLeastPivot * std::fabs(length));
  const Block block = ratio_test(change_, least);
  if (block.position < 0) {
    move_basics(change_, 1);
    arrive(j);
    left_.pop_back();
    group_size_ = 2;
    return;
  }
  path_.load_row(block.position);
  switch (path_.judge_pivot(j, block.position)) {
    case Path::Trust::good:
      break;
    case Path::Trust::refactored:
      return;  // once more
    case Path::Trust::bad:
      set_aside(j);
      return;
  }
  move_basics(change_, block.step);
  path_.move_nonbasic(j, core_.basis.value(j) + block.step * length);
  left_.pop_back();
  exchange(j, block.position, block.leaving_move);
}

/* Changes up to `least` are none. Two passes: how far the bounds, widened by the tolerance, let the basics go; then the
 * largest change among those that reach their own bounds until there. */
PrimalPush::Block PrimalPush::ratio_test(const SparseVector& change, double least) const {
  const double tolerance = core_.primal_tolerance();
  const auto room = [&](int p, double a) {
    const double z = path_.multiplier(core_.basis.head(p)), x = core_.values.x(p);
    if (z != 0 && (z > 0) != (a > 0)) return 0.0;
    return a > 0 ? x - core_.values.x_lower(p) : core_.values.x_upper(p) - x;
  };
  double reach = 1;
  for_nonzeros(change, [&](int p) {
    const double a = change.array[p];
    if (std::fabs(a) <= least) return;
    const double relaxed = std::max(0.0, room(p, a)) + tolerance;
    if (relaxed < reach * std::fabs(a)) reach = relaxed / std::fabs(a);
  });
  core_.charge(change.count < 0 ? core_.m() : change.count);
  Block block;
  if (reach >= 1) return block;
  double largest = 0;
  for_nonzeros(change, [&](int p) {
    const double a = change.array[p];
    const double size = std::fabs(a);
    if (size <= least || size <= largest) return;
    const double tight = std::max(0.0, room(p, a));
    if (tight > reach * size) return;
    largest = size;
    block = {p, tight / size, a > 0 ? 1 : -1};
  });
  core_.charge(change.count < 0 ? core_.m() : change.count);
  const double z = block.position < 0 ? 0 : path_.multiplier(core_.basis.head(block.position));
  if (z != 0) block.leaving_move = z > 0 ? 1 : -1;
  return block;
}

void PrimalPush::move_basics(const SparseVector& change, double step) {
  if (step > 0) core_.values.move_along(change, step, [](int, double) {});
}

}  // namespace tovik::lp::crossover
