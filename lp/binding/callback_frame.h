/* What a running LP callback may ask for: numbers of where the engine stands, in the user's sense of objective. It lives
 * while the callback runs, known to the environment, and computes the numbers when the first one is asked for. */
#pragma once

#include <optional>

#include "env/environment.h"
#include "lp/base/progress.h"

namespace tovik::lp::run {

/* Which problem an engine's numbers speak of. */
enum class Numbers {
  of_problem,
  of_dual_form,  // its objective is the negative one, and primal and dual change places
  hidden,        // of an auxiliary problem, which means nothing to the caller
};

class CallbackFrame : public RunningCallback {
 public:
  CallbackFrame(Environment& env, const void* cbdata, Numbers numbers, const ProgressSource& source,
                double objective_sense);
  Status write(int item, void* result) override;

 private:
  void measure();
  void measure_barrier(BarrierProgress& now) const;
  Status write_simplex(int item, const SimplexProgress& now, void* result) const;

  Environment& env_;
  Numbers numbers_;
  const ProgressSource& source_;
  double objective_sense_;
  std::optional<Progress> measured_;
};

}  // namespace tovik::lp::run
