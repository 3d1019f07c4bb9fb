#include "mip/heuristics/neighbourhood.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "mip/heuristics/reduced_problem.h"

namespace tovik::mip {
namespace {

constexpr double kAgreement = 1e-6;
constexpr double kGap = 1e-3;  // relative, at which a sub-search may end
constexpr int kCutRounds = 5;
constexpr std::int64_t kStrongIterations = 500;

/* The bounds that hold in the whole tree, on a domain of their own. */
void take_global_bounds(const Domain& from, Domain& to) {
  for (int j = 0; j < from.problem().num_columns(); ++j) {
    const Reason reason{Reason::Kind::known, j};
    to.tighten(j, Side::lower, from.global_lower(j), reason);
    to.tighten(j, Side::upper, from.global_upper(j), reason);
  }
}

Settings settings_of_sub_search(const Global& global, const Moment& moment) {
  Settings s = global.settings;
  s.cutoff = global.cutoff;
  s.relative_gap = std::max(s.relative_gap, kGap);
  s.node_limit = s.heuristics.sub_nodes;
  s.iteration_limit = moment.iterations;
  s.strong_start = kStrongIterations;
  s.presolve.probing = -1;
  s.presolve.restarts = 0;
  s.witness = {};
  s.heuristics.neighbourhood_interval = -1;
  if (s.cuts.root_rounds == 0) s.cuts.root_rounds = kCutRounds;
  s.cuts.in_tree = -1;
  return s;
}

}  // namespace

/* False when too little is fixed, or nothing is left. */
bool NeighbourhoodSearch::restrict_domain(const Worker& worker, std::span<const double> x,
                                          Domain& domain) const {
  const Global& global = worker.global;
  Propagator propagator(global.problem);
  take_global_bounds(worker.domain, domain);
  if (!propagator.run(domain)) return false;
  const int count = static_cast<int>(global.integer_columns.size());
  for (const int j : global.integer_columns) {
    if (worker.must_stop()) return false;
    if (domain.is_fixed(j)) continue;
    const Range wanted = range(worker, j, x[j]);
    if (wanted.lower > domain.upper(j) || wanted.upper < domain.lower(j)) continue;
    const int before = domain.position();
    const Reason reason{Reason::Kind::branching, j};
    domain.tighten(j, Side::lower, wanted.lower, reason);
    domain.tighten(j, Side::upper, wanted.upper, reason);
    if (propagator.run(domain)) continue;
    domain.backtrack(before);
    propagator.went_back(domain);
  }
  int left = 0;
  for (const int j : global.integer_columns) left += domain.is_fixed(j) ? 0 : 1;
  return count - left >= least_fixed_ * count;
}

Verdict NeighbourhoodSearch::call(Worker& worker, const Moment& moment) {
  if (worker.sub_search == nullptr || !applies(worker)) return Verdict::nothing;
  const Global& global = worker.global;
  Domain domain(global.problem, global.settings.tolerances);
  if (!restrict_domain(worker, worker.relaxation->primal(), domain)) return Verdict::nothing;
  const ReducedProblem reduced(domain);
  const SubSearchResult found =
      worker.sub_search->run(reduced.problem(), settings_of_sub_search(global, moment), worker.control);
  worker.iterations += found.iterations;
  if (found.x.empty()) return Verdict::nothing;
  worker.out.candidates.push_back({reduced.expand(found.x), name()});
  return Verdict::found;
}

NeighbourhoodSearch::Range Rens::range(const Worker&, int, double value) const {
  const double near = std::round(value);
  if (std::fabs(value - near) <= kAgreement) return {near, near};
  return {std::floor(value), std::ceil(value)};
}

NeighbourhoodSearch::Range Rins::range(const Worker& worker, int column, double value) const {
  const double known = worker.global.incumbent[column];
  if (std::fabs(value - known) <= kAgreement) return {known, known};
  return {-kInf, kInf};
}

}  // namespace tovik::mip
