#include "lp/run/optimizer.h"

#include <utility>

#include "lp/binding/engine_options.h"
#include "lp/run/simplex_optimizer.h"

namespace tovik::lp::run {

std::unique_ptr<Optimizer> make_optimizer(LpData lp, const RunContext& context) {
  return std::make_unique<SimplexOptimizer>(std::move(lp), context);
}

simplex::Options options_of(const Environment& env, const Algorithm& algorithm) {
  simplex::Options options = engine_options(env);
  if (algorithm.sift) options.sifting = simplex::Sifting::always;
  return options;
}

}  // namespace tovik::lp::run
