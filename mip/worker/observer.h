/* What a search tells while it runs: for the log, for callbacks. All objectives are of the minimization form. */
#pragma once

#include <cstdint>
#include <span>

#include "mip/pool/cut.h"
#include "mip/pool/pseudo_costs.h"

namespace tovik::mip {

enum class NodeEnd : unsigned char { fractional, integral, infeasible, cutoff };

/* A node that was just processed; of the root also its first relaxation and the one after all cuts. A new incumbent of a
 * heuristic has an event of its own, while its node is processed. */
struct NodeEvent {
  NodeEnd end = NodeEnd::fractional;
  std::int64_t nodes = 0;  // processed before this one
  std::int64_t left = 0;
  double objective = 0;     // of the node's relaxation
  int infeasibilities = 0;  // integer columns with a fraction, and objects that do not hold
  bool new_incumbent = false;
  bool by_heuristic = false;
  int branch_column = -1;  // how the node was made; -1: no single column
  Direction branch_direction = Direction::down;
  std::int64_t id = 0, parent_id = -1;
  int depth = 0;
};

class Observer {
 public:
  Observer() = default;
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;
  virtual ~Observer() = default;
  virtual void node(const NodeEvent& event) = 0;
  /* Cuts that became rows of the root's relaxation in one round. */
  virtual void cuts(const CutCounts& added) = 0;
  /* A better solution, in the space of the problem that the search was given; a node event follows where it was found
   * while one was processed. */
  virtual void solution(double objective, std::span<const double> x) = 0;
};

/* Of a search that nobody watches. */
class SilentObserver : public Observer {
 public:
  void node(const NodeEvent&) override {}
  void cuts(const CutCounts&) override {}
  void solution(double, std::span<const double>) override {}
};

}  // namespace tovik::mip
