#include "mip/heuristics/start_completion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "lp/simplex/relaxation.h"
#include "lp/verify/point.h"
#include "mip/domain/point.h"
#include "mip/heuristics/reduced_problem.h"
#include "mip/propagate/propagator.h"

namespace tovik::mip {
namespace {

constexpr double kNotGiven = std::numeric_limits<double>::quiet_NaN();
constexpr double kGap = 1e-3;  // relative, at which a search may end
constexpr int kCutRounds = 5, kTries = 4;
constexpr std::int64_t kIterations = 100000, kIterationsARow = 10;
constexpr std::int64_t kStrongIterations = 500;

bool is_on(const SemiColumn& semi, double v) {
  const double nearest = semi.lower > 0 ? semi.lower : semi.upper;  // to 0
  return std::fabs(v) > std::fabs(nearest) / 2;
}

/* What the point leaves to the slacks of indicator constraints. */
void fill_slacks(const Problem& problem, std::vector<double>& x) {
  const lp::LpData& lp = problem.lp;
  for (const Indicator& indicator : problem.indicators) x[indicator.slack] = 0;
  const std::vector<double> activity =
      lp::verify::activities(lp.num_rows(), lp::verify::entries_of(lp.matrix), x);
  for (const Indicator& indicator : problem.indicators) {
    const int k = lp.matrix.start[indicator.slack];
    const int i = lp.matrix.index[k];
    const double lacks =
        lp.matrix.value[k] < 0 ? activity[i] - lp.row_upper[i] : lp.row_lower[i] - activity[i];
    x[indicator.slack] = std::max(0.0, lacks);
  }
}

}  // namespace

void StartCompletion::drop_unusable_values() {
  const auto columns = static_cast<std::size_t>(problem_.num_columns());
  start_.resize(columns, kNotGiven);
  semi_of_.assign(columns, -1);
  is_decided_.assign(problem_.is_integer.begin(), problem_.is_integer.end());
  for (std::size_t k = 0; k < problem_.semi_columns.size(); ++k) {
    is_decided_[problem_.semi_columns[k].column] = 1;
    semi_of_[problem_.semi_columns[k].column] = static_cast<int>(k);
  }
  for (const OrderedSet& set : problem_.sets) {
    for (const int j : set.columns) is_decided_[j] = 1;
  }
  for (const Indicator& indicator : problem_.indicators) start_[indicator.slack] = kNotGiven;
  for (int j = 0; j < problem_.num_columns(); ++j) {
    double& v = start_[j];
    if (!std::isfinite(v)) v = kNotGiven;
    if (problem_.is_integer[j] == 0) continue;
    v = fractionality(v) <= settings_.tolerances.integrality ? std::round(v) : kNotGiven;
  }
}

bool StartCompletion::is_whole() const {
  std::vector<char> is_slack(start_.size(), 0);
  for (const Indicator& indicator : problem_.indicators) is_slack[indicator.slack] = 1;
  for (int j = 0; j < problem_.num_columns(); ++j) {
    if (!is_given(j) && is_slack[j] == 0) return false;
  }
  return true;
}

bool StartCompletion::decides_all() const {
  for (int j = 0; j < problem_.num_columns(); ++j) {
    if (is_decided_[j] != 0 && !is_given(j)) return false;
  }
  return true;
}

/* Empty when it does not hold. */
std::vector<double> StartCompletion::as_it_is() const {
  std::vector<double> x = start_;
  fill_slacks(problem_, x);
  if (!holds(x)) x.clear();
  return x;
}

bool StartCompletion::holds(std::span<const double> x) const {
  const PointViolation v = measure(problem_, x);
  const double tolerance = settings_.tolerances.feasibility;
  return v.primal() <= tolerance && v.object <= tolerance;
}

/* What the value of a column decides. True when the domain is not infeasible by that alone. */
bool StartCompletion::fix(Domain& domain, int j) const {
  const Reason reason{Reason::Kind::branching, j};
  const double v = start_[j];
  const bool is_zero = std::fabs(v) <= settings_.tolerances.feasibility;
  if (problem_.is_integer[j] != 0) {
    domain.fix(j, v, reason);
  } else if (semi_of_[j] >= 0) {
    const SemiColumn& semi = problem_.semi_columns[semi_of_[j]];
    const bool on = is_on(semi, v);
    domain.tighten(j, Side::lower, on ? semi.lower : 0, reason);
    domain.tighten(j, Side::upper, on ? semi.upper : 0, reason);
  } else if (is_zero) {
    domain.fix(j, 0, reason);
  }
  return !domain.is_infeasible();
}

/* kept: the columns whose values count. False when nothing is left. */
bool StartCompletion::fix_given(Domain& domain, const std::vector<char>& kept, Rule rule) const {
  Propagator propagator(problem_);
  if (!propagator.run_all(domain)) return false;
  for (int j = 0; j < problem_.num_columns(); ++j) {
    if (kept[j] == 0) continue;
    if (control_.poll() != lp::Stop::none) return false;
    const int before = domain.position();
    if (fix(domain, j) && (rule == Rule::all_or_nothing || propagator.run(domain))) continue;
    if (rule == Rule::all_or_nothing) return false;
    domain.backtrack(before);
    propagator.went_back(domain);
  }
  return propagator.run(domain);
}

std::vector<double> StartCompletion::search(const Domain& domain, double cutoff) {
  const ReducedProblem reduced(domain);
  if (reduced.problem().num_columns() == 0) {
    std::vector<double> x = reduced.expand({});
    const bool counts = holds(x) && objective(problem_, x) < cutoff;
    return counts ? x : std::vector<double>();
  }
  Settings s = settings_;
  s.enumeration = {};
  s.node_files = {};
  s.cutoff = cutoff;
  s.relative_gap = std::max(s.relative_gap, kGap);
  s.node_limit = s.heuristics.sub_nodes;
  s.solution_limit = kNoLimit;
  s.iteration_limit = kIterations + kIterationsARow * problem_.num_rows();
  s.strong_start = kStrongIterations;
  if (s.cuts.root_rounds == 0) s.cuts.root_rounds = kCutRounds;
  const SubSearchResult found = sub_search_.run(reduced.problem(), s, control_);
  iterations_ += found.iterations;
  return found.found ? reduced.expand(found.x) : std::vector<double>();
}

std::vector<double> StartCompletion::complete(double cutoff) {
  std::vector<char> kept(start_.size(), 0);
  for (std::size_t j = 0; j < kept.size(); ++j) {
    kept[j] = is_decided_[j] != 0 && is_given(static_cast<int>(j)) ? 1 : 0;
  }
  Domain domain(problem_, settings_.tolerances);
  if (!fix_given(domain, kept, Rule::all_or_nothing)) return {};
  return search(domain, cutoff);
}

/* Of the point that keeps the fixings and violates the rows by the least sum, each row by its largest coefficient. */
std::vector<int> StartCompletion::violated_rows(const std::vector<char>& kept) {
  lp::LpData lp = problem_.lp;
  const int columns = lp.num_columns(), rows = lp.num_rows();
  for (int j = 0; j < columns; ++j) {
    if (kept[j] == 0) continue;
    const double v = std::clamp(start_[j], lp.lower[j], lp.upper[j]);
    if (problem_.is_integer[j] != 0 || std::fabs(v) <= settings_.tolerances.feasibility)
      lp.lower[j] = lp.upper[j] = v;
  }
  std::vector<double> largest(static_cast<std::size_t>(rows), 0.0);
  for (std::size_t k = 0; k < lp.matrix.index.size(); ++k) {
    largest[lp.matrix.index[k]] = std::max(largest[lp.matrix.index[k]], std::fabs(lp.matrix.value[k]));
  }
  lp.cost.assign(static_cast<std::size_t>(columns), 0.0);
  std::vector<int> row_of;
  const auto add_slack = [&](int i, double coefficient) {
    lp.matrix.index.push_back(i);
    lp.matrix.value.push_back(coefficient);
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    ++lp.matrix.columns;
    lp.cost.push_back(largest[i] > 0 ? 1 / largest[i] : 1);
    lp.lower.push_back(0);
    lp.upper.push_back(kInf);
    row_of.push_back(i);
  };
  for (int i = 0; i < rows; ++i) {
    if (!std::isinf(lp.row_lower[i])) add_slack(i, 1);
    if (!std::isinf(lp.row_upper[i])) add_slack(i, -1);
  }
  lp::simplex::Relaxation relaxation(std::move(lp), settings_.lp, control_);
  const lp::Outcome outcome = relaxation.resolve(control_);
  iterations_ += relaxation.iterations();
  std::vector<int> violated;
  if (outcome != lp::Outcome::optimal) return violated;
  const std::span<const double> x = relaxation.primal();
  for (std::size_t k = 0; k < row_of.size(); ++k) {
    if (x[static_cast<std::size_t>(columns) + k] > settings_.tolerances.feasibility)
      violated.push_back(row_of[k]);
  }
  return violated;
}

/* True when a fixing has gone. */
bool StartCompletion::free_columns(const std::vector<char>& of_rows, std::vector<char>& kept) const {
  const lp::Matrix& matrix = problem_.lp.matrix;
  bool any = false;
  for (int j = 0; j < problem_.num_columns(); ++j) {
    for (int k = matrix.start[j]; kept[j] != 0 && k < matrix.start[j + 1]; ++k) {
      if (of_rows[matrix.index[k]] == 0) continue;
      kept[j] = 0;
      any = true;
    }
  }
  return any;
}

std::vector<char> StartCompletion::rows_of_free_columns(const std::vector<char>& kept) const {
  const lp::Matrix& matrix = problem_.lp.matrix;
  std::vector<char> rows(static_cast<std::size_t>(problem_.num_rows()), 0);
  for (int j = 0; j < problem_.num_columns(); ++j) {
    if (is_decided_[j] == 0 || kept[j] != 0) continue;
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) rows[matrix.index[k]] = 1;
  }
  return rows;
}

