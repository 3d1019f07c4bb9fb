/* The interior point method as an optimizer of runs: a point, and where a basis is asked for crossover and the simplex
 * from where that ends. */
#pragma once

#include <utility>

#include "env/error.h"
#include "lp/barrier/options.h"
#include "lp/run/optimizer.h"

namespace tovik::lp::run {

inline constexpr double kMegabyte = 1024 * 1024;  // of TVK_PARAM_WORKMEM

/* The parameters. */
barrier::Options barrier_options(const Environment& env);

/* Runs the method on an LP without crossed bounds, with its log, and adds what it did to `counts`. */
barrier::Result run_interior_point(const Environment& env, const Problem& problem, const LpData& lp,
                                   const barrier::Options& options, Control& control, BarrierCounts& counts);

/* 1001 and the codes of temporary files: endings that are errors of the call. */
Status status_of(barrier::Ending ending);

/* Some column's or row's lower limit lies above its upper one: no interior point is asked. */
bool has_crossed_bounds(const LpData& lp);

/* x and y of a result completed: activities, reduced costs, objective, statuses of a basis near them. */
Answer answer_near(const LpData& lp, barrier::Result& result);

class BarrierOptimizer final : public Optimizer {
 public:
  explicit BarrierOptimizer(LpData lp) : lp_(std::move(lp)) {}
  bool fits(const Environment&) const override { return false; }  // it goes on from nothing
  bool synchronize(const LpData&, const Journal&) override { return false; }
  void set_start(const Basis&) override {}
  void forget_start() override {}
  Outcome optimize(const RunContext& context) override;
  void evaluate_start() override;
  const Answer& answer() const override { return answer_; }
  Answer release_answer() override { return std::move(answer_); }
  simplex::Statistics statistics() const override { return statistics_; }
  Status failure() const override { return failure_; }

 private:
  LpData lp_;
  Answer answer_;
  simplex::Statistics statistics_;
  Status failure_;
};

}  // namespace tovik::lp::run
