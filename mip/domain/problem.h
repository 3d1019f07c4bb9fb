/* A mixed-integer linear problem as the search sees it, in minimization form.
 *
 * - lp: rows and columns of the continuous relaxation. A semi-continuous column has the hull of 0 and its interval as
 *   bounds. An indicator constraint stands among the rows with a slack column of its own for each of its sides, which
 *   has coefficient -1 or +1 there, no cost and no upper bound: the constraint holds where the slack is 0.
 * - is_integer: one flag a column. Bounds of integer columns are integers or infinite.
 * - Objects (semi-continuous columns, ordered sets, indicators) refer to columns only and are never relaxed by large
 *   constants: they are branched on and propagated as they are.
 * - The search changes nothing here. */
#pragma once

#include <vector>

#include "lp/base/lp_data.h"

namespace tovik::mip {

using lp::kInf;

/* x is 0 or in [lower, upper], which does not contain 0: the whole interval is positive, or negative. */
struct SemiColumn {
  int column;
  double lower, upper;
};

/* At most one column of a set of type 1, at most two consecutive ones of type 2, are not 0. */
struct OrderedSet {
  int type;                  // 1 or 2
  std::vector<int> columns;  // by ascending weight
  int number = -1;           // among the sets of the problem that was given, for its owner
};

/* While the switch column (0 or 1) has its active value, the slack is 0. */
struct Indicator {
  int switch_column;
  double active_value;
  int slack;
};

/* An inequality, or two, that the caller gives to help the search: it holds wherever a solution of interest is. */
struct UserCut {
  std::vector<int> columns;
  std::vector<double> values;
  double lower, upper;
};

/* Which columns are branched on first, and where to. */
struct Priority {
  int level = 0;      // larger ones first
  int direction = 0;  // -1 down first, 1 up first, 0 no preference
};

struct Problem {
  lp::LpData lp;
  std::vector<char> is_integer;
  std::vector<SemiColumn> semi_columns;
  std::vector<OrderedSet> sets;
  std::vector<Indicator> indicators;
  std::vector<Priority> priorities;  // by column; empty: none
  std::vector<char> is_protected;    // by column: presolve keeps it; empty: none
  std::vector<UserCut> user_cuts;    // no part of what the problem states

  int num_columns() const { return lp.num_columns(); }
  int num_rows() const { return lp.num_rows(); }
  bool has_objects() const { return !semi_columns.empty() || !sets.empty() || !indicators.empty(); }
};

/* Absolute tolerances in the problem's own units. */
struct Tolerances {
  double integrality = 1e-5;  // distance of an integer column from the next integer
  double feasibility = 1e-6;  // of rows and bounds
};

}  // namespace tovik::mip
