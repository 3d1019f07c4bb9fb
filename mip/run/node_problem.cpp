#include "mip/run/node_problem.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "include/tovik.h"
#include "lp/base/answer.h"
#include "lp/run/simplex_run.h"
#include "lp/verify/point.h"
#include "model/store/load.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

double stored(double bound) {
  return std::clamp(bound, -model::kInfinity, model::kInfinity);
}

void add_row(model::ModelData& data, double lower, double upper) {
  const bool ranged = !std::isinf(lower) && !std::isinf(upper) && lower < upper;
  data.sense.push_back(lower == upper ? 'E' : ranged ? 'R' : std::isinf(upper) ? 'G' : 'L');
  data.rhs.push_back(stored(data.sense.back() == 'L' ? upper : lower));
  data.range.push_back(ranged ? upper - lower : 0.0);
}

/* Of the caller's columns; others are numbered. */
model::NameBlock names(const CallbackScene& scene) {
  model::NameBlock block;
  const model::NameTable& own = scene.problem.model->column_names();
  if (own.empty()) return block;
  for (int j = 0; j < scene.spaces.searched_columns(); ++j) {
    const int user = scene.spaces.user_column(j);
    block.add(user >= 0 ? own.name(user) : "added#" + std::to_string(j + 1));
  }
  return block;
}

/* Objective, bounds and rows; entries(j, f) calls f(row, value). */
template <class Entries>
model::ModelData data_of(const CallbackScene& scene, const lp::LpData& lp, Entries entries) {
  model::ModelData data;
  const double sign = scene.sign();
  data.objective_sense = sign < 0 ? -1 : 1;
  data.objective_offset = sign * lp.offset + 0.0;
  data.start.push_back(0);
  for (int j = 0; j < lp.num_columns(); ++j) {
    data.objective.push_back(sign * lp.cost[j] + 0.0);
    data.lower.push_back(stored(lp.lower[j]));
    data.upper.push_back(stored(lp.upper[j]));
    entries(j, [&](int row, double value) {
      data.index.push_back(row);
      data.value.push_back(value);
    });
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
  }
  for (int i = 0; i < lp.num_rows(); ++i) add_row(data, lp.row_lower[i], lp.row_upper[i]);
  data.column_names = names(scene);
  return data;
}

Status make(const CallbackScene& scene, model::ModelData&& data, std::unique_ptr<tovik::Problem>* made) {
  auto problem = std::make_unique<tovik::Problem>(scene.env);
  problem->name = scene.problem.name;
  if (const Status s = model::load(scene.env, *problem, std::move(data)); !s.ok()) return s;
  problem->use.owner = &scene.problem.use;
  *made = std::move(problem);
  return {};
}

/* The optimum that the relaxation stands at. */
lp::Answer optimum(lp::simplex::Relaxation& relaxation, const Sight& sight) {
  lp::Answer answer;
  const auto copy = [](std::span<const double> from, std::vector<double>& to) {
    to.assign(from.begin(), from.end());
  };
  answer.outcome = lp::Outcome::optimal;
  answer.has_values = answer.primal_feasible = answer.dual_feasible = true;
  answer.objective = sight.objective;
  copy(sight.x, answer.x);
  copy(relaxation.duals(), answer.y);
  copy(relaxation.reduced_costs(), answer.d);
  const auto entries = [&](int j, auto f) { relaxation.each_entry(j, f); };
  answer.activity = lp::verify::activities(relaxation.user_lp().num_rows(), entries, answer.x);
  lp::Basis basis = relaxation.basis();
  answer.column_status = std::move(basis.columns);
  answer.row_status = std::move(basis.rows);
  return answer;
}

}  // namespace

std::vector<char> column_types(const mip::Problem& problem) {
  std::vector<char> types;
  for (int j = 0; j < problem.num_columns(); ++j) {
    const bool is_binary = problem.lp.lower[j] == 0 && problem.lp.upper[j] == 1;
    types.push_back(problem.is_integer[j] == 0 ? 'C' : is_binary ? 'B' : 'I');
  }
  for (const SemiColumn& semi : problem.semi_columns) {
    char& type = types[semi.column];
    type = type == 'C' ? 'S' : 'N';
  }
  return types;
}

Status make_node_problem(const CallbackScene& scene, const Sight& sight,
                         std::unique_ptr<tovik::Problem>* made) {
  Worker& worker = scene.search().worker();
  lp::simplex::Relaxation& relaxation = *worker.relaxation;
  model::ModelData data =
      data_of(scene, relaxation.user_lp(), [&](int j, auto f) { relaxation.each_entry(j, f); });
  for (int j = 0; j < worker.global.problem.num_columns(); ++j) {
    if (worker.global.is_discrete[j] == 0) continue;
    data.lower[j] = stored(worker.domain.lower(j));
    data.upper[j] = stored(worker.domain.upper(j));
  }
  if (const Status s = make(scene, std::move(data), made); !s.ok()) return s;
  if (!sight.is_relaxation) return {};
  lp::run::store_answer(**made, optimum(relaxation, sight), {});
  (*made)->status = TVK_STATUS_OPTIMAL;
  return {};
}

Status make_searched_problem(const CallbackScene& scene, std::unique_ptr<tovik::Problem>* made) {
  const mip::Problem& problem = scene.search().global().problem;
  const lp::Matrix& matrix = problem.lp.matrix;
  model::ModelData data = data_of(scene, problem.lp, [&](int j, auto f) {
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) f(matrix.index[k], matrix.value[k]);
  });
  for (const SemiColumn& semi : problem.semi_columns) {
    data.lower[semi.column] = stored(semi.lower);
    data.upper[semi.column] = stored(semi.upper);
  }
  data.types = column_types(problem);
  for (const OrderedSet& set : problem.sets) {
    std::vector<double> weights;
    for (std::size_t k = 0; k < set.columns.size(); ++k) weights.push_back(static_cast<double>(k + 1));
    const auto count = static_cast<int>(set.columns.size());
    data.families.sets.add({set.type == 1 ? '1' : '2', {set.columns.data(), weights.data(), count}});
  }
  if (const Status s = make(scene, std::move(data), made); !s.ok()) return s;
  (*made)->use.changing = true;
  return {};
}

}  // namespace tovik::mip::run
