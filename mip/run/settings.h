/* The search's settings as the parameters of an environment say. A number that is not one leaves the default. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "mip/worker/settings.h"

namespace tovik::mip::run {

Settings settings_of(const Environment& env, const tovik::Problem& problem);

}  // namespace tovik::mip::run
