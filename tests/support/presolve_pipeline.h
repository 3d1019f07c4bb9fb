/* One LP solved with and without presolve: verdict, objective, the undone solution in the original problem,
 * and the iterations that its basis still needs. */
#pragma once

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "lp/presolve/presolve.h"
#include "lp/simplex/solver.h"
#include "support/presolve_proof.h"

namespace support {

using tovik::lp::Answer;
using tovik::lp::Method;
using tovik::lp::Outcome;
using tovik::lp::simplex::Solver;

/* Largest violation of the point, relative to the terms that it is a sum of; the sign of duals and the
 * statuses count, and the number of basics: one that is wrong makes it infinite. */
inline double worst_violation(const LpData& lp, const Answer& p) {
  double worst = 0;
  long basics = 0;
  const auto look = [&](double value, double dual, double low, double high, double value_size,
                        double dual_size, BasisStatus at) {
    basics += at == BasisStatus::basic;
    worst = std::max({worst, (low - value) / value_size, (value - high) / value_size});
    if (at == BasisStatus::lower) worst = std::max(worst, std::fabs(value - low) / value_size);
    if (at == BasisStatus::upper) worst = std::max(worst, std::fabs(value - high) / value_size);
    if (at == BasisStatus::free && (std::isfinite(low) || std::isfinite(high))) worst = kInf;
    const double wrong = at == BasisStatus::basic || at == BasisStatus::free ? std::fabs(dual)
                         : low == high                                       ? 0
                         : at == BasisStatus::lower                          ? -dual
                                                                             : dual;
    worst = std::max(worst, wrong / dual_size);
  };
  std::vector<double> activity(lp.row_lower.size()), size(lp.row_lower.size(), 1.0);
  for (int j = 0; j < lp.num_columns(); ++j) {
    double d = lp.cost[j], terms = 1 + std::fabs(d);
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      const int i = lp.matrix.index[k];
      const double in_row = lp.matrix.value[k] * p.x[j], in_column = lp.matrix.value[k] * p.y[i];
      activity[i] += in_row, size[i] += std::fabs(in_row);
      d -= in_column, terms += std::fabs(in_column);
    }
    worst = std::max(worst, std::fabs(d - p.d[j]) / terms);
    look(p.x[j], d, lp.lower[j], lp.upper[j], 1 + std::fabs(p.x[j]), terms, p.column_status[j]);
  }
  for (int i = 0; i < lp.num_rows(); ++i)
    look(activity[i], p.y[i], lp.row_lower[i], lp.row_upper[i], size[i], 1 + std::fabs(p.y[i]),
         p.row_status[i]);
  return basics == lp.num_rows() ? worst : kInf;
}

struct PipelineResult {
  std::string fault;  // a wrong answer; empty: none
  std::string doubt;  // no wrong answer, but one that would have to be mended or sought without presolve
  double violation = 0;
  long iterations = 0;  // that the undone basis still needed
  bool optimal = false;
};

struct Reference {
  Outcome outcome = Outcome::numerical_failure;
  double objective = 0;
};

/* A run that does not end is a failed test, not one that hangs. */
inline tovik::lp::simplex::Options limited() {
  tovik::lp::simplex::Options options;
  options.iteration_limit = 20000;
  return options;
}

inline Reference solve_plain(const LpData& lp) {
  QuietControl control;
  Solver solver(lp, limited(), control, nullptr);
  const Outcome outcome = solver.solve(Method::dual);
  return {outcome, solver.answer().objective};
}

class Pipeline {
 public:
  Pipeline(const LpData& lp, const Reference& plain, const Settings& settings, Method method,
           std::int64_t polls = INT64_MAX)
      : lp_(lp), plain_(plain), method_(method) {
    QuietControl control(polls);
    reduction_ = tovik::lp::presolve::presolve(lp, settings, control, {}, false);
    result_.optimal = plain.outcome == Outcome::optimal;
    if (reduction_.status.code != StatusCode::reduced) {
      judge_verdict();
    } else {
      solve();
    }
  }
  const PipelineResult& result() const { return result_; }
  const Reduction& reduction() const { return reduction_; }

 private:
  static constexpr double kObjective = 1e-7, kDoubt = 1e-6, kWrong = 1e-4;

  void judge_verdict() {
    const bool infeasible = reduction_.status.primal_infeasible();
    if (infeasible && proves_infeasible(lp_, tovik::lp::presolve::infeasibility_proof(lp_, reduction_))) {
      if (result_.optimal || plain_.outcome == Outcome::unbounded) result_.fault = "proof of a wrong verdict";
      return;
    }
    if (result_.optimal) result_.doubt = "verdict on a problem with an optimum";
    if (infeasible && !by_reduced_costs(reduction_)) result_.doubt = "verdict without proof";
  }

  void solve() {
    QuietControl control;
    Solver solver(reduction_.lp, limited(), control, nullptr);
    const Outcome outcome = solver.solve(method_);
    if (outcome != Outcome::optimal) {
      if (result_.optimal)
        result_.doubt = "outcome " + std::to_string(static_cast<int>(outcome)) + " instead of 0";
      if (outcome == Outcome::infeasible && !by_reduced_costs(reduction_) &&
          !proves_infeasible(lp_, postsolve_proof(lp_, reduction_, solver.answer().farkas)))
        result_.doubt = "proof does not come back";
      return;
    }
    if (!result_.optimal) {
      // A problem that is infeasible by less than the tolerance may end either way; by more its point does not stand the
      // judge on the original's data, and it is solved again.
      (plain_.outcome == Outcome::infeasible ? result_.doubt : result_.fault) =
          "an optimum instead of outcome " + std::to_string(static_cast<int>(plain_.outcome));
      return;
    }
    undo(solver.answer());
  }

  void undo(const Answer& answer) {
    const double difference =
        std::fabs(answer.objective - plain_.objective) / (1 + std::fabs(plain_.objective));
    if (difference > kObjective) note(difference > kWrong, "objective off by " + std::to_string(difference));
    const Answer point = postsolve(lp_, reduction_, answer);
    result_.violation = worst_violation(lp_, point);
    if (!(result_.violation <= kDoubt))
      note(!(result_.violation <= kWrong), "violation " + std::to_string(result_.violation));
    QuietControl control;
    Solver again(lp_, limited(), control, nullptr);
    again.set_basis(point.column_status, point.row_status);
    const Outcome outcome = again.solve(method_);
    result_.iterations = again.core().counters.iterations;
    if (outcome != Outcome::optimal)
      note(false, "the undone basis leads to outcome " + std::to_string(static_cast<int>(outcome)));
    if (result_.iterations > 0)
      note(false, std::to_string(result_.iterations) + " iterations from the undone basis");
  }

  void note(bool wrong, const std::string& text) {
    std::string& place = wrong ? result_.fault : result_.doubt;
    if (place.empty()) place = text;
  }

  const LpData& lp_;
  const Reference& plain_;
  Method method_;
  Reduction reduction_;
  PipelineResult result_;
};

}  // namespace support
