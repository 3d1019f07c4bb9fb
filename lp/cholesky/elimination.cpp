#include "lp/cholesky/elimination.h"

#include <numeric>

namespace tovik::lp::cholesky {
namespace {

std::vector<int> inverse_of(const std::vector<int>& order) {
  std::vector<int> place(order.size());
  for (std::size_t k = 0; k < order.size(); ++k) place[order[k]] = static_cast<int>(k);
  return place;
}

/* Parents by Liu's climb with path compression. */
std::vector<int> tree(const Graph& graph, const std::vector<int>& order, const std::vector<int>& place) {
  const int n = graph.size;
  std::vector<int> parent(n, -1), ancestor(n, -1);
  for (int k = 0; k < n; ++k) {
    const int vertex = order[k];
    for (std::int64_t e = graph.start[vertex]; e < graph.start[vertex + 1]; ++e) {
      int i = place[graph.neighbour[e]];
      while (i < k) {
        const int next = ancestor[i];
        ancestor[i] = k;
        if (next < 0) parent[i] = k;
        if (next < 0 || next == k) break;
        i = next;
      }
    }
  }
  return parent;
}

/* Column counts as sums over subtrees: +1 where the subtree of a row of L begins (a leaf), -1 where two of its branches
 * meet, and the diagonal of a child is taken away on the way up. */
class ColumnCounts {
 public:
  ColumnCounts(const Graph& graph, const Elimination& elimination)
      : graph_(graph), order_(elimination.order), parent_(elimination.parent) {
    const std::size_t n = order_.size();
    first_.assign(n, -1);
    largest_first_.assign(n, -1);
    previous_leaf_.assign(n, -1);
    ancestor_.resize(n);
    std::iota(ancestor_.begin(), ancestor_.end(), 0);
    place_ = inverse_of(order_);
  }

  std::vector<int> compute() {
    const int n = static_cast<int>(order_.size());
    count_.assign(n, 0);
    for (int k = 0; k < n; ++k) {
      if (first_[k] < 0) count_[k] = 1;
      for (int j = k; j >= 0 && first_[j] < 0; j = parent_[j]) first_[j] = k;
    }
    for (int j = 0; j < n; ++j) {
      if (parent_[j] >= 0) --count_[parent_[j]];
      const int vertex = order_[j];
      for (std::int64_t e = graph_.start[vertex]; e < graph_.start[vertex + 1]; ++e) {
        const int i = place_[graph_.neighbour[e]];
        if (i > j) visit(i, j);
      }
      if (parent_[j] >= 0) ancestor_[j] = parent_[j];
    }
    for (int j = 0; j < n; ++j)
      if (parent_[j] >= 0) count_[parent_[j]] += count_[j];
    return std::move(count_);
  }

 private:
  void visit(int i, int j) {
    if (first_[j] <= largest_first_[i]) return;  // j lies on a branch that row i has already
    largest_first_[i] = first_[j];
    ++count_[j];
    if (previous_leaf_[i] >= 0) --count_[meeting(previous_leaf_[i])];
    previous_leaf_[i] = j;
  }

  int meeting(int leaf) {
    int root = leaf;
    while (ancestor_[root] != root) root = ancestor_[root];
    while (ancestor_[leaf] != root) {
      const int next = ancestor_[leaf];
      ancestor_[leaf] = root;
      leaf = next;
    }
    return root;
  }

  const Graph& graph_;
  const std::vector<int>& order_;
  const std::vector<int>& parent_;
  std::vector<int> place_, count_;
  std::vector<int> first_;                          // of j: the first position among its descendants
  std::vector<int> largest_first_, previous_leaf_;  // by row
  std::vector<int> ancestor_;  // sets of eliminated columns; the root is the last one reached
};

}  // namespace

std::vector<int> postorder(const std::vector<int>& parent) {
  const int n = static_cast<int>(parent.size());
  std::vector<int> child(n, -1), sibling(n, -1), stack, order;
  order.reserve(n);
  int root = -1;
  for (int k = n - 1; k >= 0; --k) {
    int& head = parent[k] < 0 ? root : child[parent[k]];
    sibling[k] = head;
    head = k;
  }
  for (; root >= 0; root = sibling[root]) {
    stack.push_back(root);
    while (!stack.empty()) {
      const int k = stack.back();
      if (child[k] >= 0) {
        stack.push_back(child[k]);
        child[k] = sibling[child[k]];
      } else {
        order.push_back(k);
        stack.pop_back();
      }
    }
  }
  return order;
}

Elimination eliminate(const Graph& graph, const std::vector<int>& order) {
  const std::vector<int> parent = tree(graph, order, inverse_of(order));
  const std::vector<int> post = postorder(parent);
  const std::vector<int> new_number = inverse_of(post);
  Elimination result;
  result.order.resize(post.size());
  result.parent.resize(post.size());
  for (std::size_t k = 0; k < post.size(); ++k) {
    result.order[k] = order[post[k]];
    result.parent[k] = parent[post[k]] < 0 ? -1 : new_number[parent[post[k]]];
  }
  result.count = ColumnCounts(graph, result).compute();
  for (const int c : result.count) {
    result.entries += c;
    result.flops += static_cast<double>(c) * c;
  }
  return result;
}

}  // namespace tovik::lp::cholesky
