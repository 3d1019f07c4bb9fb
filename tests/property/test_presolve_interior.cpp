/* Points that belong to no basis come back from presolve as feasible and as near to optimal as they went: values do not
 * follow statuses, and distances to bounds stay distances to bounds. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/barrier/barrier.h"
#include "lp/presolve/presolve.h"
#include "lp/verify/bounds.h"
#include "lp/verify/point.h"
#include "support/planted_lps.h"
#include "support/quiet_control.h"

namespace {

using namespace tovik::lp;
namespace pre = tovik::lp::presolve;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kModels = 1000;
#else
constexpr int kModels = 20000;
#endif

/* How far x and y are from a pair of optimal points; reduced costs are those of y. */
struct Distance {
  double primal = 0, dual = 0, gap = 0;
  double worst() const { return std::max({primal, dual, gap}); }
};

Distance distance(const LpData& lp, const Answer& point) {
  Distance found;
  const auto entries = verify::entries_of(lp.matrix);
  const auto activity = verify::activities(lp.num_rows(), entries, point.x);
  double dual_objective = lp.offset, size = 1;
  const auto look = [&](double value, double multiplier, double lower, double upper) {
    found.primal = std::max(found.primal, verify::outside(value, lower, upper) / (1 + std::fabs(value)));
    const double bound = multiplier > 0 ? lower : upper;
    if (std::isinf(bound)) {
      found.dual = std::max(found.dual, std::fabs(multiplier));
    } else {
      dual_objective += multiplier * bound;
      size += std::fabs(multiplier * bound);
    }
  };
  for (int j = 0; j < lp.num_columns(); ++j)
    look(point.x[j], verify::reduced_cost(lp.cost[j], j, entries, point.y).value(), lp.lower[j], lp.upper[j]);
  for (int i = 0; i < lp.num_rows(); ++i) look(activity[i], point.y[i], lp.row_lower[i], lp.row_upper[i]);
  found.gap = std::fabs(verify::objective(lp, point.x) - dual_objective) / size;
  return found;
}

TEST(PresolveInterior, PointsComeBackAsGoodAsTheyWent) {
  support::PlantedLps random(support::fresh_seed());
  support::QuietControl control;
  int compared = 0;
  for (int round = 0; round < kModels && !HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    std::vector<support::Rule> planted;
    for (int count = random.pick(1, 4); count > 0; --count)
      planted.push_back(static_cast<support::Rule>(random.pick(0, pre::kRules - 1)));
    const LpData lp = random.make(random.pick(2, 6), random.pick(2, 8), planted).data();
    const pre::Reduction reduction = pre::presolve(lp, {}, control, {}, false);
    if (reduction.status.code != pre::StatusCode::reduced || reduction.lp.cost.empty()) continue;
    // A loose tolerance leaves the point well inside: what stands at no bound shows.
    barrier::Options options;
    options.tolerance = random.chance(0.5) ? 1e-3 : 1e-8;
    const barrier::Result result = barrier::solve(reduction.lp, options, control, nullptr);
    if (result.ending != barrier::Ending::optimal) continue;
    Answer reduced;
    reduced.x = result.x;
    reduced.y = result.y;
    const auto entries = verify::entries_of(reduction.lp.matrix);
    for (int j = 0; j < reduction.lp.num_columns(); ++j)
      reduced.d.push_back(verify::reduced_cost(reduction.lp.cost[j], j, entries, reduced.y).value());
    const Distance before = distance(reduction.lp, reduced);
    const Distance after = distance(lp, pre::postsolve_interior(lp, reduction, reduced));
    SCOPED_TRACE(support::describe(lp));
    EXPECT_LE(after.primal, 1e-7 + 100 * before.primal);
    EXPECT_LE(after.dual, 1e-7 + 100 * before.worst());
    EXPECT_LE(after.gap, 1e-7 + 100 * before.worst());
    compared += !reduction.column_map.empty() && reduction.changed;
  }
  EXPECT_GT(compared, kModels / 20);
}

}  // namespace
