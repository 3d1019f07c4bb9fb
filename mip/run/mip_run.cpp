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

/* Hands on to the control of the call that runs, and to its callbacks: a search outlives its call. */
class CallControl : public lp::Control {
 public:
  explicit CallControl(lp::Control* control) : control_(control) {}
  void set(lp::Control* control, Informer* informer, const CallerCallbacks* callbacks) {
    control_ = control;
    informer_ = informer;
    callbacks_ = callbacks;
  }
  void log(const char* text) override { control_->log(text); }
  void flush() override { control_->flush(); }
  void add_work(std::uint64_t ticks) override { control_->add_work(ticks); }
  double seconds() override { return control_->seconds(); }
  lp::Stop poll() override {
    const bool stops = (informer_ != nullptr && informer_->asks_to_stop()) ||
                       (callbacks_ != nullptr && callbacks_->wants_to_stop());
    return stops ? lp::Stop::user_abort : control_->poll();
  }
  lp::Stop poll_clock() override { return control_->poll_clock(); }
  lp::Stop iteration_callback(const lp::ProgressSource&) override {
    if (informer_ != nullptr) informer_->inform_now_and_then();
    return lp::Stop::none;
  }

 private:
  lp::Control* control_;
  Informer* informer_ = nullptr;
  const CallerCallbacks* callbacks_ = nullptr;
};

/* What the search tells: to the log, then to the callbacks of the call that runs. */
class Audience : public Observer {
 public:
  explicit Audience(NodeLog& log) : log_(log) {}
  void set(Informer* informer) { informer_ = informer; }
  void presolve() { inform(TVK_CALLBACK_MIP_PRESOLVE); }
  void node(const NodeEvent& event) override {
    log_.node(event);
    if (!event.by_heuristic) inform(TVK_CALLBACK_MIP);  // of an incumbent solution() has told
  }
  void cuts(const CutCounts& added) override {
    log_.cuts(added);
    inform(TVK_CALLBACK_MIP_ROOT_CUTS);
  }
  void solution(double objective, std::span<const double> x) override {
    log_.solution(objective, x);
    inform(TVK_CALLBACK_MIP_INCUMBENT);
  }

 private:
  void inform(int wherefrom) {
    if (informer_ != nullptr) informer_->inform(wherefrom);
  }
  NodeLog& log_;
  Informer* informer_ = nullptr;
};

/* Nodes and columns are the same to control callbacks from beginning to end, and what they say of some points, others are not
 * to answer for. */
Settings settings_with_callbacks(const Environment& env, const tovik::Problem& problem) {
  Settings settings = settings_of(env, problem);
  if (!env.callbacks.control.any()) return settings;
  settings.presolve.restarts = 0;
  if (kinds_of(env.callbacks.control).shape_the_problem()) settings.presolve.keep_all_points();
  return settings;
}

Settings settings_of_search(Environment& env, const tovik::Problem& user, const mip::Problem& problem) {
  Settings settings = settings_with_callbacks(env, user);
  if (env.settings.integer(param::kFollowStart) != 0)
    settings.witness = followed_start(env, user, problem, settings.tolerances);
  return settings;
}

/* A search that stays with its problem. */
struct KeptSearch : Derived {
  KeptSearch(Environment& env, const tovik::Problem& user, mip::Problem built, lp::Control& first)
      : environment(&env),
        functions(env.callbacks.control),
        problem(std::move(built)),
        control(&first),
        log(env, user),
        audience(log),
        search(problem, settings_of_search(env, user, problem), control, audience),
        spaces(user.model->num_columns(), problem.num_columns(), search) {
    log.follow(search);
    search.set_listener([this, &env, &user](const Presolved& presolved, bool again) {
      write_presolve_lines(env, user, presolved, log.seconds(), again);
      audience.presolve();
    });
  }
  bool has_callbacks() const { return functions.any(); }
  const Environment* const environment;  // that it writes its log to
  const ControlCallbacks functions;      // that take part
  const mip::Problem problem;
  CallControl control;
  NodeLog log;
  Audience audience;
  PresolvedSearch search;
  const SpaceMap spaces;
  SearchedProblem searched_problem;
  SearchResult result;
  bool may_go_on = false;          // there is something left to do
  std::uint64_t tried_starts = 0;  // their identity
};

