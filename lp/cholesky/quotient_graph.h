/* Orders by elimination in a quotient graph, one vertex of least score after the other. */
#pragma once

#include <vector>

#include "lp/base/control.h"
#include "lp/cholesky/graph.h"

namespace tovik::lp::cholesky {

enum class Score {
  fill,   // per vertex, of all pairs of neighbours but those of the newest clique
  degree  // an upper bound
};

/* Stops are obeyed every few hundred vertices: the result is empty then. Ties go to the smaller vertex. */
std::vector<int> least_score_order(const Graph& graph, Score score, Control& control);

}  // namespace tovik::lp::cholesky
