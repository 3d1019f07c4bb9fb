/* Values and bounds of the basic variables, and the reduced costs.
 *
 * - Holds, by position (size m): x, and the working bounds x_lower and x_upper that iterations compare it with.
 *   By variable: d, the reduced cost of a nonbasic, 0 for basic ones. Of fixed columns d is stale between
 *   rebuilds; of fixed logicals it is kept near an optimum (Dual::start_near).
 * - Writers: compute_primal() and compute_dual() from scratch; the steps of an iteration along a column
 *   (move_along) and along a row (update_duals); whoever follows changes of the model, by single values.
 * - Cost: of the entries touched; compute_...: one solve and one pass over the matrix. */
#pragma once

#include <span>
#include <vector>

#include "lp/base/sparse_vector.h"
#include "lp/factor/factor.h"
#include "lp/simplex/basis_partition.h"
#include "lp/simplex/working_data.h"

namespace tovik::lp::simplex {

class IterateValues {
 public:
  explicit IterateValues(const ScaledModel& model);

  double x(int p) const { return x_[p]; }
  double x_lower(int p) const { return x_lower_[p]; }
  double x_upper(int p) const { return x_upper_[p]; }
  double d(int j) const { return d_[j]; }
  const std::vector<double>& x() const { return x_; }
  const std::vector<double>& x_lower() const { return x_lower_; }
  const std::vector<double>& x_upper() const { return x_upper_; }
  const std::vector<double>& d() const { return d_; }

  // ---- from scratch ----
  /* x from the nonbasic values; gathers the bounds too. */
  void compute_primal(const ScaledModel& model, const WorkingData& work, const BasisPartition& basis,
                      factor::Factor& factor);
  /* d of every nonbasic from the working costs. */
  void compute_dual(const ScaledModel& model, const WorkingData& work, const BasisPartition& basis,
                    factor::Factor& factor) {
    compute_dual(model, work.cost(), basis, factor, d_);
  }
  /* The same for other costs, into another vector of size total. */
  void compute_dual(const ScaledModel& model, const std::vector<double>& cost, const BasisPartition& basis,
                    factor::Factor& factor, std::vector<double>& d);
  void gather_bounds(const WorkingData& work, const BasisPartition& basis);

  // ---- along a column and along a row ----
  /* x -= step * column, position by position in the order of for_nonzeros; moved(p, x) after each. */
  template <class F>
  void move_along(const SparseVector& column, double step, F moved) {
    for_nonzeros(column, [&](int p) {
      const double x = x_[p] - step * column.array[p];
      x_[p] = x;
      moved(p, x);
    });
  }
  /* The same for all positions, without a word. */
  void move_along(const std::vector<double>& column, double step) {
    double* const x = x_.data();
    const double* const change = column.data();
    const auto size = static_cast<int>(x_.size());
    for (int p = 0; p < size; ++p) x[p] -= step * change[p];
  }
  /* d[index] -= theta * alpha; moved(j, d) after each. */
  template <class F>
  void update_duals(std::span<const int> index, std::span<const double> alpha, double theta, F moved) {
    const size_t size = index.size();
    for (size_t k = 0; k < size; ++k) {
      const int j = index[k];
      const double updated = d_[j] - theta * alpha[k];
      d_[j] = updated;
      moved(j, updated);
    }
  }

  // ---- single values ----
  void set_x(int p, double x) { x_[p] = x; }
  void add_x(int p, double change) { x_[p] += change; }
  void set_bounds(int p, double lower, double upper) {
    x_lower_[p] = lower;
    x_upper_[p] = upper;
  }
  void set_dual(int j, double d) { d_[j] = d; }
  void add_dual(int j, double change) { d_[j] += change; }

  /* Around a factorization, which permutes the positions of the basis: x and bounds move along. */
  void save_x(const BasisPartition& basis);
  void restore_x(const WorkingData& work, const BasisPartition& basis);

  void edit(const IndexEdit& indices);  // new logicals' x and new columns' d are 0

  struct Saved {
    std::vector<double> x, d;
  };
  Saved save() const { return {x_, d_}; }
  void restore(const Saved& saved, const WorkingData& work, const BasisPartition& basis);

 private:
  std::vector<double> x_, x_lower_, x_upper_;  // m
  std::vector<double> d_;                      // total
  SparseVector buffer_;                        // m: rebuild solves
  std::vector<int> saved_head_;                // between save_x and restore_x
  std::vector<double> saved_x_;
};

}  // namespace tovik::lp::simplex
