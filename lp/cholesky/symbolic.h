/* The structure of L by supernodes, and where everything stands. Immutable once made; positions are places in the order.
 * Front of s: its columns, then its rows below; a number of the panel stands at panel[s] + row + column * front(s). */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/cholesky/supernodes.h"

namespace tovik::lp::cholesky {

struct Symbolic {
  int size = 0;
  std::vector<int> order;                 // row of K by position
  std::vector<int> start, parent;         // supernodes as in Supernodes
  std::vector<int> depth;                 // in the tree; 0 at roots
  std::vector<int> first_child, sibling;  // children in ascending order
  std::vector<int> first_below;           // the smallest supernode of the subtree
  std::vector<std::int64_t> row_start;    // the rows of s below its columns, ascending positions:
  std::vector<int> rows;                  //   rows[row_start[s]] .. rows[row_start[s + 1] - 1]
  std::vector<int> relative;              // the same rows as places in the front of the parent
  std::vector<std::int64_t> panel;        // supernodes + 1
  std::vector<std::int64_t> entry_start;  // by position: the entries of K in that column
  std::vector<std::int64_t> entry;        // which entry of the pattern
  std::vector<int> entry_row;             // its row as place in the front
  std::vector<double> work;               // of s alone: multiplications and additions
  int largest_front = 0, widest = 0;

  int supernodes() const { return static_cast<int>(parent.size()); }
  int width(int s) const { return start[s + 1] - start[s]; }
  int below(int s) const { return static_cast<int>(row_start[s + 1] - row_start[s]); }
  int front(int s) const { return width(s) + below(s); }
  std::int64_t square(int s) const { return static_cast<std::int64_t>(below(s)) * below(s); }
};

Symbolic make_symbolic(const Pattern& pattern, Supernodes supernodes);

}  // namespace tovik::lp::cholesky
