#include "lp/network/spanning_tree.h"

#include <utility>

namespace tovik::lp::network {

SpanningTree::SpanningTree(int nodes)
    : nodes_(static_cast<std::size_t>(nodes) + 1), next_(nodes_.size()), previous_(nodes_.size()) {
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

void SpanningTree::set_parents(std::span<const int> parent) {
  const int n = root();
  // Children by lists: first child and next sibling.
  std::vector<int> child(nodes_.size(), kNoNode), sibling(nodes_.size(), kNoNode);
  for (int v = n; v-- > 0;) {
    const int p = parent[static_cast<std::size_t>(v)];
    (*this)[v].parent = p;
    sibling[static_cast<std::size_t>(v)] = std::exchange(child[static_cast<std::size_t>(p)], v);
  }
  (*this)[n].parent = kNoNode;
  int before = n, v = n;
  for (;;) {
    (*this)[v].size = 1;
    if (int below = child[static_cast<std::size_t>(v)]; below != kNoNode) {
      v = below;
    } else {
      (*this)[v].last = v;
      while (v != n && sibling[static_cast<std::size_t>(v)] == kNoNode) {
        const int p = (*this)[v].parent;
        (*this)[p].size += (*this)[v].size;
        (*this)[p].last = (*this)[v].last;
        v = p;
      }
      if (v == n) break;
      (*this)[(*this)[v].parent].size += (*this)[v].size;
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
  const int total = (*this)[move.top].size;
  ParentArc arc = move.arc;
  int parent = move.outer, v = move.inner;
  Node* node = &(*this)[v];
  int tail = node->last;        // of the new order so far
  int below_last = node->last;  // of v's old subtree,
  int rest = next(tail);        // what followed it
  int before = previous(v);     // and what stood before it
  int below_size = node->size;
  node->size = total;
  for (;;) {
    const ParentArc old{node->arc(), !node->points_up(), node->down, node->up};
    const int above = node->parent;
    node->parent = parent;
    set_parent_arc(v, arc);
    if (v == move.top) break;
    Node& up = (*this)[above];
    const int up_last = up.last, up_before = previous(above), up_size = up.size;
    int end = before;
    if (up_last != below_last) {
      end = up_last;
      const int after = next(up_last);
      link(before, rest);
      rest = after;
    }
    link(tail, above);
    tail = end;
    up.size = total - below_size;
    below_size = up_size;
    below_last = up_last;
    before = up_before;
    arc = old;
    parent = v;
    v = above;
    node = &up;
  }
  for (v = move.top; v != move.outer; v = (*this)[v].parent) (*this)[v].last = tail;
  return tail;
}

void SpanningTree::move(const Move& move) {
  Node& top = (*this)[move.top];
  const int total = top.size, old_parent = top.parent, old_last = top.last;
  const int before = previous(move.top), after = next(old_last);
  const int tail = turn_over(move);

  link(before, after);
  for (int v = old_parent; v != kNoNode && (*this)[v].last == old_last; v = (*this)[v].parent)
    (*this)[v].last = before;
  for (int v = old_parent; v != move.join; v = (*this)[v].parent) (*this)[v].size -= total;

  link(tail, next(move.outer));
  link(move.outer, move.inner);
  for (int v = move.outer; v != kNoNode && (*this)[v].last == move.outer; v = (*this)[v].parent)
    (*this)[v].last = tail;
  for (int v = move.outer; v != move.join; v = (*this)[v].parent) (*this)[v].size += total;
}

}  // namespace tovik::lp::network
