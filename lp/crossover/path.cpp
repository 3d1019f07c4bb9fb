#include "lp/crossover/path.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/crossover/basis_repair.h"

namespace tovik::lp::crossover {
namespace {

constexpr double kLeastStalePivot = 1e-5;  // with a factor that updates have touched
constexpr double kMismatch = 1e-8;         // of a pivot by row and by column, relative
constexpr double kFreshMismatch = 1e-5;
constexpr std::int64_t kClockTicks = 10000000;  // between two looks at the clock
constexpr double kJump = 2;  // of the tolerance: a variable that is nearer to its bound is put there
constexpr double kTellSeconds = 0.9;

}  // namespace

Path::Path(simplex::Core& work_core, const ComplementaryStart& start, Observer* who)
    : core(work_core),
      observer(who),
      on_its_way_(static_cast<std::size_t>(core.total()), 0),
      multiplier_(start.z) {
  column_.resize(core.m());
  row_.resize(core.m());
  for (int j = 0; j < core.total(); ++j) {
    if (core.basis.nonbasic(j)) {
      place(start, j);
    } else {
      core.values.set_x(core.basis.position(j), start.x[j]);
    }
  }
  last_told_ = core.control->seconds();
}

void Path::place(const ComplementaryStart& start, int j) {
  const Standing standing = start.standing[j];
  const int move = standing == Standing::lower ? 1 : standing == Standing::upper ? -1 : 0;
  if (standing == Standing::fixed || start.x[j] == bound(j, move)) {
    core.place_nonbasic(j, move);
  } else {
    core.basis.place(j, move, start.x[j]);
    on_its_way_[j] = 1;
  }
}

void Path::take_reduced_cost(int j, double d) {
  const int move = core.basis.move(j);
  if (core.is_fixed(j)) {
    multiplier_[j] = d;
  } else {
    multiplier_[j] = move > 0 ? std::max(0.0, d) : move < 0 ? std::min(0.0, d) : 0;
  }
}

std::vector<int> Path::nonbasics_to_push() const {
  std::vector<int> found;
  for (int j = 0; j < core.total(); ++j) {
    if (on_its_way_[j]) found.push_back(j);
  }
  return found;
}

std::vector<int> Path::basics_to_push() const {
  std::vector<int> found;
  for (const int j : core.basis.head()) {
    if (multiplier_[j] != 0) found.push_back(j);
  }
  return found;
}

void Path::put_at_bound(int j, int move) {
  on_its_way_[j] = 0;
  core.place_nonbasic(j, move);
}

const SparseVector& Path::load_column(int q) {
  core.model.load_column(q, column_);
  column_.want_pack = true;
  core.ftran(column_, core.column_density);
  column_.want_pack = false;
  return column_;
}

const SparseVector& Path::load_row(int p) {
  row_.clear();
  row_.set_unit(p);
  row_.want_pack = true;
  core.btran(row_, core.row_ep_density);
  row_.want_pack = false;
  return row_;
}

Path::Trust Path::judge_pivot(int q, int p) {
  const bool fresh = core.factor.updates() == 0;
  const double by_column = std::fabs(column_.array[p]);
  const double gap = std::fabs(column_.array[p] - row_entry(q));
  if (by_column >= (fresh ? kLeastPivot : kLeastStalePivot) &&
      gap <= (fresh ? kFreshMismatch : kMismatch) * by_column)
    return Trust::good;
  if (fresh) return Trust::bad;
  if (gap > kMismatch) core.raise_threshold();
  refactor();
  return Trust::refactored;
}

void Path::exchange(int q, int p, double x_q, int leaving_move) {
  const int out = core.basis.head(p);
  const double x = core.values.x(p);
  on_its_way_[q] = 0;
  const bool updated = core.update_factor(column_, row_, p);
  core.change_basis(q, p, leaving_move);
  core.values.set_x(p, x_q);
  if (std::fabs(bound(out, leaving_move) - x) > kJump * core.primal_tolerance()) {
    core.basis.place(out, core.basis.move(out), x);
    on_its_way_[out] = core.model.lower(out) < x && x < core.model.upper(out);
  }
  if (!updated || core.factor.wants_rebuild()) refactor();
}

void Path::refactor() {
  const std::vector<int> head = core.basis.head();
  const std::vector<double> x = core.values.x();
  if (core.refactor(simplex::FactorReason::growth) != simplex::FactorState::good) take_over_repairs(head, x);
  core.compute_primal();
  refactored_ = true;
  if (repairing_ || repairs_left_ <= 0) return;
  repairing_ = true;
  std::vector<double> values(static_cast<std::size_t>(core.total()), 0.0);
  for (int p = 0; p < core.m(); ++p) values[core.basis.head(p)] = core.values.x(p);
  for (std::size_t p = 0; p < head.size(); ++p) values[head[p]] = x[p];
  repairs_left_ -= repair_basis(*this, std::move(values));
  repairing_ = false;
}

/* Logicals have taken the place of basics. */
void Path::take_over_repairs(const std::vector<int>& head_before, const std::vector<double>& x_before) {
  for (std::size_t p = 0; p < head_before.size(); ++p) {
    const int out = head_before[p];
    if (!core.basis.nonbasic(out)) continue;
    const double z = multiplier_[out], x = x_before[p];
    const int move = z > 0 || x <= core.model.lower(out) ? 1 : z < 0 || x >= core.model.upper(out) ? -1 : 0;
    core.place_nonbasic(out, move);
    if (core.model.lower(out) < x && x < core.model.upper(out)) {
      core.basis.place(out, move, x);
      on_its_way_[out] = 1;
    }
  }
  for (const factor::Exchange& e : core.factor.exchanges()) on_its_way_[core.n() + e.row] = 0;
}

void Path::compute_reduced_costs(std::vector<double>& d) {
  cost_ = core.model.cost();
  for (const int j : core.basis.head()) cost_[j] -= multiplier_[j];
  core.values.compute_dual(core.model, cost_, core.basis, core.factor, d);
  core.charge(static_cast<std::int64_t>(core.matrix().index.size()) + core.m());
}

bool Path::must_stop() {
  core.report_work();
  if (result.stop != Stop::none) return true;
  result.stop = core.control->poll();
  if (result.stop == Stop::none && core.total_work() >= next_clock_) {
    next_clock_ = core.total_work() + kClockTicks;
    result.stop = core.control->poll_clock();
    if (result.stop == Stop::none) result.stop = core.control->iteration_callback(*this);
  }
  return result.stop != Stop::none;
}

lp::Progress Path::progress() const {
  return CrossoverProgress{.exchanges = result.counts.primal_exchanges + result.counts.dual_exchanges,
                           .left = left_};
}

void Path::tell(bool primal, int left) {
  primal_ = primal;
  left_ = left;
  if (observer == nullptr) return;
  const double now = core.control->seconds();
  if (now < last_told_ + kTellSeconds) return;
  last_told_ = now;
  observer->progress({primal, left, result.counts});
}

void Path::finish() {
  for (int j = 0; j < core.total(); ++j) {
    if (core.basis.nonbasic(j)) {
      if (!on_its_way_[j]) continue;
      const double x = core.basis.value(j);
      const int move = core.basis.move(j);
      put_at_bound(j, move != 0 ? move : x - core.model.lower(j) <= core.model.upper(j) - x ? 1 : -1);
      ++result.abandoned;
    } else if (multiplier_[j] != 0) {
      ++result.abandoned;
    }
  }
}

}  // namespace tovik::lp::crossover
