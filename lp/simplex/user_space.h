/* The model as the user stated it: vectors in the user's own space, entries from the engine's scaled matrix.
 * Scale factors are powers of two, so that nothing is lost on the way back.
 *
 * A column's scaled value is x / column_scale, its scaled cost c * column_scale; a row's scaled activity is
 * activity * row_scale. */
#pragma once

#include "lp/base/lp_data.h"
#include "lp/simplex/core.h"
#include "lp/simplex/scaling.h"

namespace tovik::lp::simplex {

struct UserSpace {
  LpData lp;  // its matrix has sizes but no entries
  Scaling scaling;
  const Core* core = nullptr;

  double column_scale(int j) const { return scaling.active() ? scaling.column[j] : 1.0; }
  double row_scale(int i) const { return scaling.active() ? scaling.row[i] : 1.0; }
  /* f(row, value) for the entries of column j. */
  template <class F>
  void each_entry(int j, F f) const {
    const Matrix& matrix = core->matrix();
    const double c = 1.0 / column_scale(j);
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const int i = matrix.index[k];
      f(i, scaling.active() ? matrix.value[k] * c / scaling.row[i] : matrix.value[k]);
    }
  }
  /* f(column, value) for the entries of row i. */
  template <class F>
  void each_row_entry(int i, F f) const {
    const auto index = core->rows.row_index(i);
    const auto value = core->rows.row_value(i);
    const double r = 1.0 / row_scale(i);
    for (size_t k = 0; k < index.size(); ++k) {
      f(index[k], scaling.active() ? value[k] * r / scaling.column[index[k]] : value[k]);
    }
  }
  /* The value of a nonbasic column: the bound itself where it stands at one. */
  double nonbasic_value(int j) const {
    const double v = core->basis.value(j);
    return v == core->model.lower(j)   ? lp.lower[j]
           : v == core->model.upper(j) ? lp.upper[j]
                                       : v * column_scale(j);
  }
  std::int64_t column_length(int j) const { return core->matrix().start[j + 1] - core->matrix().start[j]; }
};

}  // namespace tovik::lp::simplex
