#include "mip/heuristics/neighbourhood.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr double kAgreement = 1e-6;
constexpr double kGap = 1e-3;  // relative, at which a sub-search may end
constexpr int kCutRounds = 5;
constexpr std::int64_t kStrongIterations = 500;
constexpr std::int64_t kStallNodes = 100;         // without a better solution
constexpr double kLarger = 0.8, kSmaller = 0.3;   // factors of what is fixed, and of what is left
constexpr double kLeastRadius = 4, kWider = 1.5;  // of local branching
constexpr double kLeastMost = 0.3, kMostMost = 0.95;
constexpr int kLongRow = 200;  // beyond, a row connects too much to say that columns are near each other

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
  s.stall_limit = kStallNodes;
  s.iteration_limit = moment.iterations;
  s.strong_start = kStrongIterations;
  s.presolve.probing = -1;
  s.presolve.restarts = 0;
  s.witness = {};
  s.enumeration = {};
  s.node_files = {};
  s.heuristics.neighbourhood_interval = -1;
  s.heuristics.local_branching = false;
  s.polish = {};
  if (s.cuts.root_rounds == 0) s.cuts.root_rounds = kCutRounds;
  s.cuts.in_tree = -1;
  return s;
}

}  // namespace

/* False when too little is fixed, or nothing is possible. */
bool NeighbourhoodSearch::restrict_domain(const Worker& worker, Domain& domain) {
  const Global& global = worker.global;
  Propagator propagator(global.problem);
  take_global_bounds(worker.domain, domain);
  if (!propagator.run(domain)) return false;
  std::vector<char> is_open(static_cast<std::size_t>(global.problem.num_columns()), 0);
  int open = 0, left = 0;
  for (const int j : global.integer_columns) {
    is_open[j] = domain.is_fixed(j) ? 0 : 1;
    open += is_open[j];
  }
  left = open;
  for (const Fixing& f : fixings_) {
    if (worker.must_stop()) return false;
    if (open - left >= most_fixed_ * open) break;
    if (domain.is_fixed(f.column) || f.lower > domain.upper(f.column) || f.upper < domain.lower(f.column))
      continue;
    const int before = domain.position();
    const Reason reason{Reason::Kind::branching, f.column};
    domain.tighten(f.column, Side::lower, f.lower, reason);
    domain.tighten(f.column, Side::upper, f.upper, reason);
    if (!propagator.run(domain)) {
      domain.backtrack(before);
      propagator.went_back(domain);
      continue;
    }
    for (std::size_t k = static_cast<std::size_t>(before); k < domain.trail().size(); ++k) {
      const int j = domain.trail()[k].column;
      if (is_open[j] == 0 || !domain.is_fixed(j)) continue;
      is_open[j] = 0;
      --left;
    }
  }
  return open - left >= least_fixed_ * open;
}

void NeighbourhoodSearch::adapt(bool found, bool exhausted) {
  if (found || first_most_fixed_ == 1) return;
  if (exhausted) {
    most_fixed_ = std::max(kLeastMost, kLarger * most_fixed_);
  } else {
    most_fixed_ = std::min(kMostMost, 1 - (1 - most_fixed_) * (1 - kSmaller));
  }
}

Verdict NeighbourhoodSearch::call(Worker& worker, const Moment& moment) {
  if (worker.sub_search == nullptr || worker.global.integer_columns.empty()) return Verdict::nothing;
  const Global& global = worker.global;
  fixings_.clear();
  propose(worker, worker.relaxation->primal(), fixings_);
  if (fixings_.empty() && least_fixed_ > 0) return Verdict::nothing;
  std::stable_sort(fixings_.begin(), fixings_.end(),
                   [](const Fixing& a, const Fixing& b) { return a.rank < b.rank; });
  Domain domain(global.problem, global.settings.tolerances);
  if (!restrict_domain(worker, domain)) return Verdict::nothing;
  ReducedProblem reduced(domain);
  if (!restrict(global, reduced)) return Verdict::nothing;
  const SubSearchResult result =
      worker.sub_search->run(reduced.problem(), settings_of_sub_search(global, moment), worker.control);
  worker.iterations += result.iterations;
  adapt(result.found, result.exhausted);
  if (!result.found) return Verdict::nothing;
  worker.out.candidates.push_back({reduced.expand(result.x), name()});
  return Verdict::found;
}

void Rens::propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) {
  for (const int j : worker.global.integer_columns) {
    const double near = std::round(x[j]);
    const bool is_whole = std::fabs(x[j] - near) <= kAgreement;
    fixings.push_back({j, is_whole ? near : std::floor(x[j]), is_whole ? near : std::ceil(x[j]), 0});
  }
}

