#include "mip/run/starts.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "env/channel.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "mip/domain/point.h"
#include "mip/heuristics/start_completion.h"
#include "mip/search/sub_search.h"

namespace tovik::mip::run {
namespace {

constexpr double kNotGiven = std::numeric_limits<double>::quiet_NaN();

StartEffort effort_of(int level) {
  switch (level) {
    case TVK_MIPSTART_CHECKFEAS:
      return StartEffort::check;
    case TVK_MIPSTART_SOLVEFIXED:
      return StartEffort::solve_fixed;
    case TVK_MIPSTART_SOLVEMIP:
      return StartEffort::solve_mip;
    case TVK_MIPSTART_REPAIR:
      return StartEffort::repair;
    default:
      return StartEffort::automatic;
  }
}

std::string name_of_start(const model::MipStarts& starts, int k) {
  const model::NameTable& names = starts.names();
  return names.empty() ? "m" + std::to_string(k + 1) : std::string(names.name(k));
}

enum class Taken { nothing, no_better, yes };

Taken try_point(const StartTrial& trial, std::vector<double> start, StartEffort effort) {
  TreeSubSearch sub_search;
  StartCompletion completion(trial.problem, trial.settings, sub_search, trial.control);
  const std::vector<double> x = completion.run(std::move(start), effort, trial.cutoff);
  trial.count_iterations(completion.iterations());
  if (x.empty()) return Taken::nothing;
  return trial.offer(x) ? Taken::yes : Taken::no_better;
}

}  // namespace

void try_last_solution(const StartTrial& trial) {
  const tovik::Solution* last = trial.user.solution.get();
  if (last == nullptr || last->method != method_code::kMixedInteger || last->x.empty()) return;
  if (trial.env.settings.integer(TVK_PARAM_ADVIND) == 0) return;
  const auto columns = static_cast<std::size_t>(trial.user.model->num_columns());
  if (last->x.size() > columns) return;
  std::vector<double> start = last->x;
  start.resize(static_cast<std::size_t>(trial.problem.num_columns()), kNotGiven);
  try_point(trial, std::move(start), StartEffort::automatic);
}

void try_mip_starts(const StartTrial& trial) {
  const model::MipStarts& starts = trial.user.model->families().starts;
  const auto columns = static_cast<std::size_t>(trial.problem.num_columns());
  for (int k = 0; k < starts.size(); ++k) {
    if (trial.control.poll() != lp::Stop::none || trial.control.poll_clock() != lp::Stop::none) return;
    const model::VectorView values = starts.values(k);
    std::vector<double> start(columns, kNotGiven);
    for (int i = 0; i < values.count; ++i) start[static_cast<std::size_t>(values.index[i])] = values.value[i];
    const Taken taken =
        try_point(trial, std::move(start), effort_of(starts.effort()[static_cast<std::size_t>(k)]));
    if (taken == Taken::yes || trial.env.settings.integer(TVK_PARAM_MIPDISPLAY) < 2) continue;
    message(trial.env.results_channel, "MIP start '%.255s' gives no%s solution.\n",
            name_of_start(starts, k).c_str(), taken == Taken::nothing ? "" : " better");
  }
}

Witness followed_start(Environment& env, const tovik::Problem& user, const mip::Problem& problem,
                       const Tolerances& tolerances) {
  const model::MipStarts& starts = user.model->families().starts;
  if (starts.size() == 0) return {};
  const model::VectorView values = starts.values(0);
  Witness witness;
  witness.x.assign(static_cast<std::size_t>(problem.num_columns()), 0.0);
  for (int i = 0; i < values.count; ++i)
    witness.x[static_cast<std::size_t>(values.index[i])] = values.value[i];
  const PointViolation v = measure(problem, witness.x);
  if (values.count < problem.num_columns() || v.primal() > tolerances.feasibility ||
      v.object > tolerances.feasibility || v.integrality > tolerances.integrality) {
    message(env.warning_channel, "Warning:  MIP start '%.255s' is no solution that could be followed.\n",
            name_of_start(starts, 0).c_str());
    return {};
  }
  witness.complain = [&env](const std::string& who) {
    message(env.warning_channel, "Warning:  Followed MIP start lost: %.255s.\n", who.c_str());
  };
  return witness;
}

std::uint64_t identity_of_starts(const model::Model& model) {
  std::uint64_t identity = 0xcbf29ce484222325ULL;
  const auto add = [&](std::uint64_t word) { identity = (identity ^ word) * 0x100000001b3ULL; };
  const model::MipStarts& starts = model.families().starts;
  for (int k = 0; k < starts.size(); ++k) {
    add(static_cast<std::uint64_t>(starts.effort()[static_cast<std::size_t>(k)]));
    const model::VectorView values = starts.values(k);
    for (int i = 0; i < values.count; ++i) {
      add(static_cast<std::uint64_t>(values.index[i]));
      add(std::bit_cast<std::uint64_t>(values.value[i]));
    }
  }
  return identity;
}

}  // namespace tovik::mip::run
