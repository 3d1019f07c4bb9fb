/* Propagation of c x < cutoff: what is not better than the incumbent is of no interest.
 *
 * The least value of the objective within the bounds, then columns by falling |c| as long as the widest range of an integer
 * column would go beyond the cutoff; continuous columns where the bound moves by a fair share of its size.
 * Cost: the columns with costs. A bound holds for points below the cutoff only, like those from reduced costs. */
#pragma once

#include <vector>

#include "mip/domain/domain.h"

namespace tovik::mip {

class ObjectivePropagator {
 public:
  explicit ObjectivePropagator(const Problem& problem);

  /* True when a bound moved or the domain has become infeasible. */
  bool run(Domain& domain, double cutoff);
  std::int64_t work() const { return work_; }  // columns looked at

 private:
  const Problem& problem_;
  std::vector<int> columns_;  // with costs: continuous ones, then integer ones by falling |cost|
  int continuous_ = 0;
  double widest_ = 0;  // range of the integer ones
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
