/* The settings of the simplex engine as the parameters of an environment say. A number that is not one leaves
 * the engine's own default. */
#pragma once

#include "env/environment.h"
#include "lp/simplex/types.h"

namespace tovik::lp::run {

simplex::Options engine_options(const Environment& env);

}  // namespace tovik::lp::run
