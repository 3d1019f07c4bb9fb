/* The weights by which the dual judges infeasible rows, and the rules that keep them.
 *
 * DualWeights: w[p] > 0 by basis position (scaled space).
 * - Order: save()/restore() around a refactorization, which may permute positions.
 * - All that a rule knows of a basis: checkpoints, copies and iterations taken back carry the weights and
 *   nothing else.
 *
 * DualRule: one way to start and to update the weights. Rules hold no state; dual_rule() is the one place that
 * knows them all. A new rule is a class in a file of its own, a value of Pricing and a line of dual_rule().
 * - Order: start() once a solve; accept() for each row that was chosen; update() once per pivot, before the
 *   factor is updated.
 * - Cost: a virtual call or two a pivot, none by entry. Errors: bad_alloc passes through. */
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

/* What weights mean; those of one kind are of no use to a rule of another. */
enum class WeightKind { norms, reference, unit };

class DualWeights {
 public:
  void reset(int rows) { weight_.assign(static_cast<size_t>(rows), 1.0); }
  void set(std::vector<double> weights, WeightKind kind = WeightKind::norms) {
    weight_ = std::move(weights);
    kind_ = kind;
  }
  WeightKind kind() const { return kind_; }
  void set_kind(WeightKind kind) { kind_ = kind; }
  /* Rows come or go: the logicals of deleted rows stood in these positions; those of new rows come last. */
  void erase(std::span<const int> positions) { erase_indices(weight_, positions); }
  void append(double weight) { weight_.push_back(weight); }
  void save(const Core& core);
  void restore(const Core& core);
  double* data() { return weight_.data(); }
  const std::vector<double>& view() const { return weight_; }
  int size() const { return static_cast<int>(weight_.size()); }
  bool fits(int rows) const { return size() == rows; }

 private:
  std::vector<double> weight_;
  WeightKind kind_ = WeightKind::norms;
  std::vector<double> by_variable_;  // total, filled between save and restore
};

/* The vectors of a pivot that weights are updated by. */
struct DualPivot {
  int position;                // of the leaving variable
  const SparseVector& column;  // B^-1 a_entering
  const SparseVector& tau;     // B^-1 rho where the rule needs_tau(), else not read
};

class DualRule {
 public:
  virtual ~DualRule() = default;
  /* As the log prints it; null: the log does not speak of this rule. */
  virtual const char* name() const = 0;
  virtual WeightKind kind() const = 0;
  /* Whether update() reads tau, which costs the iteration a solve. */
  virtual bool needs_tau() const { return false; }
  /* Weights for the core's factored basis; `carried`: those at hand are this basis's. work: of m, left clear. */
  virtual void start(Core& core, bool carried, DualWeights& weights, SparseVector& work) const;
  /* The row of the inverse is known for position p: may the choice by the stored weight stand? */
  virtual bool accept(int p, const SparseVector& rho, DualWeights& weights) const;
  /* True: the weights have grown out of use and begin anew. */
  virtual bool update(const DualPivot& pivot, DualWeights& weights) const = 0;
};

const DualRule& dual_rule(Pricing pricing);

}  // namespace tovik::lp::simplex
