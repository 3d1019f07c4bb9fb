#include "mip/heuristics/feasibility_jump.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr std::int64_t kLeastWork = 200000,
                       kWorkAnEntry = 10;  // of a slice, after which there must be progress
constexpr int kSlices = 6;

enum class Start { cheapest, nearest_to_zero };

std::vector<double> point_at_bounds(const Domain& domain, Start start) {
  const std::vector<double>& cost = domain.problem().lp.cost;
  std::vector<double> x(cost.size());
  for (int j = 0; j < domain.problem().num_columns(); ++j) {
    const double lower = domain.lower(j), upper = domain.upper(j);
    const double zero = std::clamp(0.0, lower, std::max(lower, upper));
    const double cheap = cost[j] > 0 ? lower : cost[j] < 0 ? upper : zero;
    x[j] = start == Start::nearest_to_zero || std::isinf(cheap) ? zero : cheap;
  }
  return x;
}

/* Goes on while fewer rows than ever are violated now and then. */
bool search(Worker& worker, JumpSearch& jumps, int slices) {
  const auto entries = static_cast<std::int64_t>(worker.global.problem.lp.matrix.index.size());
  const std::int64_t slice = kLeastWork + kWorkAnEntry * entries;
  for (int k = 0; k < slices; ++k) {
    const std::size_t before = jumps.fewest_violated();
    const std::int64_t work = jumps.work();
    const bool found = jumps.run(worker.random, slice, worker.control);
    worker.out.work += jumps.work() - work;
    if (found) return true;
    if (jumps.fewest_violated() == before || worker.must_stop()) return false;
  }
  return false;
}

Verdict offer(Worker& worker, const JumpSearch& jumps, const char* name) {
  worker.out.candidates.push_back({jumps.point(), name});
  return Verdict::found;
}

}  // namespace

Verdict FeasibilityJump::call(Worker& worker, const Moment&) {
  if (worker.global.has_incumbent() || worker.global.problem.has_objects()) return Verdict::nothing;
  JumpSearch jumps(worker.domain);
  for (const Start start : {Start::cheapest, Start::nearest_to_zero}) {
    const std::vector<double> x = point_at_bounds(worker.domain, start);
    jumps.start(x);
    if (search(worker, jumps, kSlices)) return offer(worker, jumps, name());
  }
  return Verdict::nothing;
}

Verdict Shifting::call(Worker& worker, const Moment& moment) {
  const Global& global = worker.global;
  if (global.problem.has_objects()) return Verdict::nothing;
  JumpSearch jumps(worker.domain);
  jumps.start(worker.relaxation->primal());
  if (!search(worker, jumps, moment.first ? kSlices : 1)) return Verdict::nothing;
  return offer(worker, jumps, name());
}

}  // namespace tovik::mip
