#include "lp/refine/settle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "lp/refine/forms.h"
#include "lp/refine/optimum.h"
#include "lp/refine/quadruple.h"
#include "lp/verify/certificates.h"
#include "lp/verify/point.h"

namespace tovik::lp::refine {
namespace {

constexpr double kShare = 0.25;             // of the tolerances: what a point is refined to
constexpr double kSharp = 1e-15;            // what an optimum's violations are refined to where they matter
constexpr Goal kProof{1e-20, 1e-20, true};  // for what has to prove something
constexpr double kFarAway = 1e30;           // values that are no point to start from
/* What entries may be off by, against the largest. What it may do to a proof is counted. */
constexpr double kQuadrupleError = 1e-28;  // directions in quadruple precision
constexpr double kDirectionError = 1e-15;  // refined directions, at most
constexpr double kProofError = 1e-18;      // multipliers
constexpr double kLooseProofError = 1e-9;  // refined multipliers, at most: an engine may have gone no further
constexpr double kHugeError = 1e-20;       // residuals of optima whose values no absolute tolerance fits

verify::Multipliers multipliers(const std::vector<Extended>& v) {
  verify::Multipliers result;
  for (const Extended& entry : v) {
    result.high.push_back(entry.value());
    result.low.push_back(entry.low());
  }
  return result;
}

double largest(const std::vector<Extended>& v) {
  double result = 0;
  for (const Extended& entry : v) result = std::max(result, std::fabs(entry.value()));
  return result;
}

/* An engine that met trouble in an LP of ours says nothing of the user's. */
Outcome trouble(Outcome outcome) {
  return is_limit(outcome) ? outcome : Outcome::numerical_failure;
}

bool is_conclusive(Outcome outcome) {
  return outcome == Outcome::optimal || outcome == Outcome::infeasible || outcome == Outcome::unbounded;
}

class Settlement {
 public:
  Settlement(const LpData& lp, const simplex::Options& options, Control& control, Answer& answer)
      : lp_(lp),
        options_(options),
        control_(control),
        answer_(answer),
        form_(lp),
        goal_{kShare * options.primal_tolerance, kShare * options.dual_tolerance, false} {}

  Settled run() {
    Outcome outcome = from_engine();
    if (outcome != Outcome::optimal && !is_limit(outcome)) outcome = from_forms();
    return {by_quadruple_where_better(outcome), iterations_};
  }

  /* As run(), for proofs only. */
  Settled prove() {
    const Answer before = answer_;
    Outcome outcome = by_quadruple_where_better(find_feasible());
    if (outcome == Outcome::infeasible && !is_noisy_) return {outcome, iterations_};
    answer_ = before;
    return {is_limit(outcome) ? outcome : Outcome::numerical_failure, iterations_};
  }

  Settled sharpen() {
    goal_.primal = kSharp;
    Outcome outcome = from_engine();
    if (outcome == Outcome::numerical_failure) outcome = by_quadruple();
    if (answer_.unscaled_infeasible) outcome = Outcome::numerical_failure;  // worse than what was there
    return {outcome, iterations_};
  }

 private:
  Refined refine(const LpData& lp, const Goal& goal, Iterate& at) {
    simplex::Options options = options_;
    options.iteration_limit -= std::min(options.iteration_limit, iterations_);
    const Refined result = refine_optimum(lp, options, control_, goal, at);
    iterations_ += result.iterations;
    return result;
  }

  Outcome from_engine() {
    const auto is_far = [](double v) { return !(std::fabs(v) < kFarAway); };
    if (answer_.column_status.empty() || !answer_.has_values || std::ranges::any_of(answer_.x, is_far) ||
        std::ranges::any_of(answer_.y, is_far) || std::ranges::any_of(answer_.activity, is_far)) {
      return Outcome::numerical_failure;
    }
    Iterate at{form_.point(answer_.x, answer_.activity),
               {answer_.y.begin(), answer_.y.end()},
               form_.basis({answer_.column_status, answer_.row_status, {}})};
    const Refined found = refine(form_.lp(), goal_, at);
    return found.outcome == Outcome::optimal ? take_optimum(at) : found.outcome;
  }

  Outcome from_forms() {
    Outcome outcome = find_feasible();
    if (outcome == Outcome::optimal) outcome = find_ray();
    return outcome == Outcome::optimal ? from_both_sides() : outcome;
  }

  /* optimal: feasible_ is one, and between_ the LP that has it. */
  Outcome find_feasible() {
    feasible_ = form_.elastic_start();
    const Refined found = refine(form_.elastic(), kProof, feasible_);
    if (found.outcome != Outcome::optimal) return trouble(found.outcome);
    double missed = 0;
    for (int i = 0; i < lp_.num_rows(); ++i) missed = std::max(missed, std::fabs(form_.missed(feasible_, i)));
    if (missed > options_.primal_tolerance)
      return take_proof(feasible_.y, std::clamp(found.accuracy.dual, kProofError, kLooseProofError))
                 ? Outcome::infeasible
                 : Outcome::numerical_failure;
    between_ = form_.allow_misses(feasible_);
    return Outcome::optimal;
  }

