/* Which variables are basic, in which position, and where the others stand.
 *
 * - Holds, by position (size m): head, the basic variable. By variable: position in head, of basic ones;
 *   nonbasic; move, the direction in which a nonbasic may move: +1 at lower, -1 at upper, 0 fixed, free or
 *   basic; value of a nonbasic. What has no meaning for a variable may hold anything.
 * - Counts the free nonbasics, by working bounds, since the last count_free().
 * - Writers: Core, with its set_basis, change_basis, place_nonbasic, flip, edit, undo and restore. */
#pragma once

#include <cmath>
#include <vector>

#include "lp/factor/factor.h"
#include "lp/simplex/working_data.h"

namespace tovik::lp::simplex {

class BasisPartition {
 public:
  explicit BasisPartition(const ScaledModel& model);

  int head(int p) const { return head_[p]; }
  int position(int j) const { return position_[j]; }
  bool nonbasic(int j) const { return nonbasic_[j] != 0; }
  int move(int j) const { return move_[j]; }
  double value(int j) const { return value_[j]; }
  const std::vector<int>& head() const { return head_; }
  const std::vector<signed char>& nonbasic() const { return nonbasic_; }
  const std::vector<signed char>& move() const { return move_; }
  const std::vector<double>& value() const { return value_; }
  int free_nonbasic() const { return free_nonbasic_; }

  /* Position p gets basic variable j; find_positions() when all have one. */
  void set_basic(int p, int j) {
    head_[p] = j;
    make_basic(j);
  }
  void make_basic(int j) {
    nonbasic_[j] = 0;
    move_[j] = 0;
  }
  void make_nonbasic(int j) { nonbasic_[j] = 1; }
  void find_positions();
  /* q enters at position p; returns the variable that leaves, which is still to be placed. */
  int exchange(int q, int p, const WorkingData& work) {
    const int out = head_[p];
    free_nonbasic_ += work.is_free(out) - work.is_free(q);
    head_[p] = q;
    position_[q] = p;
    make_basic(q);
    nonbasic_[out] = 1;
    return out;
  }
  /* Of the exchanges the last one not yet taken back: both variables are still to be placed. */
  void undo_exchange(int p, int entering, int leaving) {
    head_[p] = leaving;
    position_[leaving] = p;
    nonbasic_[leaving] = 0;
    nonbasic_[entering] = 1;
  }
  void place(int j, int direction, double at) {
    move_[j] = static_cast<signed char>(direction);
    value_[j] = at;
  }
  /* At the bound that `prefer` (as move) names or, where that is 0, at the one nearest to zero; where there is
   * only one bound or none, there. */
  void place_at_bound(int j, int prefer, const WorkingData& work);
  void set_free_nonbasic(int count) { free_nonbasic_ = count; }
  void count_free(const WorkingData& work);

  /* The factor of the basis; it permutes head, and mends what is singular. Returns the rank deficiency. */
  int factor_with(factor::Factor& factor) { return factor.build(head_); }

  /* Nonbasic new columns, basic new logicals in the last positions; none of them has a place. */
  void edit(const IndexEdit& indices);

  struct Saved {
    std::vector<int> head;
    std::vector<signed char> nonbasic, move;
    std::vector<double> value;
  };
  Saved save() const { return {head_, nonbasic_, move_, value_}; }
  void restore(const Saved& saved);

 private:
  std::vector<int> head_;                     // m
  std::vector<int> position_;                 // total
  std::vector<signed char> nonbasic_, move_;  // total
  std::vector<double> value_;                 // total
  int free_nonbasic_ = 0;
};

}  // namespace tovik::lp::simplex
