/* The elimination tree of an ordering and the number of entries in every column of L.
 * Cost   nearly linear in the entries of the matrix, whatever the fill.
 * Papers "The role of elimination trees in sparse factorization", SIAM J. Matrix Anal. Appl. 11 (1990);
 *        "An efficient algorithm to compute row and column counts for sparse Cholesky factorization", ibid. 15 (1994). */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/cholesky/graph.h"

namespace tovik::lp::cholesky {

struct Elimination {
  std::vector<int> order;   // order[k]: the vertex eliminated k-th; a postorder of the tree
  std::vector<int> parent;  // of k in the tree, > k; -1 at a root
  std::vector<int> count;   // entries of column k of L with its diagonal
  std::int64_t entries = 0;
  double flops = 0;
};

/* The same elimination as by `order`, renumbered along a postorder. */
Elimination eliminate(const Graph& graph, const std::vector<int>& order);

/* For a forest given by parents (each > its children, -1 at roots): nodes in postorder; children in ascending order. */
std::vector<int> postorder(const std::vector<int>& parent);

}  // namespace tovik::lp::cholesky
