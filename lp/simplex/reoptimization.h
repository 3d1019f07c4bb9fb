/* The optimum on which the engine stands after a solve, and what changes of bounds and costs do to it.
 *
 * A change is noted before it is made. refresh() then moves the basic values by one solve for all moved
 * nonbasic values, the duals by one for all changed costs of basic variables, and looks at the entries of the
 * answer that this touches, and at no others: those that are not touched have been found good before. So a
 * solve that finds the optimum unmoved costs what the changes touch, and takes no memory.
 *
 * - Reads and writes: the core's x, x_lower, x_upper, d and working costs; the answer's vectors, in the user's
 *   space, by sums that carry their errors.
 * - Trust: an entry passes only within kStrict in the engine's scaled space and within the tolerance in the
 *   user's; the sums of the user's model must agree with the engine's values. Whatever fails is left to a
 *   complete solve, and so is every kRefreshes-th refresh.
 * - Order: settle() after an optimum was extracted; note() before each change; refresh(); forget() before
 *   anybody else moves the core. The core must have a factor for refresh() when needs_factor(). */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/base/answer.h"
#include "lp/base/sparse_vector.h"
#include "lp/simplex/activities.h"
#include "lp/simplex/core.h"
#include "lp/simplex/marked_list.h"
#include "lp/simplex/model_edit.h"
#include "lp/simplex/types.h"
#include "lp/simplex/user_space.h"

namespace tovik::lp::simplex {

class Reoptimization {
 public:
  /* Of the standing basis: unknown asks for a complete solve. */
  enum class State { unknown, optimal, primal_feasible, primal_infeasible };

  Reoptimization(Core& core, const UserSpace& user, Activities& sums, Answer& answer)
      : core_(core), user_(user), sums_(sums), answer_(answer) {}

  void settle(const Options& options);
  void forget() {
    state_ = State::unknown;
    in_step_ = false;
  }
  bool holds() const { return state_ != State::unknown; }
  /* It holds, and nothing has changed since the last refresh. */
  bool is_at_rest() const { return holds() && touched_.empty(); }
  /* The core's x and d have followed all changes since the optimum, whatever the last refresh() found. Until
   * forget(). */
  bool in_step() const { return in_step_; }
  /* Before the bounds or the cost of variable j change. */
  void note(int j);
  bool needs_factor() const;
  /* So many differences have been added up that everything is to be computed anew. */
  bool is_due() const;
  State refresh(const Options& options);
  /* Before and after the core and the user's vectors are reshaped: the answer is reshaped with them, and what
   * is new counts as touched. Forgets where basic values would have to move for what is gone. */
  void prepare_edit(const ModelEdit& change);
  void edit(const ModelEdit& change);

  /* Columns and rows whose entries of the answer may differ since the last taken(). */
  std::span<const int> columns() const { return columns_.view(); }
  std::span<const int> rows() const { return rows_.view(); }
  void taken();
  void renew_column(int j) {
    if (holds()) columns_.add(j);
  }
  void renew_row(int i) {
    if (holds()) rows_.add(i);
  }

 private:
  struct Touched {
    int variable;
    double value, cost;  // before the change: of a nonbasic variable, scaled; of a column, the user's
  };
  struct Findings {
    double primal = 0, dual = 0;            // worst violations in scaled space
    double user_primal = 0, user_dual = 0;  // and in the user's
    double residual = 0;                    // by which the user's sums miss the engine's values, scaled
  };

  bool follows(const Options& options) const;
  bool bounds_cross() const;
  double user_value(int j) const;
  void move_column(int j, double value);
  void move_costs();
  void move_values();
  void resize();
  void enter_column(int j);
  void enter_row(int i);
  void judge_column(int j, Findings& found);
  void judge_row(int i, Findings& found);
  State judge(const Options& options);

  Core& core_;
  const UserSpace& user_;
  Activities& sums_;
  Answer& answer_;
  State state_ = State::unknown;
  bool in_step_ = false;
  double primal_tolerance_ = 0, dual_tolerance_ = 0;  // of the solve that settled
  int refreshes_ = 0;
  std::vector<Touched> touched_;
  std::vector<char> is_touched_;
  SparseVector shift_, cost_shift_;
  Density value_density_, cost_density_;
  MarkedList rows_, columns_;
};

}  // namespace tovik::lp::simplex
