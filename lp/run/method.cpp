#include "lp/run/method.h"

#include <algorithm>

#include "include/tovik.h"
#include "lp/run/basis_view.h"
#include "lp/run/live_simplex.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {
constexpr int kNone = 2100000000;
}

Status check_continuous(const Problem& problem) {
  switch (problem.type) {
    case 0:
    case 3:
      return {};
    case 1:
      return Status(1017);
    case 5:
    case 8:
      return Status(1018);
    case 10:
    case 13:
      return Status(1031);
    default:
      return Status(1017);
  }
}

Status most_infeasible_basic(Environment& env, Problem& problem, int* index) {
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  const simplex::Core& core = view.core();
  double worst = env.settings.real(TVK_PARAM_EPRHS);
  *index = kNone;
  for (int p = 0; p < core.m; ++p) {
    const double violation =
        std::max(core.x_lower[p] - core.x[p], core.x[p] - core.x_upper[p]) * view.scale(core.head[p]);
    if (violation > worst) {
      worst = violation;
      *index = core.head[p];
    }
  }
  return {};
}

int resolve_method(Environment& env, Problem& problem, bool allow_concurrent) {
  const int method = env.settings.integer(TVK_PARAM_LPMETHOD);
  if (method != 0 && !(method == 6 && !allow_concurrent)) return method;
  int threads = env.settings.integer(TVK_PARAM_THREADS);
  if (threads == 0) threads = std::max(1, thread_limit());
  if (threads >= 2 && env.settings.integer(TVK_PARAM_MEMORYEMPHASIS) == 0 && allow_concurrent) return 6;
  if (env.settings.integer(TVK_PARAM_ADVIND) != 0 && problem.start.has_basis()) {
    const StartIs known = judge_start(env, problem);
    if (known != StartIs::unknown) return known == StartIs::feasible ? 1 : 2;
    int worst = 0;
    const Status status = most_infeasible_basic(env, problem, &worst);
    if (status.ok() && worst == kNone) return 1;
  }
  return 2;
}

}  // namespace tovik::lp::run
