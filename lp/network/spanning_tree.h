/* The basis of the network simplex: a spanning tree of the nodes and of a root that stands for the outside world.
 *
 * - Holds: for each of n nodes and the root (index n) its place in the tree, the order in which a walk from the root
 *   meets the nodes (each subtree is a stretch of it), and what its parent arc can still carry. One record a node, so
 *   that a walk touches one piece of memory at each step.
 * - Parent arc: `arc` is the index of the arc to the parent, kArtificial for the arc between a node and the root that
 *   stands for its missing or superfluous flow. `points_up`: it runs from the node to its parent.
 * - Residuals: `up` is how much more can flow from the node to its parent, `down` the other way; up + down is the
 *   arc's capacity. The tree is strongly feasible while up > 0 everywhere.
 * - Cost: move(): length of the paths between its three nodes and their first common ancestor, whatever the size of
 *   the subtree.
 * - Errors: bad_alloc from the constructor.
 * - Papers: "A network simplex method" (1976) for strong feasibility, "Enhancements of spanning tree labelling
 *   procedures for network optimization" (1979) for the order kept with sizes and last nodes. */
#pragma once

#include <span>
#include <vector>

namespace tovik::lp::network {

inline constexpr int kArtificial = -1;
inline constexpr int kNoNode = -1;

struct ParentArc {
  int arc = kArtificial;
  bool points_up = true;
  double up = 0, down = 0;
};

class SpanningTree {
 public:
  /* The arc to the parent. */
  struct Node {
    double up = 0, down = 0;
    int coded_arc = 0;  // see code()

    bool is_artificial() const { return coded_arc < 0; }
    int arc() const { return is_artificial() ? kArtificial : coded_arc >> 1; }
    bool points_up() const { return (coded_arc & 1) != 0; }
  };

  /* A star: all nodes under the root by artificial arcs without flow. */
  explicit SpanningTree(int nodes);

  int root() const { return static_cast<int>(nodes_.size()) - 1; }
  Node& operator[](int v) { return nodes_[static_cast<std::size_t>(v)]; }
  const Node& operator[](int v) const { return nodes_[static_cast<std::size_t>(v)]; }
  int parent(int v) const { return climb_[at(v)].parent; }
  /* Nodes of the subtree. */
  int size(int v) const { return climb_[at(v)].size; }
  /* In the walk, which is a ring. */
  int next(int v) const { return next_[at(v)]; }
  int previous(int v) const { return previous_[at(v)]; }
  /* Of the subtree, in the walk. */
  int last(int v) const { return last_[at(v)]; }

  /* The tree with these parents (root() for children of the root); parent arcs stay as they are. */
  void set_parents(std::span<const int> parents);
  void set_parent_arc(int v, const ParentArc& arc);

  /* The subtree of `top` leaves its parent; `inner`, a node of it, becomes its top and hangs below `outer`, which is
   * outside of it, by `arc`. `join` is the first common ancestor of top's parent and outer. */
  struct Move {
    int top, inner, outer, join;
    ParentArc arc;
  };
  void move(const Move& move);

 private:
  static int code(int arc, bool points_up) {
    return (arc == kArtificial ? -2 : 2 * arc) | static_cast<int>(points_up);
  }
  void link(int before, int after) {
    next_[at(before)] = after;
    previous_[at(after)] = before;
  }
  int turn_over(const Move& move);

  static std::size_t at(int v) { return static_cast<std::size_t>(v); }

  struct Climb {
    int parent = kNoNode, size = 1;
  };
  std::vector<Node> nodes_;
  std::vector<Climb> climb_;
  std::vector<int> next_, previous_, last_;
};

}  // namespace tovik::lp::network
