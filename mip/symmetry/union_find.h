/* Disjoint sets of 0 .. n - 1, each named by its smallest member ("Efficiency of a good but not linear set union algorithm",
 * Tarjan 1975; halving instead of compression, no ranks: names are to be the smallest). */
#pragma once

#include <numeric>
#include <utility>
#include <vector>

namespace tovik::mip {

class UnionFind {
 public:
  explicit UnionFind(int count) : parent_(static_cast<std::size_t>(count)) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  int find(int v) {
    while (parent_[v] != v) {
      parent_[v] = parent_[parent_[v]];
      v = parent_[v];
    }
    return v;
  }
  void join(int a, int b) {
    a = find(a);
    b = find(b);
    if (a == b) return;
    if (a > b) std::swap(a, b);
    parent_[b] = a;
  }

 private:
  std::vector<int> parent_;
};

}  // namespace tovik::mip
