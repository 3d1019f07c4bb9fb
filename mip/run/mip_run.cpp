#include "mip/run/mip_run.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "env/channel.h"
#include "env/handles.h"
#include "include/tovik.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_control.h"
#include "lp/run/statistics.h"
#include "mip/run/build_problem.h"
#include "mip/run/caller_callbacks.h"
#include "mip/run/generated_order.h"
#include "mip/run/informer.h"
#include "mip/run/kept_search.h"
#include "mip/run/node_log.h"
#include "mip/run/pool.h"
#include "mip/run/presolve_lines.h"
#include "mip/run/settings.h"
#include "mip/run/starts.h"
#include "mip/run/statistics.h"
#include "mip/search/presolved_search.h"
#include "model/store/model.h"
#include "param/hidden.h"

namespace tovik::mip::run {
namespace {

constexpr int kDynamicSearch = 2;

/* A limit, or a gap that may be made smaller, ended the search. */
bool leaves_a_tree(Conclusion end) {
  switch (end) {
    case Conclusion::within_gap:
    case Conclusion::solution_limit:
    case Conclusion::node_limit:
    case Conclusion::iteration_limit:
    case Conclusion::tree_limit:
    case Conclusion::node_file_failed:
    case Conclusion::time_limit:
    case Conclusion::tick_limit:
    case Conclusion::user_abort:
      return true;
    default:
      return false;
  }
}

/* The model's order, or one that is generated. */
void set_priorities(Environment& env, mip::Problem& problem) {
  if (env.settings.integer(TVK_PARAM_MIPORDIND) == 0) {
    problem.priorities.clear();
    return;
  }
  const auto rule = static_cast<OrderRule>(env.settings.integer(TVK_PARAM_MIPORDTYPE));
  if (rule == OrderRule::none || !problem.priorities.empty()) return;
  problem.priorities = generate_order(problem, rule);
  if (env.settings.integer(TVK_PARAM_MIPDISPLAY) > 0) message(env.results_channel, "%s", announcement(rule));
}

std::unique_ptr<KeptSearch> new_search(Environment& env, const tovik::Problem& problem,
                                       lp::Control& control) {
  bool rounded = false;
  mip::Problem built = build_problem(*problem.model, env.settings.real(TVK_PARAM_EPINT), &rounded);
  if (rounded) {
    message(env.warning_channel, "Warning:  Non-integral bounds for integer variables rounded.\n");
  }
  set_priorities(env, built);
  if (!problem.protected_columns.empty()) {
    built.is_protected.assign(static_cast<std::size_t>(built.num_columns()), 0);
    for (const int j : problem.protected_columns) built.is_protected[j] = 1;
  }
  return std::make_unique<KeptSearch>(env, problem, std::move(built), control);
}

/* Those that this search has not seen. */
void try_starts(Environment& env, const tovik::Problem& problem, lp::Control& control, KeptSearch& kept,
                bool is_new) {
  const std::uint64_t starts = identity_of_starts(*problem.model);
  if ((!is_new && starts == kept.tried_starts) || env.settings.integer(param::kFollowStart) != 0) return;
  kept.tried_starts = starts;
  StartTrial trial{env, problem, kept.problem, settings_of(env, problem), control};
  trial.cutoff = std::min(trial.settings.cutoff, kept.main.search.incumbent().objective);
  trial.offer = [&](std::span<const double> x) {
    if (!kept.main.search.offer(x)) return false;
    trial.cutoff = kept.main.search.incumbent().objective;
    return true;
  };
  trial.count_iterations = [&](std::int64_t iterations) { kept.main.search.count_iterations(iterations); };
  if (is_new) try_last_solution(trial);
  try_mip_starts(trial);
}

/* Limits of the search itself, not of work or of solutions: a time for polishing comes on top of them. */
bool is_limit_on_search(Conclusion end) {
  switch (end) {
    case Conclusion::node_limit:
    case Conclusion::iteration_limit:
    case Conclusion::tree_limit:
    case Conclusion::time_limit:
      return true;
    default:
      return false;
  }
}

void polish_at_limit(Environment& env, KeptSearch& kept, Conclusion* end) {
  const double seconds = env.settings.real(TVK_PARAM_POLISHTIME);
  if (!(seconds > 0) || !is_limit_on_search(*end)) return;
  kept.control.extend(kept.control.seconds(), seconds);
  if (const std::optional<Conclusion> closed = kept.main.search.polish()) *end = *closed;
  kept.control.extend(0, 0);
}

}  // namespace

Status check_mixed_integer(const tovik::Problem& problem) {
  switch (problem.type) {
    case TVK_PROBTYPE_MILP:
      return {};
    case TVK_PROBTYPE_MIQP:
      return Status(TVK_ERROR_NOT_FOR_QP);
    case TVK_PROBTYPE_MIQCP:
      return Status(TVK_ERROR_NOT_FOR_QCP);
    default:
      return Status(TVK_ERROR_NOT_MIP);
  }
}

Status run_main_search(Environment& env, tovik::Problem& problem, PoolFeed& feed) {
  if (const Status status = lp::run::check_finite(env, *problem.model, true); !status.ok()) return status;
  lp::run::EngineControl control(env, problem);
  const ControlCallbacks functions = env.callbacks.control;
  if (functions.any() && env.settings.integer(TVK_PARAM_MIPSEARCH) == kDynamicSearch)
    return TVK_ERROR_SEARCH_VERSUS_CALLBACKS;
  auto* kept = dynamic_cast<KeptSearch*>(problem.mip.get());
  if (kept != nullptr && (!kept->may_go_on || !kept->is_current(env, problem) ||
                          !kept->main.search.can_go_on_with(settings_of(env, problem)))) {
    kept = nullptr;
  }
  std::unique_ptr<KeptSearch> made;
  if (kept == nullptr) {
    problem.mip.reset();
    made = new_search(env, problem, control);
    kept = made.get();
    problem.pool = empty_pool(problem);
  } else {
    kept->main.search.change_settings(settings_of_search(env, problem, kept->problem));
  }
  const CallbackScene scene{env,
                            problem,
                            kept->main.search,
                            kept->main.spaces,
                            kept->main.searched_problem,
                            env.settings.integer(TVK_PARAM_MIPCBREDLP) == 0};
  Informer informer(scene);
  std::optional<CallerCallbacks> callbacks;
  if (functions.any()) callbacks.emplace(scene, functions);
  const CallScope scope(*kept, kept->main, control, informer, callbacks ? &*callbacks : nullptr, feed.sink());
  kept->may_go_on = kept->is_solved = false;  // what an error leaves is not gone on with
  kept->log.begin();
  try_starts(env, problem, control, *kept, made != nullptr);
  kept->log.set_in_search(true);
  bool is_whole = true;
  Conclusion end = run_within_memory(kept->main.search, &is_whole);
  if (is_whole) polish_at_limit(env, *kept, &end);
  kept->log.set_in_search(false);
  kept->log.team(kept->main.search.team_times());
  kept->may_go_on = leaves_a_tree(end) && is_whole && !functions.delete_node;
  lp::run::OptimizationStatistics& statistics = lp::run::statistics_of(problem);
  statistics.presolve.reset();
  statistics.simplex = kept->main.search.relaxation_statistics();
  statistics.search = describe_search(kept->main.search, problem.model->objective_sense());
  std::unique_ptr<tovik::Solution> solution = solution_of(problem, kept->main.search.incumbent());
  const Progress progress = kept->main.search.progress();
  // Who wants to hear of every node that goes hears of it before the call ends.
  if (functions.delete_node && is_whole && kept->main.search.has_search())
    kept->main.search.search().drop_all_nodes();
  const double sign = problem.model->objective_sense();
  kept->result.best_bound = sign * (std::isinf(progress.best_bound) ? std::copysign(1e75, progress.best_bound)
                                                                    : progress.best_bound);
  kept->result.nodes = progress.nodes;
  kept->result.nodes_left = progress.left;
  kept->result.solutions = progress.solutions;
  kept->result.iterations = progress.iterations;
  kept->result.threads = std::max(1, kept->main.search.team_times().threads);
  if (solution != nullptr)
    solution->iterations = static_cast<int>(std::min<std::int64_t>(progress.iterations, INT_MAX));
  problem.status = status_code(end, solution != nullptr);
  kept->is_solved =
      (end == Conclusion::optimal || end == Conclusion::within_gap) && is_whole && solution != nullptr;
  problem.solution = std::move(solution);
  problem.start = Start{};
  if (made != nullptr) problem.mip = std::move(made);
  if (callbacks && callbacks->wants_to_stop()) return TVK_ERROR_CALLBACK;
  return end == Conclusion::node_file_failed ? failure_of_node_files(kept->main.search) : Status();
}

Status run_branch_and_cut(Environment& env, tovik::Problem& problem) {
  PoolFeed feed(env, problem);
  return run_main_search(env, problem, feed);
}

const SearchResult* search_result(const tovik::Problem& problem) {
  if (problem.status == TVK_STATUS_NONE) return nullptr;
  const auto* kept = dynamic_cast<const KeptSearch*>(problem.mip.get());
  return kept == nullptr ? nullptr : &kept->result;
}

}  // namespace tovik::mip::run
