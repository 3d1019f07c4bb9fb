/* Takes every solution that a search meets, better than its incumbent or not. */
#pragma once

namespace tovik::mip {

struct Solution;

class SolutionSink {
 public:
  SolutionSink() = default;
  SolutionSink(const SolutionSink&) = delete;
  SolutionSink& operator=(const SolutionSink&) = delete;
  virtual ~SolutionSink() = default;
  /* A solution of the problem that the search was given, found feasible there; callbacks have admitted it. */
  virtual void add(const Solution& solution) = 0;
  /* No more are wanted: the search ends as at its limit on solutions. */
  virtual bool is_full() const { return false; }
};

}  // namespace tovik::mip
