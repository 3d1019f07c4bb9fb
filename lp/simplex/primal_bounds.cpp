#include "lp/simplex/primal_bounds.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {

void PrimalBounds::perturb(Core& core, double scale) {
  scale_ = scale;
  ++core.counters.primal.perturbations;
  for (const int j : core.basis.head()) widen(core, j);
  core.values.gather_bounds(core.work, core.basis);
}

void PrimalBounds::widen(Core& core, int j) const {
  if (scale_ == 0 || core.is_fixed(j)) return;
  const double size = core.options.perturb_magnitude * scale_ * (1.0 + core.work.random_value(j));
  const double low = core.model.lower(j);
  const double high = core.model.upper(j);
  double wide_low = core.work.lower(j);
  double wide_high = core.work.upper(j);
  if (low != -kInf) wide_low = std::min(wide_low, low - size * std::max(1.0, std::fabs(low)));
  if (high != kInf) wide_high = std::max(wide_high, high + size * std::max(1.0, std::fabs(high)));
  core.work.set_bounds(j, wide_low, wide_high);
}

void PrimalBounds::shift_behind(Core& core, int p) {
  const double beyond = core.random.real() * core.primal_tolerance();
  const double x = core.values.x(p);
  if (x < core.values.x_lower(p)) {
    shift(core, p, x - beyond, core.values.x_upper(p));
  } else {
    shift(core, p, core.values.x_lower(p), x + beyond);
  }
}

void PrimalBounds::shift_to_value(Core& core, int p, int leaving_move) {
  const double x = core.values.x(p);
  const bool fixed = core.work.is_fixed(core.basis.head(p));
  shift(core, p, fixed || leaving_move > 0 ? x : core.values.x_lower(p),
        fixed || leaving_move < 0 ? x : core.values.x_upper(p));
}

void PrimalBounds::shift(Core& core, int p, double lower, double upper) {
  core.set_basic_bounds(p, lower, upper);
  shifted_ = true;
  ++core.counters.shifts;
}

void PrimalBounds::restore(Core& core) {
  if (changed()) ++core.counters.primal.restores;
  scale_ = 0;
  shifted_ = false;
  core.work.use_model_bounds(core.model);
  for (int j = 0; j < core.total(); ++j) {
    if (!core.basis.nonbasic(j)) continue;
    const double value = core.basis.value(j);
    const bool between =
        core.basis.move(j) == 0 && value > core.model.lower(j) && value < core.model.upper(j);
    if (!between) core.place_nonbasic(j, core.basis.move(j));
  }
  core.values.gather_bounds(core.work, core.basis);
}

}  // namespace tovik::lp::simplex
