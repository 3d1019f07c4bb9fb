/* Pivots that a user asks for: slacks of given rows into the basis, fixed columns out of it. Values are left as they
 * are: who asked goes on with another basis of the same model. */
#include <cmath>

#include "lp/simplex/relaxation.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kPivotShare = 0.1;   // pivots below this share of the column's largest are not taken
constexpr double kLeastPivot = 1e-9;  // ... nor such small ones
constexpr double kSlackBonus = 10;    // a structural pivot must be so many times larger than a slack's

/* Largest entry of the column whose basic variable may leave; -1 when none is large enough. */
int best_position(const SparseVector& column, const std::vector<char>& may_leave) {
  double largest = 0;
  double best_size = 0;
  int best = -1;
  for (int p = 0; p < column.dimension(); ++p) {
    const double size = std::fabs(column.array[p]);
    largest = std::max(largest, size);
    if (may_leave[p] && size > best_size) {
      best_size = size;
      best = p;
    }
  }
  return best_size >= kPivotShare * largest && best_size > kLeastPivot ? best : -1;
}

}  // namespace

/* One basis change with the factor kept up; column_ holds B^-1 a_entering. False when that ends in a singular
 * basis. */
bool Relaxation::change_basis_only(int entering, int position) {
  Core& core = *core_;
  load_inverse_row(position);
  core.change_basis(entering, position, 0);
  if (core.factor.update(column_, row_, position) && !core.factor.wants_rebuild()) return true;
  return core.refactor() != FactorState::singular;
}

void Relaxation::start_requested_pivots() {
  leave();
  reoptimization_.forget();
  keep_norms_ = false;
  core_->ensure_rows();
  resize_work();
}

bool Relaxation::pivot_rows_in(std::span<const int> rows) {
  start_requested_pivots();
  Core& core = *core_;
  std::vector<char> wanted(static_cast<size_t>(core.total()), 0);
  for (const int i : rows) wanted[core.n() + i] = 1;
  std::vector<char> may_leave(static_cast<size_t>(core.m()));
  for (const int i : rows) {
    const int entering = core.n() + i;
    if (!core.basis.nonbasic(entering)) continue;
    load_column(entering);
    for (int p = 0; p < core.m(); ++p) may_leave[p] = static_cast<char>(!wanted[core.basis.head(p)]);
    const int p = best_position(column_, may_leave);
    if (p >= 0 && !change_basis_only(entering, p)) return false;
  }
  return true;
}

bool Relaxation::pivot_columns_out(std::span<const int> columns) {
  start_requested_pivots();
  Core& core = *core_;
  for (const int column : columns) {
    if (core.basis.nonbasic(column)) continue;
    const int position = core.basis.position(column);
    row_.clear();
    row_.set_unit(position);
    core.btran(row_, core.row_ep_density);
    alpha_.clear();
    core.price(row_, alpha_);
    int entering = -1;
    double size = kLeastPivot;
    for (int i = 0; i < core.m(); ++i) {  // slacks first: they keep the factor sparse
      if (core.basis.nonbasic(core.n() + i) && std::fabs(row_.array[i]) > size) {
        size = std::fabs(row_.array[i]);
        entering = core.n() + i;
      }
    }
    for (int j = 0; j < core.n(); ++j) {
      if (core.basis.nonbasic(j) && !core.is_fixed(j) && std::fabs(alpha_.array[j]) > kSlackBonus * size) {
        size = std::fabs(alpha_.array[j]) / kSlackBonus;
        entering = j;
      }
    }
    if (entering < 0) continue;
    load_column(entering);
    if (!change_basis_only(entering, position)) return false;
  }
  return true;
}

}  // namespace tovik::lp::simplex
