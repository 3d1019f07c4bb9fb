/* Changes of bounds and costs that the simplex state has not yet followed.
 *
 * The state's basic values x and reduced costs d belong to the bounds and costs of the last apply(). A change
 * is noted before it is made; apply() then moves x by one FTRAN for all nonbasic variables that moved and d
 * by one BTRAN and one priced row for all changed costs of basic variables, and looks at nothing else.
 *
 * - Holds: the touched variables with their values of before. Nothing of size n or m is gone through.
 * - Writes: the core's x, x_lower, x_upper, d, working costs and the places of the nonbasic variables that it
 * moves; tells the dual pricing which positions to look at.
 * - Order: resize() for a new shape; note() before each change; apply() or clear().
 * - Needs: a factor, a row copy that is not stale, and d of fixed logicals in step (Dual::start_near).
 * - Cost: of the entries touched. Errors: bad_alloc passes through. */
#pragma once

#include <span>
#include <vector>

#include "lp/simplex/core.h"
#include "lp/simplex/dual.h"
#include "lp/simplex/marked_list.h"

namespace tovik::lp::simplex {

class PendingChanges {
 public:
  explicit PendingChanges(Core& core) : core_(core) {}

  void resize();
  void note(int j);
  void clear();
  bool empty() const { return touched_.empty(); }
  /* Variables that changed since the last apply(). */
  template <class F>
  void each(F f) const {
    for (const Touched& t : touched_) f(t.variable);
  }

  /* Brings x and d in step and adds the change of the objective to it. Boxed variables whose reduced cost has
   * the wrong sign go to their other bound; `wrong` holds the others, which only the primal can mend, on
   * return. */
  void apply(Dual& dual, double& objective, MarkedList& wrong);
  /* Takes back the shifts of the costs, in the same way. */
  void remove_shifts(Dual& dual, double& objective, MarkedList& wrong);
  /* Multiplier of row i, scaled, from the logical's reduced cost. */
  double multiplier(int i) const {
    const int j = core_.n() + i;
    return core_.basis.nonbasic(j) ? core_.work.cost(j) - core_.values.d(j) : core_.work.cost(j);
  }
  /* Reduced cost of column j from the multipliers. */
  double reduced_cost(int j) const;

 private:
  struct Touched {
    int variable;
    bool inactive;  // fixed before: its reduced cost has not been kept
    double value;   // of a nonbasic variable
  };
  struct Moved {
    int variable;
    double change;
  };
  void change_cost(int j, double nonbasic_value, double& objective);
  void spread_costs(MarkedList& wrong);
  void place(const Touched& t, MarkedList& wrong);
  void judge(int j, MarkedList& wrong);
  void move_values(Dual& dual, double& objective);
  void recheck(MarkedList& wrong);

  Core& core_;
  std::vector<Touched> touched_;
  std::vector<char> is_touched_;
  std::vector<Moved> moved_;
  std::vector<int> recheck_;
  SparseVector value_shift_, cost_shift_, row_;
  Density value_density_, cost_density_;
};

}  // namespace tovik::lp::simplex
