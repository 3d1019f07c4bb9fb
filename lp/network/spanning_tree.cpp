#include "lp/network/spanning_tree.h"

#include <utility>

namespace tovik::lp::network {

SpanningTree::SpanningTree(int nodes)
    : nodes_(static_cast<std::size_t>(nodes) + 1),
      climb_(nodes_.size()),
      next_(nodes_.size()),
      previous_(nodes_.size()),
      last_(nodes_.size()) {
  const std::vector<int> star(static_cast<std::size_t>(nodes), nodes);
  set_parents(star);
  for (int v = 0; v < nodes; ++v) set_parent_arc(v, {});
}

void SpanningTree::set_parent_arc(int v, const ParentArc& arc) {
  Node& node = (*this)[v];
  node.coded_arc = code(arc.arc, arc.points_up);
  node.up = arc.up;
  node.down = arc.down;
}

void SpanningTree::set_parents(std::span<const int> parents) {
  const int n = root();
  // Children by lists: first child and next sibling.
  std::vector<int> child(nodes_.size(), kNoNode), sibling(nodes_.size(), kNoNode);
  for (int v = n; v-- > 0;) {
    const int p = parents[static_cast<std::size_t>(v)];
    climb_[at(v)].parent = p;
    sibling[static_cast<std::size_t>(v)] = std::exchange(child[static_cast<std::size_t>(p)], v);
  }
  climb_[at(n)].parent = kNoNode;
  int before = n, v = n;
  for (;;) {
    climb_[at(v)].size = 1;
    if (int below = child[static_cast<std::size_t>(v)]; below != kNoNode) {
      v = below;
    } else {
      last_[at(v)] = v;
      while (v != n && sibling[static_cast<std::size_t>(v)] == kNoNode) {
        const int p = parent(v);
        climb_[at(p)].size += size(v);
        last_[at(p)] = last(v);
        v = p;
      }
      if (v == n) break;
      climb_[at(parent(v))].size += size(v);
      v = sibling[static_cast<std::size_t>(v)];
    }
    link(before, v);
    before = v;
  }
  link(before, n);
}

/* Turns the subtree of move.top over so that move.inner is its top: parents, arcs and sizes along the path between
 * them, and the order of the walk, in which the subtree of each node of the path but for what lies below the path
 * follows that of the one before. Returns the last node of the new order; the ends of the stretch are left loose. */
int SpanningTree::turn_over(const Move& move) {
  const int total = size(move.top);
  ParentArc arc = move.arc;
  int outside = move.outer, v = move.inner;
  int below_last = last(v);     // of v's old subtree,
  int tail = below_last;        // of the new order so far,
  int rest = next(below_last);  // what followed the old subtree
  int before = previous(v);     // and what stood before it
  int below_size = size(v);
  climb_[at(v)].size = total;
  for (;;) {
    const Node& node = (*this)[v];
    const ParentArc old{node.arc(), !node.points_up(), node.down, node.up};
    const int above = std::exchange(climb_[at(v)].parent, outside);
    set_parent_arc(v, arc);
    if (v == move.top) break;
    const int above_last = last(above), above_before = previous(above), above_size = size(above);
    int end = before;
    if (above_last != below_last) {
      end = above_last;
      const int after = next(above_last);
      link(before, rest);
      rest = after;
    }
    link(tail, above);
    tail = end;
    climb_[at(above)].size = total - below_size;
    below_size = above_size;
    below_last = above_last;
    before = above_before;
    arc = old;
    outside = v;
    v = above;
  }
  for (v = move.top; v != move.outer; v = parent(v)) last_[at(v)] = tail;
  return tail;
}

void SpanningTree::move(const Move& move) {
  const int total = size(move.top), old_parent = parent(move.top), old_last = last(move.top);
  const int before = previous(move.top), after = next(old_last);
  const int tail = turn_over(move);

  link(before, after);
  for (int v = old_parent; v != kNoNode && last(v) == old_last; v = parent(v)) last_[at(v)] = before;
  for (int v = old_parent; v != move.join; v = parent(v)) climb_[at(v)].size -= total;

  link(tail, next(move.outer));
  link(move.outer, move.inner);
  for (int v = move.outer; v != kNoNode && last(v) == move.outer; v = parent(v)) last_[at(v)] = tail;
  for (int v = move.outer; v != move.join; v = parent(v)) climb_[at(v)].size += total;
}

}  // namespace tovik::lp::network
