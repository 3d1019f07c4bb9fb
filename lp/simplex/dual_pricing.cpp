#include "lp/simplex/dual_pricing.h"

#include <algorithm>
#include <functional>

namespace tovik::lp::simplex {
namespace {
constexpr double kListColumnDensity =
    0.05;                            // above this a scan of all rows costs no more than the update does
constexpr int kListKeep = 500;       // rows kept at least when a list is cut
constexpr double kListShare = 0.01;  // lists up to this share of the rows are not cut
constexpr double kRefill = 0.99;  // rebuild when the best listed score falls below this share of the cut-off
}  // namespace

void DualPricing::resize(int rows) {
  infeasibility_.assign(static_cast<size_t>(rows), 0.0);
  in_list_.assign(static_cast<size_t>(rows), 0);
  banned_.assign(static_cast<size_t>(rows), 0);
  list_.clear();
  list_.reserve(static_cast<size_t>(rows));
  banned_count_ = 0;
}

void DualPricing::measure(const Core& core) {
  const double* const x = core.values.x().data();
  const double* const low = core.values.x_lower().data();
  const double* const high = core.values.x_upper().data();
  double* const squared = infeasibility_.data();
  const double tolerance = core.primal_tolerance();
  for (int p = 0; p < core.m(); ++p) squared[p] = violation2(x[p], low[p], high[p], tolerance);
}

void DualPricing::set_all(const Core& core, const std::vector<double>& weight) {
  measure(core);
  if (!listed_) return;
  for (int p = 0; p < core.m(); ++p) {
    if (!in_list_[p] && infeasibility_[p] > cutoff_ * weight[p]) {
      in_list_[p] = 1;
      list_.push_back(p);
    }
  }
}

void DualPricing::rebuild(Core& core, const std::vector<double>& weight, bool keep_banned) {
  measure(core);
  if (!keep_banned && banned_count_ > 0) {
    std::fill(banned_.begin(), banned_.end(), 0);
    banned_count_ = 0;
  }
  make_list(core, weight);
}

void DualPricing::rebuild_listed(const Core& core) {
  measure(core);
  if (banned_count_ > 0) std::fill(banned_.begin(), banned_.end(), 0);
  banned_count_ = 0;
  for (int p : list_) in_list_[p] = 0;
  list_.clear();
  cutoff_ = 0;
  listed_ = true;
  for (int p = 0; p < core.m(); ++p) {
    if (infeasibility_[p] == 0) continue;
    in_list_[p] = 1;
    list_.push_back(p);
  }
}

void DualPricing::make_list(Core& core, const std::vector<double>& weight) {
  for (int p : list_) in_list_[p] = 0;
  list_.clear();
  cutoff_ = 0;
  listed_ = core.m() > kListKeep && core.column_density.value() < kListColumnDensity;
  if (!listed_) return;
  score_.clear();
  for (int p = 0; p < core.m(); ++p) {
    if (infeasibility_[p] > 0) score_.push_back(infeasibility_[p] / weight[p]);
  }
  const auto uncut = std::max<size_t>(kListKeep, static_cast<size_t>(kListShare * core.m()));
  if (score_.size() > uncut) {
    const auto keep = std::max<size_t>(kListKeep, score_.size() / 100);
    std::nth_element(score_.begin(), score_.begin() + static_cast<std::ptrdiff_t>(keep), score_.end(),
                     std::greater<>());
    cutoff_ = score_[keep];
  }
  const auto add = [&](int p) {
    in_list_[p] = 1;
    list_.push_back(p);
  };
  for (int p = 0; p < core.m(); ++p) {
    if (infeasibility_[p] > cutoff_ * weight[p]) add(p);
  }
  if (cutoff_ == 0 || list_.size() >= kListKeep) return;
  // Many rows tie at the cut-off: fill up with some of them.
  const int first = core.random.below(core.m());
  for (int k = 0; k < core.m() && list_.size() < kListKeep; ++k) {
    const int p = first + k < core.m() ? first + k : first + k - core.m();
    if (!in_list_[p] && infeasibility_[p] / weight[p] >= kRefill * cutoff_) add(p);
  }
}

int DualPricing::scan(Core& core, const std::vector<double>& weight) const {
  double best_infeasibility = 0;
  double best_weight = 1;
  int best = -1;
  const auto look = [&](int from, int to) {
    for (int p = from; p < to; ++p) {
      if (infeasibility_[p] * best_weight > best_infeasibility * weight[p] && !banned_[p]) {
        best_infeasibility = infeasibility_[p];
        best_weight = weight[p];
        best = p;
      }
    }
  };
  const int first = core.random.below(core.m());
  look(first, core.m());
  look(0, first);
  core.counters.rows_scanned += core.m();
  core.charge(core.m() / 4);
  return best;
}

int DualPricing::choose(Core& core, const std::vector<double>& weight) {
  if (core.m() == 0) return -1;
  if (!listed_) return scan(core, weight);
  for (int round = 0; round < 2; ++round) {
    double best_infeasibility = 0;
    double best_weight = 1;
    int best = -1;
    const size_t size = list_.size();
    size_t kept = 0;
    for (size_t k = 0; k < size; ++k) {
      const int p = list_[k];
      const double squared = infeasibility_[p];
      if (squared == 0) {
        in_list_[p] = 0;
        continue;
      }
      list_[kept++] = p;
      if (squared * best_weight > best_infeasibility * weight[p] && !banned_[p]) {
        best_infeasibility = squared;
        best_weight = weight[p];
        best = p;
      }
    }
    list_.resize(kept);
    core.counters.rows_scanned += static_cast<std::int64_t>(size);
    core.charge(static_cast<std::int64_t>(size));
    if (cutoff_ == 0 || (best >= 0 && best_infeasibility >= kRefill * cutoff_ * best_weight)) return best;
    make_list(core, weight);
    core.charge(core.m());
    if (!listed_) return scan(core, weight);
  }
  return scan(core, weight);
}

}  // namespace tovik::lp::simplex
