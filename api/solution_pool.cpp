/* The solution pool of a mixed-integer problem. */
#include <algorithm>

#include "api/count.h"
#include "api/file_name.h"
#include "env/entry.h"
#include "lp/basis_query/quality.h"
#include "mip/run/pool.h"
#include "mip/run/pool_file.h"
#include "model/routines/check.h"
#include "model/routines/query.h"

using namespace tovik;

namespace {

/* The pool; null with the code why. */
const SolutionPool* pool_of(const Problem& problem, Status* why) {
  const SolutionPool* pool = nullptr;
  *why = mip::run::find_pool(problem, &pool);
  return pool;
}

Status delete_marked(SolutionPool& pool, int* delstat) {
  int kept = 0;
  const int count = pool.size();
  for (int k = count - 1; k >= 0; --k) {
    if (delstat[k] == 1) pool.remove(k, k);
  }
  for (int k = 0; k < count; ++k) delstat[k] = delstat[k] == 1 ? -1 : kept++;
  return {};
}

}  // namespace

int TVKgetsolnpoolnumsolns(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) { return p.pool == nullptr ? 0 : p.pool->size(); });
}

int TVKgetsolnpoolnumreplaced(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](const Problem& p) {
    return p.pool == nullptr ? 0 : static_cast<int>(std::min<std::int64_t>(p.pool->replaced(), INT32_MAX));
  });
}

int TVKgetsolnpoolobjval(ConstEnvHandle env, ConstProbHandle lp, int soln, double* objval_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (objval_p == nullptr) return TVK_ERROR_NULL_POINTER;
    return mip::run::pool_objective(p, soln, objval_p);
  });
}

int TVKgetsolnpoolmeanobjval(ConstEnvHandle env, ConstProbHandle lp, double* meanobjval_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (meanobjval_p == nullptr) return TVK_ERROR_NULL_POINTER;
    return mip::run::pool_mean_objective(p, meanobjval_p);
  });
}

int TVKgetsolnpoolx(ConstEnvHandle env, ConstProbHandle lp, int soln, double* x, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (x == nullptr) return TVK_ERROR_NULL_POINTER;
    std::vector<double> values;
    if (const Status status = mip::run::pool_point(p, soln, &values); !status.ok()) return status;
    return model::copy_range(e, {"TVKgetsolnpoolx", begin, end}, std::span<const double>(values), x);
  });
}

int TVKgetsolnpoolslack(ConstEnvHandle env, ConstProbHandle lp, int soln, double* slack, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (slack == nullptr) return TVK_ERROR_NULL_POINTER;
    Solution solution;
    if (const Status status = mip::run::pool_solution(p, soln, &solution); !status.ok()) return status;
    return model::copy_range(e, {"TVKgetsolnpoolslack", begin, end}, std::span<const double>(solution.slack),
                             slack);
  });
}

int TVKgetsolnpoolquality(ConstEnvHandle env, ConstProbHandle lp, int soln, int what, double* value_p,
                          int* index_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (value_p == nullptr) return TVK_ERROR_NULL_POINTER;
    Solution solution;
    lp::run::Measure measure;
    if (const Status status = mip::run::pool_solution(p, soln, &solution); !status.ok()) return status;
    if (const Status status = lp::run::measure_point(*p.model, solution, what, &measure); !status.ok())
      return status;
    *value_p = measure.value;
    if (index_p != nullptr) *index_p = measure.index;
    return {};
  });
}

int TVKgetsolnpoolsolnname(ConstEnvHandle env, ConstProbHandle lp, char* buffer, int space, int* surplus_p,
                           int soln) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    Status why;
    const SolutionPool* pool = pool_of(p, &why);
    if (pool == nullptr) return why;
    if (soln < 0 || soln >= pool->size()) return TVK_ERROR_INDEX_RANGE;
    return model::get_text((*pool)[soln].name().c_str(), buffer, space, surplus_p);
  });
}

int TVKgetsolnpoolsolnindex(ConstEnvHandle env, ConstProbHandle lp, const char* name, int* soln_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (name == nullptr || soln_p == nullptr) return TVK_ERROR_NULL_POINTER;
    Status why;
    const SolutionPool* pool = pool_of(p, &why);
    if (pool == nullptr) return why;
    const int found = pool->find(name);
    if (found < 0) return TVK_ERROR_NAME_NOT_FOUND;
    *soln_p = found;
    return {};
  });
}

int TVKdelsolnpoolsolns(ConstEnvHandle env, ProbHandle lp, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    Status why;
    if (pool_of(p, &why) == nullptr) return why;
    why = model::check_range(e, "TVKdelsolnpoolsolns", begin, end, p.pool->size());
    if (why.ok()) p.pool->remove(begin, end);
    return why;
  });
}

int TVKdelsetsolnpoolsolns(ConstEnvHandle env, ProbHandle lp, int* delstat) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    Status why;
    if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
    if (pool_of(p, &why) == nullptr) return why;
    return delete_marked(*p.pool, delstat);
  });
}

/* ---- Files */

int TVKsolwritesolnpool(ConstEnvHandle env, ConstProbHandle lp, int soln, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return mip::run::write_pool_solution(e, p, soln, filename);
  });
}

int TVKsolwritesolnpoolall(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return mip::run::write_pool(e, p, fileio::SeveralAs::solutions, filename);
  });
}

int TVKmstwritesolnpoolall(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return mip::run::write_pool(e, p, fileio::SeveralAs::starts, filename);
  });
}
