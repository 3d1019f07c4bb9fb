/* Propagation to a fixed point: rows, objects and clauses, until nothing moves or the domain is infeasible.
 *
 * Follows the domain's trail: what was there at the last call is done. An object belongs to one worker, with its domain.
 * Cost: rows that are looked at times their length, at most kRounds looks a row on average. */
#pragma once

#include "lp/base/control.h"
#include "mip/domain/domain.h"
#include "mip/propagate/clauses.h"
#include "mip/propagate/objects.h"

namespace tovik::mip {

class Propagator {
 public:
  explicit Propagator(const Problem& problem) : objects_(problem), clauses_(problem) {}

  /* False when the domain is infeasible. */
  bool run(Domain& domain);
  /* Looks at all rows and objects, too. */
  bool run_all(Domain& domain);
  /* Whoever takes the domain back says so. */
  void went_back(const Domain& domain);

  ClauseStore& clauses() { return clauses_; }
  const ClauseStore& clauses() const { return clauses_; }

  std::int64_t work() const { return work_; }  // entries looked at

 private:
  ObjectPropagator objects_;
  ClauseStore clauses_;
  int seen_ = 0;  // trail entries whose objects and clauses were looked at
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
