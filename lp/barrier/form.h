/* The LP in the form that the interior point method works on, scaled:
 *
 *   min c'x   A x = b,   x_j >= 0 (columns with has_lower),   x_j + w_j = u_j (those with has_upper).
 *
 * Columns are shifted to their lower bound, or turned round at their upper bound where that is the only one; fixed
 * columns and rows without a side are gone; a row that is no equation has a slack behind the structural columns,
 * -1 or 1 in one row. So has_upper implies has_lower, and columns without has_lower are free.
 * Scaled by powers of two, rows and columns, then sides and costs as a whole (units() below leads back).
 * Sizes: n = structural columns that are left, then slacks; m = rows that are left. */
#pragma once

#include <vector>

#include "lp/base/lp_data.h"

namespace tovik::lp::barrier {

class Form {
 public:
  explicit Form(const LpData& lp);

  int m = 0, n = 0;
  int structurals = 0;          // columns before the slacks
  Matrix a;                     // m x n; rows ascend in each column
  Matrix rows;                  // its transpose
  std::vector<double> b, c, u;  // u: 0 where there is none
  std::vector<char> has_lower, has_upper;
  int pairs = 0;  // complementary pairs: finite bounds

  /* Factors from scaled to the LP's own: of a column's value and cost, a row's residual and multiplier. */
  std::vector<double> value_unit, cost_unit, residual_unit, multiplier_unit;
  double objective_unit = 1, offset = 0;
  double largest_side = 0, largest_cost = 0;  // of the LP's own finite row sides and costs

  /* Points of the LP itself: x by column, clipped into the bounds; y by row. */
  std::vector<double> original_values(const std::vector<double>& x) const;
  std::vector<double> original_multipliers(const std::vector<double>& y) const;
  /* A direction of the LP's columns. */
  std::vector<double> original_direction(const std::vector<double>& x) const;

 private:
  void choose_columns();
  void choose_rows();
  void fill_matrix();
  void scale_sides_and_costs();

  const LpData& lp_;
  std::vector<int> column_of_, row_of_;  // of the LP: its place here, or -1
  std::vector<int> original_column_, original_row_;
  std::vector<double> shift_;  // by column of the LP
  std::vector<double> sign_;   // by column here: -1 where it is turned round
};

/* out += factor * A x, out += factor * A'y. */
void add_product(const Form& form, double factor, const std::vector<double>& x, std::vector<double>& out);
void add_transposed_product(const Form& form, double factor, const std::vector<double>& y,
                            std::vector<double>& out);

double dot(const std::vector<double>& a, const std::vector<double>& b);
double largest_magnitude(const std::vector<double>& v);

}  // namespace tovik::lp::barrier
