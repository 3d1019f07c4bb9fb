/* Where crossover stands between its point and a vertex, and the steps that both kinds of pushes share.
 *
 * Beside the core's own state: which nonbasics have yet to go to a bound, and multipliers, by variable; those of basics
 * have yet to go to 0. Ax = b and A'y + z = c are what the pushes keep. A nonbasic's move tells the bound that it
 * belongs to, at or near it; it is 0 for those that belong to neither: their multiplier is 0. An exchange is checked
 * by computing its pivot by row and by column. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/sparse_vector.h"
#include "lp/crossover/complementary_start.h"

namespace tovik::lp::crossover {

class Path : private ProgressSource {
 public:
  Path(simplex::Core& core, const ComplementaryStart& start, Observer* observer);

  double multiplier(int j) const { return multiplier_[j]; }
  void set_multiplier(int j, double z) { multiplier_[j] = z; }
  /* The multiplier of a nonbasic becomes its reduced cost, as far as that has the sign of its bound. */
  void take_reduced_cost(int j, double d);
  /* Nonbasics that are not at their bounds, basics with a multiplier. */
  std::vector<int> nonbasics_to_push() const;
  std::vector<int> basics_to_push() const;
  bool has_arrived() const { return nonbasics_to_push().empty() && basics_to_push().empty(); }
  void move_nonbasic(int j, double value) { core.basis.place(j, core.basis.move(j), value); }
  void put_at_bound(int j, int move);

  /* column: B^-1 a_q; row: the unit row p of B^-1. Both are kept for an exchange. */
  const SparseVector& load_column(int q);
  const SparseVector& load_row(int p);
  double row_entry(int j) {
    const Matrix& a = core.matrix();
    core.charge(j < core.n() ? a.start[j + 1] - a.start[j] : 1);
    return core.model.column_dot(j, row_.array);
  }

  /* Smaller entries of a column or row are never pivots: ratio tests pass over them. */
  static constexpr double kLeastPivot = 1e-7;

  enum class Trust { good, refactored, bad };
  /* Of the pivot of column q, loaded last, in the row of p, loaded last: bad ones are not to be used. After
   * `refactored` positions have changed. */
  Trust judge_pivot(int q, int p);
  /* q, of value x_q, takes the place of the variable in position p, which leaves for its bound (by move) and keeps its
   * multiplier. Where it is not yet there it is to be pushed; out of its bounds it stays where it is. */
  void exchange(int q, int p, double x_q, int leaving_move);
  /* Of the present basis; mends what is singular, or so nearly that the basics' values would change. Positions do. */
  void refactor();
  /* Since the last question. */
  bool was_refactored() {
    const bool was = refactored_;
    refactored_ = false;
    return was;
  }

  /* Reduced costs of nonbasics under costs that give basics their multipliers. */
  void compute_reduced_costs(std::vector<double>& d);

  bool must_stop();
  void tell(bool primal, int left);
  /* What is left is put at its bound, or at the nearest. */
  void finish();

  simplex::Core& core;
  Observer* const observer;
  Result result;

 private:
  CallOrigin origin() const override {
    return primal_ ? CallOrigin::primal_crossover : CallOrigin::dual_crossover;
  }
  lp::Progress progress() const override;
  void place(const ComplementaryStart& start, int j);
  double bound(int j, int move) const {
    return move > 0 ? core.model.lower(j) : move < 0 ? core.model.upper(j) : kInf;
  }
  void take_over_repairs(const std::vector<int>& head_before, const std::vector<double>& x_before);

  std::vector<char> on_its_way_;    // total: nonbasics to be pushed
  std::vector<double> multiplier_;  // total
  SparseVector column_, row_;
  std::vector<double> cost_;
  bool refactored_ = false, repairing_ = false;
  int repairs_left_ = 1000;  // exchanges
  std::int64_t next_clock_ = 0;
  double last_told_ = 0;
  bool primal_ = false;  // what tell() was told last
  int left_ = 0;
};

}  // namespace tovik::lp::crossover
