/* Priority orders that the optimizer makes where the model has none: integer columns by one number each. Columns with the same
 * number have the same priority. */
#pragma once

#include <span>
#include <vector>

#include "mip/domain/problem.h"

namespace tovik::mip::run {

enum class OrderRule { none, decreasing_cost, increasing_range, increasing_cost_per_entry };

/* By column of the problem; empty for none. Costs by magnitude. */
std::vector<Priority> generate_order(const Problem& problem, OrderRule rule);

/* The line that announces it. */
const char* announcement(OrderRule rule);

}  // namespace tovik::mip::run
