#include "lp/simplex/dual_ratio_test.h"

#include <algorithm>
#include <cmath>

#include "lp/simplex/tolerance.h"

namespace tovik::lp::simplex {
namespace {
constexpr double kGoodShare = 0.1;  // a group's pivot is good when it reaches this share of the largest pivot
constexpr double kGoodAlways = 1.0;  // ... or this size
}  // namespace

void DualRatioTest::prepare(const Core& core) {
  const auto size = static_cast<size_t>(core.total()) + 1;  // one more: the loops write before they decide
  if (index_.size() != size) {
    index_.resize(size);
    alpha_.resize(size);
    slot_.resize(size);
    pivot_.resize(size);
    dual_.resize(size);
  }
}

/* The loops here and in find_candidates() store every entry and step on by the outcome of the test: whether
 * an entry stays is close to random, and a branch on it would mostly be mispredicted. */
void DualRatioTest::pack_row(Core& core, const SparseVector& rho, const SparseVector& alpha_row) {
  int* const index = index_.data();
  double* const packed = alpha_.data();
  const double* const alpha = alpha_row.array.data();
  int count = 0;
  const auto structural = [&](int j) {
    const double a = alpha[j];
    index[count] = j;
    packed[count] = a;
    count += std::fabs(a) >= kTiny;
  };
  if (alpha_row.count >= 0) {
    for (int k = 0; k < alpha_row.count; ++k) structural(alpha_row.index[k]);
  } else {
    for (int j = 0; j < core.n(); ++j) structural(j);
    core.charge(core.n() / 2);
  }
  core.row_ap_density.update(count, core.n());
  const auto logical = [&](int i) {
    const int j = core.n() + i;
    const double a = rho.array[i];
    index[count] = j;
    packed[count] = a;
    count += (a != 0) & (core.basis.nonbasic(j) != 0) & (core.model.lower(j) != core.model.upper(j));
  };
  if (rho.count >= 0) {
    for (int k = 0; k < rho.count; ++k) logical(rho.index[k]);
  } else {
    for (int i = 0; i < core.m(); ++i) logical(i);
  }
  count_ = count;
  core.charge(2 * static_cast<std::int64_t>(count));
}

void DualRatioTest::find_candidates(const Core& core) {
  const int* const index = index_.data();
  const double* const alpha = alpha_.data();
  const signed char* const move = core.basis.move().data();
  const double* const d = core.values.d().data();
  int* const slot = slot_.data();
  double* const pivots = pivot_.data();
  double* const duals = dual_.data();
  const double sign = sign_;
  const double smallest = smallest_;
  int found = 0;
  for (int k = 0; k < count_; ++k) {
    const double pivot = sign * alpha[k] * move[index[k]];
    slot[found] = k;
    pivots[found] = pivot;
    found += pivot > smallest;
  }
  double relaxed = kInf;
  double largest = 0;
  const double tolerance = core.dual_tolerance();
  for (int c = 0; c < found; ++c) {
    const int j = index[slot[c]];
    const double dual = move[j] * d[j];
    duals[c] = dual;
    largest = std::max(largest, pivots[c]);
    if (dual + tolerance < relaxed * pivots[c]) relaxed = (dual + tolerance) / pivots[c];
  }
  found_ = found;
  relaxed_ = relaxed;
  largest_alpha_ = largest;
}

void DualRatioTest::add_free_candidates(const Core& core) {
  for (int k = 0; k < count_; ++k) {
    const int j = index_[k];
    if (core.basis.move(j) != 0 || core.work.lower(j) != -kInf || core.work.upper(j) != kInf) continue;
    const double a = sign_ * alpha_[k];
    const double pivot = std::fabs(a);
    if (pivot <= smallest_) continue;
    const double dual = a > 0 ? core.values.d(j) : -core.values.d(j);
    slot_[found_] = k;
    pivot_[found_] = pivot;
    dual_[found_++] = dual;
    relaxed_ = std::min(relaxed_, (dual + core.dual_tolerance()) / pivot);
    largest_alpha_ = std::max(largest_alpha_, pivot);
  }
}

void DualRatioTest::load(Core& core, const SparseVector& rho, const SparseVector& alpha_row, double delta) {
  sign_ = delta < 0 ? -1.0 : 1.0;
  smallest_ = pivot_tolerance(kRowPivot, core.factor.updates());
  pack_row(core, rho, alpha_row);
  find_candidates(core);
  if (core.basis.free_nonbasic() > 0) add_free_candidates(core);
}

/* Large steps: keeps only the candidates whose break points the slope can reach. */
void DualRatioTest::select_reachable(const Core& core, double delta) {
  candidates_.clear();
  double slope = std::fabs(delta);
  int left = found_;
  double reach = std::max(relaxed_, 0.0) * 10 + 1e-7;
  for (;;) {
    int kept = 0;
    for (int c = 0; c < left; ++c) {
      const double pivot = pivot_[c];
      const double dual = dual_[c];
      const int k = slot_[c];
      if (pivot * reach >= dual) {
        const int j = index_[k];
        slope -= pivot * (core.work.upper(j) - core.work.lower(j));
        candidates_.push_back({j, pivot, alpha_[k], dual, dual / pivot});
      } else {
        slot_[kept] = k;
        pivot_[kept] = pivot;
        dual_[kept++] = dual;
      }
    }
    left = kept;
    // What an infinite step does not reach is not a number: numbers of the data near the end of their range bring it.
    if (slope < 0 || left == 0 || std::isinf(reach)) return;
    reach *= 10;
  }
}

DualRatioTest::Pick DualRatioTest::choose(Core& core, double delta) {
  flips_.clear();
  Pick pick;
  if (found_ == 0) return pick;
  select_reachable(core, delta);
  const size_t selected = candidates_.size();
  if (selected == 0) return pick;
  std::sort(candidates_.begin(), candidates_.end(), [](const Candidate& a, const Candidate& b) {
    return a.ratio != b.ratio ? a.ratio < b.ratio : a.variable < b.variable;
  });
  core.charge(4 * static_cast<std::int64_t>(selected));

  // Small steps: groups of break points within the Harris bound of the first of each group.
  suffix_.resize(selected);
  double least = kInf;
  for (size_t k = selected; k-- > 0;) {
    least = std::min(least, (candidates_[k].dual + core.dual_tolerance()) / candidates_[k].alpha);
    suffix_[k] = least;
  }
  group_.clear();
  double slope = std::fabs(delta);
  size_t k = 0;
  while (k < selected) {
    group_.push_back(static_cast<int>(k));
    const double bound = suffix_[k];
    const size_t first = k;
    while (k < selected && (candidates_[k].ratio <= bound || k == first)) {
      const int j = candidates_[k].variable;
      slope -= candidates_[k].alpha * (core.work.upper(j) - core.work.lower(j));
      ++k;
    }
    if (slope < 0) break;
  }
  group_.push_back(static_cast<int>(k));

  // From the last group backwards: the first one with a good pivot.
  double largest = 0;
  for (size_t c = 0; c < k; ++c) largest = std::max(largest, candidates_[c].alpha);
  const double good = std::min(kGoodShare * largest, kGoodAlways);
  int chosen_group = 0;
  int chosen = -1;
  for (int g = static_cast<int>(group_.size()) - 2; g >= 0; --g) {
    int best = group_[g];
    for (int c = group_[g] + 1; c < group_[g + 1]; ++c) {
      const Candidate& a = candidates_[c];
      const Candidate& b = candidates_[best];
      if (a.alpha > b.alpha ||
          (a.alpha == b.alpha && core.work.random_value(a.variable) > core.work.random_value(b.variable))) {
        best = c;
      }
    }
    chosen = best;
    chosen_group = g;
    if (candidates_[best].alpha >= good) break;
  }
  const Candidate& c = candidates_[chosen];
  pick.variable = c.variable;
  pick.alpha = c.row;
  pick.shift = c.dual < 0;
  pick.theta = pick.shift ? 0.0 : core.values.d(c.variable) / pick.alpha;
  if (pick.theta != 0) {
    for (int e = 0; e < group_[chosen_group]; ++e) flips_.push_back(candidates_[e].variable);
  }
  return pick;
}

}  // namespace tovik::lp::simplex
