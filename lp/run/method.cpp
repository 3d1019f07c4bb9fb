#include "lp/run/method.h"

#include <algorithm>

#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/run/basis_view.h"
#include "lp/run/warm_simplex.h"
#include "lp/verify/bounds.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {
constexpr int kNone = 2100000000;
}

Status check_continuous(const Problem& problem) {
  switch (problem.type) {
    case TVK_PROBTYPE_LP:
    case TVK_PROBTYPE_FIXED_MILP:
      return {};
    case TVK_PROBTYPE_MILP:
      return Status(TVK_ERROR_NOT_FOR_MIP);
    case TVK_PROBTYPE_QP:
    case TVK_PROBTYPE_FIXED_MIQP:
      return Status(TVK_ERROR_NOT_FOR_QP);
    case TVK_PROBTYPE_QCP:
    case TVK_PROBTYPE_FIXED_MIQCP:
      return Status(TVK_ERROR_NOT_FOR_QCP);
    default:
      return Status(TVK_ERROR_NOT_FOR_MIP);
  }
}

Status most_infeasible_basic(Environment& env, Problem& problem, int* index) {
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  const simplex::Core& core = view.core();
  double worst = env.settings.real(TVK_PARAM_EPRHS);
  *index = kNone;
  for (int p = 0; p < core.m(); ++p) {
    const double violation =
        verify::outside(core.values.x(p), core.values.x_lower(p), core.values.x_upper(p)) *
        view.scale(core.basis.head(p));
    if (violation > worst) {
      worst = violation;
      *index = core.basis.head(p);
    }
  }
  return {};
}

Status resolve_method(Environment& env, Problem& problem, bool allow_concurrent, int* resolved) {
  const int method = env.settings.integer(TVK_PARAM_LPMETHOD);
  *resolved = method;
  if (method != method_code::kAutomatic && !(method == method_code::kConcurrent && !allow_concurrent))
    return {};
  int threads = env.settings.integer(TVK_PARAM_THREADS);
  if (threads == 0) threads = std::max(1, thread_limit());
  if (threads >= 2 && env.settings.integer(TVK_PARAM_MEMORYEMPHASIS) == 0 && allow_concurrent) {
    *resolved = method_code::kConcurrent;
    return {};
  }
  *resolved = method_code::kDual;
  if (env.settings.integer(TVK_PARAM_ADVIND) == 0 || !problem.start.has_statuses()) return {};
  PrimalFeasibility start = PrimalFeasibility::unknown;
  if (const Status status = start_feasibility(env, problem, &start); !status.ok()) return status;
  if (start == PrimalFeasibility::unknown) {
    int worst = 0;
    const Status status = most_infeasible_basic(env, problem, &worst);
    if (status.is_reported()) return status;
    if (status.ok() && worst == kNone) start = PrimalFeasibility::feasible;
  }
  if (start == PrimalFeasibility::feasible) *resolved = method_code::kPrimal;
  return {};
}

}  // namespace tovik::lp::run
