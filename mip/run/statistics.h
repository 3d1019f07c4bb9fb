/* A search's statistics as members of the JSON object that an optimization leaves. */
#pragma once

#include <memory>

#include "lp/run/statistics.h"
#include "mip/search/presolved_search.h"

namespace tovik::mip::run {

/* objective_sense: objectives and bounds are written in the user's. */
std::shared_ptr<const lp::run::FurtherStatistics> describe_search(PresolvedSearch& search,
                                                                  double objective_sense);

}  // namespace tovik::mip::run
