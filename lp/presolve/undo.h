/* What the undo of an operation works on: postsolve brings a solution of the reduced problem back to the
 * original, one operation at a time from the last to the first.
 *
 * Signs: rows and columns obey one rule. The dual y_i of a row and the reduced cost d_j = c_j - a_j'y of a
 * column are >= 0 when the row's activity (the column) stands at its lower bound, <= 0 at its upper bound, 0
 * when basic or free. Every undo that brings back k rows makes exactly k rows or columns basic, so a basis
 * stays a basis. An undo looks at statuses, then at signs, then at values, never at tolerances. Of interior points it
 * keeps the distances to bounds, and with them the complementarity: what comes back stands at its bound where it can. The
 * transformations follow Andersen and Andersen (1995) and Gondzio (1997) for primal and dual values; the
 * statuses are derived from the same tables.
 *
 * A point is the part of an Answer that undo knows: x, d, y and the statuses; in the space of the original, where what
 * is not restored yet is zero. */
#pragma once

#include <cmath>
#include <vector>

#include "lp/base/answer.h"
#include "lp/base/lp_data.h"
#include "lp/presolve/record.h"

namespace tovik::lp::presolve {

/* A sum that is zero when only the rounding of its terms is left: the sign of a dual decides where a column
 * stands, and in a proof of infeasibility a free column needs exactly zero. */
class CleanSum {
 public:
  static constexpr double kNoise = 1e-14;
  static constexpr double kProofNoise = 1e-12;  // of multipliers that come out of a solve, relative

  explicit CleanSum(double first, double noise = kNoise)
      : sum_(first), size_(std::fabs(first)), noise_(noise) {}
  void subtract(double term) {
    sum_ -= term;
    size_ += std::fabs(term);
  }
  double value() const { return std::fabs(sum_) <= noise_ * size_ ? 0.0 : sum_; }

 private:
  double sum_, size_, noise_;
};

struct Undo {
  const LpData& original;
  Answer& point;
  /* Costs count as zero: for certificates of infeasibility. */
  bool homogeneous = false;
  /* The point is none of a basis: statuses tell the signs of duals and reduced costs, and no value. */
  bool interior = false;

  double cost(double c) const { return homogeneous ? 0.0 : c; }
  CleanSum sum_from(double first) const {
    return CleanSum(first, homogeneous ? CleanSum::kProofNoise : CleanSum::kNoise);
  }
  /* f(row, value) for each entry of column j, as it was when its record was written. */
  template <class F>
  void each_entry(const ColumnEntries& column, int j, F f) const {
    if (column.copied) {
      const View& view = column.entries;
      for (int k = 0; k < view.length; ++k) f(view.index[k], view.value[k]);
      return;
    }
    const Matrix& matrix = original.matrix;
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) f(matrix.index[k], matrix.value[k]);
  }
  /* The status of a column or row at equal bounds, by the sign of its dual; at 0 as it is. */
  static BasisStatus side(BasisStatus present, double dual) {
    return dual > 0 ? BasisStatus::lower : dual < 0 ? BasisStatus::upper : present;
  }
  /* The same when one or both of the equal bounds were transferred from a row or column that left: at 0 its
   * own, if there is one. */
  static BasisStatus own_side(BasisStatus present, double dual, bool lower_transferred,
                              bool upper_transferred) {
    return side(lower_transferred == upper_transferred ? present
                : lower_transferred                    ? BasisStatus::upper
                                                       : BasisStatus::lower,
                dual);
  }
};

}  // namespace tovik::lp::presolve
