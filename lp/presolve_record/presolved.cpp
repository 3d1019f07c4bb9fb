#include "lp/presolve_record/presolved.h"

#include <new>
#include <utility>

#include "env/channel.h"
#include "include/tovik.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_control.h"
#include "lp/binding/engine_options.h"
#include "lp/presolve_record/messages.h"
#include "model/routines/protected_columns.h"
#include "model/store/model.h"
#include "param/hidden.h"

namespace tovik::lp::run {
namespace {

using presolve::StatusCode;

/* A column whose own bounds cross needs no multipliers. */
bool own_bounds_cross(const Presolved& record, double tolerance, verify::FarkasProof& proof) {
  const presolve::PresolveStatus& status = record.reduction.status;
  if (status.code != StatusCode::column_bounds_cross) return false;
  const double gap = record.original.lower[status.column] - record.original.upper[status.column];
  if (!(gap > tolerance)) return false;
  proof.multipliers.assign(record.original.row_lower.size(), 0.0);
  proof.gap = gap;
  return true;
}

/* Bounds or sides that cross by little are one for every engine, which a proof that needs them to cross knows nothing of. */
bool bounds_cross(const LpData& lp) {
  for (int j = 0; j < lp.num_columns(); ++j)
    if (lp.lower[j] > lp.upper[j]) return true;
  for (int i = 0; i < lp.num_rows(); ++i)
    if (lp.row_lower[i] > lp.row_upper[i]) return true;
  return false;
}

/* Does every choice within the bounds solve what is left? */
bool any_point_is_feasible(const LpData& lp) {
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (lp.lower[j] > lp.upper[j]) return false;
  }
  return lp.num_rows() == 0;
}

/* What presolve says is taken over as far as it can be proven; else the reduced problem, as far as it got,
 * stands for the original. */
Conclusion conclude(Presolved& record, double tolerance) {
  const presolve::Reduction& reduction = record.reduction;
  if (reduction.status.code == StatusCode::reduced)
    return reduction.stop == Stop::none ? Conclusion::reduced : Conclusion::stopped;
  if (reduction.status.primal_infeasible()) {
    const bool proven =
        own_bounds_cross(record, tolerance, record.proof) ||
        proves_infeasible(record.original, presolve::infeasibility_proof(record.original, reduction),
                          tolerance, record.proof);
    return proven ? Conclusion::infeasible : Conclusion::reduced;
  }
  return any_point_is_feasible(reduction.lp) ? Conclusion::unbounded : Conclusion::undecided;
}

}  // namespace

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
  settings.rules &= ~static_cast<std::uint32_t>(s.integer(param::kPresolveOff));
  if (const int steps = s.integer(param::kPresolveSteps); steps < param::kUnlimitedSteps)
    settings.limit = steps;
  return settings;
}

std::unique_ptr<Presolved> make_presolved(Environment& env, Problem& problem) {
  auto record = std::make_unique<Presolved>();
  EngineControl control(env, problem);
  record->original = build_lp(*problem.model);
  record->sign = problem.model->objective_sense();
  const presolve::Settings settings = presolve_settings(env);
  const bool display = env.settings.integer(param::kPresolveDisplay) != 0;
  record->reduction =
      presolve::presolve(record->original, settings, control, model::protected_flags(problem), display);
  record->conclusion = conclude(*record, settings.feasibility);
  record->seconds = control.seconds();
  if (display) write_presolve_lines(env, problem, *record);
  return record;
}

int outcome_code(const Presolved& presolved) {
  switch (presolved.conclusion) {
    case Conclusion::infeasible:
      return TVK_ERROR_PRESOLVE_INFEASIBLE;
    case Conclusion::unbounded:
      return TVK_ERROR_PRESOLVE_UNBOUNDED;
    case Conclusion::undecided:
      return TVK_ERROR_PRESOLVE_INFEASIBLE_OR_UNBOUNDED;
    case Conclusion::stopped:
      return presolved.reduction.stop == Stop::time_limit   ? TVK_ERROR_PRESOLVE_TIME_LIMIT
             : presolved.reduction.stop == Stop::tick_limit ? TVK_ERROR_PRESOLVE_TICK_LIMIT
                                                            : TVK_ERROR_PRESOLVE_ABORTED;
    default:
      return 0;
  }
}

Status run_presolve(Environment& env, Problem& problem) {
  if (const Status finite = check_finite(env, *problem.model, true); !finite.ok()) return finite;
  problem.presolve.reset();
  std::unique_ptr<Presolved> record;
  try {
    record = make_presolved(env, problem);
  } catch (const std::bad_alloc&) {
    message(env.warning_channel, "Insufficient memory for presolve.\n");
    return Status(TVK_ERROR_OUT_OF_MEMORY);
  }
  const int code = outcome_code(*record);
  if (code == 0) problem.presolve = std::move(record);
  return Status(code);
}

Presolved* kept_record(const Problem& problem) {
  return static_cast<Presolved*>(problem.presolve.get());
}

bool proves_infeasible(const LpData& original, std::vector<double> multipliers, double tolerance,
                       verify::FarkasProof& proof) {
  if (multipliers.empty()) return false;
  return verify::check_farkas(original, verify::entries_of(original.matrix), std::move(multipliers), proof) &&
         proof.clean && (proof.margin > tolerance || !bounds_cross(original));
}

}  // namespace tovik::lp::run
