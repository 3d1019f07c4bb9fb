#include "lp/binding/engine_options.h"

#include <cmath>
#include <cstdint>

#include "env/method_code.h"
#include "include/tovik.h"
#include "param/hidden.h"

namespace tovik::lp::run {
namespace {

simplex::Pricing dual_pricing(int code) {
  switch (code) {
    case 1:
      return simplex::Pricing::dantzig;
    case 2:
    case 3:
      return simplex::Pricing::steepest_edge;
    case 4:
      return simplex::Pricing::steepest_edge_unit;
    case 5:
      return simplex::Pricing::devex;
    default:
      return simplex::Pricing::automatic;
  }
}

simplex::Pricing primal_pricing(int code) {
  switch (code) {
    case 2:
      return simplex::Pricing::steepest_edge;
    case 3:
      return simplex::Pricing::steepest_edge_unit;
    case 1:
      return simplex::Pricing::devex;
    default:
      return simplex::Pricing::automatic;
  }
}

/* A parameter may hold a value that is not a number: no comparison with it ever holds, and the engine would
 * go round for ever. It then keeps its own default. */
void take_number(double value, double& option) {
  if (!std::isnan(value)) option = value;
}

}  // namespace

simplex::Options engine_options(const Environment& env) {
  const Settings& s = env.settings;
  simplex::Options options;
  take_number(s.real(TVK_PARAM_EPRHS), options.primal_tolerance);
  take_number(s.real(TVK_PARAM_EPOPT), options.dual_tolerance);
  take_number(s.real(TVK_PARAM_EPMRK), options.markowitz);
  options.refactor_limit = s.integer(TVK_PARAM_REINV);
  options.singular_limit = s.integer(TVK_PARAM_SINGLIM);
  options.iteration_limit = s.integer(TVK_PARAM_ITLIM);
  options.dual_pricing = dual_pricing(s.integer(TVK_PARAM_DPRIIND));
  options.primal_pricing = primal_pricing(s.integer(TVK_PARAM_PPRIIND));
  options.price_candidates = s.integer(TVK_PARAM_PRICELIM);
  options.perturb_always = s.integer(TVK_PARAM_PERIND) != 0;
  options.perturb_after = s.integer(TVK_PARAM_PERLIM);
  take_number(s.real(TVK_PARAM_EPPER), options.perturb_magnitude);
  options.scaling = s.integer(TVK_PARAM_SCAIND);
  const int method = s.integer(TVK_PARAM_LPMETHOD);
  options.sifting = method == method_code::kAutomatic ? simplex::Sifting::when_it_pays
                    : method == method_code::kSifting ? simplex::Sifting::always
                                                      : simplex::Sifting::never;
  options.seed = static_cast<std::uint64_t>(s.integer(param::kRandomSeed));
  return options;
}

}  // namespace tovik::lp::run
