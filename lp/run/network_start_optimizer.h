/* The simplex from the basis that the network simplex finds for the network in the LP, with the report of that. */
#pragma once

#include <utility>

#include "lp/run/optimizer.h"

namespace tovik::lp::run {

class NetworkStartOptimizer final : public Optimizer {
 public:
  explicit NetworkStartOptimizer(LpData lp) : lp_(std::move(lp)) {}
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
