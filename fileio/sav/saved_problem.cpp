#include "fileio/sav/saved_problem.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "env/environment.h"
#include "env/problem.h"
#include "env/status_table.h"
#include "fileio/stream/output.h"
#include "fileio/stream/stream.h"
#include "include/tovik.h"
#include "model/routines/check.h"

namespace tovik::fileio {
namespace {

Status read_file(Environment& env, ByteSource& source, const char* name, SavFile& file) {
  const int code = read_sav(source, file);
  if (const Status s = close_source(env, source, code != 0, name); !s.ok()) return s;
  if (code == TVK_ERROR_NOT_SAV_FILE || code == TVK_ERROR_FILE_FORMAT) return fail(env, code, name);
  return code;
}

/* What the routines that copy a model check. */
Status check_content(Environment& env, const model::ModelData& data) {
  if (!model::checking(env)) return {};
  for (const auto* numbers :
       {&data.objective, &data.rhs, &data.value, &data.lower, &data.upper, &data.range}) {
    if (Status s = model::check_numbers(env, static_cast<int>(numbers->size()), numbers->data()); !s.ok())
      return s;
  }
  if (Status s = model::check_senses(env, static_cast<int>(data.sense.size()), data.sense.data()); !s.ok())
    return s;
  return model::check_types(env, static_cast<int>(data.types.size()), data.types.data());
}

bool statuses_are_known(const SavState& state) {
  const auto known = [](char status) { return status >= TVK_AT_LOWER && status <= TVK_FREE_SUPER; };
  return std::ranges::all_of(state.column_status, known) && std::ranges::all_of(state.row_status, known);
}

bool has_basis(const SavState& state) {
  return !state.column_status.empty() || !state.row_status.empty();
}

/* Everything that is loaded, made before the problem changes: the load is the only step that can fail. */
struct Loading {
  model::ModelData data;
  Start start;
  Norms norms;
  std::unique_ptr<Solution> solution;
  int status = TVK_STATUS_NONE;
};

void take_basis(const SavState& state, Start& start) {
  start.column_status.assign(state.column_status.begin(), state.column_status.end());
  start.row_status.assign(state.row_status.begin(), state.row_status.end());
}

std::unique_ptr<Solution> solution_of(SavState& state) {
  const auto count = [&state](SavState::Count which) { return static_cast<int>(state.counts[which]); };
  auto solution = std::make_unique<Solution>();
  solution->objective = state.numbers[0];
  solution->farkas_gap = state.numbers[1];
  solution->x = std::move(state.x);
  solution->slack = std::move(state.slack);
  solution->pi = std::move(state.pi);
  solution->dj = std::move(state.dj);
  solution->ray = std::move(state.ray);
  solution->farkas = std::move(state.farkas);
  solution->method = count(SavState::kMethod);
  solution->has_basis = count(SavState::kHasBasis) != 0;
  solution->primal_feasible = count(SavState::kPrimalFeasible) != 0;
  solution->dual_feasible = count(SavState::kDualFeasible) != 0;
  solution->iterations = count(SavState::kIterations);
  solution->phase1_iterations = count(SavState::kPhase1);
  solution->barrier_iterations = count(SavState::kBarrier);
  solution->crossover_primal_pushes = count(SavState::kPrimalPushes);
  solution->crossover_primal_exchanges = count(SavState::kPrimalExchanges);
  solution->crossover_dual_pushes = count(SavState::kDualPushes);
  solution->crossover_dual_exchanges = count(SavState::kDualExchanges);
  solution->factorizations = count(SavState::kFactorizations);
  return solution;
}

std::vector<std::int64_t> counts_of(int status, const Solution& solution) {
  std::vector<std::int64_t> counts(SavState::kCounts);
  counts[SavState::kStatus] = status;
  counts[SavState::kMethod] = solution.method;
  counts[SavState::kHasBasis] = solution.has_basis ? 1 : 0;
  counts[SavState::kPrimalFeasible] = solution.primal_feasible ? 1 : 0;
  counts[SavState::kDualFeasible] = solution.dual_feasible ? 1 : 0;
  counts[SavState::kIterations] = solution.iterations;
  counts[SavState::kPhase1] = solution.phase1_iterations;
  counts[SavState::kBarrier] = solution.barrier_iterations;
  counts[SavState::kPrimalPushes] = solution.crossover_primal_pushes;
  counts[SavState::kPrimalExchanges] = solution.crossover_primal_exchanges;
  counts[SavState::kDualPushes] = solution.crossover_dual_pushes;
  counts[SavState::kDualExchanges] = solution.crossover_dual_exchanges;
  counts[SavState::kFactorizations] = solution.factorizations;
  return counts;
}

/* A new start and the rest beside the new model. */
Status load(Environment& env, Problem& problem, Loading&& loading) {
  if (const Status status = check_content(env, loading.data); !status.ok()) return status;
  env.add_work(loading.data.index.size() + loading.data.rhs.size() + loading.data.objective.size());
  if (const Status status = model::load(env, problem, std::move(loading.data)); !status.ok()) return status;
  problem.start = std::move(loading.start);
  problem.norms = std::move(loading.norms);
  problem.solution = std::move(loading.solution);
  problem.status = loading.status;
  return {};
}

SavStateView basis_of(const Problem& problem) {
  SavStateView view;
  const Start& start = problem.start;
  if (start.column_status.size() == problem.columns() && start.row_status.size() == problem.rows()) {
    view.column_status = start.column_status;
    view.row_status = start.row_status;
  }
  return view;
}

Status write_file(Environment& env, const Problem& problem, const SavStateView& state, const char* name) {
  std::unique_ptr<ByteSink> sink;
  if (const Status status = create_file(env, name, sink); !status.ok()) return status;
  const model::Model& model = *problem.model;
  env.add_work(static_cast<std::uint64_t>(model.num_nonzeros()) +
               static_cast<std::uint64_t>(model.num_rows() + model.num_columns()));
  const bool written = write_sav({model, problem.type, problem.name, state}, *sink) && sink->commit();
  return written ? Status() : Status(TVK_ERROR_SAV_FILE_WRITE);
}

}  // namespace

Status read_saved_problem(Environment& env, Problem& problem, ByteSource& source, const char* name) {
  SavFile file;
  if (const Status status = read_file(env, source, name, file); !status.ok()) return status;
  const bool with_basis = has_basis(file.state), known = statuses_are_known(file.state);
  Loading loading;
  if (with_basis && known) take_basis(file.state, loading.start);
  loading.data = model_data(std::move(file));
  loading.data.problem_name = name;
  if (const Status status = load(env, problem, std::move(loading)); !status.ok()) return status;
  if (!with_basis) return {};
  message(env.warning_channel, known ? "Warning:  File contains basis.  Basis is loaded.\n"
                                     : "Warning:  File contains basis.  Basis not loaded.\n");
  if (known && env.settings.integer(TVK_PARAM_ADVIND) == 0)
    message(env.warning_channel, "Warning:  Advanced indicator is not set.\n");
  return {};
}

Status write_saved_problem(Environment& env, const Problem& problem, const char* name) {
  return write_file(env, problem, basis_of(problem), name);
}

Status read_restart(Environment& env, Problem& problem, const char* name) {
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, {name, ".xxx"}, source); !status.ok()) return status;
  SavFile file;
  if (const Status status = read_file(env, *source, name, file); !status.ok()) return status;
  SavState& state = file.state;
  if (!statuses_are_known(state)) return fail(env, TVK_ERROR_FILE_FORMAT, name);
  Loading loading;
  take_basis(state, loading.start);
  loading.start.primal = std::move(state.primal);
  loading.start.row_primal = std::move(state.row_primal);
  loading.start.dual = std::move(state.dual);
  loading.start.row_dual = std::move(state.row_dual);
  loading.norms.dual = std::move(state.dual_norms);
  loading.norms.head = std::move(state.norm_head);
  if (!state.counts.empty()) {
    loading.status = static_cast<int>(state.counts[SavState::kStatus]);
    if (loading.status != TVK_STATUS_NONE && status_text(loading.status) == nullptr)
      return fail(env, TVK_ERROR_FILE_FORMAT, name);
    loading.solution = solution_of(state);
  }
  loading.data = model_data(std::move(file));
  return load(env, problem, std::move(loading));
}

Status write_restart(Environment& env, const Problem& problem, const Norms& norms, const char* name) {
  SavStateView view = basis_of(problem);
  const Start& start = problem.start;
  view.primal = start.primal;
  view.row_primal = start.row_primal;
  view.dual = start.dual;
  view.row_dual = start.row_dual;
  view.norm_head = norms.head;
  view.dual_norms = norms.dual;
  if (problem.status == TVK_STATUS_NONE || problem.solution == nullptr)
    return write_file(env, problem, view, name);
  const Solution& solution = *problem.solution;
  const std::vector<std::int64_t> counts = counts_of(problem.status, solution);
  const double numbers[SavState::kNumbers] = {solution.objective, solution.farkas_gap};
  view.counts = counts;
  view.numbers = numbers;
  view.x = solution.x;
  view.slack = solution.slack;
  view.pi = solution.pi;
  view.dj = solution.dj;
  view.ray = solution.ray;
  view.farkas = solution.farkas;
  return write_file(env, problem, view, name);
}

}  // namespace tovik::fileio
