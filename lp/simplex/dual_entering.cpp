#include "lp/simplex/dual_entering.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {
namespace {
/* Smallest entry of the row that may become a pivot, by updates since the last factorization. */
double pivot_tolerance(int updates) {
  return updates < 10 ? 1e-9 : updates < 20 ? 3e-8 : 1e-6;
}
constexpr double kGoodShare = 0.1;  // a group's pivot is good when it reaches this share of the largest pivot
constexpr double kGoodAlways = 1.0;  // ... or this size
}  // namespace

inline void DualEntering::consider(const Core& core, int j, double alpha) {
  index_.push_back(j);
  alpha_.push_back(alpha);
  const double a = sign_ * alpha;
  double direction = core.move[j];
  if (direction == 0) {
    if (core.work_lower[j] != -kInf || core.work_upper[j] != kInf) return;
    direction = a > 0 ? 1.0 : -1.0;
  }
  const double pivot = a * direction;
  if (pivot <= smallest_) return;
  const double dual = direction * core.d[j];
  candidates_.push_back({j, pivot, alpha, dual, 0.0});
  relaxed_ = std::min(relaxed_, (dual + core.dual_tolerance) / pivot);
  largest_alpha_ = std::max(largest_alpha_, pivot);
}

void DualEntering::load(Core& core, const SparseVector& rho, const SparseVector& alpha_row, double delta) {
  index_.clear();
  alpha_.clear();
  candidates_.clear();
  largest_alpha_ = 0;
  relaxed_ = kInf;
  sign_ = delta < 0 ? -1.0 : 1.0;
  smallest_ = pivot_tolerance(core.factor.updates());
  const double* const alpha = alpha_row.array.data();
  if (alpha_row.count >= 0) {
    for (int k = 0; k < alpha_row.count; ++k) {
      const int j = alpha_row.index[k];
      if (std::fabs(alpha[j]) >= kTiny) consider(core, j, alpha[j]);
    }
  } else {
    for (int j = 0; j < core.n; ++j) {
      if (std::fabs(alpha[j]) >= kTiny) consider(core, j, alpha[j]);
    }
    core.charge(core.n / 2);
  }
  core.row_ap_density.update(static_cast<double>(index_.size()), core.n);
  const auto logical = [&](int i) {
    const int j = core.n + i;
    if (rho.array[i] != 0 && core.nonbasic[j] && !core.is_fixed(j)) consider(core, j, rho.array[i]);
  };
  if (rho.count >= 0) {
    for (int k = 0; k < rho.count; ++k) logical(rho.index[k]);
  } else {
    for (int i = 0; i < core.m; ++i) logical(i);
  }
  core.charge(2 * static_cast<std::int64_t>(index_.size()));
}

DualEntering::Pick DualEntering::choose(Core& core, double delta) {
  flips_.clear();
  Pick pick;
  const double theta = relaxed_;
  if (candidates_.empty()) return pick;

  // Large steps: keep only the candidates whose break points the slope can reach.
  double slope = std::fabs(delta);
  size_t selected = 0;
  double reach = std::max(theta, 0.0) * 10 + 1e-7;
  for (;;) {
    for (size_t k = selected; k < candidates_.size(); ++k) {
      Candidate& c = candidates_[k];
      if (c.alpha * reach >= c.dual) {
        slope -= c.alpha * (core.work_upper[c.variable] - core.work_lower[c.variable]);
        std::swap(candidates_[selected++], c);
      }
    }
    if (slope < 0 || selected == candidates_.size()) break;
    reach *= 10;
  }
  candidates_.resize(selected);
  for (Candidate& c : candidates_) c.ratio = c.dual / c.alpha;
  std::sort(candidates_.begin(), candidates_.end(), [](const Candidate& a, const Candidate& b) {
    return a.ratio != b.ratio ? a.ratio < b.ratio : a.variable < b.variable;
  });
  core.charge(4 * static_cast<std::int64_t>(selected));

  // Small steps: groups of break points within the Harris bound of the first of each group.
  suffix_.resize(selected);
  double least = kInf;
  for (size_t k = selected; k-- > 0;) {
    least = std::min(least, (candidates_[k].dual + core.dual_tolerance) / candidates_[k].alpha);
    suffix_[k] = least;
  }
  group_.clear();
  slope = std::fabs(delta);
  size_t k = 0;
  while (k < selected) {
    group_.push_back(static_cast<int>(k));
    const double bound = suffix_[k];
    const size_t first = k;
    while (k < selected && (candidates_[k].ratio <= bound || k == first)) {
      const int j = candidates_[k].variable;
      slope -= candidates_[k].alpha * (core.work_upper[j] - core.work_lower[j]);
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
          (a.alpha == b.alpha && core.random_value[a.variable] > core.random_value[b.variable])) {
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
  if (c.dual < 0) {
    // The dual value is infeasible within tolerance: shift the cost so that the step is zero.
    core.work_cost[c.variable] -= core.d[c.variable];
    core.d[c.variable] = 0;
    core.costs_shifted = true;
    ++core.counters.shifts;
    pick.theta = 0;
  } else {
    pick.theta = core.d[c.variable] / pick.alpha;
  }
  if (pick.theta != 0) {
    for (int e = 0; e < group_[chosen_group]; ++e) flips_.push_back(candidates_[e].variable);
  }
  return pick;
}

}  // namespace tovik::lp::simplex
