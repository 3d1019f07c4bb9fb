/* The graph of a symmetric matrix: neighbours by vertex, both ways, without loops; neighbours ascend. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/cholesky/cholesky.h"

namespace tovik::lp::cholesky {

struct Graph {
  int size = 0;
  std::vector<std::int64_t> start;  // size + 1
  std::vector<int> neighbour;
};

Graph graph_of(const Pattern& pattern);

}  // namespace tovik::lp::cholesky
