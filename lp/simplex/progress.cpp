#include "lp/simplex/progress.h"

#include "lp/verify/bounds.h"

namespace tovik::lp::simplex {
namespace {

double wrong_signed_duals(const Core& core) {
  double sum = 0;
  for (int j = 0; j < core.total(); ++j) {
    if (!core.basis.nonbasic(j)) continue;
    if (core.values.d(j) < 0 && core.model.upper(j) == kInf) sum -= core.values.d(j);
    if (core.values.d(j) > 0 && core.model.lower(j) == -kInf) sum += core.values.d(j);
  }
  return sum;
}

double bound_violations(const Core& core) {
  double sum = 0;
  for (int p = 0; p < core.m(); ++p) {
    const int j = core.basis.head(p);
    sum += verify::outside(core.values.x(p), core.model.lower(j), core.model.upper(j));
  }
  return sum;
}

/* The model's own costs at the present point. */
double objective_at_point(const Core& core) {
  double sum = core.model.offset();
  for (int j = 0; j < core.total(); ++j) {
    const double cost = core.model.cost(j);
    if (cost == 0) continue;
    sum += cost * (core.basis.nonbasic(j) ? core.basis.value(j) : core.values.x(core.basis.position(j)));
  }
  return sum;
}

}  // namespace

double phase1_infeasibility(const Core& core, bool dual) {
  return dual ? wrong_signed_duals(core) : bound_violations(core);
}

Progress CoreProgress::progress() const {
  SimplexProgress now;
  now.dual = at_.dual;
  now.phase1 = at_.phase1;
  now.iterations = core_.counters.iterations;
  const bool is_point = !(at_.dual && at_.phase1);
  now.primal_infeasibility = is_point ? bound_violations(core_) : kInf;
  if (at_.phase1) {
    now.dual_infeasibility = at_.dual ? wrong_signed_duals(core_) : kInf;
  } else {
    now.dual_infeasibility =
        core_.dual_infeasibility().sum;  // by working bounds, which implied ones are part of
  }
  now.objective = !at_.phase1 ? at_.objective : is_point ? objective_at_point(core_) : kInf;
  return now;
}

}  // namespace tovik::lp::simplex
