#include "model/routines/problem_objects.h"

#include <algorithm>

#include "include/tovik.h"
#include "model/routines/fixed_problem.h"
#include "model/routines/type_change.h"
#include "model/store/model.h"

namespace tovik::model {

Status clone_problem(Environment& env, Problem& source, std::unique_ptr<Problem>& copy) {
  update_solution(source);
  copy = std::make_unique<Problem>(env);
  copy->name = source.name;
  copy->type = source.type;
  copy->model = std::make_unique<Model>(*source.model);
  copy->protected_columns = source.protected_columns;
  copy->mip = copy_of_fixing(source);
  return 0;
}

Status free_problem(Problem& problem) {
  auto& owned = problem.env->problems;
  const auto is_it = [&](const auto& other) { return other.get() == &problem; };
  const auto found = std::find_if(owned.begin(), owned.end(), is_it);
  if (found == owned.end()) return TVK_ERROR_NO_PROBLEM;  // one that belongs to another problem
  owned.erase(found);
  return 0;
}

Status remove_small(Problem& problem, double eps) {
  if (problem.fixed()) return TVK_ERROR_FIXED_PROBLEM;
  problem.model->remove_small(eps);
  const unsigned quadratic = kQuadraticObjectiveData | kQuadraticRowData;
  invalidate(problem, (held_data(problem) & quadratic) != 0 ? Change::quadratic : Change::matrix);
  return 0;
}

}  // namespace tovik::model
