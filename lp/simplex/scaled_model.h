/* The model as the engine holds it: scaled, minimization form, one index space of total = n + m variables.
 *
 * Structurals are 0..n-1, the logical of row i is n + i, with A x + I s = 0: the logical's bounds are
 * [-row_upper, -row_lower] and its cost is 0.
 *
 * - Holds: the columns of the matrix; cost, lower, upper by variable; the offset of the objective.
 * - Writers: construction, changes of the model between runs (set_...), edit() and restore(). Algorithms only
 *   read it: what they perturb is WorkingData.
 * - Copies share the columns until one of them calls own_columns() to edit its own.
 * - Errors: bad_alloc passes through. */
#pragma once

#include <memory>
#include <vector>

#include "lp/base/lp_data.h"
#include "lp/base/sparse_vector.h"
#include "lp/simplex/model_edit.h"

namespace tovik::lp::simplex {

class ScaledModel {
 public:
  explicit ScaledModel(LpData scaled_lp);

  int n() const { return n_; }
  int m() const { return m_; }
  int total() const { return total_; }
  const Matrix& matrix() const { return *columns_; }
  double offset() const { return offset_; }
  double cost(int j) const { return cost_[j]; }
  double lower(int j) const { return lower_[j]; }
  double upper(int j) const { return upper_[j]; }
  const std::vector<double>& cost() const { return cost_; }
  const std::vector<double>& lower() const { return lower_; }
  const std::vector<double>& upper() const { return upper_; }
  bool is_fixed(int j) const { return lower_[j] == upper_[j]; }
  bool is_free(int j) const { return lower_[j] == -kInf && upper_[j] == kInf; }

  double column_dot(int j, const std::vector<double>& y) const {  // a_j' y
    if (j >= n_) return y[j - n_];
    const Matrix& a = *columns_;
    double sum = 0;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) sum += a.value[k] * y[a.index[k]];
    return sum;
  }
  /* Column j of [A I] into v, which is cleared first. */
  void load_column(int j, SparseVector& v) const;
  void add_column(int j, double multiplier, SparseVector& v) const;

  void set_cost(int j, double cost) { cost_[j] = cost; }
  void set_bounds(int j, double lower, double upper) {
    lower_[j] = lower;
    upper_[j] = upper;
  }
  void set_offset(double offset) { offset_ = offset; }
  /* Before an edit: columns that nobody else sees. True when they had to be copied, so that the matrix has
   * moved. */
  bool own_columns();
  /* Rows and columns go and come; the columns must be owned. */
  void edit(const ModelEdit& change, const IndexEdit& indices);
  /* Vectors put aside of a model with the same rows and columns. */
  void restore(const std::vector<double>& cost, const std::vector<double>& lower,
               const std::vector<double>& upper);

 private:
  void set_new(const ModelEdit& change, const IndexEdit& indices);

  int n_, m_, total_;
  std::shared_ptr<Matrix> columns_;
  double offset_;
  std::vector<double> cost_, lower_, upper_;  // total
};

}  // namespace tovik::lp::simplex
