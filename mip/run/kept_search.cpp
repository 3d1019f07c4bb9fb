#include "mip/run/kept_search.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "mip/run/pool.h"
#include "mip/run/presolve_lines.h"
#include "mip/run/settings.h"
#include "mip/run/starts.h"
#include "model/store/model.h"
#include "param/hidden.h"

namespace tovik::mip::run {
Settings settings_of_search(Environment& env, const tovik::Problem& user, const mip::Problem& problem) {
  Settings settings = settings_with_callbacks(env, user);
  if (env.settings.integer(param::kFollowStart) != 0)
    settings.witness = followed_start(env, user, problem, settings.tolerances);
  return settings;
}

/* Nodes and columns are the same to control callbacks from beginning to end, and what they say of some points, others are not
 * to answer for. */
Settings settings_with_callbacks(const Environment& env, const tovik::Problem& problem) {
  Settings settings = settings_of(env, problem);
  if (!env.callbacks.control.any()) return settings;
  settings.presolve.restarts = 0;
  if (kinds_of(env.callbacks.control).shape_the_problem()) settings.presolve.keep_all_points();
  return settings;
}

KeptSearch::Part::Part(Environment& env, const tovik::Problem& user, KeptSearch& kept,
                       const Settings& settings, std::unique_ptr<const mip::Problem> own)
    : own_problem(std::move(own)),
      filters(user.filters.revision()),
      search(own_problem != nullptr ? *own_problem : kept.problem, settings, kept.control, kept.audience),
      spaces(user.model->num_columns(), kept.problem.num_columns(), search) {
  search.set_listener([&kept, &env, &user](const Presolved& presolved, bool again) {
    write_presolve_lines(env, user, presolved, kept.log.seconds(), again);
    kept.audience.presolve();
  });
}

KeptSearch::KeptSearch(Environment& env, const tovik::Problem& user, mip::Problem built, lp::Control& first)
    : environment(&env),
      functions(env.callbacks.control),
      problem(std::move(built)),
      control(&first),
      log(env, user),
      audience(log),
      main(env, user, *this, settings_of_search(env, user, problem)) {
  log.follow(main.search);
}

bool KeptSearch::is_current(const Environment& env, const tovik::Problem& user) const {
  // What others have taken part in may rest on what they said.
  return environment == &env && functions == env.callbacks.control && user.status != TVK_STATUS_NONE &&
         env.settings.integer(TVK_PARAM_ADVIND) != 0;
}

Conclusion run_within_memory(PresolvedSearch& search, bool* is_whole) {
  try {
    const Conclusion end = search.run();
    *is_whole =
        end != Conclusion::node_file_failed || search.search().node_files() != NodeStore::State::not_read;
    return end;
  } catch (const std::bad_alloc&) {
    *is_whole = false;
    return Conclusion::tree_limit;
  }
}

Status failure_of_node_files(PresolvedSearch& search) {
  switch (search.search().node_files()) {
    case NodeStore::State::not_opened:
      return TVK_ERROR_TEMPORARY_FILE_OPEN;
    case NodeStore::State::not_read:
      return TVK_ERROR_TEMPORARY_FILE_READ;
    default:
      return TVK_ERROR_TEMPORARY_FILE_WRITE;
  }
}

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

std::unique_ptr<tovik::Solution> solution_of(const tovik::Problem& problem, const mip::Solution& incumbent) {
  if (incumbent.x.empty()) return nullptr;
  const auto columns = static_cast<std::size_t>(problem.model->num_columns());
  std::vector<double> x(incumbent.x.begin(), incumbent.x.begin() + static_cast<std::ptrdiff_t>(columns));
  const double objective = problem.model->objective_sense() * incumbent.objective + 0.0;
  return std::make_unique<tovik::Solution>(whole_solution(problem, std::move(x), objective));
}

}  // namespace tovik::mip::run
