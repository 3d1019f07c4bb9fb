/* The nodes of a search that are open or lead to open ones, each as what it adds to its parent.
 *
 * - Memory: 48 bytes a node, 88 more while it is open or in process, 16 a bound change beyond the first. A node lives until it
 *   and all below it are closed, so an open node in a binary tree takes some 190 bytes with its share of the path. Bases are
 *   shared by siblings and go when both were branched on or closed; who adds nodes limits them.
 * - park() puts the details of open nodes (40 bytes, and the bases) away, those with the worst bounds first; what the queue needs
 *   stays, so that the order of the nodes does not depend on it. fetch() brings back what a node needs to be taken.
 * - Queue: the open nodes by bound, and by estimate; of equal keys the newest first: it is deep, and near to where the search
 *   stands. A node leaves both heaps where it stands.
 * - Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "lp/base/basis.h"
#include "mip/branching/branch.h"
#include "mip/pool/cut.h"
#include "mip/search/node_heap.h"
#include "mip/search/node_store.h"
#include "mip/search/slot_pool.h"

namespace tovik::mip {

/* Of a node in whose search the caller takes part. */
struct NodeExtras {
  void* handle = nullptr;   // the caller's
  std::vector<Cut> rows;    // hold in the node and below
  int infeasibilities = 0;  // of the relaxation that it was made from
  double infeasibility_sum = 0;
};

/* A node as one sees it; it shows what the tree holds until that changes. Of a node that was branched on only id, parent,
 * depth and changes are left; of one that is parked relaxation, branch and basis are missing. */
struct Node {
  std::int64_t id;
  int parent;  // slot
  int depth;
  bool is_open;
  std::span<const NodeChange> changes;
  double bound;       // of the objective within the node
  double estimate;    // of its best solution
  double relaxation;  // objective of the parent's relaxation
  BranchRecord branch;
  const StoredBasis* basis;  // of the parent's optimum; null: none
  const NodeExtras* extras;  // null: none; stay with a node that was branched on
};

struct NewNode {
  double bound, estimate, relaxation;
  int parent;  // slot, -1: root
  BranchRecord branch;
  std::vector<NodeChange> changes;
  std::shared_ptr<const StoredBasis> basis;
  std::unique_ptr<NodeExtras> extras = nullptr;
  std::int64_t id = -1;  // from take_id(); -1: the next
};

class Tree {
 public:
  static constexpr std::size_t kMostChildren = 255;  // of a node

  /* The slot of a new open node. */
  int add(NewNode node);
  Node operator[](int slot) const;
  /* A better bound on a node that is open or in process. */
  void raise_bound(int slot, double bound);
  /* The node leaves the queue, to be processed. It stays while it is neither closed nor has children. */
  void take(int slot);
  /* Puts a node that was taken back. */
  void put_back(int slot);
  /* Nothing is left to do in it but in its children; drops what only led here. */
  void close(int slot);

  bool is_open(int slot, std::int64_t id) const { return steps_[slot].id == id && steps_[slot].is_open; }
  std::int64_t open() const { return by_bound_.size(); }
  bool empty() const { return by_bound_.size() == 0; }
  double best_bound() const;                                  // of the open nodes; kInf: none
  int best_bound_node() const { return node_on(by_bound_); }  // -1: none
  int best_estimate_node() const { return node_on(by_estimate_); }
  /* The open nodes whose bound is at least cutoff, ascending slots. */
  std::vector<int> nodes_beyond(double cutoff) const;
  /* Closes them; their number. */
  std::int64_t prune(double cutoff);
  /* All that are open, by age. */
  std::vector<int> open_nodes() const;
  /* The number of a node that is to be made. */
  std::int64_t take_id() { return next_id_++; }
  NodeExtras& extras(int slot);
  std::int64_t nodes_made() const { return next_id_; }
  /* Whether its details are put away or not. */
  double bytes() const;

  /* Puts some away where the details of open nodes take more than the settings allow. Where that fails they stay in memory. */
  [[nodiscard]] NodeStore::State park(const NodeFileSettings& settings);
  /* Before take(). Where it fails the node stays what it was. */
  [[nodiscard]] NodeStore::State fetch(int slot);
  /* What is put away, and what is kept of it. */
  std::int64_t parked_bytes() const { return store_.bytes(); }
  std::int64_t stored_bytes() const { return store_.stored_bytes(); }

 private:
  struct More {
    std::vector<NodeChange> changes;  // all of them, where there is not just one
    std::unique_ptr<NodeExtras> extras;
  };
  /* What is left of a node that was branched on: a step of the paths below. */
  struct Step {
    std::int64_t id = -1;
    int parent = -1, depth = 0;
    int waiting = -1;  // of an open node, or one in process
    unsigned char children = 0;
    bool is_open = false;
    NodeChange change{-1, Side::lower, 0};  // column -1: none
    std::unique_ptr<More> more;             // what few nodes have
  };
  struct Waiting {
    double bound, estimate;
    std::int64_t id;
    int slot;
    int place_by_bound, place_by_estimate;
    int detail = -1;         // -1: put away
    NodeStore::Place place;  // then
  };
  using ByBound = NodeHeap<Waiting, &Waiting::bound, &Waiting::place_by_bound>;
  using ByEstimate = NodeHeap<Waiting, &Waiting::estimate, &Waiting::place_by_estimate>;

  template <class Heap>
  int node_on(const Heap& heap) const {
    return heap.size() == 0 ? -1 : waiting_[heap.top()].slot;
  }
  static More& more_of(Step& step);
  void push(int waiting);
  std::vector<int> worst_with_details() const;
  void drop_detail(Waiting& waiting);
  void drop_waiting(Step& step);
  void release(int slot);

  SlotPool<Step> steps_;
  SlotPool<Waiting> waiting_;
  SlotPool<NodeDetail> details_;
  NodeStore store_;
  std::int64_t basis_bytes_ = 0;  // of those in memory; of siblings both count
  ByBound by_bound_;
  ByEstimate by_estimate_;
  std::int64_t next_id_ = 0;
  std::int64_t more_changes_ = 0;  // in all_changes
};

inline Node Tree::operator[](int slot) const {
  const Step& step = steps_[slot];
  Node node{};
  node.id = step.id;
  node.parent = step.parent;
  node.depth = step.depth;
  node.is_open = step.is_open;
  if (step.change.column >= 0) node.changes = {&step.change, 1};
  if (step.more != nullptr) {
    if (step.change.column < 0) node.changes = step.more->changes;
    node.extras = step.more->extras.get();
  }
  if (step.waiting < 0) return node;
  const Waiting& waiting = waiting_[step.waiting];
  node.bound = waiting.bound;
  node.estimate = waiting.estimate;
  if (waiting.detail < 0) return node;
  const NodeDetail& detail = details_[waiting.detail];
  node.relaxation = detail.relaxation;
  node.branch = detail.branch;
  node.basis = detail.basis.get();
  return node;
}

}  // namespace tovik::mip
