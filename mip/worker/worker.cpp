#include "mip/worker/worker.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/base/sum.h"

namespace tovik::mip {

namespace {

constexpr int kObjectiveRounds = 5;  // of rows and objective in turn
constexpr std::size_t kMostProofEntries = 4000000;

}  // namespace

void append_row(const Cut& cut, lp::simplex::RowBlock& rows) {
  lp::Matrix& entries = rows.entries;
  entries.index.insert(entries.index.end(), cut.columns.begin(), cut.columns.end());
  entries.value.insert(entries.value.end(), cut.values.begin(), cut.values.end());
  entries.start.push_back(static_cast<int>(entries.index.size()));
  ++entries.columns;
  rows.lower.push_back(cut.lower);
  rows.upper.push_back(cut.side);
}

Worker::Worker(const Global& shared, std::unique_ptr<lp::simplex::Relaxation> engine,
               lp::Control& stop_control)
    : global(shared),
      control(stop_control),
      domain(shared.problem, shared.settings.tolerances),
      propagator(shared.problem),
      objective(shared.problem),
      relaxation(std::move(engine)),
      random(shared.settings.seed) {}

bool Worker::propagate() {
  if (!propagator.run(domain)) return false;
  for (int round = 0; round < kObjectiveRounds && global.settings.propagate_objective; ++round) {
    if (!objective.run(domain, global.cutoff)) break;
    if (!propagator.run(domain)) return false;
  }
  return !domain.is_infeasible();
}

void Worker::backtrack(int position) {
  domain.backtrack(position);
  propagator.went_back(domain);
  while (!proofs.empty() && proofs.back().position >= position) {
    proof_entries_ -= proofs.back().columns.size();
    proofs.pop_back();
  }
}

int Worker::keep_proof() {
  if (proof_entries_ + safe_reduced_costs_.size() > kMostProofEntries) return -1;
  BoundProof proof{{}, {}, global.cutoff - safe_constant_, domain.position()};
  for (std::size_t j = 0; j < safe_reduced_costs_.size(); ++j) {
    if (safe_reduced_costs_[j] == 0) continue;
    proof.columns.push_back(static_cast<int>(j));
    proof.values.push_back(safe_reduced_costs_[j]);
  }
  proof_entries_ += proof.columns.size();
  proofs.push_back(std::move(proof));
  return static_cast<int>(proofs.size()) - 1;
}

RelaxationRow Worker::row(int i) const {
  const int rows = global.problem.num_rows();
  if (i < rows) {
    const RowView view = domain.row(i);
    return {view.columns, view.values, global.problem.lp.row_lower[i], global.problem.lp.row_upper[i],
            global.row_is_integral[i] != 0};
  }
  const Cut& cut = cut_rows[i - rows];
  return {cut.columns, cut.values, cut.lower, cut.side, cut.is_integral};
}

void Worker::flush() {
  changes_.clear();
  for (const int j : domain.moved_columns()) {
    if (global.is_discrete[j] != 0) changes_.push_back({j, domain.lower(j), domain.upper(j)});
  }
  domain.forget_moved_columns();
  if (!changes_.empty()) relaxation->change_bounds(changes_);
}

lp::Outcome Worker::solve(const lp::simplex::Limits& limits, lp::simplex::Detail detail) {
  flush();
  const lp::Outcome outcome = relaxation->resolve(control, limits, detail);
  iterations += relaxation->iterations();
  return outcome;
}

namespace {

constexpr double kNoise = 1e-12;   // of a reduced cost, relative to its terms
constexpr double kUnit = 1.2e-16;  // relative rounding of one operation
constexpr double kLoss =
    1e-14;  // of the objective, relative, that the margin for rounding of a column may take

/* A reduced cost, the sum of its terms' magnitudes, and by how much rounding may have moved it. */
struct ReducedCost {
  double value, terms, error;
};

ReducedCost plain_sum(const lp::simplex::Relaxation& relaxation, double cost, int j, const double* y) {
  double sum = cost, terms = std::fabs(cost);
  int count = 2;
  relaxation.each_entry(j, [&](int i, double a) {
    const double product = a * y[i];
    sum -= product;
    terms += std::fabs(product);
    ++count;
  });
  return {sum, terms, count * kUnit * terms};
}

double compensated_sum(const lp::simplex::Relaxation& relaxation, double cost, int j, const double* y) {
  lp::CompensatedSum sum;
  sum.add(cost);
  relaxation.each_entry(j, [&](int i, double a) { sum.add_product(-a, y[i]); });
  return sum.value();
}

}  // namespace

double Worker::safe_bound() {
  const std::span<const double> y = relaxation->duals();
  const lp::LpData& rows = relaxation->user_lp();
  lp::CompensatedSum bound;
  bound.add(rows.offset);
  used_duals_.assign(y.begin(), y.end());
  for (int i = 0; i < rows.num_rows(); ++i) {
    double& used = used_duals_[i];
    if (used == 0) continue;
    const double side = used > 0 ? rows.row_lower[i] : rows.row_upper[i];
    if (std::isinf(side)) {
      used = 0;
    } else {
      bound.add_product(used, side);
    }
  }
  const double constant = bound.value();
  safe_reduced_costs_.resize(static_cast<std::size_t>(rows.num_columns()));
  double margin = 0;  // what rounding may have added
  const double allowed = kLoss * std::max(1.0, std::fabs(relaxation->objective()));
  for (int j = 0; j < rows.num_columns(); ++j) {
    ReducedCost d = plain_sum(*relaxation, rows.cost[j], j, used_duals_.data());
    const double lower = domain.lower(j), upper = domain.upper(j);
    // A bound at infinity counts where the column's sign names it only.
    const double far =
        std::max(std::isinf(lower) ? 0 : std::fabs(lower), std::isinf(upper) ? 0 : std::fabs(upper));
    if (d.error * far > allowed) {
      d.value = compensated_sum(*relaxation, rows.cost[j], j, used_duals_.data());
    } else {
      margin += d.error * far;
    }
    safe_reduced_costs_[j] = d.value;
    if (d.value == 0) continue;
    const double at = d.value > 0 ? lower : upper;
    if (!std::isinf(at)) {
      bound.add_product(d.value, at);
    } else if (std::fabs(d.value) > kNoise * d.terms) {
      return -kInf;
    }
  }
  safe_constant_ = constant - margin;
  return bound.value() - margin;
}

bool Worker::is_proven_infeasible() {
  return relaxation->farkas() != nullptr;
}

}  // namespace tovik::mip
