/* The solution pool of a problem: what searches put into it, and its members as whole solutions. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "env/environment.h"
#include "env/problem.h"
#include "mip/search/judge.h"
#include "mip/search/solution_sink.h"

namespace tovik::mip::run {

/* By the parameters of the pool and the filters of the problem, which stays. */
PoolRules pool_rules(const Environment& env, const tovik::Problem& problem);

std::unique_ptr<SolutionPool> empty_pool(const tovik::Problem& problem);

/* Puts solutions of a search into the pool of its problem, which must be there. */
class PoolFeed : public SolutionSink {
 public:
  PoolFeed(const Environment& env, tovik::Problem& problem);
  void add(const mip::Solution& solution) override;
  /* Null where the pool has no place for anything. */
  SolutionSink* sink() { return rules_.capacity > 0 ? this : nullptr; }
  bool is_full() const override { return added_ >= limit_; }
  /* Counts what has come without what the pool has refused, from the beginning. */
  void set_limit(std::int64_t limit) { limit_ = limit; }

 private:
  tovik::Problem& problem_;
  const PoolRules rules_;
  std::int64_t added_ = 0, limit_ = INT64_MAX;
};

/* A point in the user's columns with its slacks, as the mixed-integer optimizer leaves one. objective: the user's. */
tovik::Solution whole_solution(const tovik::Problem& problem, std::vector<double> x, double objective);

/* The pool: 3024 where there is none. */
Status find_pool(const tovik::Problem& problem, const SolutionPool** pool);

/* Member soln, or the incumbent for -1. 3024, 1200 for another number; 1217 and 3023 of the incumbent. */
Status pool_objective(const tovik::Problem& problem, int soln, double* objective);
/* Of all members; 1217 there is none. */
Status pool_mean_objective(const tovik::Problem& problem, double* mean);
Status pool_point(const tovik::Problem& problem, int soln, std::vector<double>* x);
/* With its slacks. */
Status pool_solution(const tovik::Problem& problem, int soln, tovik::Solution* solution);

}  // namespace tovik::mip::run
