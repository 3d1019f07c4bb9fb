#include "lp/simplex/primal_bounds.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {

void PrimalBounds::perturb(Core& core, double scale) {
  scale_ = scale;
  core.bounds_perturbed = true;
  ++core.counters.primal.perturbations;
  for (int p = 0; p < core.m; ++p) {
    const int j = core.head[p];
    widen(core, j);
    core.x_lower[p] = core.work_lower[j];
    core.x_upper[p] = core.work_upper[j];
  }
}

void PrimalBounds::widen(Core& core, int j) const {
  if (scale_ == 0 || core.is_fixed(j)) return;
  const double size = core.options.perturb_magnitude * scale_ * (1.0 + core.random_value[j]);
  const double low = core.lower[j];
  const double high = core.upper[j];
  if (low != -kInf)
    core.work_lower[j] = std::min(core.work_lower[j], low - size * std::max(1.0, std::fabs(low)));
  if (high != kInf)
    core.work_upper[j] = std::max(core.work_upper[j], high + size * std::max(1.0, std::fabs(high)));
}

void PrimalBounds::shift_behind(Core& core, int p) {
  const int j = core.head[p];
  const double beyond = core.random.real() * core.primal_tolerance;
  if (core.x[p] < core.x_lower[p]) {
    core.work_lower[j] = core.x_lower[p] = core.x[p] - beyond;
  } else {
    core.work_upper[j] = core.x_upper[p] = core.x[p] + beyond;
  }
  shifted_ = true;
  core.bounds_perturbed = true;
  ++core.counters.shifts;
}

void PrimalBounds::shift_to_value(Core& core, int p, int leaving_move) {
  const int j = core.head[p];
  const bool fixed = core.work_lower[j] == core.work_upper[j];
  if (fixed || leaving_move > 0) core.work_lower[j] = core.x_lower[p] = core.x[p];
  if (fixed || leaving_move < 0) core.work_upper[j] = core.x_upper[p] = core.x[p];
  shifted_ = true;
  core.bounds_perturbed = true;
  ++core.counters.shifts;
}

void PrimalBounds::restore(Core& core) {
  if (changed()) ++core.counters.primal.restores;
  scale_ = 0;
  shifted_ = false;
  core.bounds_perturbed = false;
  for (int j = 0; j < core.total; ++j) {
    core.work_lower[j] = core.lower[j];
    core.work_upper[j] = core.upper[j];
    if (!core.nonbasic[j]) continue;
    const bool between = core.move[j] == 0 && core.value[j] > core.lower[j] && core.value[j] < core.upper[j];
    if (!between) core.place_nonbasic(j, core.move[j]);
  }
  for (int p = 0; p < core.m; ++p) {
    core.x_lower[p] = core.lower[core.head[p]];
    core.x_upper[p] = core.upper[core.head[p]];
  }
}

}  // namespace tovik::lp::simplex
