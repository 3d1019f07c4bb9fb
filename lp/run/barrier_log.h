/* The log of the interior point method: what it is made of, one line an iteration, the ending, times. On the results
 * channel, as TVK_PARAM_BARDISPLAY says. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "lp/barrier/options.h"

namespace tovik::lp::run {

class BarrierLog : public barrier::Observer {
 public:
  BarrierLog(const Environment& env, const Problem& problem, const barrier::Options& options);
  void begin();
  void dense_columns(int limit, int found) override;
  void setup(const barrier::Setup& setup) override;
  void out_of_core(const cholesky::Storage& storage) override;
  void iteration(const barrier::Iteration& now) override;
  void corrections(std::int64_t iteration, int count, std::int64_t pairs) override;
  /* The ending, and the time since begin(). */
  void end(const barrier::Result& result, double seconds);

 private:
  void heading(bool with_ratio);

  const Environment& env_;
  const double sense_;
  const barrier::Options& options_;
  const int display_;
  bool with_complementarity_;
  bool has_heading_ = false, heading_has_ratio_ = false;
};

}  // namespace tovik::lp::run
