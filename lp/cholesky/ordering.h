/* Orders of elimination that keep L sparse. Each is a permutation of the vertices, first to last, and depends on the graph
 * alone. Errors: std::bad_alloc; an empty result means that `control` asked to stop.
 * Papers  "An approximate minimum degree ordering algorithm", SIAM J. Matrix Anal. Appl. 17 (1996);
 *         "Node selection strategies for bottom-up sparse matrix ordering", SIAM J. Matrix Anal. Appl. 19 (1998);
 *         "A fast and high quality multilevel scheme for partitioning irregular graphs", SIAM J. Sci. Comput. 20 (1998). */
#pragma once

#include <vector>

#include "lp/base/control.h"
#include "lp/cholesky/graph.h"

namespace tovik::lp::cholesky {

std::vector<int> minimum_degree_order(const Graph& graph, Control& control);
/* Least fill per vertex, of all pairs of neighbours but those of the newest clique. */
std::vector<int> minimum_fill_order(const Graph& graph, Control& control);
std::vector<int> nested_dissection_order(const Graph& graph, Control& control);

}  // namespace tovik::lp::cholesky
