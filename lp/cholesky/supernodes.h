/* Supernodes: runs of columns of L with (nearly) the same rows below, eliminated together as one dense front.
 * Columns with exactly the same rows come first. Then a child is merged into its parent where that costs less than it saves:
 * operations on zeros against a front less, the assembly of its contribution, and the better speed of wider fronts. Merging is
 * free to reorder columns within the tree; children are put in the order that needs least memory for contributions.
 * Papers "The multifrontal solution of indefinite sparse symmetric linear equations", ACM TOMS 9 (1983);
 *        "The influence of relaxed supernode partitions on the multifrontal method", ACM TOMS 15 (1989);
 *        "On the storage requirement in the out-of-core multifrontal method", ACM TOMS 12 (1986). */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/cholesky/elimination.h"

namespace tovik::lp::cholesky {

struct Supernodes {
  std::vector<int> order;   // vertices in their final order of elimination
  std::vector<int> start;   // the columns of s: start[s] .. start[s + 1] - 1
  std::vector<int> parent;  // of s in the tree, > s (a postorder); -1 at a root
  std::vector<int> below;   // rows of s below its columns
};

Supernodes find_supernodes(const Elimination& elimination, bool merge);

/* What a front of `width` columns and `below` more rows costs, in multiplications and additions at full speed. */
double front_cost(double width, double below);

}  // namespace tovik::lp::cholesky
