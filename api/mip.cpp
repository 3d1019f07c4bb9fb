/* The mixed-integer optimizer, and what it tells of its search. */
#include <algorithm>
#include <climits>
#include <cmath>

#include "api/count.h"
#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "include/tovik.h"
#include "lp/run/statistics.h"
#include "mip/run/mip_run.h"
#include "mip/run/populate.h"

using namespace tovik;

namespace {

int optimize(ConstEnvHandle env, ProbHandle lp, Status (*run)(Environment&, Problem&)) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = mip::run::check_mixed_integer(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    const api::Profile profile(e, 0);
    const Status status = run(e, p);
    const mip::run::SearchResult* const search = mip::run::search_result(p);
    if (status.ok() && search != nullptr)
      lp::run::note_threads(p, std::max(search->threads, e.limits.top()->threads.count()));
    return status;
  });
}

int counted(std::int64_t count) {
  return static_cast<int>(std::min<std::int64_t>(count, INT_MAX));
}

int count_of_search(ConstEnvHandle env, ConstProbHandle lp, std::int64_t mip::run::SearchResult::*count) {
  return api::count_of(env, lp, [&](const Problem& p) {
    const mip::run::SearchResult* result = mip::run::search_result(p);
    return result == nullptr ? 0 : counted(result->*count);
  });
}

}  // namespace

int TVKmipopt(ConstEnvHandle env, ProbHandle lp) {
  return optimize(env, lp, mip::run::run_branch_and_cut);
}

int TVKpopulate(ConstEnvHandle env, ProbHandle lp) {
  return optimize(env, lp, mip::run::run_populate);
}

int TVKgetbestobjval(ConstEnvHandle env, ConstProbHandle lp, double* bound_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (bound_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const mip::run::SearchResult* result = mip::run::search_result(p);
    if (result == nullptr) return TVK_ERROR_NO_SOLUTION;
    *bound_p = result->best_bound;
    return 0;
  });
}

int TVKgetmiprelgap(ConstEnvHandle env, ConstProbHandle lp, double* gap_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (gap_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const mip::run::SearchResult* result = mip::run::search_result(p);
    if (result == nullptr || p.solution == nullptr) return TVK_ERROR_NO_SOLUTION;
    *gap_p =
        std::fabs(result->best_bound - p.solution->objective) / (1e-10 + std::fabs(p.solution->objective));
    return 0;
  });
}

int TVKgetnodecnt(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of_search(env, lp, &mip::run::SearchResult::nodes);
}

int TVKgetnodeleftcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of_search(env, lp, &mip::run::SearchResult::nodes_left);
}

int TVKgetmipsolcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return count_of_search(env, lp, &mip::run::SearchResult::solutions);
}
