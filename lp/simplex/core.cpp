#include "lp/simplex/core.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "lp/simplex/progress.h"

namespace tovik::lp::simplex {

namespace {
constexpr double kColumnPriceRatio =
    0.7;  // price by columns when rows would touch more than this share of all entries
constexpr double kJointDensity = 0.25;     // results denser than this are solved for together
constexpr double kHighestThreshold = 0.9;  // after numerical failures
constexpr double kLargestThreshold = 0.99999;
constexpr double kStrictThreshold =
    0.5;                             // beyond this a stricter pivot rule does not mend an inaccurate factor
constexpr double kAccurate = 1e-10;  // residual of a random solve that a fresh factor must reach

constexpr double kRememberedRaise = 0.01;  // smaller raises are not told

double raised(double threshold) {
  return std::min(kLargestThreshold, threshold < 0.1 ? 0.1 : threshold + 0.1);
}
}  // namespace

Core::Core(LpData scaled_lp, const Options& solve_options, Control& solve_control)
    : random(solve_options.seed),
      model(std::move(scaled_lp)),
      work(model, random),
      basis(model),
      values(model),
      factor(matrix()),
      control(&solve_control),
      options(solve_options),
      primal_tolerance_(solve_options.primal_tolerance),
      dual_tolerance_(solve_options.dual_tolerance),
      threshold_(solve_options.markowitz) {
  tell_factor_the_sizes();
}

Core::Core(const Core& other)
    : random(other.random),
      model(other.model),
      rows(other.rows),
      work(other.work),
      basis(other.basis),
      values(other.values),
      factor(matrix()),
      control(other.control),
      options(other.options),
      counters(other.counters),
      scaled(other.scaled),
      row_ep_density(other.row_ep_density),
      row_ap_density(other.row_ap_density),
      column_density(other.column_density),
      dse_density(other.dse_density),
      flip_density(other.flip_density),
      has_factor_(other.has_factor_),
      rows_are_stale_(other.rows_are_stale_),
      primal_tolerance_(other.primal_tolerance_),
      dual_tolerance_(other.dual_tolerance_),
      threshold_(other.threshold_),
      repairs_(other.repairs_) {
  tell_factor_the_sizes();
  if (has_factor_) factor.restore(*other.factor.save());
}

/* A rebuild also recomputes values and reduced costs: two passes over the matrix. */
void Core::tell_factor_the_sizes() {
  factor.set_rebuild_overhead(2 * static_cast<std::int64_t>(matrix().index.size()) + 4 * total());
}

void Core::raise_threshold() {
  threshold_ = std::min(kHighestThreshold, threshold_ < 0.1 ? 0.1 : threshold_ + 0.2);
}

// ---- basis ----

void Core::set_logical_basis() {
  for (int j = 0; j < n(); ++j) {
    basis.make_nonbasic(j);
    place_nonbasic(j, 0);
  }
  for (int i = 0; i < m(); ++i) basis.set_basic(i, n() + i);
  has_factor_ = false;
  basis.find_positions();
  update_basis_pattern();
}

void Core::set_basis(const std::vector<BasisStatus>& status) {
  int basics = 0;
  for (int j = 0; j < total(); ++j) {
    if (status[j] == BasisStatus::basic && basics < m()) {
      basis.set_basic(basics++, j);
    } else {
      basis.make_nonbasic(j);
      place_nonbasic(j, status[j] == BasisStatus::upper ? -1 : status[j] == BasisStatus::lower ? 1 : 0);
    }
  }
  for (int j = n(); j < total() && basics < m(); ++j) {
    if (basis.nonbasic(j)) basis.set_basic(basics++, j);
  }
  has_factor_ = false;
  basis.find_positions();
  update_basis_pattern();
}

BasisStatus Core::status(int j) const {
  if (!basis.nonbasic(j)) return BasisStatus::basic;
  const int move = basis.move(j);
  if (move < 0 || (move == 0 && model.lower(j) == -kInf && model.upper(j) != kInf)) return BasisStatus::upper;
  return model.is_free(j) ? BasisStatus::free : BasisStatus::lower;
}

std::vector<BasisStatus> Core::basis_status() const {
  std::vector<BasisStatus> all(static_cast<size_t>(total()));
  for (int j = 0; j < total(); ++j) all[j] = status(j);
  return all;
}

void Core::change_basis(int q, int p, int leaving_move) {
  const int out = basis.exchange(q, p, work);
  if (q < n()) rows.deactivate(q);
  if (work.is_fixed(out)) {
    basis.place(out, 0, work.lower(out));
  } else if (leaving_move > 0) {
    basis.place(out, 1, work.lower(out));
  } else if (leaving_move < 0) {
    basis.place(out, -1, work.upper(out));
  } else {
    place_nonbasic(out, 0);
  }
  if (out < n() && !is_fixed(out)) rows.activate(out);
  take_basic_bounds(q);
}

void Core::undo_change_basis(int q, int p, int leaving) {
  basis.undo_exchange(p, q, leaving);
  if (leaving < n()) rows.deactivate(leaving);
  if (q < n() && !is_fixed(q)) rows.activate(q);
}

std::vector<int> Core::positions_of_logicals(std::span<const int> rows_of_logicals) const {
  std::vector<int> positions;
  if (rows_of_logicals.empty()) return positions;
  std::vector<char> wanted(static_cast<size_t>(m()), 0);
  for (const int i : rows_of_logicals) wanted[i] = 1;
  for (int p = 0; p < m(); ++p) {
    const int j = basis.head(p);
    if (j >= n() && wanted[j - n()]) positions.push_back(p);
  }
  return positions;
}

// ---- bounds and costs ----

void Core::use_original_bounds() {
  work.use_model_bounds(model);
  for (int j = 0; j < total(); ++j) {
    if (basis.nonbasic(j)) place_nonbasic(j, basis.move(j));
  }
}

void Core::use_original_costs() {
  if (work.costs_perturbed() || work.costs_shifted()) ++counters.dual.restores;
  work.use_model_costs(model);
}

void Core::shift_cost(int j, double target) {
  work.shift_cost(j, target - values.d(j));
  values.set_dual(j, target);
  ++counters.shifts;
}

void Core::shift_to_feasible(int j) {
  shift_cost(j, basis.move(j) * (1.0 + work.random_value(j)) * 0.5 * dual_tolerance_);
}

void Core::change_bounds(int j, double lower, double upper) {
  const bool counts = basis.nonbasic(j);
  const int before = counts && work.is_free(j);
  model.set_bounds(j, lower, upper);
  work.set_bounds(j, lower, upper);
  basis.set_free_nonbasic(basis.free_nonbasic() - before + (counts && work.is_free(j)));
  keep_active(j);
}

void Core::close_bounds(int j) {
  const double at = model.upper(j);
  model.set_bounds(j, at, at);
  work.set_bounds(j, at, at);
  keep_active(j);
}

void Core::force_bounds(int j, double lower, double upper) {
  model.set_bounds(j, lower, upper);
  work.set_bounds(j, lower, upper);
  if (!basis.nonbasic(j)) take_basic_bounds(j);
}

// ---- row copy, edits and copies ----

void Core::update_basis_pattern() {
  std::vector<char> active(static_cast<size_t>(n()));
  for (int j = 0; j < n(); ++j) active[j] = static_cast<char>(basis.nonbasic(j) && !is_fixed(j));
  rows.build(matrix(), active);
  rows_are_stale_ = false;
}

/* The row copy's active columns follow the statuses. */
void Core::sync_rows() {
  for (int j = 0; j < n() && !rows_are_stale_; ++j) keep_active(j);
}

void Core::edit(const ModelEdit& change) {
  const IndexEdit indices(change, n(), m(), positions_of_logicals(change.deleted_rows));
  if (model.own_columns()) factor.use_matrix(matrix());
  model.edit(change, indices);
  work.edit(model, indices, random);
  basis.edit(indices);
  values.edit(indices);
  for (int j = indices.kept_columns(); j < n(); ++j) place_nonbasic(j, 0);
  if (change.moves_rows()) has_factor_ = false;
  tell_factor_the_sizes();
  rows_are_stale_ = true;
}

Core::Saved Core::save() const {
  return {model.cost(), model.lower(), model.upper(), basis.save(), values.save(), factor.save()};
}

void Core::restore(const Saved& saved) {
  model.restore(saved.cost, saved.lower, saved.upper);
  use_original_costs();
  work.use_model_bounds(model);
  basis.restore(saved.basis);
  values.restore(saved.values, work, basis);
  factor.restore(*saved.factor);
  has_factor_ = true;
  sync_rows();
}

// ---- factor ----

FactorState Core::refactor(FactorReason reason) {
  const double before = threshold_;
  const FactorState state = factor_basis(reason);
  if (threshold_ > before + kRememberedRaise && counters.iterations > 0 && observer != nullptr) {
    char line[64];
    std::snprintf(line, sizeof line, "Markowitz threshold set to %g\n", threshold_);
    log(line);
  }
  return state;
}

FactorState Core::refactor_with_values() {
  values.save_x(basis);
  const FactorState state = refactor();
  if (state == FactorState::good) values.restore_x(work, basis);
  return state;
}

FactorState Core::factor_basis(FactorReason reason) {
  factor::Settings settings;
  settings.threshold = threshold_;
  factor.set(settings);
  int deficiency = 0;
  for (;;) {
    ++counters.factorizations;
    ++counters.factorizations_by_reason[static_cast<size_t>(reason)];
    deficiency = basis.factor_with(factor);
    // An inaccurate factor of a regular basis is made again with a stricter threshold.
    if (deficiency > 0 || threshold_ >= kStrictThreshold || factor.residual_check() <= kAccurate) break;
    reason = FactorReason::accuracy;
    threshold_ = raised(threshold_);
    settings.threshold = threshold_;
    factor.set(settings);
  }
  has_factor_ = true;
  basis.find_positions();
  if (deficiency == 0) return FactorState::good;
  ++counters.singular_bases;
  counters.columns_replaced += deficiency;
  const bool allowed = repairs_ < options.singular_limit;
  if (allowed) {
    ++repairs_;
    threshold_ = raised(threshold_);
    log("Repairing basis singularity.\n");
  }
  replace_dependent(allowed ? observer : nullptr);
  return allowed ? FactorState::repaired : FactorState::singular;
}

/* The factor has put logicals in the place of dependent basic variables: the statuses follow. */
void Core::replace_dependent(Observer* watcher) {
  for (const factor::Exchange& e : factor.exchanges()) {
    const int out = e.removed;
    if (watcher != nullptr) watcher->removed_by_singularity(*this, out);
    basis.make_nonbasic(out);
    place_nonbasic(out, 0);
    if (out < n() && !is_fixed(out)) rows.activate(out);
    basis.make_basic(n() + e.row);
  }
}

void Core::ftran(SparseVector& v, Density& density) {
  factor.ftran(v, density.value());
  density.update(v);
}

void Core::ftran(std::span<const Solve> solves) {
  std::array<SparseVector*, 4> together;
  size_t count = 0;
  for (const Solve& s : solves) {
    if (s.density->value() > kJointDensity && count < together.size()) together[count++] = s.vector;
  }
  if (count > 1) factor.ftran({together.data(), count});
  for (const Solve& s : solves) {
    if (count > 1 &&
        std::find(together.begin(), together.begin() + count, s.vector) != together.begin() + count) {
      s.density->update(*s.vector);
    } else {
      ftran(*s.vector, *s.density);
    }
  }
}

void Core::btran(SparseVector& v, Density& density) {
  factor.btran(v, density.value());
  density.update(v);
}

void Core::price(const SparseVector& rho, SparseVector& alpha) {
  price(rho, true, alpha);
  row_ap_density.update(alpha);
}

void Core::price_unlisted(const SparseVector& rho, SparseVector& alpha) {
  price(rho, false, alpha);
}

void Core::price(const SparseVector& rho, bool list_always, SparseVector& alpha) {
  bool by_columns = rho.count < 0;
  if (!by_columns && rho.count > 0.1 * m()) {
    by_columns = static_cast<double>(rows.row_work(rho)) >
                 kColumnPriceRatio * static_cast<double>(rows.active_entries());
  }
  charge(by_columns ? rows.price_by_columns(rho, alpha)
                    : rows.price_by_rows(rho, row_ap_density.value(), list_always, alpha));
}

// ---- values ----

void Core::compute_primal() {
  values.compute_primal(model, work, basis, factor);
  charge(static_cast<std::int64_t>(matrix().index.size()) + m());
}

void Core::compute_dual() {
  values.compute_dual(model, work, basis, factor);
  charge(static_cast<std::int64_t>(matrix().index.size()) + m());
}

double Core::original_dual_bound() {
  std::vector<double> d(static_cast<size_t>(total()));
  values.compute_dual(model, model.cost(), basis, factor, d);
  charge(static_cast<std::int64_t>(matrix().index.size()) + m());
  double bound = model.offset();
  for (int j = 0; j < total(); ++j) {
    if (basis.nonbasic(j) && d[j] != 0) bound += d[j] * (d[j] > 0 ? model.lower(j) : model.upper(j));
  }
  return bound;
}

bool Core::must_stop(const Standing& at, std::int64_t iteration_end, Outcome& outcome) {
  constexpr int kClockEvery = 100;
  report_work();
  Stop stop = control->iteration_callback(CoreProgress(*this, at));
  if (stop == Stop::none) {
    if (counters.iterations >= std::min(options.iteration_limit, iteration_end)) {
      outcome = Outcome::iteration_limit;
      return true;
    }
    if (total_work() >= tick_end) {
      outcome = Outcome::tick_limit;
      return true;
    }
    stop = control->poll();
    if (stop == Stop::none && counters.iterations % kClockEvery == 0) stop = control->poll_clock();
  }
  switch (stop) {
    case Stop::none:
      return false;
    case Stop::time_limit:
      outcome = Outcome::time_limit;
      break;
    case Stop::tick_limit:
      outcome = Outcome::tick_limit;
      break;
    case Stop::user_abort:
      outcome = Outcome::user_abort;
      break;
  }
  return true;
}

double Core::objective() const {
  double sum = model.offset();
  for (int j = 0; j < total(); ++j) {
    if (basis.nonbasic(j) && basis.value(j) != 0) sum += work.cost(j) * basis.value(j);
  }
  for (int p = 0; p < m(); ++p) sum += work.cost(basis.head(p)) * values.x(p);
  return sum;
}

Core::Infeasibility Core::primal_infeasibility() const {
  Infeasibility result;
  for (int p = 0; p < m(); ++p) {
    const double x = values.x(p);
    const double violation = std::max(values.x_lower(p) - x, x - values.x_upper(p));
    if (violation <= 0) continue;
    result.largest = std::max(result.largest, violation);
    if (violation > primal_tolerance_) {
      ++result.count;
      result.sum += violation;
    }
  }
  return result;
}

Core::Infeasibility Core::dual_infeasibility() const {
  Infeasibility result;
  for (int j = 0; j < total(); ++j) {
    if (!basis.nonbasic(j)) continue;
    const double d = values.d(j);
    const double violation = work.is_free(j) ? std::fabs(d) : -basis.move(j) * d;
    if (violation <= 0) continue;
    result.largest = std::max(result.largest, violation);
    if (violation > dual_tolerance_) {
      ++result.count;
      result.sum += violation;
    }
  }
  return result;
}

}  // namespace tovik::lp::simplex
