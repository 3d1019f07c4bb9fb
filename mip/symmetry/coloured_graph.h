/* The graph whose colour-preserving automorphisms are the symmetries of a problem.
 *
 * - Vertices: the columns, then the rows. Edges: the entries of the matrix.
 * - Colours: of a column by integrality, bounds and cost; of a row by its sides; of an edge by its coefficient. Numbers are of one
 *   colour where they are equal, tolerances play no part. A column of a semi-continuous variable, a set or an indicator has a
 *   colour of its own, so that nothing moves it.
 * - Colours ascend from integer columns over others to rows, and among these from those that few vertices have. */
#pragma once

#include <span>
#include <vector>

#include "mip/domain/problem.h"

namespace tovik::mip {

struct ColouredGraph {
  explicit ColouredGraph(const Problem& problem);

  int columns = 0, vertices = 0;
  std::vector<char> is_integer;  // by column
  std::vector<int> colour;       // by vertex, 0, 1 ...
  std::vector<int> start;        // vertices + 1
  std::vector<int> neighbour, edge_colour;

  bool is_column(int v) const { return v < columns; }
  bool is_integer_column(int v) const { return v < columns && is_integer[v] != 0; }
  int degree(int v) const { return start[v + 1] - start[v]; }
};

}  // namespace tovik::mip
