#include "lp/run/optimizer.h"

#include <utility>

#include "lp/binding/engine_options.h"
#include "lp/run/barrier_optimizer.h"
#include "lp/run/dual_form_optimizer.h"
#include "lp/run/network_start_optimizer.h"
#include "lp/run/simplex_optimizer.h"

namespace tovik::lp::run {

std::unique_ptr<Optimizer> make_optimizer(LpData lp, const RunContext& context) {
  if (context.algorithm.barrier != nullptr) return std::make_unique<BarrierOptimizer>(std::move(lp));
  if (context.algorithm.network != nullptr) return std::make_unique<NetworkStartOptimizer>(std::move(lp));
  if (context.algorithm.dual_form) return std::make_unique<DualFormOptimizer>(std::move(lp));
  return std::make_unique<SimplexOptimizer>(std::move(lp), context);
}

simplex::Options options_of(const Environment& env, const Algorithm& algorithm) {
  simplex::Options options = engine_options(env);
  if (algorithm.sift) options.sifting = simplex::Sifting::always;
  return options;
}

}  // namespace tovik::lp::run
