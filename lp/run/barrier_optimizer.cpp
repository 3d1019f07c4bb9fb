#include "lp/run/barrier_optimizer.h"

#include <algorithm>

#include "env/channel.h"
#include "include/tovik.h"
#include "lp/barrier/barrier.h"
#include "lp/barrier/basis_guess.h"
#include "lp/run/barrier_log.h"
#include "lp/run/crossover_run.h"
#include "lp/run/numbers.h"
#include "lp/run/simplex_optimizer.h"
#include "lp/verify/point.h"
#include "param/hidden.h"

namespace tovik::lp::run {
namespace {

/* Largest relative residual of a point from which pushes lead near an optimum; from others a guessed basis is as good and
 * comes cheaper. */
constexpr double kNearEnough = 1e-4;

int barrier_threads(const Environment& env) {
  const int wanted = env.settings.integer(param::kBarrierThreads);
  if (wanted > 0) return wanted;
  const int all = env.settings.integer(TVK_PARAM_THREADS);
  return std::max(1, all > 0 ? all : thread_limit());
}

Outcome outcome_of(barrier::Ending ending) {
  using barrier::Ending;
  switch (ending) {
    case Ending::infeasible:
      return Outcome::infeasible;
    case Ending::iteration_limit:
      return Outcome::iteration_limit;
    case Ending::time_limit:
      return Outcome::time_limit;
    case Ending::tick_limit:
      return Outcome::tick_limit;
    case Ending::user_abort:
      return Outcome::user_abort;
    default:
      return Outcome::optimal;
  }
}

}  // namespace

barrier::Options barrier_options(const Environment& env) {
  const Settings& s = env.settings;
  barrier::Options options;
  options.tolerance = number_or(s.real(TVK_PARAM_BAREPCOMP), options.tolerance);
  options.primal_tolerance = number_or(s.real(TVK_PARAM_EPRHS), options.primal_tolerance);
  options.dual_tolerance = number_or(s.real(TVK_PARAM_EPOPT), options.dual_tolerance);
  options.iteration_limit = s.integer(TVK_PARAM_BARITLIM);
  options.algorithm = static_cast<barrier::Algorithm>(s.integer(TVK_PARAM_BARALG));
  options.start = static_cast<barrier::Start>(s.integer(TVK_PARAM_BARSTARTALG));
  options.correctors = s.integer(TVK_PARAM_BARMAXCOR);
  options.dense_column = s.integer(TVK_PARAM_BARCOLNZ);
  options.growth = number_or(s.real(TVK_PARAM_BARGROWTH), options.growth);
  options.objective_range = number_or(s.real(TVK_PARAM_BAROBJRNG), options.objective_range);
  options.factorization.ordering = static_cast<cholesky::Ordering>(s.integer(TVK_PARAM_BARORDER));
  options.factorization.threads = barrier_threads(env);
  options.factorization.work_memory =
      number_or(kMegabyte * s.real(TVK_PARAM_WORKMEM), options.factorization.work_memory);
  options.factorization.work_directory = s.text(TVK_PARAM_WORKDIR);
  return options;
}

barrier::Result run_interior_point(const Environment& env, const Problem& problem, const LpData& lp,
                                   const barrier::Options& options, Control& control, BarrierCounts& counts) {
  BarrierLog log(env, problem, options);
  log.begin();
  const double begin = control.seconds();
  const std::uint64_t work_begin = env.work->ticks;
  barrier::Result result = barrier::solve(lp, options, control, &log);
  const double seconds = control.seconds() - begin;
  log.end(result, seconds);
  counts.iterations += static_cast<int>(result.iterations);
  counts.factorizations += result.factorizations;
  counts.solves += result.solves;
  counts.rows = result.setup.counts.rows;
  counts.factor_entries = result.setup.counts.entries;
  counts.factor_flops = result.setup.counts.flops;
  counts.ordering_seconds += result.setup.counts.ordering_seconds;
  counts.seconds += seconds;
  counts.ticks += static_cast<std::int64_t>(env.work->ticks - work_begin);
  return result;
}

Status status_of(barrier::Ending ending) {
  switch (ending) {
    case barrier::Ending::out_of_memory:
      return Status(TVK_ERROR_OUT_OF_MEMORY);
    case barrier::Ending::file_not_opened:
      return Status(TVK_ERROR_TEMPORARY_FILE_OPEN);
    case barrier::Ending::file_not_read:
      return Status(TVK_ERROR_TEMPORARY_FILE_READ);
    case barrier::Ending::file_not_written:
      return Status(TVK_ERROR_TEMPORARY_FILE_WRITE);
    default:
      return {};
  }
}

bool has_crossed_bounds(const LpData& lp) {
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (lp.lower[j] > lp.upper[j]) return true;
  }
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (lp.row_lower[i] > lp.row_upper[i]) return true;
  }
  return false;
}