/* A limit, or a gap that may be made smaller, ended the search. */
bool leaves_a_tree(Conclusion end) {
  switch (end) {
    case Conclusion::within_gap:
    case Conclusion::solution_limit:
    case Conclusion::node_limit:
    case Conclusion::iteration_limit:
    case Conclusion::tree_limit:
    case Conclusion::time_limit:
    case Conclusion::tick_limit:
    case Conclusion::user_abort:
      return true;
    default:
      return false;
  }
}

/* While a call works with a search; what an error leaves of it is not gone on with. */
class CallScope {
 public:
  CallScope(KeptSearch& kept, lp::Control& control, Informer& informer, CallerCallbacks* callbacks,
            SolutionSink& sink)
      : kept_(kept) {
    kept_.search.set_sink(&sink);
    kept_.control.set(&control, &informer, callbacks);
    if (callbacks != nullptr) kept_.search.set_callbacks(callbacks);
    kept_.audience.set(&informer);
    kept_.may_go_on = false;
  }
  ~CallScope() {
    kept_.search.set_sink(nullptr);
    kept_.control.set(nullptr, nullptr, nullptr);
    if (kept_.has_callbacks()) kept_.search.set_callbacks(nullptr);
    kept_.audience.set(nullptr);
  }
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

 private:
  KeptSearch& kept_;
};

/* Where memory runs out the incumbent stays, as at the limit on the tree; the tree is not whole then. */
Conclusion run_within_memory(PresolvedSearch& search, bool* is_whole) {
  try {
    return search.run();
  } catch (const std::bad_alloc&) {
    *is_whole = false;
    return Conclusion::tree_limit;
  }
}

/* The status with a solution; without one it is the next number, where there is a pair. */
int status_code(Conclusion end, bool has_solution) {
  const auto either = [&](int with) { return has_solution ? with : with + 1; };
  switch (end) {
    case Conclusion::optimal:
      return TVK_STATUS_MIP_OPTIMAL;
    case Conclusion::within_gap:
      return TVK_STATUS_MIP_OPTIMAL_TOLERANCE;
    case Conclusion::infeasible:
      return TVK_STATUS_MIP_INFEASIBLE;
    case Conclusion::unbounded:
      return TVK_STATUS_MIP_UNBOUNDED;
    case Conclusion::infeasible_or_unbounded:
      return TVK_STATUS_MIP_INFEASIBLE_OR_UNBOUNDED;
    case Conclusion::solution_limit:
    case Conclusion::objective_stop:
      return TVK_STATUS_MIP_SOLUTION_LIMIT;
    case Conclusion::node_limit:
      return either(TVK_STATUS_MIP_NODE_LIMIT);
    case Conclusion::iteration_limit:
      return either(TVK_STATUS_MIP_ITERATION_LIMIT);
    case Conclusion::tree_limit:
      return either(TVK_STATUS_MIP_MEMORY_LIMIT);
    case Conclusion::time_limit:
      return either(TVK_STATUS_MIP_TIME_LIMIT);
    case Conclusion::tick_limit:
      return either(TVK_STATUS_MIP_TICK_LIMIT);
    case Conclusion::user_abort:
      return either(TVK_STATUS_MIP_USER_ABORT);
    default:
      return either(TVK_STATUS_MIP_ERROR);
  }
}

