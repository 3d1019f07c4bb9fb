/* The mixed-integer optimizer, and what it tells of its search. */
#include <cmath>

#include "api/count.h"
#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "env/solution_access.h"
#include "include/tovik.h"
#include "mip/run/mip_run.h"

using namespace tovik;

int TVKmipopt(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = mip::run::check_mixed_integer(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    const api::Profile profile(e, 0);
    return mip::run::run_branch_and_cut(e, p);
  });
}
