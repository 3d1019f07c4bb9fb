// What is learned from nodes that hold no solution of interest.
#include <cmath>

#include "mip/search/search.h"

namespace tovik::mip {
namespace {

constexpr std::int64_t kWeight = 4;            // of an entry that learning touches, here and there in memory
constexpr double kShare = 0.1, kStart = 10e6;  // of all ticks, that learning may take
constexpr std::size_t kFewClauses = 100;       // which cost little
constexpr double kNoise = 1e-13;               // of a sum, relative to its terms
constexpr std::size_t kPassedOn = 10;          // bounds of a clause that others are told of
constexpr std::size_t kMostPassedOn = 500;     // clauses between two meetings

}  // namespace

/* In ticks: of analysis and of the clauses. */
std::int64_t Search::learning_work() const {
  return kWeight * (conflicts_.work() + worker_.propagator.clauses().work());
}

/* Rows of a subtree would make it hold there only. What costs too much goes. */
bool Search::learns() {
  if (!global_.settings.learn_conflicts || local_rows_made_ > 0 || path_.size() < 2) return false;
  if (static_cast<double>(learning_work()) <= kStart + kShare * static_cast<double>(control_.ticks()))
    return true;
  ClauseStore& clauses = worker_.propagator.clauses();
  if (clauses.size() > kFewClauses) clauses.forget_old();
  return false;
}

void Search::learn_from_propagation() {
  if (learns()) take_learned(conflicts_.learn_from_propagation(worker_));
}

/* The duals of the last safe bound prove it to be beyond the cutoff. */
void Search::learn_from_bound() {
  if (!learns()) return;
  take_learned(conflicts_.learn_from_bound(worker_, worker_.safe_reduced_costs(),
                                           global_.cutoff - worker_.safe_constant(), 0));
}

/* The combination of the rows by the proof's multipliers, whose least value within the bounds is beyond its side. */
void Search::learn_from_infeasibility() {
  if (!learns()) return;
  const lp::verify::FarkasProof* proof = worker_.relaxation->farkas();
  if (proof == nullptr) return;
  const lp::LpData& rows = worker_.relaxation->user_lp();
  double side = 0, size = 0;
  std::vector<double> y = proof->multipliers;
  for (int i = 0; i < rows.num_rows(); ++i) {
    if (y[i] == 0) continue;
    const double at = y[i] > 0 ? rows.row_lower[i] : rows.row_upper[i];
    if (std::isinf(at)) {
      y[i] = 0;
      continue;
    }
    side -= y[i] * at;
    size += std::fabs(y[i]);
  }
  std::vector<double> sum(static_cast<std::size_t>(rows.num_columns()));
  for (int j = 0; j < rows.num_columns(); ++j) {
    double terms = 0, value = 0;
    worker_.relaxation->each_entry(j, [&](int i, double a) {
      value -= a * y[i];
      terms += std::fabs(a * y[i]);
    });
    sum[static_cast<std::size_t>(j)] = std::fabs(value) > kNoise * terms ? value : 0;
  }
  take_learned(
      conflicts_.learn_from_bound(worker_, sum, side, size * global_.settings.tolerances.feasibility));
}

void Search::take_learned(bool learned) {
  if (!learned) return;
  ++statistics_.conflicts;
  statistics_.conflict_bounds += static_cast<std::int64_t>(conflicts_.clause().size());
  watch_clause(conflicts_.clause());
  const std::span<const BoundLiteral> clause = conflicts_.clause();
  if (findings_ && clause.size() <= kPassedOn && findings_->clauses.size() < kMostPassedOn)
    findings_->clauses.emplace_back(clause.begin(), clause.end());
  for (const GlobalBound& bound : worker_.out.bounds) global_bounds_.push_back(bound);
  worker_.out.bounds.clear();
}

void Search::keep_cuts_of_tree(int count) {
  if (!findings_) return;
  const std::vector<Cut>& rows = worker_.cut_rows;
  findings_->cuts.insert(findings_->cuts.end(), rows.end() - count, rows.end());
}

Findings Search::take_findings() {
  Findings found = std::move(findings_).value_or(Findings());
  findings_.emplace();
  return found;
}

void Search::learn_from(const Findings& findings) {
  for (const std::vector<BoundLiteral>& clause : findings.clauses) {
    if (clause.size() == 1) {
      global_bounds_.push_back({clause[0].column, clause[0].side, clause[0].value});
    } else if (global_.settings.learn_conflicts) {
      worker_.propagator.clauses().add(clause);
    }
  }
  for (const Cut& cut : findings.cuts) separation_.offer(cut);
}

}  // namespace tovik::mip