std::vector<double> StartCompletion::repair(double cutoff) {
  const int wanted = settings_.heuristics.repair_tries;
  const int tries = wanted == 0 ? kTries : wanted;
  std::vector<char> kept(start_.size(), 0);
  for (std::size_t j = 0; j < kept.size(); ++j) {
    kept[j] = is_decided_[j] != 0 && is_given(static_cast<int>(j)) ? 1 : 0;
  }
  for (int t = 0; t < tries && control_.poll() == lp::Stop::none; ++t) {
    std::vector<char> rows(static_cast<std::size_t>(problem_.num_rows()), 0);
    for (const int i : violated_rows(kept)) rows[i] = 1;
    // Where the relaxation holds, or nothing can be freed in its rows, the neighbours of what is free are next.
    if (!free_columns(rows, kept) && t > 0 && !free_columns(rows_of_free_columns(kept), kept)) break;
    Domain domain(problem_, settings_.tolerances);
    if (!fix_given(domain, kept, Rule::leave_out_what_fails)) break;
    std::vector<double> x = search(domain, cutoff);
    if (!x.empty()) return x;
  }
  return {};
}

std::vector<double> StartCompletion::run(std::vector<double> start, StartEffort effort, double cutoff) {
  start_ = std::move(start);
  drop_unusable_values();
  const bool whole = is_whole();
  if (effort == StartEffort::check || (effort == StartEffort::automatic && whole)) {
    std::vector<double> x = whole ? as_it_is() : std::vector<double>();
    if (effort == StartEffort::check || !x.empty()) return x;
  }
  if (effort == StartEffort::solve_fixed && !decides_all()) return {};
  std::vector<double> x = complete(cutoff);
  if (!x.empty()) return x;
  const bool may_repair = effort == StartEffort::repair
                              ? settings_.heuristics.repair_tries >= 0
                              : effort == StartEffort::automatic && settings_.heuristics.repair_tries > 0;
  return may_repair ? repair(cutoff) : std::vector<double>();
}

}  // namespace tovik::mip
