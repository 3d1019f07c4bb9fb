#include "lp/simplex/partial_pricing.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tovik::lp::simplex {
namespace {
constexpr double kWide = 2.5;      // columns per row at which partial pricing starts by itself
constexpr int kWideLeast = 10000;  // ... and the least number of columns
constexpr int kAddLeast = 200;     // columns added at a time: as many as rows, within these limits
constexpr int kAddMost = 600;
constexpr int kManyRows = 2000;  // from here on bases are mostly so sparse that few columns at a time pay
constexpr int kLargest = 4;      // the set is thinned when larger than this many times rows + additions

double dual_infeasibility(const Core& core, int j) {
  const double d = core.values.d(j);
  return core.basis.move(j) > 0 ? -d : core.basis.move(j) < 0 ? d : std::fabs(d);
}
}  // namespace

void PartialPricing::start(Core& core) {
  const int wanted = core.options.price_candidates;
  on_ = wanted > 0 ? wanted < core.n() : core.n() >= kWideLeast && core.n() > kWide * core.m();
  if (!on_) return;
  add_ = wanted > 0 ? wanted : core.m() < kManyRows ? std::clamp(core.m(), kAddLeast, kAddMost) : kAddLeast;
  member_.assign(static_cast<size_t>(core.n()), 0);
  norm_.assign(static_cast<size_t>(core.n()), 1.0);
  const Matrix& a = core.matrix();
  for (int j = 0; j < core.n(); ++j) {
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) norm_[j] += a.value[k] * a.value[k];
    if (core.basis.nonbasic(j)) {
      core.rows.deactivate(j);
    } else {
      member_[j] = 1;
    }
  }
}

void PartialPricing::reselect(Core& core, double tolerance) {
  found_.clear();
  universe_.clear();
  for (int j = 0; j < core.n(); ++j) {
    if (member_[j]) {
      universe_.push_back(j);
    } else if (!core.is_fixed(j)) {
      const double v = dual_infeasibility(core, j);
      if (v > tolerance) found_.emplace_back(v * v / norm_[j], j);
    }
  }
  core.charge(core.n());
  if (static_cast<double>(universe_.size()) > static_cast<double>(kLargest) * (core.m() + add_)) {
    std::erase_if(universe_, [&](int j) {
      if (!core.basis.nonbasic(j) || dual_infeasibility(core, j) > -tolerance) return false;
      member_[j] = 0;
      core.rows.deactivate(j);
      return true;
    });
  }
  if (static_cast<int>(found_.size()) > add_) {
    std::nth_element(found_.begin(), found_.begin() + add_, found_.end(), std::greater<>());
    found_.resize(static_cast<size_t>(add_));
  }
  for (const auto& [score, j] : found_) {
    member_[j] = 1;
    core.rows.activate(j);
    universe_.push_back(j);
  }
  for (int i = 0; i < core.m(); ++i) universe_.push_back(core.n() + i);
}

void PartialPricing::finish(Core& core) {
  if (!on_) return;
  on_ = false;
  for (int j = 0; j < core.n(); ++j) {
    if (core.basis.nonbasic(j) && !core.is_fixed(j)) core.rows.activate(j);
  }
}

}  // namespace tovik::lp::simplex
