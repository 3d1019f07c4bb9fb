/* Problem objects: creating, copying, freeing, types. The record's own construction stands here too, because
 * it takes the model and every engine's data with it. */
#include <algorithm>

#include "env/entry.h"
#include "env/handles.h"
#include "model/routines/type_change.h"
#include "model/store/model.h"

namespace tovik {

Problem::Problem(Environment& environment)
    : env(&environment), model(std::make_unique<model::Model>()), live(this, HandleKind::problem) {}

Problem::~Problem() = default;

std::size_t Problem::rows() const {
  return static_cast<std::size_t>(model->num_rows());
}

std::size_t Problem::columns() const {
  return static_cast<std::size_t>(model->num_columns());
}

}  // namespace tovik

using namespace tovik;

namespace {

/* Runs `make` in the environment and hands its problem over to it: Status(Environment&,
 * std::unique_ptr<Problem>&) */
template <class Make>
ProbHandle add_problem(ConstEnvHandle handle, int* status_p, Make&& make) {
  Problem* added = nullptr;
  const int code = with_environment(handle, [&](Environment& env) -> Status {
    std::unique_ptr<Problem> problem;
    if (Status status = make(env, problem); !status.ok()) return status;
    env.problems.push_back(std::move(problem));
    added = env.problems.back().get();
    return 0;
  });
  if (status_p != nullptr) *status_p = code;
  return to_handle(added);
}

Status clone(Environment& env, Problem& source, std::unique_ptr<Problem>& copy) {
  update_solution(source);
  copy = std::make_unique<Problem>(env);
  copy->name = source.name;
  copy->type = source.type;
  copy->model = std::make_unique<model::Model>(*source.model);
  copy->protected_columns = source.protected_columns;
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

}  // namespace

ProbHandle TVKcreateprob(ConstEnvHandle env, int* status_p, const char* probname) {
  return add_problem(env, status_p, [&](Environment& e, std::unique_ptr<Problem>& problem) -> Status {
    if (probname == nullptr) return TVK_ERROR_NULL_POINTER;
    problem = std::make_unique<Problem>(e);
    problem->name = probname;
    return 0;
  });
}

ProbHandle TVKcloneprob(ConstEnvHandle env, ConstProbHandle lp, int* status_p) {
  return add_problem(env, status_p, [&](Environment& e, std::unique_ptr<Problem>& copy) -> Status {
    Environment* checked = nullptr;
    Problem* source = nullptr;
    if (int code = check_handles(env, lp, &checked, &source); code != 0) return code;
    const Reading mark(source->use);
    return clone(e, *source, copy);
  });
}

int TVKfreeprob(ConstEnvHandle env, ProbHandle* lp_p) {
  const int code = with_environment(env, [&](Environment&) -> Status {
    if (lp_p == nullptr) return TVK_ERROR_NULL_POINTER;
    Environment* checked = nullptr;
    Problem* problem = nullptr;
    if (int bad = check_handles(env, *lp_p, &checked, &problem); bad != 0) return bad;
    if (problem->use.busy()) return TVK_ERROR_IN_INFO_CALLBACK;
    return free_problem(*problem);
  });
  if (code == 0) *lp_p = nullptr;
  return code;
}

int TVKgetprobtype(ConstEnvHandle env, ConstProbHandle lp) {
  int type = -1;
  with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    type = problem.type;
    return 0;
  });
  return type;
}

int TVKchgprobtype(ConstEnvHandle env, ProbHandle lp, int type) {
  return with_problem(env, lp, [&](Environment& e, Problem& problem) {
    return model::change_problem_type(e, problem, type);
  });
}

int TVKcleanup(ConstEnvHandle env, ProbHandle lp, double eps) {
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    if (problem.fixed()) return TVK_ERROR_FIXED_PROBLEM;
    problem.model->remove_small(eps);
    const unsigned quadratic = model::kQuadraticObjectiveData | model::kQuadraticRowData;
    invalidate(problem, (model::held_data(problem) & quadratic) != 0 ? Change::quadratic : Change::matrix);
    return 0;
  });
}

int TVKunscaleprob(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [](Environment&, Problem& problem) -> Status {
    invalidate(problem, Change::unscaling);
    return 0;
  });
}