  /* optimal: there is no ray, and feasible_ has multipliers that are feasible for the dual. */
  Outcome find_ray() {
    Iterate at = form_.recession_start();
    const Refined found = refine(form_.recession(), kProof, at);
    if (found.outcome != Outcome::optimal) return trouble(found.outcome);
    if (take_ray(at.x, std::min(found.accuracy.primal, kDirectionError))) return Outcome::unbounded;
    feasible_.y = at.y;
    return Outcome::optimal;
  }

  Outcome from_both_sides() {
    Goal wanted = goal_;
    wanted.primal_first = true;
    Iterate at = feasible_;
    const Refined found = refine(between_, wanted, at);
    return found.outcome == Outcome::optimal ? take_optimum(at) : trouble(found.outcome);
  }

  /* Where there is no claim or its proof carries noise. */
  Outcome by_quadruple_where_better(Outcome outcome) {
    if (outcome == Outcome::numerical_failure) return by_quadruple();
    if (!is_noisy_) return outcome;
    Answer noisy = answer_;
    const Outcome found = by_quadruple();
    if (is_conclusive(found)) return found;
    answer_ = std::move(noisy);
    return outcome;
  }

  Outcome by_quadruple() {
    const Outcome outcome = by(Precision::quadruple);
    return outcome == Outcome::numerical_failure ? by(Precision::octuple) : outcome;
  }

  Outcome by(Precision precision) {
    if (!affordable(precision, lp_.num_rows(), form_.lp().num_columns())) return Outcome::numerical_failure;
    QuadrupleResult found = solve_quadruple(form_.lp(), precision, options_.primal_tolerance,
                                            options_.iteration_limit - iterations_, control_);
    iterations_ += found.iterations;
    if (found.outcome == Outcome::infeasible)
      return take_proof(found.iterate.y, kProofError * largest(found.iterate.y)) ? found.outcome
                                                                                 : Outcome::numerical_failure;
    if (found.outcome == Outcome::optimal) return take_optimum(found.iterate, kHugeError);
    if (found.outcome != Outcome::unbounded) return trouble(found.outcome);
    feasible_ = std::move(found.iterate);
    return take_ray(found.ray, kQuadrupleError * largest(found.ray)) ? found.outcome
                                                                     : Outcome::numerical_failure;
  }

  bool take_proof(const std::vector<Extended>& y, double error) {
    verify::Multipliers digits = multipliers(y);
    digits.error = error;
    verify::FarkasProof proof;
    if (!verify::check_farkas(lp_, verify::entries_of(lp_.matrix), std::move(digits), proof)) return false;
    answer_.withdraw();
    answer_.farkas = std::move(proof.multipliers);
    answer_.farkas_gap = proof.gap;
    answer_.farkas_margin = proof.margin;
    answer_.farkas_clean = proof.clean;
    is_noisy_ = !proof.clean;
    answer_.has_values = !answer_.x.empty();
    return true;
  }

  /* With the point in feasible_. */
  bool take_ray(std::vector<Extended> direction, double error) {
    direction.resize(lp_.cost.size());
    verify::Multipliers ray;
    const auto holds = [&](double allowed) {
      ray = multipliers(direction);
      ray.error = allowed;
      return verify::check_ray(lp_, verify::entries_of(lp_.matrix), ray);
    };
    is_noisy_ = !holds(kQuadrupleError * largest(direction));
    if (is_noisy_ && !holds(error)) return false;
    take_point(feasible_);
    answer_.primal_feasible = true;
    answer_.ray = std::move(ray.high);
    return true;
  }

  /* Where the iterate, but for misses that were let pass, keeps the tolerances; or, with `share`, where it is that exact
   * against its largest value, and then it is told that the tolerances are not kept. */
  Outcome take_optimum(Iterate& at, double share = 0) {
    at.x.resize(form_.lp().cost.size());
    at.basis.columns.resize(at.x.size());
    Residuals residuals;
    const Accuracy accuracy = measure(form_.lp(), at, residuals);
    const bool primal = accuracy.primal <= options_.primal_tolerance;
    const bool dual = accuracy.dual <= options_.dual_tolerance;
    if ((!primal && !(accuracy.primal <= share * largest(at.x))) ||
        (!dual && !(accuracy.dual <= share * largest(at.y)))) {
      return Outcome::numerical_failure;
    }
    is_noisy_ = false;
    take_point(at);
    answer_.primal_feasible = primal;
    answer_.dual_feasible = dual;
    answer_.unscaled_infeasible = !primal || !dual;
    return Outcome::optimal;
  }

