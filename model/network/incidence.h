/* Which arcs touch which node.
 *
 * - Holds: for every node a doubly linked list of arc ends; end 2a is the tail of arc a, end 2a + 1 its head.
 *   A loop stands in its node's list once, by its tail.
 * - Order: of a list is free; arcs_of() sorts.
 * - Cost: build: nodes + arcs; attach, detach: constant; arcs_of: proportional to the arcs of the node, and
 *   their sorting.
 * - Errors: bad_alloc from build, add_nodes, add_arcs and arcs_of; the lists are then as before. */
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tovik::model {

class Incidence {
 public:
  /* Of `nodes` nodes and the arcs tail[a] -> head[a]. */
  Incidence(int nodes, std::span<const int> tail, std::span<const int> head);

  void add_nodes(int count);
  /* Arcs that are still to be attached. */
  void add_arcs(int count);
  void attach(int arc, int tail, int head) noexcept;
  void detach(int arc, int tail, int head) noexcept;
  /* Forgets the last arcs, which are detached. */
  void truncate_arcs(int arcs) noexcept { ends_.resize(2 * static_cast<std::size_t>(arcs)); }

  int degree(int node) const noexcept;
  /* The arcs of the node in ascending order; the view lives until the next call. */
  std::span<const int> arcs_of(int node) const;

 private:
  static constexpr int kNone = -1;
  struct End {
    int next = kNone, previous = kNone;
  };

  void link(int end, int node) noexcept;
  void unlink(int end, int node) noexcept;
  End& end(int e) { return ends_[static_cast<std::size_t>(e)]; }
  int& first(int node) { return first_[static_cast<std::size_t>(node)]; }

  std::vector<int> first_;  // by node
  std::vector<End> ends_;
  mutable std::vector<int> found_;
};

}  // namespace tovik::model
