/* Conflict analysis: why a node has no solution of interest, as a clause for all nodes.
 *
 * - Gets a domain that is infeasible, or a linear constraint that holds for all solutions of interest and for no point of the
 *   domain: the combination of rows by a Farkas proof, or that of rows and cutoff by the duals.
 * - Explains: which bounds made a row move another bound, or left no point; of these as few as are needed, each relaxed as
 *   far as the row allows. Explanations replace the latest bounds until one of the deepest level is left (first unique
 *   implication point) and no continuous column; what the others imply is left out ("GRASP: a search algorithm for propositional satisfiability",
 *   1999; Achterberg, "Conflict analysis in mixed integer programming", Discrete Optimization 4 (2007)). A level is a
 *   decision, a bound whose reason is branching, with all that follows; what lies before the first decision holds globally.
 * - A bound without a reason that can be told (objects, probing) is explained by all decisions before it. What rests on symmetry
 *   teaches nothing: another node has the equivalent solutions.
 * - Leaves the clause with the worker's propagator, or a global bound in the worker's `out`. Long clauses are dropped.
 * - Cost: the trail, the rows of the explanations, and for each of their columns the moves of its bounds. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mip/worker/worker.h"

namespace tovik::mip {

/* values x <= side, at most `tolerance` more; sign: of the values. */
struct LinearConstraint {
  std::span<const int> columns;
  std::span<const double> values;
  double sign, side, tolerance;
};

class ConflictAnalysis {
 public:
  explicit ConflictAnalysis(const Global& global);

  /* The worker's domain is infeasible. True when something was learned. */
  bool learn_from_propagation(Worker& worker);
  /* No point of the domain satisfies d x <= side, by columns, as all solutions of interest do. */
  bool learn_from_bound(Worker& worker, std::span<const double> d, double side, double tolerance);

  std::int64_t work() const { return work_; }  // entries and moves looked at
  /* Of the last one that was learned. */
  std::span<const BoundLiteral> clause() const { return clause_; }

 private:
  void begin(const Worker& worker);
  bool finish(Worker& worker);
  int level_of(int position) const;
  static std::size_t place(int j, Side side) {
    return 2 * static_cast<std::size_t>(j) + (side == Side::lower ? 0 : 1);
  }
  /* What held before the first decision. */
  double base_of(int j, Side side) const;
  bool add(const BoundLiteral& bound, int before);
  int earliest(const BoundLiteral& bound, int before) const;
  void add_decisions(int before);
  bool explain(int position);
  bool reason_of(int position, std::vector<BoundLiteral>& bounds);
  bool reason_of(const BoundMove& move, double needed, int before, std::vector<BoundLiteral>& bounds);
  double sign_in_row(const BoundMove& move) const;
  bool reason_in(const LinearConstraint& row, const BoundMove* move, double needed, int before,
                 std::vector<BoundLiteral>& bounds);
  bool resolve();
  void leave_out_implied();
  bool is_implied(const BoundLiteral& bound, int before) const;
  LinearConstraint row_of(int i, double sign, double activity) const;
  LinearConstraint objective_row() const;

  const Global& global_;
  const Domain* domain_ = nullptr;
  const Worker* worker_ = nullptr;
  std::span<const BoundMove> trail_;
  std::vector<int> decisions_;     // positions
  int first_symmetry_ = 0;         // position behind the first decision; none: the end
  std::vector<double> base_;       // by bound that has moved since the first decision: what it was then
  std::vector<char> marked_;       // by position
  std::vector<double> needed_;     // of those marked: the bound that is needed
  std::vector<int> count_;         // of those marked, by level
  std::vector<int> cost_columns_;  // with costs
  std::vector<double> costs_;
  struct Gain {
    int column;
    double coefficient, bound, base, gain;
  };
  std::vector<Gain> gains_;
  std::vector<BoundLiteral> bounds_, clause_;
  std::vector<int> columns_;
  std::vector<double> values_;
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