  /* Rounded to doubles; each value as exact as it can be alone. */
  void take_point(const Iterate& at) {
    const Basis basis = form_.original_basis(at.basis);
    answer_.withdraw();
    answer_.x = rounded(at.x);
    answer_.x.resize(lp_.cost.size());
    answer_.y = rounded(at.y);
    answer_.column_status = basis.columns;
    answer_.row_status = basis.rows;
    answer_.activity = verify::activities(lp_.num_rows(), verify::entries_of(lp_.matrix), answer_.x);
    answer_.d.clear();
    for (int j = 0; j < lp_.num_columns(); ++j) {
      CompensatedSum sum;
      sum.add(lp_.cost[j]);
      for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k)
        at.y[lp_.matrix.index[k]].add_to(sum, -lp_.matrix.value[k]);
      answer_.d.push_back(sum.value());
    }
    answer_.objective = verify::objective(lp_, answer_.x);
    answer_.violation = verify::measure_violation(lp_, answer_);
    answer_.has_values = true;
  }

  const LpData& lp_;
  const simplex::Options options_;
  Control& control_;
  Answer& answer_;
  const EquationForm form_;
  Goal goal_;  // of optima
  Iterate feasible_;
  LpData between_;
  bool is_noisy_ =
      false;  // the claim: its sums are off by more than their rounding, if by nothing that matters
  std::int64_t iterations_ = 0;
};

/* Bounds that cross within the tolerance are one, as engines take them: a column's upper bound, a row's lower side. */
LpData close_bounds(LpData lp, double tolerance) {
  for (std::size_t j = 0; j < lp.lower.size(); ++j)
    if (lp.lower[j] > lp.upper[j] && lp.lower[j] - lp.upper[j] <= tolerance) lp.lower[j] = lp.upper[j];
  for (std::size_t i = 0; i < lp.row_lower.size(); ++i)
    if (lp.row_lower[i] > lp.row_upper[i] && lp.row_lower[i] - lp.row_upper[i] <= tolerance)
      lp.row_upper[i] = lp.row_lower[i];
  return lp;
}

/* All sides and bounds give way by a share of the tolerance. */
LpData widened(LpData lp, double by) {
  for (std::vector<double>* const v : {&lp.lower, &lp.row_lower})
    for (double& bound : *v) bound -= by;
  for (std::vector<double>* const v : {&lp.upper, &lp.row_upper})
    for (double& bound : *v) bound += by;
  return lp;
}

/* Where a proof leaves room for points within the tolerance: what is true of the LP that contains them. It stands
 * where its point is one of them. */
void admit_points_within_tolerance(const LpData& lp, simplex::Options options, Control& control,
                                   Settled& settled, Answer& answer) {
  constexpr double kMostOfIt = 0.5;
  const LpData wider = widened(lp, kMostOfIt * options.primal_tolerance);
  options.iteration_limit -= std::min(options.iteration_limit, settled.iterations);
  options.primal_tolerance *= 1 - kMostOfIt;
  Answer found;
  const Settled again = Settlement(wider, options, control, found).run();
  settled.iterations += again.iterations;
  if (again.outcome != Outcome::optimal && again.outcome != Outcome::unbounded) return;
  if (found.unscaled_infeasible) return;
  found.violation = verify::measure_violation(lp, found);
  if (found.violation.primal() > options.primal_tolerance / (1 - kMostOfIt)) return;
  found.outcome = settled.outcome = again.outcome;
  answer = std::move(found);
}

}  // namespace

Settled settle(const LpData& lp, const simplex::Options& options, Control& control, Answer& answer) {
  const LpData closed = close_bounds(lp, options.primal_tolerance);
  Settled settled = Settlement(closed, options, control, answer).run();
  answer.outcome = settled.outcome;
  if (settled.outcome == Outcome::infeasible && answer.farkas_margin <= options.primal_tolerance)
    admit_points_within_tolerance(lp, options, control, settled, answer);
  return settled;
}

Settled prove_infeasible(const LpData& lp, const simplex::Options& options, Control& control,
                         Answer& answer) {
  const LpData closed = close_bounds(lp, options.primal_tolerance);
  const Settled settled = Settlement(closed, options, control, answer).prove();
  if (settled.outcome == Outcome::infeasible) answer.outcome = settled.outcome;
  return settled;
}

Settled sharpen(const LpData& lp, const simplex::Options& options, Control& control, Answer& answer) {
  const LpData closed = close_bounds(lp, options.primal_tolerance);
  const Settled settled = Settlement(closed, options, control, answer).sharpen();
  if (settled.outcome == Outcome::optimal) answer.outcome = settled.outcome;
  return settled;
}

}  // namespace tovik::lp::refine
