#include "mip/run/populate.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include "include/tovik.h"
#include "lp/binding/engine_control.h"
#include "lp/run/statistics.h"
#include "mip/run/filter_rows.h"
#include "mip/run/kept_search.h"
#include "mip/run/pool.h"
#include "mip/run/settings.h"
#include "mip/run/statistics.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

constexpr double kNoGap = 1e75;
constexpr double kRounding = 1e-8;  // relative, of an objective value
/* TVK_PARAM_SOLNPOOLINTENSITY: what 0 means here, from where on nodes that are solutions are searched further, and from where
 * on presolve keeps every feasible point. */
constexpr int kAutomaticIntensity = 2, kSplits = 2, kKeepsAllPoints = 3;

/* Of what the gaps allow, in the sense of the search. The best solution counts whether it passes the filters or not. */
double worst_in_pool(const PoolRules& rules, KeptSearch& kept) {
  const double best = kept.main.search.incumbent().objective;
  return best + pool_room(rules, best) + kRounding * std::max(1.0, std::fabs(best));
}

Settings settings_of_enumeration(const Environment& env, const tovik::Problem& problem, KeptSearch& kept) {
  const Progress spent = kept.main.search.progress();
  Settings settings = settings_with_callbacks(env, problem);
  const int wanted = env.settings.integer(TVK_PARAM_SOLNPOOLINTENSITY);
  const int intensity = wanted == 0 ? kAutomaticIntensity : wanted;
  const PoolRules rules = pool_rules(env, problem);
  const auto gap = [](double value) { return value < kNoGap ? value : kInf; };
  settings.enumeration = {true, intensity >= kSplits, gap(rules.relative_gap), gap(rules.absolute_gap)};
  if (problem.filters.size() > 0) settings.cutoff = std::min(settings.cutoff, worst_in_pool(rules, kept));
  if (intensity >= kKeepsAllPoints) settings.presolve.keep_all_points();
  settings.presolve.restarts = 0;
  // A column that is whole where the others are would be split on, without end where it has no bounds.
  // Rules that fix many columns at once leave too few solutions.
  settings.presolve.rules &=
      ~(rule_bit(PresolveRule::implied_integers) | rule_bit(PresolveRule::dominated_columns) |
        rule_bit(PresolveRule::tight_rows));
  settings.objective_stop = -kInf;
  settings.solution_limit = kNoLimit;
  settings.least_improvement = settings.least_relative_improvement = 0;
  settings.heuristics.neighbourhood_interval = -1;
  const auto take = [](std::int64_t& limit, std::int64_t used) {
    if (limit < kNoLimit) limit = std::max<std::int64_t>(0, limit - used);
  };
  take(settings.node_limit, spent.nodes);
  take(settings.iteration_limit, spent.iterations);
  return settings;
}

bool is_solved(const Environment& env, const tovik::Problem& problem) {
  const auto* kept = dynamic_cast<const KeptSearch*>(problem.mip.get());
  return kept != nullptr && kept->is_solved && kept->is_current(env, problem) && problem.pool != nullptr &&
         kept->main.search.can_go_on_with(settings_of(env, problem));
}

int status_of_pool(Conclusion end, const PoolFeed& feed, const Environment& env,
                   const tovik::Problem& problem) {
  const PoolRules rules = pool_rules(env, problem);
  // Callbacks may have refused what they took before.
  if (end == Conclusion::optimal || end == Conclusion::infeasible) {
    const bool has_gap = rules.relative_gap < kNoGap || rules.absolute_gap < kNoGap;
    return has_gap ? TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE : TVK_STATUS_ALL_SOLUTIONS_FOUND;
  }
  if (feed.is_full()) return TVK_STATUS_POPULATE_SOLUTION_LIMIT;
  return status_code(end, true);
}

