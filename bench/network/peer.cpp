/* The network simplex of the LEMON library on one instance file, through its documented interface: bench_network_peer FILE
 * prints the line that bench_network reads. The graph and the maps stand before the clock starts. */
#include <lemon/network_simplex.h>
#include <lemon/static_graph.h>

#include <utility>
#include <vector>

#include "bench/network/instance.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: bench_network_peer FILE\n");
    return 2;
  }
  using lemon::StaticDigraph;
  using Simplex = lemon::NetworkSimplex<StaticDigraph, long long, long long>;
  const auto at = [](int k) { return static_cast<std::size_t>(k); };
  bench::InstanceReader reader(argv[1]);
  const auto [nodes, arcs] = reader.header();
  std::vector<long long> supplies(at(nodes));
  reader.read_array<std::int64_t>(nodes, [&](int v, std::int64_t s) { supplies[at(v)] = s; });
  StaticDigraph graph;
  {
    std::vector<std::pair<int, int>> ends(at(arcs));
    reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t v) { ends[at(a)].first = v; });
    reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t v) { ends[at(a)].second = v; });
    graph.build(nodes, ends.begin(), ends.end());
  }
  StaticDigraph::ArcMap<long long> cost(graph), capacity(graph);
  StaticDigraph::NodeMap<long long> supply(graph);
  reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t c) { cost[graph.arc(a)] = c; });
  reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t c) { capacity[graph.arc(a)] = c; });
  for (int v = 0; v < nodes; ++v) supply[graph.node(v)] = supplies[at(v)];

  Simplex simplex(graph);
  bench::RunRecord record;
  const double begin = bench::processor_seconds();
  simplex.upperMap(capacity).costMap(cost).supplyMap(supply);
  record.optimal = simplex.run() == Simplex::OPTIMAL;
  record.seconds = bench::processor_seconds() - begin;
  record.megabytes = bench::peak_megabytes();
  if (record.optimal) {
    std::vector<std::int64_t> flow(at(arcs));
    for (int a = 0; a < arcs; ++a) flow[at(a)] = simplex.flow(graph.arc(a));
    record.objective = bench::audited_cost(argv[1], flow);
  }
  bench::print(record);
  return 0;
}
