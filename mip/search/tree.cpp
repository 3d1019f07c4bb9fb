#include "mip/search/tree.h"

#include <algorithm>
#include <utility>

namespace tovik::mip {

int Tree::add(NewNode node) {
  int slot = 0;
  if (free_.empty()) {
    slot = static_cast<int>(nodes_.size());
    nodes_.emplace_back();
  } else {
    slot = free_.back();
    free_.pop_back();
  }
  Node& n = nodes_[slot];
  n.id = node.id >= 0 ? node.id : take_id();
  n.bound = node.bound;
  n.estimate = node.estimate;
  n.relaxation = node.relaxation;
  n.parent = node.parent;
  n.depth = node.parent < 0 ? 0 : nodes_[node.parent].depth + 1;
  n.children = 0;
  n.branch = node.branch;
  n.changes = std::move(node.changes);
  n.basis = std::move(node.basis);
  n.extras = std::move(node.extras);
  n.is_open = true;
  changes_ += static_cast<std::int64_t>(n.changes.size());
  if (node.parent >= 0) ++nodes_[node.parent].children;
  ++open_;
  push(slot);
  return slot;
}

void Tree::push(int slot) {
  const Node& n = nodes_[slot];
  by_bound_.push_back({n.bound, n.id, slot});
  std::push_heap(by_bound_.begin(), by_bound_.end(), Later());
  by_estimate_.push_back({n.estimate, n.id, slot});
  std::push_heap(by_estimate_.begin(), by_estimate_.end(), Later());
}

void Tree::raise_bound(int slot, double bound) {
  nodes_[slot].bound = std::max(nodes_[slot].bound, bound);
}

void Tree::take(int slot) {
  nodes_[slot].is_open = false;
  --open_;
}

void Tree::put_back(int slot) {
  nodes_[slot].is_open = true;
  ++open_;
  push(slot);
}

void Tree::close(int slot) {
  if (nodes_[slot].is_open) take(slot);
  while (slot >= 0 && nodes_[slot].children == 0 && !nodes_[slot].is_open) {
    const int parent = nodes_[slot].parent;
    release(slot);
    if (parent < 0) break;
    --nodes_[parent].children;
    slot = parent;
  }
}

void Tree::release(int slot) {
  Node& n = nodes_[slot];
  changes_ -= static_cast<std::int64_t>(n.changes.size());
  n.id = -1;
  n.changes = {};
  n.basis.reset();
  n.extras.reset();
  free_.push_back(slot);
}

/* A node that was put back with a better bound has left an entry with the old one. */
bool Tree::stands(const Entry& e, Key key) const {
  const Node& n = nodes_[e.slot];
  return n.id == e.id && n.is_open && n.*key == e.key;
}

const Tree::Entry* Tree::top(std::vector<Entry>& heap, Key key) {
  while (!heap.empty() && !stands(heap.front(), key)) {
    std::pop_heap(heap.begin(), heap.end(), Later());
    heap.pop_back();
  }
  return heap.empty() ? nullptr : &heap.front();
}

double Tree::best_bound() {
  const Entry* e = top(by_bound_, &Node::bound);
  return e == nullptr ? kInf : e->key;
}

int Tree::best_bound_node() {
  const Entry* e = top(by_bound_, &Node::bound);
  return e == nullptr ? -1 : e->slot;
}

int Tree::best_estimate_node() {
  const Entry* e = top(by_estimate_, &Node::estimate);
  return e == nullptr ? -1 : e->slot;
}

std::vector<int> Tree::nodes_beyond(double cutoff) const {
  std::vector<int> worse;
  for (const Entry& e : by_bound_) {
    if (stands(e, &Node::bound) && e.key >= cutoff) worse.push_back(e.slot);
  }
  std::sort(worse.begin(), worse.end());
  worse.erase(std::unique(worse.begin(), worse.end()), worse.end());
  return worse;
}

std::int64_t Tree::prune(double cutoff) {
  const std::vector<int> worse = nodes_beyond(cutoff);
  for (const int slot : worse) close(slot);
  return static_cast<std::int64_t>(worse.size());
}

std::vector<int> Tree::open_nodes() const {
  std::vector<int> slots;
  for (int slot = 0; slot < static_cast<int>(nodes_.size()); ++slot) {
    if (nodes_[slot].id >= 0 && nodes_[slot].is_open) slots.push_back(slot);
  }
  std::sort(slots.begin(), slots.end(), [&](int a, int b) { return nodes_[a].id < nodes_[b].id; });
  return slots;
}

NodeExtras& Tree::extras(int slot) {
  std::unique_ptr<NodeExtras>& extras = nodes_[slot].extras;
  if (extras == nullptr) extras = std::make_unique<NodeExtras>();
  return *extras;
}

double Tree::bytes() const {
  return static_cast<double>(nodes_.size()) * sizeof(Node) +
         static_cast<double>(changes_) * sizeof(NodeChange) +
         static_cast<double>(by_bound_.size() + by_estimate_.size()) * sizeof(Entry);
}

}  // namespace tovik::mip
