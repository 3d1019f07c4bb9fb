/* Local search for a point that satisfies all rows, without any relaxation (after Feasibility Jump: an LP-free Lagrangian MIP
 * heuristic, Math. Programming Comp. 15 (2023)).
 *
 * - A step looks at columns of violated rows. The best of them jumps to the value at which the weighted sum of the
 *   violations of its rows, a convex function of pieces, is least. Where none is for the better the weights of these
 *   rows grow, and the best that has not just moved goes all the same.
 * - Rows count by their largest coefficient. Among equal values the one that costs less is taken.
 * - Bounds are the domain's, which is read only; a column that is fixed there stays. Objects are not known here: points of
 *   problems that have any are for the judge to find wrong.
 * - Cost: a step touches the columns of up to kSample entries, and the column that moves. run() stops by the entries that it
 *   may touch; whether there is hope is for the caller to see from violated().
 * - Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/base/control.h"
#include "lp/simplex/engine_random.h"
#include "mip/domain/domain.h"

namespace tovik::mip {

class JumpSearch {
 public:
  explicit JumpSearch(const Domain& domain);

  /* From a point: integer columns are rounded, all are brought within their bounds. Weights begin anew. */
  void start(std::span<const double> x);
  /* True when every row holds. work: entries that may be touched. */
  bool run(lp::simplex::EngineRandom& random, std::int64_t work, lp::Control& control);

  const std::vector<double>& point() const { return x_; }
  std::size_t violated() const { return violated_.size(); }
  std::size_t fewest_violated() const { return fewest_; }  // since the start
  std::int64_t work() const { return work_; }              // entries touched so far

 private:
  struct Jump {
    double value, score;  // what the weighted violation falls by
  };
  struct Kink {
    double at, slope;  // by which the slope rises there
  };

  double violation(int row, double activity) const;
  Jump jump_of(int column);
  double least_point(int column, double slope);
  double change(int column, double to) const;
  double weight(int row) const { return weight_[row] * scale_[row]; }
  void move(int column, double to);
  void note(int row);
  void step(lp::simplex::EngineRandom& random);

  const Domain& domain_;
  std::vector<double> x_, activity_, weight_, scale_;
  std::vector<int> violated_, place_;  // place of a row among the violated ones, -1: it holds
  std::vector<std::int64_t> moved_;    // step of a column's last move
  std::vector<Kink> kinks_;
  std::int64_t steps_ = 0, work_ = 0;
  std::size_t fewest_ = 0;
};

}  // namespace tovik::mip
