/* The nodes of a search that are open or lead to open ones, each as what it adds to its parent.
 *
 * - Memory: a fixed part of about 100 bytes a node and 16 bytes a bound change beyond the first. A node lives until it and
 *   all below it are closed. Bases are shared by siblings and dropped, worst bounds first, when they outgrow their share.
 * - Queue: the open nodes by bound, and by estimate; of equal keys the newest first: it is deep, and near to
 *   where the search stands.
 *   Closed nodes leave the heaps when they reach the top.
 * - Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "lp/base/basis.h"
#include "mip/branching/branch.h"
#include "mip/pool/cut.h"

namespace tovik::mip {

/* Of a node in whose search the caller takes part. */
struct NodeExtras {
  void* handle = nullptr;   // the caller's
  std::vector<Cut> rows;    // hold in the node and below
  int infeasibilities = 0;  // of the relaxation that it was made from
  double infeasibility_sum = 0;
};

/* Fits a relaxation with the same rows. */
struct StoredBasis {
  lp::Basis basis;
  std::int64_t rows_version = 0;
};

struct Node {
  std::int64_t id = -1;
  double bound = -kInf;       // of the objective within the node
  double estimate = -kInf;    // of its best solution
  double relaxation = -kInf;  // objective of the parent's relaxation
  int parent = -1;            // slot
  int depth = 0;
  int children = 0;  // that live
  bool is_open = false;
  BranchRecord branch;
  std::vector<NodeChange> changes;
  std::shared_ptr<const StoredBasis> basis;  // of the parent's optimum; null: none
  std::unique_ptr<NodeExtras> extras;        // null: none
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
  /* The slot of a new open node. */
  int add(NewNode node);
  const Node& operator[](int slot) const { return nodes_[slot]; }
  /* A better bound on an open node that is at hand. */
  void raise_bound(int slot, double bound);
  /* The node leaves the queue, to be processed. It stays while it is neither closed nor has children. */
  void take(int slot);
  /* Puts a node that was taken back. */
  void put_back(int slot);
  /* Nothing below it is left to do; drops what only led here. */
  void close(int slot);

  bool is_open(int slot, std::int64_t id) const { return nodes_[slot].id == id && nodes_[slot].is_open; }
  std::int64_t open() const { return open_; }
  bool empty() const { return open_ == 0; }
  double best_bound();    // of the open nodes; kInf: none
  int best_bound_node();  // -1: none
  int best_estimate_node();
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
  double bytes() const;

 private:
  struct Entry {
    double key;
    std::int64_t id;
    int slot;
  };
  struct Later {
    bool operator()(const Entry& a, const Entry& b) const {
      return a.key != b.key ? a.key > b.key : a.id < b.id;
    }
  };
  using Key = double Node::*;
  void push(int slot);
  void release(int slot);
  bool stands(const Entry& e, Key key) const;
  const Entry* top(std::vector<Entry>& heap, Key key);

  std::vector<Node> nodes_;
  std::vector<int> free_;
  std::vector<Entry> by_bound_, by_estimate_;
  std::int64_t open_ = 0, next_id_ = 0, changes_ = 0;
};

}  // namespace tovik::mip
