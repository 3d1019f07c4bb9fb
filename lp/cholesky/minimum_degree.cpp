#include <amd.h>

#include <limits>
#include <new>
#include <numeric>

#include "lp/cholesky/ordering.h"

namespace tovik::lp::cholesky {
namespace {

/* 32-bit indices as long as the ordering's own work space fits them: half the memory traffic. */
std::vector<int> order_short(const Graph& graph) {
  const std::vector<int> start(graph.start.begin(), graph.start.end());
  std::vector<int> order(graph.size);
  if (amd_order(graph.size, start.data(), graph.neighbour.data(), order.data(), nullptr, nullptr) < AMD_OK)
    throw std::bad_alloc();
  return order;
}

std::vector<int> order_long(const Graph& graph) {
  const std::vector<SuiteSparse_long> start(graph.start.begin(), graph.start.end());
  const std::vector<SuiteSparse_long> neighbour(graph.neighbour.begin(), graph.neighbour.end());
  std::vector<SuiteSparse_long> order(graph.size);
  if (amd_l_order(graph.size, start.data(), neighbour.data(), order.data(), nullptr, nullptr) < AMD_OK)
    throw std::bad_alloc();
  return {order.begin(), order.end()};
}

}  // namespace

std::vector<int> minimum_degree_order(const Graph& graph) {
  if (graph.neighbour.empty()) {  // which the package takes for missing arrays
    std::vector<int> order(graph.size);
    std::iota(order.begin(), order.end(), 0);
    return order;
  }
  return graph.start.back() < std::numeric_limits<int>::max() / 2 ? order_short(graph) : order_long(graph);
}

}  // namespace tovik::lp::cholesky
