/* The dual and the primal simplex as an optimizer of runs: a Relaxation that keeps basis, factor, values and
 * weights between the calls and follows lists of changes. */
#pragma once

#include "lp/run/optimizer.h"
#include "lp/simplex/relaxation.h"

namespace tovik::lp::run {

class SimplexOptimizer final : public Optimizer {
 public:
  SimplexOptimizer(LpData lp, const RunContext& context);
  bool fits(const Environment& env) const override;
  /* Values and added rows. */
  bool synchronize(const LpData& lp, const Journal& changes) override;
  void set_start(const Basis& start) override;
  void forget_start() override { engine_.forget_basis(); }
  Outcome optimize(const RunContext& context) override;
  void evaluate_start() override { engine_.extract(); }
  const Answer& answer() const override { return engine_.answer(); }
  Answer release_answer() override { return engine_.release_answer(); }
  simplex::Statistics statistics() const override {
    simplex::Statistics counted;
    engine_.write_statistics(counted);
    return counted;
  }

  simplex::Solver& engine() { return engine_; }

 private:
  simplex::Relaxation engine_;
};

/* Objective limits are stated in the user's sense; the engine minimizes. */
void set_objective_limits(const Environment& env, const Problem& problem, simplex::Solver& solver);

}  // namespace tovik::lp::run
