/* The bounds that hold at one place of a search, with a trail by which they are taken back.
 *
 * - Holds: bounds by column; a trail of the changes since the root, each with its reason and with the position of the
 *   change of the same bound before it; the activity bounds of the rows; rows that a change may let propagate.
 * - Rounding: a new bound of an integer column is rounded to an integer, a little beyond an integer counting as that
 *   integer. A bound that does not improve on the present one is no change. Bounds of a continuous column move only
 *   where the caller says so; how much is worth a change is the propagators' business.
 * - Infeasible: where bounds cross by more than the feasibility tolerance the domain says so until it goes back; changes are
 *   then ignored. Bounds that cross by less are made equal.
 * - Order: tighten...; position() before a branch, backtrack() to it. Everything before the first position is global.
 * - Cost: a change costs the entries of its column, twice when it is taken back.
 * - Errors: bad_alloc; the object is to be thrown away then. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mip/domain/activity.h"
#include "mip/domain/problem.h"

namespace tovik::mip {

enum class Side : unsigned char { lower, upper };

struct Reason {
  enum class Kind : unsigned char {
    branching,
    row,
    semi_column,
    set,
    indicator,
    reduced_cost,  // index: of the worker's proofs, -1: none was kept
    objective,
    clause,  // index: the number of the clause
    probing,
    // No row implies it: an equivalent solution is elsewhere in the tree.
    symmetry,
    known,  // holds globally
  };
  Kind kind = Kind::branching;
  int index = -1;  // of the row, the object ...
};

struct BoundMove {
  int column;
  Side side;
  double value, before;
  int earlier;  // position of the change of the same bound before this; -1: none
  Reason reason;
};

/* What made a domain infeasible: a bound that would cross the other one, or (column -1) the reason by itself. */
struct Contradiction {
  int column = -1;
  Side side = Side::lower;
  double value = 0;
  Reason reason;
};

/* Rows of a matrix that stays. */
struct RowView {
  std::span<const int> columns;
  std::span<const double> values;
};

class Domain {
 public:
  Domain(const Problem& problem, const Tolerances& tolerances);

  std::span<const double> lower() const { return lower_; }
  std::span<const double> upper() const { return upper_; }
  double lower(int j) const { return lower_[j]; }
  double upper(int j) const { return upper_[j]; }
  bool is_fixed(int j) const { return lower_[j] == upper_[j]; }
  /* What held at the last commit(): everywhere in the search. */
  double global_lower(int j) const { return global_lower_[j]; }
  double global_upper(int j) const { return global_upper_[j]; }
  bool is_fixed_globally(int j) const { return global_lower_[j] == global_upper_[j]; }
  bool is_binary_globally(int j) const {
    return problem_.is_integer[j] != 0 && global_lower_[j] >= 0 && global_upper_[j] <= 1;
  }
  bool is_binary(int j) const { return problem_.is_integer[j] != 0 && lower_[j] >= 0 && upper_[j] <= 1; }
  bool is_infeasible() const { return infeasible_; }

  /* True when the bound moved. */
  bool tighten(int column, Side side, double value, Reason reason);
  bool tighten_lower(int j, double v, Reason reason) { return tighten(j, Side::lower, v, reason); }
  bool tighten_upper(int j, double v, Reason reason) { return tighten(j, Side::upper, v, reason); }
  void fix(int j, double v, Reason reason) {
    tighten(j, Side::lower, v, reason);
    tighten(j, Side::upper, v, reason);
  }
  void set_infeasible(Reason reason) {
    infeasible_ = true;
    contradiction_ = {-1, Side::lower, 0, reason};
  }
  /* Where it is infeasible. */
  const Contradiction& contradiction() const { return contradiction_; }

  int position() const { return static_cast<int>(trail_.size()); }
  void backtrack(int position);
  /* Makes what is on the trail global: it can no longer be taken back. */
  void commit();
  std::span<const BoundMove> trail() const { return trail_; }
  /* Position of the last change of a bound; -1: none is on the trail. */
  int last_move(int j, Side side) const { return side == Side::lower ? last_lower_[j] : last_upper_[j]; }
  /* The bound that held before position p of the trail. */
  double bound_before(int j, Side side, int p) const;

  const ActivityBound& least(int row) const { return least_[row]; }
  const ActivityBound& largest(int row) const { return largest_[row]; }
  RowView row(int i) const;

  /* Rows whose activity bounds have moved so that they may propagate; taken in the order in which they came. */
  bool has_queued_row() const { return next_queued_ < queued_.size(); }
  int take_queued_row();
  void queue_all_rows();
  void forget_queued_rows();

  /* Columns whose bounds may differ from what they were at the last call, each once. */
  std::span<const int> moved_columns() const { return moved_; }
  void forget_moved_columns();

  std::int64_t work() const { return work_; }  // entries touched so far

  const Problem& problem() const { return problem_; }
  const Tolerances& tolerances() const { return tolerances_; }

 private:
  void move(int column, Side side, double from, double to, bool queue);
  void note_moved(int column);

  const Problem& problem_;
  Tolerances tolerances_;
  lp::Matrix rows_;  // row-wise copy
  std::vector<double> lower_, upper_, global_lower_, global_upper_;
  std::vector<int> last_lower_, last_upper_;  // positions on the trail, -1: none
  std::vector<BoundMove> trail_;
  std::vector<ActivityBound> least_, largest_;
  std::vector<int> queued_;
  std::size_t next_queued_ = 0;
  std::vector<char> is_queued_, has_moved_;
  std::vector<int> moved_;
  bool infeasible_ = false;
  Contradiction contradiction_;
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
