/* The simplex on the dual of an LP as an optimizer of the LP itself: the dual's dual simplex is the LP's primal and the other
 * way round. Begins from the slack basis always, and keeps nothing between calls. A run that a limit ends has the LP's slack
 * basis only: the dual's basis is none of the LP's until it is optimal. */
#pragma once

#include <utility>

#include "lp/run/optimizer.h"

namespace tovik::lp::run {

class DualFormOptimizer final : public Optimizer {
 public:
  explicit DualFormOptimizer(LpData lp) : lp_(std::move(lp)) {}
  bool fits(const Environment&) const override { return false; }
  bool synchronize(const LpData&, const Journal&) override { return false; }
  void set_start(const Basis&) override {}
  void forget_start() override {}
  Outcome optimize(const RunContext& context) override;
  void evaluate_start() override;
  const Answer& answer() const override { return answer_; }
  Answer release_answer() override { return std::move(answer_); }
  simplex::Statistics statistics() const override { return statistics_; }

 private:
  LpData lp_;
  Answer answer_;
  simplex::Statistics statistics_;
};

}  // namespace tovik::lp::run