/* The search for all solutions, made anew where the last one cannot be gone on with. */
KeptSearch::Part& enumeration_of(Environment& env, const tovik::Problem& problem, KeptSearch& kept) {
  const Settings settings = settings_of_enumeration(env, problem, kept);
  if (kept.enumeration != nullptr && kept.enumeration->filters == problem.filters.revision() &&
      kept.enumeration->search.can_go_on_with(settings)) {
    kept.enumeration->search.change_settings(settings);
  } else {
    kept.enumeration.reset();
    std::unique_ptr<const mip::Problem> filtered;
    if (problem.filters.size() > 0)
      filtered = std::make_unique<const mip::Problem>(with_filter_rows(kept.problem, problem.filters.all()));
    kept.enumeration = std::make_unique<KeptSearch::Part>(env, problem, kept, settings, std::move(filtered));
  }
  return *kept.enumeration;
}

/* What the problem and its search are told of the enumeration. */
void keep_result(tovik::Problem& problem, KeptSearch& kept, KeptSearch::Part& part) {
  lp::run::OptimizationStatistics& statistics = lp::run::statistics_of(problem);
  statistics.presolve.reset();
  statistics.simplex = part.search.relaxation_statistics();
  statistics.search = describe_search(part.search, problem.model->objective_sense());
  const Progress first = kept.main.search.progress(), second = part.search.progress();
  kept.result.nodes = first.nodes + second.nodes;
  kept.result.nodes_left = second.left;
  kept.result.iterations = first.iterations + second.iterations;
  const mip::Solution& best = part.search.incumbent();
  if (part.search.has_incumbent() && best.objective < kept.main.search.incumbent().objective) {
    problem.solution = solution_of(problem, best);
    if (kept.may_go_on) kept.main.search.offer(best.x);
  }
  problem.solution->iterations = static_cast<int>(std::min<std::int64_t>(kept.result.iterations, INT_MAX));
}

Status enumerate(Environment& env, tovik::Problem& problem, KeptSearch& kept, PoolFeed& feed) {
  lp::run::EngineControl control(env, problem);
  KeptSearch::Part& part = enumeration_of(env, problem, kept);
  const CallbackScene scene{env,
                            problem,
                            part.search,
                            part.spaces,
                            part.searched_problem,
                            env.settings.integer(TVK_PARAM_MIPCBREDLP) == 0};
  Informer informer(scene);
  std::optional<CallerCallbacks> callbacks;
  if (kept.functions.any()) callbacks.emplace(scene, kept.functions);
  bool is_whole = true;
  Conclusion end = Conclusion::optimal;
  {
    const CallScope scope(kept, part, control, informer, callbacks ? &*callbacks : nullptr, feed.sink());
    kept.log.begin();
    kept.log.set_in_search(true);
    if (!part.search.has_incumbent()) part.search.offer(kept.main.search.incumbent().x);
    end = run_within_memory(part.search, &is_whole);
    kept.log.set_in_search(false);
    if (kept.functions.delete_node && is_whole && part.search.has_search())
      part.search.search().drop_all_nodes();
    keep_result(problem, kept, part);
  }
  problem.status = status_of_pool(end, feed, env, problem);
  const Status failure = end == Conclusion::node_file_failed ? failure_of_node_files(part.search) : Status();
  if (!is_whole || kept.functions.delete_node) kept.enumeration.reset();
  return callbacks && callbacks->wants_to_stop() ? Status(TVK_ERROR_CALLBACK) : failure;
}

}  // namespace

Status run_populate(Environment& env, tovik::Problem& problem) {
  PoolFeed feed(env, problem);
  if (!is_solved(env, problem)) {
    if (const Status status = run_main_search(env, problem, feed); !status.ok()) return status;
  }
  auto* kept = dynamic_cast<KeptSearch*>(problem.mip.get());
  if (kept == nullptr || !kept->is_solved) return {};
  feed.set_limit(env.settings.integer(TVK_PARAM_POPULATELIM));
  if (feed.is_full()) {
    problem.status = TVK_STATUS_POPULATE_SOLUTION_LIMIT;
    return {};
  }
  return enumerate(env, problem, *kept, feed);
}

}  // namespace tovik::mip::run
