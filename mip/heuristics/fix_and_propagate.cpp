#include "mip/heuristics/fix_and_propagate.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr int kAttempts = 6, kDeadEnds = 40, kRows = 12;
constexpr std::int64_t kLeastWork = 2000000, kWorkAnEntry = 40;
constexpr double kPureShare = 0.5;    // of the rows, without which aims say little
constexpr double kFailureWeight = 4;  // a failure of a row counts as so many columns less

double miss(const lp::LpData& lp, int row, double activity) {
  return activity > lp.row_upper[row]   ? lp.row_upper[row] - activity
         : activity < lp.row_lower[row] ? lp.row_lower[row] - activity
                                        : 0;
}

}  // namespace

void FixAndPropagate::prepare(const Worker& worker) {
  const Global& global = worker.global;
  const lp::Matrix& matrix = global.problem.lp.matrix;
  const std::span<const double> x = worker.relaxation->primal();
  x_.assign(x.begin(), x.end());
  is_pure_.assign(static_cast<std::size_t>(global.problem.num_rows()), 1);
  failures_.assign(is_pure_.size(), 0.0);
  for (int j = 0; j < matrix.columns; ++j) {
    if (global.problem.is_integer[j] != 0 || worker.domain.is_fixed(j)) continue;
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) is_pure_[matrix.index[k]] = 0;
  }
  order_.clear();
  for (const int j : global.integer_columns) {
    if (!worker.domain.is_fixed(j)) order_.push_back(j);
  }
  std::stable_sort(order_.begin(), order_.end(),
                   [&](int a, int b) { return fractionality(x_[a]) < fractionality(x_[b]); });
}

void FixAndPropagate::note(const Worker& worker, int row) {
  if (is_pure_[row] == 0) return;
  const double d = miss(worker.global.problem.lp, row, activity_[row]);
  const bool misses = std::fabs(d) > worker.global.settings.tolerances.feasibility;
  int& place = place_[row];
  if (misses && place < 0) {
    place = static_cast<int>(misses_.size());
    misses_.push_back(row);
  } else if (!misses && place >= 0) {
    misses_[place] = misses_.back();
    place_[misses_.back()] = place;
    misses_.pop_back();
    place = -1;
  }
}

void FixAndPropagate::aim_anew(const Worker& worker) {
  const Problem& problem = worker.global.problem;
  const Domain& domain = worker.domain;
  const lp::Matrix& matrix = problem.lp.matrix;
  activity_.assign(is_pure_.size(), 0.0);
  place_.assign(is_pure_.size(), -1);
  misses_.clear();
  decisions_.clear();
  next_ = 0;
  aim_.resize(x_.size());
  for (int j = 0; j < matrix.columns; ++j) {
    const double v = problem.is_integer[j] != 0 ? std::round(x_[j]) : x_[j];
    aim_[j] = std::clamp(v, domain.lower(j), std::max(domain.lower(j), domain.upper(j)));
    if (aim_[j] == 0) continue;
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k)
      activity_[matrix.index[k]] += matrix.value[k] * aim_[j];
  }
  for (int i = 0; i < problem.num_rows(); ++i) note(worker, i);
}

void FixAndPropagate::set_aim(const Worker& worker, int j, double value) {
  const Domain& domain = worker.domain;
  const double v = std::clamp(value, domain.lower(j), std::max(domain.lower(j), domain.upper(j)));
  if (v == aim_[j] || worker.global.problem.is_integer[j] == 0) return;
  const lp::Matrix& matrix = worker.global.problem.lp.matrix;
  for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
    activity_[matrix.index[k]] += matrix.value[k] * (v - aim_[j]);
    note(worker, matrix.index[k]);
  }
  aim_[j] = v;
}

/* The aims of what has moved since the position. */
void FixAndPropagate::follow(const Worker& worker, int from) {
  const std::span<const BoundMove> trail = worker.domain.trail();
  for (std::size_t k = static_cast<std::size_t>(from); k < trail.size(); ++k) {
    const int j = trail[k].column;
    set_aim(worker, j, aim_[j]);
  }
}

void FixAndPropagate::go_back(Worker& worker, int position) {
  const std::span<const BoundMove> trail = worker.domain.trail();
  std::vector<int> columns;
  for (std::size_t k = static_cast<std::size_t>(position); k < trail.size(); ++k) {
    columns.push_back(trail[k].column);
  }
  worker.backtrack(position);
  for (const int j : columns) set_aim(worker, j, std::round(x_[j]));
}

int FixAndPropagate::count_free(const Worker& worker, int row) const {
  const RowView entries = worker.domain.row(row);
  return static_cast<int>(std::count_if(entries.columns.begin(), entries.columns.end(),
                                        [&](int j) { return !worker.domain.is_fixed(j); }));
}

/* The column whose step away from its aim the relaxation minds least. */
bool FixAndPropagate::choose_in_row(const Worker& worker, int row, Decision& decision) const {
  const Domain& domain = worker.domain;
  const RowView entries = domain.row(row);
  const std::vector<double>& cost = worker.global.problem.lp.cost;
  const double lacks = miss(worker.global.problem.lp, row, activity_[row]);
  double best = -kInf, best_cost = kInf;
  for (std::size_t k = 0; k < entries.columns.size(); ++k) {
    const int j = entries.columns[k];
    if (domain.is_fixed(j)) continue;
    const double direction = (entries.values[k] > 0) == (lacks > 0) ? 1 : -1;
    const double steps = std::max(1.0, std::floor(std::fabs(lacks / entries.values[k]) + 1e-9));
    const double value = std::clamp(aim_[j] + direction * steps, domain.lower(j), domain.upper(j));
    if (value == aim_[j]) continue;
    const double pull = direction * (x_[j] - aim_[j]);
    const double price = cost[j] * (value - aim_[j]);
    if (pull < best - 1e-9 || (pull <= best + 1e-9 && price >= best_cost)) continue;
    best = pull;
    best_cost = price;
    decision.column = j;
    decision.value = value;
  }
  decision.row = row;
  return best > -kInf;
}

