#include "model/routines/type_change.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

#include "model/routines/fixed_problem.h"
#include "model/store/model.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

struct Target {
  int type;
  unsigned freed;
};

constexpr Target kTargets[] = {
    {TVK_PROBTYPE_LP, kMixedIntegerData | kQuadraticObjectiveData | kQuadraticRowData},
    {TVK_PROBTYPE_MILP, kQuadraticObjectiveData | kQuadraticRowData},
    {TVK_PROBTYPE_QP, kMixedIntegerData | kQuadraticRowData},
    {TVK_PROBTYPE_MIQP, kQuadraticRowData},
    {TVK_PROBTYPE_QCP, kMixedIntegerData},
    {TVK_PROBTYPE_MIQCP, 0},
};

/* A semi-continuous column may be 0 whatever its bounds: so may it without its type. */
void admit_zero(Model& model) noexcept {
  const std::span<const char> types = model.column_types();  // empty for continuous problems
  for (int j = 0; j < static_cast<int>(types.size()); ++j) {
    const char type = types[static_cast<std::size_t>(j)];
    if (type != 'S' && type != 'N') continue;
    if (model.lower()[static_cast<std::size_t>(j)] > 0) model.set_lower(j, 0);
    if (model.upper()[static_cast<std::size_t>(j)] < 0) model.set_upper(j, 0);
  }
}

void free_data(Problem& problem, unsigned kinds) noexcept {
  Model& model = *problem.model;
  Families& families = model.change_families();
  if ((kinds & kMixedIntegerData) != 0) {
    if (!problem.fixed()) admit_zero(model);  // a fixed one has decided which of them are 0
    model.set_column_types({});
    families.clear_mixed_integer();
    problem.filters.clear();
  }
  if ((kinds & kQuadraticObjectiveData) != 0) families.quadratic_objective.clear();
  if ((kinds & kQuadraticRowData) != 0) families.quadratic_rows.clear();
}

}  // namespace

unsigned held_data(const Problem& problem) {
  const bool rows = is_quadratically_constrained(problem.type);
  const bool objective =
      rows ? !problem.model->families().quadratic_objective.empty() : is_quadratic(problem.type);
  return (is_mixed_integer(problem.type) ? kMixedIntegerData : 0u) |
         (objective ? kQuadraticObjectiveData : 0u) | (rows ? kQuadraticRowData : 0u);
}

void announce_freeing(Environment& env, const Problem& problem, unsigned kinds) {
  if (env.settings.integer(TVK_PARAM_DATACHECK) != 1) return;
  const unsigned freed = kinds & held_data(problem);
  if ((freed & kMixedIntegerData) != 0) message(env.warning_channel, "Freeing MIP data.\n");
  if ((freed & kQuadraticObjectiveData) != 0) message(env.warning_channel, "Freeing QP data.\n");
  if ((freed & kQuadraticRowData) != 0) message(env.warning_channel, "Freeing QCONSTR data.\n");
}

Status change_problem_type(Environment& env, Problem& problem, int type) {
  if (type == problem.type && !problem.fixed()) return {};
  const auto* const target = std::find_if(std::begin(kTargets), std::end(kTargets),
                                          [type](const Target& t) { return t.type == type; });
  if (target == std::end(kTargets))
    return type_before_fixing(type) >= 0 ? fix_problem(env, problem, type) : Status(TVK_ERROR_PROBLEM_TYPE);
  MixedInteger with_types(problem);
  if (is_mixed_integer(type)) restore_model(problem);  // what is continuous stays fixed
  announce_freeing(env, problem, target->freed);
  free_data(problem, target->freed);
  if (is_mixed_integer(type)) with_types.commit();
  problem.type = type;
  invalidate(problem, Change::problem_type);
  return {};
}

MixedInteger::MixedInteger(Problem& problem) : problem_(problem) {
  if (!is_mixed_integer(problem.type)) types_.assign(problem.columns(), 'C');
}

void MixedInteger::commit() noexcept {
  if (is_mixed_integer(problem_.type)) return;
  problem_.model->set_column_types(std::move(types_));
  problem_.type = mixed_integer_type(problem_.type);
}

}  // namespace tovik::model
