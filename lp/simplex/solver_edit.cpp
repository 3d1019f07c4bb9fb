/* Rows and columns that go and come between two solves. */
#include <algorithm>
#include <cmath>
#include <numeric>

#include "lp/simplex/solver.h"

namespace tovik::lp::simplex {
namespace {

/* Smallest and largest size of the entries of one line. */
struct Spread {
  double low = kInf, high = 0;
  void add(double v) {
    if (v == 0) return;
    low = std::min(low, std::fabs(v));
    high = std::max(high, std::fabs(v));
  }
};

/* Scale factors of the new lines: of columns by their entries in old rows, then of rows. */
void extend_scaling(const ModelEdit& change, Scaling& scaling) {
  const auto old_rows = static_cast<int>(scaling.row.size());
  for (int j = 0; j < change.new_columns(); ++j) {
    Spread spread;
    for (int k = change.columns.start[j]; k < change.columns.start[j + 1]; ++k) {
      const int i = change.columns.index[k];
      if (i < old_rows) spread.add(change.columns.value[k] * scaling.row[i]);
    }
    scaling.column.push_back(scale_factor(spread.low, spread.high));
  }
  for (int i = 0; i < change.new_rows(); ++i) {
    Spread spread;
    for (int k = change.rows.start[i]; k < change.rows.start[i + 1]; ++k)
      spread.add(change.rows.value[k] * scaling.column[change.rows.index[k]]);
    scaling.row.push_back(scale_factor(spread.low, spread.high));
  }
}

/* Brings the new lines, the last of the scaled model, into its space. */
void scale(ModelEdit& change, const Scaling& scaling) {
  const auto first_column = static_cast<int>(scaling.column.size()) - change.new_columns();
  const auto first_row = static_cast<int>(scaling.row.size()) - change.new_rows();
  for (int j = 0; j < change.new_columns(); ++j) {
    const double c = scaling.column[first_column + j];
    change.cost[j] *= c;
    change.lower[j] /= c;
    change.upper[j] /= c;
    for (int k = change.columns.start[j]; k < change.columns.start[j + 1]; ++k)
      change.columns.value[k] *= c * scaling.row[change.columns.index[k]];
  }
  for (int i = 0; i < change.new_rows(); ++i) {
    const double r = scaling.row[first_row + i];
    change.row_lower[i] *= r;
    change.row_upper[i] *= r;
    for (int k = change.rows.start[i]; k < change.rows.start[i + 1]; ++k)
      change.rows.value[k] *= r * scaling.column[change.rows.index[k]];
  }
}

/* Where only the last lines go the others keep their numbers. */
bool are_last(std::span<const int> gone, int count) {
  return gone.empty() || gone.front() == count - static_cast<int>(gone.size());
}

void edit_vectors(const ModelEdit& change, LpData& lp) {
  const auto exchange = [](std::vector<double>& v, std::span<const int> gone,
                           const std::vector<double>& added) {
    erase_indices(v, gone);
    v.insert(v.end(), added.begin(), added.end());
  };
  exchange(lp.cost, change.deleted_columns, change.cost);
  exchange(lp.lower, change.deleted_columns, change.lower);
  exchange(lp.upper, change.deleted_columns, change.upper);
  exchange(lp.row_lower, change.deleted_rows, change.row_lower);
  exchange(lp.row_upper, change.deleted_rows, change.row_upper);
  lp.matrix.columns = static_cast<int>(lp.cost.size());
  lp.matrix.rows = static_cast<int>(lp.row_lower.size());
}

}  // namespace

/* Squared lengths of a_B' B^-1 for the new rows, their own scale factors left out: the weight of a new logical is
 * 1 + r^2 times that. */
std::vector<double> Solver::new_row_lengths(const ModelEdit& change) {
  Core& core = *core_;
  std::vector<double> lengths(static_cast<size_t>(change.new_rows()), 0.0);
  if (lengths.empty()) return lengths;
  std::vector<int> kept(static_cast<size_t>(core.n()));  // number before of each old column that stays
  std::iota(kept.begin(), kept.end(), 0);
  erase_indices(kept, change.deleted_columns);
  SparseVector row;
  row.resize(core.m());
  for (int i = 0; i < change.new_rows(); ++i) {
    row.clear();
    for (int k = change.rows.start[i]; k < change.rows.start[i + 1]; ++k) {
      const int j = kept[change.rows.index[k]];
      if (core.basis.nonbasic(j)) continue;
      const int p = core.basis.position(j);
      if (row.array[p] == 0) row.index[row.count++] = p;
      row.array[p] += change.rows.value[k] * column_scale(j);
    }
    if (row.count == 0) continue;
    core.btran(row, core.row_ep_density);
    lengths[i] = row.norm2();
  }
  return lengths;
}

bool Solver::edit(ModelEdit change) {
  Core& core = *core_;
  const bool allowed = std::all_of(change.deleted_columns.begin(), change.deleted_columns.end(),
                                   [&](int j) { return core.basis.nonbasic(j) != 0; }) &&
                       std::none_of(change.deleted_rows.begin(), change.deleted_rows.end(),
                                    [&](int i) { return core.basis.nonbasic(core.n() + i) != 0; });
  if (!allowed) return false;
  reoptimization_.prepare_edit(change);
  answer_is_new_ = answer_is_new_ || !are_last(change.deleted_columns, core.n()) ||
                   !are_last(change.deleted_rows, core.m()) || !reoptimization_.columns().empty() ||
                   !reoptimization_.rows().empty();
  std::vector<double> lengths(static_cast<size_t>(change.new_rows()), 0.0);
  if (keep_norms_) {
    if (dual_ != nullptr) carried_norms_ = dual_->norms();
    if (core.has_factor() && carried_norms_.kind() == WeightKind::norms) lengths = new_row_lengths(change);
    carried_norms_.erase(core.positions_of_logicals(change.deleted_rows));
  }
  edit_vectors(change, user_.lp);
  if (user_.scaling.active()) {
    erase_indices(user_.scaling.column, change.deleted_columns);
    erase_indices(user_.scaling.row, change.deleted_rows);
    extend_scaling(change, user_.scaling);
    scale(change, user_.scaling);
  }
  core.edit(change);
  for (int k = 0; k < change.new_rows() && keep_norms_; ++k) {
    const double r = row_scale(core.m() - change.new_rows() + k);
    carried_norms_.append(1.0 + r * r * lengths[k]);
  }
  dual_.reset();
  primal_.reset();
  reoptimization_.edit(change);
  return true;
}

}  // namespace tovik::lp::simplex
