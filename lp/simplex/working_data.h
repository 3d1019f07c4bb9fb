/* Costs and bounds that the iterations use in place of the model's.
 *
 * - Holds, by variable: costs, perturbed or shifted by the dual, or of the primal's first phase; bounds,
 *   widened by the primal, implied, or the boxes of the dual's first phase; random_value, uniform in [0, 1) and
 *   drawn once: sizes of perturbations and shifts.
 * - Knows how the costs differ from the model's: perturbed all over, or shifted in the variables of shifted().
 * - Order: use_model_costs() and use_model_bounds() put the model's back. Reduced costs, places of nonbasics
 *   and bounds of basics do not follow by themselves: that is Core's, or the algorithm's.
 * - Errors: bad_alloc passes through. */
#pragma once

#include <utility>
#include <vector>

#include "lp/simplex/engine_random.h"
#include "lp/simplex/scaled_model.h"

namespace tovik::lp::simplex {

class WorkingData {
 public:
  WorkingData(const ScaledModel& model, EngineRandom& random);

  double cost(int j) const { return cost_[j]; }
  double lower(int j) const { return lower_[j]; }
  double upper(int j) const { return upper_[j]; }
  double random_value(int j) const { return random_value_[j]; }
  const std::vector<double>& cost() const { return cost_; }
  const std::vector<double>& lower() const { return lower_; }
  const std::vector<double>& upper() const { return upper_; }
  bool is_fixed(int j) const { return lower_[j] == upper_[j]; }
  bool is_free(int j) const { return lower_[j] == -kInf && upper_[j] == kInf; }

  // ---- costs ----
  void use_model_costs(const ScaledModel& model);
  /* The model's cost of j; returns what that adds. Perturbation and other shifts stay. */
  double take_model_cost(const ScaledModel& model, int j) {
    const double change = model.cost(j) - cost_[j];
    cost_[j] = model.cost(j);
    return change;
  }
  void shift_cost(int j, double by) {
    cost_[j] += by;
    costs_shifted_ = true;
    if (!costs_perturbed_) shifted_.push_back(j);
  }
  /* Against dual degeneracy: moves the cost of every structural that is neither fixed nor free, in the
   * direction in which its reduced cost becomes more feasible, by
   *
   *   (1 + r_j) * (|c_j| + 1) * 5e-7 * scale * size of the largest cost * min(length_j^2 / 10, most)
   *
   * with r_j = random_value and length_j the column's entries; `most` is the larger of 100 and the square of
   * the average length. Large costs count by their fourth root, and as at most 1 where hardly a variable is
   * boxed. Logicals move by rounding noise (1e-12) only. */
  void perturb_costs(const ScaledModel& model, double scale);
  /* Costs of the primal's first phase: 0, but for basic variables outside their bounds. */
  void start_phase1_costs();
  void set_phase1_cost(int j, double cost) { cost_[j] = cost; }

  bool costs_perturbed() const { return costs_perturbed_; }
  /* The cost differs from the model's in the variables that shifted() lists, or is perturbed too. */
  bool costs_shifted() const { return costs_shifted_; }
  /* Since the costs were the model's; one variable may stand here more than once. */
  const std::vector<int>& shifted() const { return shifted_; }
  /* The variables of shifted() have their model costs back. */
  void forget_shifts() {
    shifted_.clear();
    costs_shifted_ = false;
  }

  /* To take shifts back that came after a mark: each cost by itself, then the record of them. */
  struct ShiftMark {
    bool costs_shifted = false;
    size_t count = 0;
  };
  ShiftMark shift_mark() const { return {costs_shifted_, shifted_.size()}; }
  void undo_cost(int j, double cost) { cost_[j] = cost; }
  void undo_shifts(const ShiftMark& mark) {
    costs_shifted_ = mark.costs_shifted;
    shifted_.resize(mark.count);
  }

  // ---- bounds ----
  void use_model_bounds(const ScaledModel& model);
  void use_bounds(const std::vector<double>& lower, const std::vector<double>& upper);
  void set_bounds(int j, double lower, double upper) {
    lower_[j] = lower;
    upper_[j] = upper;
  }

  /* Rows and columns have come and gone in the model; new ones have its costs and bounds. */
  void edit(const ScaledModel& model, const IndexEdit& indices, EngineRandom& random);

 private:
  std::vector<double> cost_, lower_, upper_, random_value_;  // total
  bool costs_perturbed_ = false, costs_shifted_ = false;
  std::vector<int> shifted_;
};

}  // namespace tovik::lp::simplex
