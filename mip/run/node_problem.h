/* What a search works on as problems that a callback can query.
 *
 * Both are copies that belong to the problem that is optimized: they cannot be freed, and the search does not look at them
 * again, but for a node's problem that a solve callback has optimized. Names are those of the caller's columns. */
#pragma once

#include <memory>

#include "mip/run/search_callback.h"

namespace tovik::mip::run {

/* The relaxation of the node that the callback looks at, with its bounds and cuts, and its optimum where the callback
 * sees that; it may be changed and optimized. */
Status make_node_problem(const CallbackScene& scene, const Sight& sight,
                         std::unique_ptr<tovik::Problem>* made);

/* The mixed-integer problem that is searched; it may only be read. */
Status make_searched_problem(const CallbackScene& scene, std::unique_ptr<tovik::Problem>* made);

/* The letters of its columns. */
std::vector<char> column_types(const mip::Problem& problem);

}  // namespace tovik::mip::run
