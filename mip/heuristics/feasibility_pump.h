/* The feasibility pump (Fischetti, Glover, Lodi, Math. Programming 104 (2005); with a share of the objective: Achterberg,
 * Berthold, Discrete Optimization 4 (2007)), while there is no incumbent.
 *
 * Two points approach each other: one rounded, one of the relaxation, which minimizes the distance to the rounded one and a
 * share of the objective that falls from round to round. Where the rounded point comes again, the columns farthest from it
 * are turned. Integer columns that the rounding has between their bounds have no distance term.
 * A point of the relaxation that is whole is solved once more with its integer columns fixed and the true objective.
 * Leaves domain and relaxation as they were. Ends by the budget of iterations, or after a number of rounds. */
#pragma once

#include <span>
#include <vector>

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class FeasibilityPump : public Plugin {
 public:
  const char* name() const override { return "feasibility pump"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  bool pump(Worker& worker, std::int64_t end);
  bool round(Worker& worker, std::span<const double> x);
  void turn_farthest(Worker& worker, std::span<const double> x);
  void aim(Worker& worker, double objective_share);
  void polish(Worker& worker, std::vector<double>& x, std::int64_t end);

  std::vector<double> target_;  // by integer column
  std::vector<lp::simplex::CostChange> costs_;
};

}  // namespace tovik::mip
