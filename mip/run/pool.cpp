#include "mip/run/pool.h"

#include <span>
#include <utility>

#include "env/method_code.h"
#include "env/solution_access.h"
#include "include/tovik.h"
#include "lp/base/sum.h"
#include "lp/verify/point.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

/* Fails for what is neither a member nor the incumbent's number. */
Status check_member(const tovik::Problem& problem, int soln) {
  const SolutionPool* pool = nullptr;
  if (const Status status = find_pool(problem, &pool); !status.ok()) return status;
  return soln >= -1 && soln < pool->size() ? Status() : Status(TVK_ERROR_INDEX_RANGE);
}

}  // namespace

PoolRules pool_rules(const Environment& env, const tovik::Problem& problem) {
  const tovik::Settings& s = env.settings;
  PoolRules rules;
  rules.capacity = s.integer(TVK_PARAM_SOLNPOOLCAPACITY);
  rules.replacement = static_cast<PoolReplacement>(s.integer(TVK_PARAM_SOLNPOOLREPLACE));
  const auto take = [](double value, double& gap) {
    if (value == value) gap = value;  // no NaN
  };
  take(s.real(TVK_PARAM_SOLNPOOLGAP), rules.relative_gap);
  take(s.real(TVK_PARAM_SOLNPOOLAGAP), rules.absolute_gap);
  rules.filters = &problem.filters;
  return rules;
}

std::unique_ptr<SolutionPool> empty_pool(const tovik::Problem& problem) {
  const std::span<const char> types = problem.model->column_types();
  std::vector<char> is_integer(static_cast<std::size_t>(problem.model->num_columns()), 0);
  for (std::size_t j = 0; j < types.size(); ++j)
    is_integer[j] = types[j] == 'B' || types[j] == 'I' || types[j] == 'N' ? 1 : 0;
  return std::make_unique<SolutionPool>(std::move(is_integer), problem.model->objective_sense());
}

PoolFeed::PoolFeed(const Environment& env, tovik::Problem& problem)
    : problem_(problem), rules_(pool_rules(env, problem)) {
  // Gaps may be smaller than they were.
  if (problem.pool != nullptr && problem.solution != nullptr && problem.status != TVK_STATUS_NONE)
    problem.pool->note_best(problem.solution->objective, rules_);
}

void PoolFeed::add(const mip::Solution& solution) {
  const auto columns = static_cast<std::size_t>(problem_.pool->num_columns());
  const double objective = problem_.model->objective_sense() * solution.objective + 0.0;
  const std::span<const double> x = std::span<const double>(solution.x).first(columns);
  if (problem_.pool->add(x, objective, rules_) == SolutionPool::Result::added) ++added_;
}

tovik::Solution whole_solution(const tovik::Problem& problem, std::vector<double> x, double objective) {
  const model::Model& model = *problem.model;
  tovik::Solution solution;
  solution.x = std::move(x);
  const auto entries = [&](int j, auto f) {
    const model::ColumnView column = model.column(j);
    for (int k = 0; k < column.count; ++k) f(column.index[k], column.value[k]);
  };
  const std::vector<double> activity = lp::verify::activities(model.num_rows(), entries, solution.x);
  solution.slack.resize(activity.size());
  for (std::size_t i = 0; i < activity.size(); ++i) solution.slack[i] = model.rhs()[i] - activity[i] + 0.0;
  solution.objective = objective;
  solution.method = method_code::kMixedInteger;
  solution.primal_feasible = true;
  return solution;
}

Status find_pool(const tovik::Problem& problem, const SolutionPool** pool) {
  *pool = problem.pool.get();
  return *pool != nullptr ? Status() : Status(TVK_ERROR_NO_SOLUTION_POOL);
}

Status pool_objective(const tovik::Problem& problem, int soln, double* objective) {
  if (const Status status = check_member(problem, soln); !status.ok()) return status;
  if (soln >= 0) {
    *objective = (*problem.pool)[soln].objective;
    return {};
  }
  Status why;
  const tovik::Solution* incumbent = find_solution(problem, SolutionPart::any, why);
  if (incumbent != nullptr) *objective = incumbent->objective;
  return why;
}

Status pool_mean_objective(const tovik::Problem& problem, double* mean) {
  const SolutionPool* pool = nullptr;
  if (const Status status = find_pool(problem, &pool); !status.ok()) return status;
  if (pool->size() == 0) return Status(TVK_ERROR_NO_SOLUTION);
  lp::CompensatedSum sum;
  for (int k = 0; k < pool->size(); ++k) sum.add((*pool)[k].objective);
  *mean = sum.value() / pool->size();
  return {};
}

Status pool_point(const tovik::Problem& problem, int soln, std::vector<double>* x) {
  if (const Status status = check_member(problem, soln); !status.ok()) return status;
  if (soln >= 0) {
    *x = problem.pool->point(soln);
    return {};
  }
  Status why;
  const tovik::Solution* incumbent = find_solution(problem, SolutionPart::values, why);
  if (incumbent != nullptr) *x = incumbent->x;
  return why;
}

Status pool_solution(const tovik::Problem& problem, int soln, tovik::Solution* solution) {
  if (const Status status = check_member(problem, soln); !status.ok()) return status;
  if (soln >= 0) {
    *solution = whole_solution(problem, problem.pool->point(soln), (*problem.pool)[soln].objective);
    return {};
  }
  Status why;
  const tovik::Solution* incumbent = find_solution(problem, SolutionPart::values, why);
  if (incumbent != nullptr) *solution = *incumbent;
  return why;
}

}  // namespace tovik::mip::run