/* The incumbent in the user's columns; null without one. */
std::unique_ptr<tovik::Solution> solution_of(const tovik::Problem& problem, const mip::Solution& incumbent) {
  if (incumbent.x.empty()) return nullptr;
  const auto columns = static_cast<std::size_t>(problem.model->num_columns());
  std::vector<double> x(incumbent.x.begin(), incumbent.x.begin() + static_cast<std::ptrdiff_t>(columns));
  const double objective = problem.model->objective_sense() * incumbent.objective + 0.0;
  return std::make_unique<tovik::Solution>(whole_solution(problem, std::move(x), objective));
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
  trial.cutoff = std::min(trial.settings.cutoff, kept.search.incumbent().objective);
  trial.offer = [&](std::span<const double> x) {
    if (!kept.search.offer(x)) return false;
    trial.cutoff = kept.search.incumbent().objective;
    return true;
  };
  trial.count_iterations = [&](std::int64_t iterations) { kept.search.count_iterations(iterations); };
  if (is_new) try_last_solution(trial);
  try_mip_starts(trial);
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

Status run_branch_and_cut(Environment& env, tovik::Problem& problem) {
  if (const Status status = lp::run::check_finite(env, *problem.model, true); !status.ok()) return status;
  lp::run::EngineControl control(env, problem);
  const ControlCallbacks functions = env.callbacks.control;
  if (functions.any() && env.settings.integer(TVK_PARAM_MIPSEARCH) == kDynamicSearch)
    return TVK_ERROR_SEARCH_VERSUS_CALLBACKS;
  auto* kept = dynamic_cast<KeptSearch*>(problem.mip.get());
  // What others have taken part in may rest on what they said.
  if (kept != nullptr && (!kept->may_go_on || kept->environment != &env || kept->functions != functions ||
                          problem.status == TVK_STATUS_NONE || env.settings.integer(TVK_PARAM_ADVIND) == 0 ||
                          !kept->search.can_go_on_with(settings_of(env, problem)))) {
    kept = nullptr;
  }
  std::unique_ptr<KeptSearch> made;
  if (kept == nullptr) {
    problem.mip.reset();
    made = new_search(env, problem, control);
    kept = made.get();
    problem.pool = empty_pool(problem);
  } else {
    kept->search.change_settings(settings_of_search(env, problem, kept->problem));
  }
  const CallbackScene scene{env,
                            problem,
                            kept->search,
                            kept->spaces,
                            kept->searched_problem,
                            env.settings.integer(TVK_PARAM_MIPCBREDLP) == 0};
  Informer informer(scene);
  std::optional<CallerCallbacks> callbacks;
  if (functions.any()) callbacks.emplace(scene, functions);
  PoolFeed feed(env, problem);
  const CallScope scope(*kept, control, informer, callbacks ? &*callbacks : nullptr, feed);
  kept->log.begin();
  try_starts(env, problem, control, *kept, made != nullptr);
  kept->log.set_in_search(true);
  bool is_whole = true;
  const Conclusion end = run_within_memory(kept->search, &is_whole);
  kept->log.set_in_search(false);
  kept->may_go_on = leaves_a_tree(end) && is_whole && !functions.delete_node;
  lp::run::OptimizationStatistics& statistics = lp::run::statistics_of(problem);
  statistics.presolve.reset();
  statistics.simplex = kept->search.relaxation_statistics();
  statistics.search = describe_search(kept->search, problem.model->objective_sense());
  std::unique_ptr<tovik::Solution> solution = solution_of(problem, kept->search.incumbent());
  const Progress progress = kept->search.progress();
  // Who wants to hear of every node that goes hears of it before the call ends.
  if (functions.delete_node && is_whole && kept->search.has_search()) kept->search.search().drop_all_nodes();
  const double sign = problem.model->objective_sense();
  kept->result.best_bound = sign * (std::isinf(progress.best_bound) ? std::copysign(1e75, progress.best_bound)
                                                                    : progress.best_bound);
  kept->result.nodes = progress.nodes;
  kept->result.nodes_left = progress.left;
  kept->result.solutions = progress.solutions;
  kept->result.iterations = progress.iterations;
  if (solution != nullptr)
    solution->iterations = static_cast<int>(std::min<std::int64_t>(progress.iterations, INT_MAX));
  problem.status = status_code(end, solution != nullptr);
  problem.solution = std::move(solution);
  problem.start = Start{};
  if (made != nullptr) problem.mip = std::move(made);
  return callbacks && callbacks->wants_to_stop() ? Status(TVK_ERROR_CALLBACK) : Status();
}

const SearchResult* search_result(const tovik::Problem& problem) {
  if (problem.status == TVK_STATUS_NONE) return nullptr;
  const auto* kept = dynamic_cast<const KeptSearch*>(problem.mip.get());
  return kept == nullptr ? nullptr : &kept->result;
}

}  // namespace tovik::mip::run
