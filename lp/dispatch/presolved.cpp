#include "lp/dispatch/presolved.h"

#include "include/tovik.h"
#include "lp/dispatch/build_lp.h"
#include "lp/dispatch/engine_control.h"
#include "lp/dispatch/live_simplex.h"
#include "param/hidden.h"

namespace tovik::lp::dispatch {

presolve::Settings presolve_settings(const Environment& env) {
  const Settings& s = env.settings;
  const simplex::Options options = engine_options(env);
  presolve::Settings settings;
  const int reductions = s.integer(TVK_PARAM_REDUCE);
  settings.passes = s.integer(TVK_PARAM_PREPASS);
  settings.primal = (reductions & 1) != 0;
  settings.dual = (reductions & 2) != 0;
  settings.linear_only = s.integer(TVK_PARAM_PRELINEAR) == 0;
  settings.aggregator = s.integer(TVK_PARAM_AGGIND);
  settings.fill = s.integer(TVK_PARAM_AGGFILL);
  settings.dependency = s.integer(TVK_PARAM_DEPIND);
  settings.feasibility = options.primal_tolerance;
  settings.optimality = options.dual_tolerance;
  return settings;
}

std::unique_ptr<Presolved> make_presolved(Environment& env, Problem& problem) {
  constexpr int kPresolvePosition = 7;  // what the LP callback is told
  auto record = std::make_unique<Presolved>();
  EngineControl control(env, problem, kPresolvePosition);
  record->original = build_lp(*problem.model);
  const bool display = env.settings.integer(param::kPresolveDisplay) != 0;
  record->reduction = presolve::presolve(record->original, presolve_settings(env), control, {}, display);
  record->seconds = control.seconds();
  return record;
}

}  // namespace tovik::lp::dispatch
