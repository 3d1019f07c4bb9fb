#include "lp/cholesky/graph.h"

namespace tovik::lp::cholesky {

Graph graph_of(const Pattern& pattern) {
  Graph graph;
  graph.size = pattern.size;
  graph.start.assign(static_cast<std::size_t>(pattern.size) + 2, 0);
  auto each_edge = [&](auto&& visit) {
    for (int j = 0; j < pattern.size; ++j)
      for (std::int64_t k = pattern.start[j]; k < pattern.start[j + 1]; ++k)
        if (pattern.index[k] != j) visit(pattern.index[k], j);
  };
  // Counts stand two places ahead, so that filling turns them into starts. A vertex meets its smaller neighbours while their
  // columns are read, all before its own: the lists come out sorted.
  each_edge([&](int i, int j) { ++graph.start[i + 2], ++graph.start[j + 2]; });
  for (int j = 0; j < pattern.size; ++j) graph.start[j + 2] += graph.start[j + 1];
  graph.neighbour.resize(graph.start[pattern.size + 1]);
  each_edge([&](int i, int j) {
    graph.neighbour[graph.start[i + 1]++] = j;
    graph.neighbour[graph.start[j + 1]++] = i;
  });
  graph.start.pop_back();
  return graph;
}

}  // namespace tovik::lp::cholesky
