/* The pure network in an LP: rows which, some of them multiplied by -1 or by other factors, have no column with more than
 * two entries, and those +1 and -1 once columns are scaled. Each such row is a node; a column with entries in two of them is an
 * arc, one with a single entry an arc to or from the ground, a node of its own behind the others, and so is the slack of a row
 * that is no equation. Other rows are left out: the flow problem is a relaxation of the LP, and its basis with the logicals of
 * the other rows a basis of the LP.
 *
 * Rows are taken greedily, short ones first, as long as signs (or ratios) around every cycle agree: the balance of the signed
 * graph is kept in a forest of ratios between rows. Extracting a largest network is NP-hard.
 * Paper  "Extracting pure network submatrices in linear programs using signed graphs", Discrete Applied Mathematics 137 (2004).
 * Cost   one pass over the entries of the rows, sorted by length. Counts its work; not stopped, it takes less than reading. */
#pragma once

#include <vector>

#include "lp/base/basis.h"
#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/network/flow_problem.h"

namespace tovik::lp::network {

enum class Reach {
  natural = 1,  // rows as they stand, entries +1 and -1
  reflected,    // rows may be multiplied by -1
  scaled        // by any factor, and columns, too
};

/* Flows are column values over the column's factor; balances are row activities times the row's factor. */
struct ExtractedNetwork {
  std::vector<int> row;            // by node, the ground excepted
  std::vector<double> row_factor;  // by node, the ground excepted
  std::vector<int> column;         // by arc; -1: the slack of the node that the arc and the ground join
  std::vector<double> column_factor;
  std::vector<double> supply, cost, lower, upper;
  std::vector<int> tail, head;
  int ground() const { return static_cast<int>(row.size()); }
  FlowProblem problem() const { return {supply, tail, head, cost, lower, upper}; }
};

ExtractedNetwork extract_network(const LpData& lp, Reach reach, Control& control);

/* The LP's basis that belongs to one of its network. */
Basis basis_of_lp(const LpData& lp, const ExtractedNetwork& network, const FlowBasis& basis);

}  // namespace tovik::lp::network
