#include "lp/refine/optimum.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/simplex/solver.h"

namespace tovik::lp::refine {
namespace {

constexpr double kMostGrowth = 0x1p40;     // of a magnification from one round to the next
constexpr double kLargest = 0x1p200;       // magnification of any kind
constexpr double kEngineTolerance = 1e-6;  // of the engine that solves for the corrections
constexpr int kSpareBits = 4;              // by which a magnified goal exceeds that
constexpr int kMostRounds = 20;
constexpr double kLittle = 0.25;  // a round that leaves more of the error than this has done little
constexpr int kPatience = 3;      // rounds in a row that do little

/* The power of two next to 1 / error, where the goal needs that many digits. */
double magnification(double error, double most_by_growth, double goal) {
  const double enough = std::exp2(std::ceil(std::log2(kEngineTolerance / goal)) + kSpareBits);
  const double most = std::min({kLargest, most_by_growth, std::max(1.0, enough)});
  if (!(error > 0)) return most;
  return std::min(most, std::exp2(std::floor(-std::log2(error))));
}

class Refinement {
 public:
  Refinement(const LpData& lp, const simplex::Options& options, Control& control, const Goal& goal,
             Iterate& iterate)
      : lp_(lp),
        goal_(goal),
        at_(iterate),
        best_(iterate),
        options_(options),
        solver_(lp, engine_options(options), control, nullptr) {
    at_.basis.dual_weights.clear();
    solver_.set_basis(at_.basis.columns, at_.basis.rows);
  }

  Refined run() {
    int little = 0;
    Refined result;
    Accuracy reached = measure(lp_, at_, left_);
    for (int round = 0; round < kMostRounds; ++round) {
      Outcome outcome = correct(reached, round == 0 && goal_.primal_first, kMostGrowth);
      // The corrections so far are feasible: whatever else an engine claims is by digits that it does not have.
      if (round > 0 && outcome != Outcome::optimal && !is_limit(outcome))
        outcome = correct_by_little(reached);
      result.iterations = solver_.counters().iterations;
      if (outcome != Outcome::optimal) {  // a limit ends it all; other trouble leaves what was reached
        if (round == 0 || is_limit(outcome)) result.outcome = outcome;
        break;
      }
      const Accuracy last = reached;
      reached = measure(lp_, at_, left_);
      if (excess(reached) < excess(result.accuracy) || round == 0) {
        result.accuracy = reached;
        result.outcome = Outcome::optimal;
        best_ = at_;
      }
      if (excess(reached) <= 1) break;
      if (reached.primal == last.primal && reached.dual == last.dual) break;  // and so would the next
      little = excess(reached) > kLittle * excess(last) && round > 0 ? little + 1 : 0;
      if (little == kPatience) break;
    }
    if (result.outcome == Outcome::optimal) at_ = best_;
    return result;
  }

 private:
  static simplex::Options engine_options(simplex::Options options) {
    options.primal_tolerance = options.dual_tolerance = kEngineTolerance;
    options.sifting = simplex::Sifting::never;
    options.objective_lower = -1e300;
    options.objective_upper = 1e300;
    return options;
  }
  double excess(const Accuracy& a) const { return std::max(a.primal / goal_.primal, a.dual / goal_.dual); }

  /* One LP of corrections, solved and added. */
  Outcome correct(const Accuracy& error, bool by_primal, double growth) {
    primal_scale_before_ = primal_scale_;
    dual_scale_before_ = dual_scale_;
    primal_scale_ = magnification(error.primal, primal_scale_ * growth, goal_.primal);
    dual_scale_ = magnification(error.dual, dual_scale_ * growth, goal_.dual);
    for (int j = 0; j < lp_.num_columns(); ++j) {
      solver_.change_bounds(j, at_.x[j].room_to(lp_.lower[j]) * primal_scale_,
                            at_.x[j].room_to(lp_.upper[j]) * primal_scale_);
      solver_.change_cost(j, left_.reduced_costs[j] * dual_scale_);
    }
    for (int i = 0; i < lp_.num_rows(); ++i)
      solver_.change_row_bounds(i, left_.rows[i] * primal_scale_, left_.rows[i] * primal_scale_);
    solver_.change_offset(0);
    solver_.invalidate();
    set_budget();
    const Outcome outcome = solver_.solve(by_primal ? Method::primal : Method::dual);
    if (outcome != Outcome::optimal) return out_of_budget(outcome) ? Outcome::numerical_failure : outcome;
    add(solver_.answer());
    return outcome;
  }

  /* The same by the primal, with a few digits of a correction at a time: where an engine failed. */
  Outcome correct_by_little(const Accuracy& error) {
    constexpr double kGrowth = 0x1p10;
    primal_scale_ = primal_scale_before_;
    dual_scale_ = dual_scale_before_;
    solver_.set_basis(at_.basis.columns, at_.basis.rows);
    return correct(error, true, kGrowth);
  }

  /* Columns at a bound stand at it exactly. */
  void add(const Answer& found) {
    at_.basis.columns = found.column_status;
    at_.basis.rows = found.row_status;
    for (int j = 0; j < lp_.num_columns(); ++j) {
      const BasisStatus status = found.column_status[j];
      if (status == BasisStatus::lower) {
        at_.x[j] = Extended(lp_.lower[j]);
      } else if (status == BasisStatus::upper) {
        at_.x[j] = Extended(lp_.upper[j]);
      } else {
        at_.x[j].add(found.x[j] / primal_scale_);
      }
    }
    for (int i = 0; i < lp_.num_rows(); ++i) at_.y[i].add(found.y[i] / dual_scale_);
  }

  /* An engine that wanders says nothing. */
  void set_budget() {
    constexpr std::int64_t kLeast = 2000;
    simplex::Options options = engine_options(options_);
    const std::int64_t done = solver_.counters().iterations;
    budget_end_ = done + std::max<std::int64_t>(kLeast, 10 * (lp_.num_rows() + lp_.num_columns()));
    options.iteration_limit = std::min(options_.iteration_limit, budget_end_);
    solver_.set_options(options);
  }
  bool out_of_budget(Outcome outcome) const {
    return outcome == Outcome::iteration_limit && solver_.counters().iterations < options_.iteration_limit;
  }

  const LpData& lp_;
  const Goal goal_;
  Iterate& at_;
  Iterate best_;
  const simplex::Options options_;
  Residuals left_;
  double primal_scale_ = 1, dual_scale_ = 1;
  double primal_scale_before_ = 1, dual_scale_before_ = 1;  // of the round before
  std::int64_t budget_end_ = 0;
  simplex::Solver solver_;
};

}  // namespace

Refined refine_optimum(const LpData& lp, const simplex::Options& options, Control& control, const Goal& goal,
                       Iterate& iterate) {
  return Refinement(lp, options, control, goal, iterate).run();
}

}  // namespace tovik::lp::refine