/* False when all is fixed that can be. */
bool FixAndPropagate::choose(Worker& worker, Decision& decision) {
  decision.position = worker.domain.position();
  decision.next = next_;
  if (!misses_.empty()) {
    int best = -1;
    double least = kInf;
    for (int k = 0; k < kRows; ++k) {
      const int i = misses_[worker.random.below(static_cast<int>(misses_.size()))];
      const double score = count_free(worker, i) - kFailureWeight * failures_[i];
      if (score >= least) continue;
      least = score;
      best = i;
    }
    if (choose_in_row(worker, best, decision)) return true;
    // Its free columns are at their best: others must do, which the fixings below will bring about or refute.
  }
  for (; next_ < order_.size(); ++next_) {
    const int j = order_[next_];
    if (worker.domain.is_fixed(j)) continue;
    decision.next = next_;
    decision.column = j;
    decision.row = -1;
    decision.value = aim_[j];
    return true;
  }
  return false;
}

bool FixAndPropagate::try_decision(Worker& worker, const Decision& decision) {
  worker.domain.fix(decision.column, decision.value, {Reason::Kind::branching, decision.column});
  if (!worker.propagate()) return false;
  follow(worker, decision.position);
  return true;
}

/* The column takes another value than the decision's, on the side that has more room. */
bool FixAndPropagate::exclude(Worker& worker, const Decision& decision) {
  const Domain& domain = worker.domain;
  const int j = decision.column;
  const Reason reason{Reason::Kind::branching, j};
  const bool up = domain.upper(j) - decision.value > decision.value - domain.lower(j);
  if (up) {
    worker.domain.tighten_lower(j, decision.value + 1, reason);
  } else {
    worker.domain.tighten_upper(j, decision.value - 1, reason);
  }
  if (!worker.propagate()) return false;
  follow(worker, decision.position);
  return true;
}

/* Turns the failed decision, or the last one before it for which that is possible. */
bool FixAndPropagate::recover(Worker& worker, Decision failed, int& dead_ends) {
  for (;;) {
    go_back(worker, failed.position);
    next_ = failed.next;
    if (failed.row >= 0) failures_[failed.row] += 1;
    if (exclude(worker, failed)) return true;
    if (++dead_ends > kDeadEnds || decisions_.empty()) return false;
    failed = decisions_.back();
    decisions_.pop_back();
  }
}

bool FixAndPropagate::descend(Worker& worker, std::int64_t end) {
  int dead_ends = 0;
  Decision decision{};
  while (choose(worker, decision)) {
    if (worker.domain.work() + worker.propagator.work() > end || worker.must_stop()) return false;
    if (try_decision(worker, decision)) {
      decisions_.push_back(decision);
    } else if (!recover(worker, decision, dead_ends)) {
      return false;
    }
  }
  return misses_.empty();
}

/* The relaxation finds the continuous columns. */
bool FixAndPropagate::finish(Worker& worker, const Moment& moment) {
  const Global& global = worker.global;
  if (global.integer_columns.size() == x_.size()) {
    if (objective(global.problem, aim_) >= global.cutoff) return false;
    worker.out.candidates.push_back({aim_, name()});
    return true;
  }
  lp::simplex::Limits limits;
  limits.cutoff = global.cutoff;
  limits.iterations = std::max<std::int64_t>(1, moment.iterations);
  if (worker.solve(limits) != lp::Outcome::optimal) return false;
  const std::span<const double> x = worker.relaxation->primal();
  worker.out.candidates.push_back({{x.begin(), x.end()}, name()});
  return true;
}

Verdict FixAndPropagate::call(Worker& worker, const Moment& moment) {
  // Bounds that moved without cutting the point off have not reached the relaxation yet.
  if (worker.solve({}) != lp::Outcome::optimal) return Verdict::nothing;
  prepare(worker);
  const auto pure = std::count(is_pure_.begin(), is_pure_.end(), 1);
  if (static_cast<double>(pure) < kPureShare * static_cast<double>(is_pure_.size())) return Verdict::nothing;
  const int position = worker.domain.position();
  const auto entries = static_cast<std::int64_t>(worker.global.problem.lp.matrix.index.size());
  const std::int64_t end =
      worker.domain.work() + worker.propagator.work() + kLeastWork + kWorkAnEntry * entries;
  bool found = false;
  for (int attempt = 0; attempt < kAttempts && !found && !worker.must_stop(); ++attempt) {
    if (worker.domain.work() + worker.propagator.work() > end) break;
    aim_anew(worker);
    if (descend(worker, end)) {
      const auto checkpoint = worker.relaxation->save();
      found = finish(worker, moment);
      worker.backtrack(position);
      worker.relaxation->restore(*checkpoint);
    }
    worker.backtrack(position);
  }
  worker.solve({});
  return found ? Verdict::found : Verdict::nothing;
}

}  // namespace tovik::mip
