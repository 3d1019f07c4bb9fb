/* Sums over the user's model at a point (x, y): the rows' activities A x, the columns' dual sums A'y, the
 * objective.
 *
 * - Holds: each sum with the error of every operation carried along, so that it stays as good as a fresh one
 *   while single values move: m + n sums of 16 bytes.
 * - Order: compute() for a new point; move_x(), move_y(), change_cost() for single differences.
 * - Marks: rows() and columns() list what a difference has touched since the last clear_marks(): a row's
 * activity, a column's x, cost or dual sum, a row's y.
 * - Cost: of a difference: the entries of the column or row. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/sum.h"
#include "lp/simplex/marked_list.h"
#include "lp/simplex/model_edit.h"
#include "lp/simplex/user_space.h"

namespace tovik::lp::simplex {

class Activities {
 public:
  explicit Activities(const UserSpace& space) : space_(space) {}

  void compute(const std::vector<double>& x, const std::vector<double>& y);
  void move_x(int j, double from, double to);
  void move_y(int i, double from, double to);
  void change_cost(int j, double from, double to, double x);
  /* After the space was reshaped, with the change in scaled space: x is 0 in columns that went and in new
   * ones, y in rows likewise. Forgets marks. */
  void edit(const ModelEdit& change, const std::vector<double>& x, const std::vector<double>& y);

  double activity(int i) const { return activity_[i].value(); }
  /* cost - A_j'y, rounded once: the terms may be far larger than what they leave. */
  double reduced_cost(int j) const {
    CompensatedSum sum = dual_sum_[j];
    sum.add(-space_.lp.cost[j]);
    return 0 - sum.value();
  }
  double objective() const { return objective_.value() + space_.lp.offset; }

  MarkedList& rows() { return rows_; }
  MarkedList& columns() { return columns_; }
  std::int64_t take_work();  // entries touched since the last call

 private:
  const UserSpace& space_;
  std::vector<CompensatedSum> activity_, dual_sum_;
  CompensatedSum objective_;  // without the offset
  MarkedList rows_, columns_;
  std::int64_t work_ = 0;
};

}  // namespace tovik::lp::simplex