void Rins::propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) {
  if (!worker.global.has_incumbent_point()) return;
  for (const int j : worker.global.integer_columns) {
    const double known = worker.global.incumbent[j];
    if (std::fabs(x[j] - known) <= kAgreement) fixings.push_back({j, known, known, 0});
  }
}

void ReducedCostNeighbourhood::propose(Worker& worker, std::span<const double> x,
                                       std::vector<Fixing>& fixings) {
  worker.safe_bound();
  const std::span<const double> d = worker.safe_reduced_costs();
  for (const int j : worker.global.integer_columns) {
    const double near = std::round(x[j]);
    if (fractionality(x[j]) <= kAgreement) fixings.push_back({j, near, near, -std::fabs(d[j])});
  }
}

void Crossover::propose(Worker& worker, std::span<const double>, std::vector<Fixing>& fixings) {
  const Global& global = worker.global;
  if (!global.has_incumbent_point() || global.earlier_incumbents.empty()) return;
  for (const int j : global.integer_columns) {
    const double known = global.incumbent[j];
    const bool agree =
        std::all_of(global.earlier_incumbents.begin(), global.earlier_incumbents.end(),
                    [&](const std::vector<double>& x) { return std::fabs(x[j] - known) <= kAgreement; });
    if (agree) fixings.push_back({j, known, known, worker.random.real()});
  }
}

void Mutation::propose(Worker& worker, std::span<const double>, std::vector<Fixing>& fixings) {
  const Global& global = worker.global;
  if (!global.has_incumbent_point()) return;
  for (const int j : global.integer_columns) {
    fixings.push_back({j, global.incumbent[j], global.incumbent[j], worker.random.real()});
  }
}

/* The binaries that are 1 in the incumbent less those that are not, at least as many as are 1 less the radius. */
bool LocalBranching::restrict(const Global& global, ReducedProblem& reduced) {
  if (!global.has_incumbent_point()) return false;
  std::vector<int> columns;
  std::vector<double> values;
  int ones = 0;
  for (const int j : global.integer_columns) {
    if (global.problem.lp.lower[j] != 0 || global.problem.lp.upper[j] != 1) continue;
    const bool is_one = global.incumbent[j] > 0.5;
    ones += is_one ? 1 : 0;
    columns.push_back(j);
    values.push_back(is_one ? 1 : -1);
  }
  if (static_cast<double>(columns.size()) <= 2 * radius_) return false;  // it would be no restriction
  reduced.add_row(columns, values, ones - std::floor(radius_), kInf);
  return true;
}

void LocalBranching::adapt(bool found, bool exhausted) {
  if (!found) radius_ = exhausted ? kWider * radius_ : std::max(kLeastRadius, radius_ / 2);
}

/* Breadth first over the rows. */
void Region::walk(const Worker& worker, int first) {
  const Problem& problem = worker.global.problem;
  const lp::Matrix& matrix = problem.lp.matrix;
  std::vector<char> is_seen(static_cast<std::size_t>(problem.num_rows()), 0);
  is_reached_.assign(static_cast<std::size_t>(problem.num_columns()), 0);
  reached_.assign(1, first);
  is_reached_[first] = 1;
  for (std::size_t next = 0; next < reached_.size(); ++next) {
    const int c = reached_[next];
    for (int k = matrix.start[c]; k < matrix.start[c + 1]; ++k) {
      const int i = matrix.index[k];
      const RowView row = worker.domain.row(i);
      if (is_seen[i] != 0 || row.columns.size() > kLongRow) continue;
      is_seen[i] = 1;
      for (const int j : row.columns) {
        if (is_reached_[j] != 0) continue;
        is_reached_[j] = 1;
        reached_.push_back(j);
      }
    }
  }
}

void Region::propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) {
  const Global& global = worker.global;
  if (!global.has_incumbent_point()) return;
  std::vector<int> differ;
  for (const int j : global.integer_columns) {
    if (std::fabs(x[j] - global.incumbent[j]) > kAgreement) differ.push_back(j);
  }
  const std::vector<int>& from = differ.empty() ? global.integer_columns : differ;
  walk(worker, from[worker.random.below(static_cast<int>(from.size()))]);
  // The farthest are fixed first, but what is out of reach before them.
  for (const int j : global.integer_columns) {
    if (is_reached_[j] == 0) fixings.push_back({j, global.incumbent[j], global.incumbent[j], -kInf});
  }
  for (std::size_t k = 0; k < reached_.size(); ++k) {
    const int j = reached_[k];
    if (global.problem.is_integer[j] == 0) continue;
    fixings.push_back({j, global.incumbent[j], global.incumbent[j], -static_cast<double>(k)});
  }
}

}  // namespace tovik::mip