Answer answer_near(const LpData& lp, barrier::Result& result) {
  Answer answer;
  answer.has_values = true;
  if (result.has_point) {
    answer.x = std::move(result.x);
    answer.y = std::move(result.y);
  } else {
    for (int j = 0; j < lp.num_columns(); ++j) answer.x.push_back(std::clamp(0.0, lp.lower[j], lp.upper[j]));
    answer.y.assign(lp.row_lower.size(), 0.0);
  }
  const auto entries = verify::entries_of(lp.matrix);
  answer.activity = verify::activities(lp.num_rows(), entries, answer.x);
  for (int j = 0; j < lp.num_columns(); ++j)
    answer.d.push_back(verify::reduced_cost(lp.cost[j], j, entries, answer.y).value());
  answer.objective = verify::objective(lp, answer.x);
  Basis near = barrier::guess_basis(lp, {answer.x, answer.d, answer.activity, answer.y});
  answer.column_status = std::move(near.columns);
  answer.row_status = std::move(near.rows);
  answer.farkas = std::move(result.farkas);
  answer.farkas_gap = result.farkas_gap;
  return answer;
}

Outcome BarrierOptimizer::optimize(const RunContext& context) {
  statistics_ = {};
  BarrierCounts& counts = *context.algorithm.barrier;
  barrier::Result result;
  if (has_crossed_bounds(lp_)) {
    result.ending = barrier::Ending::no_progress;
  } else {
    barrier::Options options = barrier_options(context.env);
    options.absolute = false;  // that is the simplex's concern
    result = run_interior_point(context.env, context.problem, lp_, options, context.control, counts);
  }
  failure_ = status_of(result.ending);
  if (!failure_.ok()) return Outcome::numerical_failure;
  if (const Outcome ended = outcome_of(result.ending); ended != Outcome::optimal) {
    answer_ = answer_near(lp_, result);
    answer_.method = context.algorithm.method;
    return ended;
  }
  const double begin = context.control.seconds();
  Algorithm simplex{context.algorithm.method};
  const RunContext rest{context.env, context.problem, simplex, context.control, context.observer};
  SimplexOptimizer optimizer(lp_, rest);
  if (result.has_point && result.worst_residual > kNearEnough) {
    const Answer near = answer_near(lp_, result);
    optimizer.set_start({near.column_status, near.row_status, {}});
  } else if (result.has_point) {
    const CrossedOver crossed = cross_over(context, result, optimizer.engine());
    counts.crossover = crossed.counts;
    counts.crossover_seconds += context.control.seconds() - begin;
    simplex.method = crossed.clean_up;
  }
  const Outcome outcome = optimizer.optimize(rest);
  statistics_ = optimizer.statistics();
  answer_ = optimizer.release_answer();
  if (context.env.settings.integer(TVK_PARAM_BARDISPLAY) > 0)
    message(context.env.results_channel, "Total crossover time = %7.2f sec.\n",
            context.control.seconds() - begin);
  return outcome;
}

void BarrierOptimizer::evaluate_start() {
  barrier::Result nothing;
  answer_ = answer_near(lp_, nothing);
}

}  // namespace tovik::lp::run
