#include <amd.h>

#include <new>
#include <numeric>

#include "lp/cholesky/ordering.h"
#include "lp/cholesky/quotient_graph.h"

namespace tovik::lp::cholesky {
namespace {

/* The package cannot be stopped: it gets what takes it some tenths of a second. Both orders are equally good on average; ours
 * takes half as long again. */
constexpr std::int64_t kLargestForPackage = 1000000;
constexpr std::uint64_t kTicksPerEntry = 20;  // of the graph

std::vector<int> order_by_package(const Graph& graph) {
  const std::vector<int> start(graph.start.begin(), graph.start.end());
  std::vector<int> order(graph.size);
  if (amd_order(graph.size, start.data(), graph.neighbour.data(), order.data(), nullptr, nullptr) < AMD_OK)
    throw std::bad_alloc();
  return order;
}

}  // namespace

std::vector<int> minimum_degree_order(const Graph& graph, Control& control) {
  if (control.poll_clock() != Stop::none) return {};
  if (graph.neighbour.empty()) {  // which the package takes for missing arrays
    std::vector<int> order(graph.size);
    std::iota(order.begin(), order.end(), 0);
    return order;
  }
  if (graph.start.back() > kLargestForPackage) return least_score_order(graph, Score::degree, control);
  control.add_work(kTicksPerEntry * static_cast<std::uint64_t>(graph.start.back() + graph.size));
  return order_by_package(graph);
}

}  // namespace tovik::lp::cholesky
