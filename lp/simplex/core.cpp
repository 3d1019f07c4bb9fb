#include "lp/simplex/core.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

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

SimplexVectors::SimplexVectors(Matrix matrix, const Options& solve_options)
    : n(matrix.columns),
      m(matrix.rows),
      total(n + m),
      columns(std::make_shared<Matrix>(std::move(matrix))),
      options(solve_options),
      random(solve_options.seed),
      primal_tolerance(solve_options.primal_tolerance),
      dual_tolerance(solve_options.dual_tolerance),
      threshold(solve_options.markowitz) {}

Core::Core(LpData scaled_lp, const Options& solve_options, Control& solve_control)
    : SimplexVectors(std::move(scaled_lp.matrix), solve_options), factor(*columns), control(&solve_control) {
  offset = scaled_lp.offset;
  const auto size = static_cast<size_t>(total);
  cost.assign(size, 0.0);
  lower.resize(size);
  upper.resize(size);
  for (int j = 0; j < n; ++j) {
    cost[j] = scaled_lp.cost[j];
    lower[j] = scaled_lp.lower[j];
    upper[j] = scaled_lp.upper[j];
  }
  for (int i = 0; i < m; ++i) {
    lower[n + i] = -scaled_lp.row_upper[i];
    upper[n + i] = -scaled_lp.row_lower[i];
  }
  work_cost = cost;
  work_lower = lower;
  work_upper = upper;
  nonbasic.assign(size, 1);
  move.assign(size, 0);
  value.assign(size, 0.0);
  d.assign(size, 0.0);
  head.assign(static_cast<size_t>(m), 0);
  position.assign(size, 0);
  x.assign(static_cast<size_t>(m), 0.0);
  x_lower = x;
  x_upper = x;
  random_value.resize(size);
  for (double& r : random_value) r = random.real();
  buffer_.resize(m);
  // A rebuild also recomputes values and reduced costs: two passes over the matrix.
  factor.set_rebuild_overhead(2 * static_cast<std::int64_t>(matrix().index.size()) + 4 * total);
}

Core::Core(const Core& other) : SimplexVectors(other), factor(*columns), control(other.control) {
  buffer_.resize(m);
  factor.set_rebuild_overhead(2 * static_cast<std::int64_t>(columns->index.size()) + 4 * total);
  if (has_factor) factor.restore(*other.factor.save());
}

Matrix& Core::own_matrix() {
  if (columns.use_count() > 1) {
    columns = std::make_shared<Matrix>(*columns);
    factor.use_matrix(*columns);
    rows_are_stale = true;
  }
  return *columns;
}

void Core::find_positions() {
  for (int p = 0; p < m; ++p) position[head[p]] = p;
}

void Core::count_free() {
  free_nonbasic = 0;
  for (int j = 0; j < total; ++j)
    free_nonbasic += nonbasic[j] && work_lower[j] == -kInf && work_upper[j] == kInf;
}

void Core::raise_threshold() {
  threshold = std::min(kHighestThreshold, threshold < 0.1 ? 0.1 : threshold + 0.2);
}

void Core::shift_cost(int j, double target) {
  work_cost[j] += target - d[j];
  d[j] = target;
  costs_shifted = true;
  if (!costs_perturbed) shifted.push_back(j);
  ++counters.shifts;
}

void Core::place_nonbasic(int j, int prefer) {
  const double low = work_lower[j];
  const double high = work_upper[j];
  if (low == high) {
    move[j] = 0;
    value[j] = low;
  } else if (low == -kInf && high == kInf) {
    move[j] = 0;
    value[j] = 0;
  } else if (high == kInf ||
             (low != -kInf && (prefer > 0 || (prefer == 0 && std::fabs(low) <= std::fabs(high))))) {
    move[j] = 1;
    value[j] = low;
  } else {
    move[j] = -1;
    value[j] = high;
  }
}

void Core::set_logical_basis() {
  for (int j = 0; j < n; ++j) {
    nonbasic[j] = 1;
    place_nonbasic(j, 0);
  }
  for (int i = 0; i < m; ++i) {
    nonbasic[n + i] = 0;
    move[n + i] = 0;
    head[i] = n + i;
  }
  has_factor = false;
  find_positions();
  update_basis_pattern();
}

void Core::set_basis(const std::vector<BasisStatus>& status) {
  int basics = 0;
  for (int j = 0; j < total; ++j) {
    if (status[j] == BasisStatus::basic && basics < m) {
      nonbasic[j] = 0;
      move[j] = 0;
      head[basics++] = j;
    } else {
      nonbasic[j] = 1;
      place_nonbasic(j, status[j] == BasisStatus::upper ? -1 : status[j] == BasisStatus::lower ? 1 : 0);
    }
  }
  for (int i = 0; i < m && basics < m; ++i) {
    if (!nonbasic[n + i]) continue;
    nonbasic[n + i] = 0;
    move[n + i] = 0;
    head[basics++] = n + i;
  }
  has_factor = false;
  find_positions();
  update_basis_pattern();
}

BasisStatus Core::status(int j) const {
  if (!nonbasic[j]) return BasisStatus::basic;
  if (move[j] < 0 || (move[j] == 0 && lower[j] == -kInf && upper[j] != kInf)) return BasisStatus::upper;
  return is_free(j) ? BasisStatus::free : BasisStatus::lower;
}

std::vector<BasisStatus> Core::basis_status() const {
  std::vector<BasisStatus> all(static_cast<size_t>(total));
  for (int j = 0; j < total; ++j) all[j] = status(j);
  return all;
}

void Core::update_basis_pattern() {
  std::vector<char> active(static_cast<size_t>(n));
  for (int j = 0; j < n; ++j) active[j] = static_cast<char>(nonbasic[j] && !is_fixed(j));
  rows.build(matrix(), active);
  rows_are_stale = false;
}

void Core::use_original_bounds() {
  work_lower = lower;
  work_upper = upper;
  bounds_perturbed = false;
  for (int j = 0; j < total; ++j) {
    if (nonbasic[j]) place_nonbasic(j, move[j]);
  }
}

void Core::use_original_costs() {
  if (costs_perturbed || costs_shifted) ++counters.dual.restores;
  work_cost = cost;
  costs_perturbed = false;
  costs_shifted = false;
  shifted.clear();
}

void Core::change_basis(int q, int p, int leaving_move) {
  const int out = head[p];
  free_nonbasic -= work_lower[q] == -kInf && work_upper[q] == kInf;
  free_nonbasic += work_lower[out] == -kInf && work_upper[out] == kInf;
  head[p] = q;
  position[q] = p;
  nonbasic[q] = 0;
  move[q] = 0;
  if (q < n) rows.deactivate(q);
  nonbasic[out] = 1;
  if (work_lower[out] == work_upper[out]) {
    move[out] = 0;
    value[out] = work_lower[out];
  } else if (leaving_move > 0) {
    move[out] = 1;
    value[out] = work_lower[out];
  } else if (leaving_move < 0) {
    move[out] = -1;
    value[out] = work_upper[out];
  } else {
    place_nonbasic(out, 0);
  }
  if (out < n && !is_fixed(out)) rows.activate(out);
  x_lower[p] = work_lower[q];
  x_upper[p] = work_upper[q];
}

FactorState Core::refactor(FactorReason reason) {
  const double before = threshold;
  const FactorState state = factor_basis(reason);
  if (threshold > before + kRememberedRaise && counters.iterations > 0 && observer != nullptr) {
    char line[64];
    std::snprintf(line, sizeof line, "Markowitz threshold set to %g\n", threshold);
    log(line);
  }
  return state;
}

FactorState Core::factor_basis(FactorReason reason) {
  factor::Settings settings;
  settings.threshold = threshold;
  factor.set(settings);
  int deficiency = 0;
  for (;;) {
    ++counters.factorizations;
    ++counters.factorizations_by_reason[static_cast<size_t>(reason)];
    deficiency = factor.build(head);
    // An inaccurate factor of a regular basis is made again with a stricter threshold.
    if (deficiency > 0 || threshold >= kStrictThreshold || factor.residual_check() <= kAccurate) break;
    reason = FactorReason::accuracy;
    threshold = raised(threshold);
    settings.threshold = threshold;
    factor.set(settings);
  }
  has_factor = true;
  find_positions();
  if (deficiency == 0) return FactorState::good;
  ++counters.singular_bases;
  counters.columns_replaced += deficiency;
  if (repairs >= options.singular_limit) return FactorState::singular;
  ++repairs;
  threshold = raised(threshold);
  log("Repairing basis singularity.\n");
  for (const factor::Exchange& e : factor.exchanges()) {
    const int out = e.removed;
    if (observer != nullptr) observer->removed_by_singularity(*this, out);
    nonbasic[out] = 1;
    place_nonbasic(out, 0);
    if (out < n && !is_fixed(out)) rows.activate(out);
    const int in = n + e.row;
    nonbasic[in] = 0;
    move[in] = 0;
  }
  return FactorState::repaired;
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
  if (!by_columns && rho.count > 0.1 * m) {
    by_columns = static_cast<double>(rows.row_work(rho)) >
                 kColumnPriceRatio * static_cast<double>(rows.active_entries());
  }
  charge(by_columns ? rows.price_by_columns(rho, alpha)
                    : rows.price_by_rows(rho, row_ap_density.value(), list_always, alpha));
}

void Core::load_column(int q, SparseVector& v) const {
  v.clear();
  if (q >= n) {
    v.set_unit(q - n);
    return;
  }
  int count = 0;
  for (int k = matrix().start[q]; k < matrix().start[q + 1]; ++k) {
    v.index[count++] = matrix().index[k];
    v.array[matrix().index[k]] = matrix().value[k];
  }
  v.count = count;
}

void Core::add_column(int q, double multiplier, SparseVector& v) const {
  const auto add = [&](int i, double amount) {
    const double old = v.array[i];
    const double sum = old + amount;
    if (old == 0) v.index[v.count++] = i;
    v.array[i] = std::fabs(sum) < kTiny ? kZero : sum;
  };
  if (q >= n) {
    add(q - n, multiplier);
    return;
  }
  for (int k = matrix().start[q]; k < matrix().start[q + 1]; ++k) {
    add(matrix().index[k], multiplier * matrix().value[k]);
  }
}

void Core::compute_primal() {
  buffer_.clear();
  double* const b = buffer_.array.data();
  for (int j = 0; j < n; ++j) {
    if (!nonbasic[j] || value[j] == 0) continue;
    for (int k = matrix().start[j]; k < matrix().start[j + 1]; ++k)
      b[matrix().index[k]] -= value[j] * matrix().value[k];
  }
  for (int i = 0; i < m; ++i) {
    if (nonbasic[n + i]) b[i] -= value[n + i];
  }
  charge(static_cast<std::int64_t>(matrix().index.size()) + m);
  buffer_.count = -1;
  buffer_.reindex();
  factor.ftran(buffer_, 1.0);
  for (int p = 0; p < m; ++p) {
    x[p] = b[p];
    x_lower[p] = work_lower[head[p]];
    x_upper[p] = work_upper[head[p]];
  }
  buffer_.count = -1;
  buffer_.clear();
}

double Core::column_dot(int j, const std::vector<double>& y) const {
  if (j >= n) return y[j - n];
  double sum = 0;
  for (int k = matrix().start[j]; k < matrix().start[j + 1]; ++k)
    sum += matrix().value[k] * y[matrix().index[k]];
  return sum;
}

void Core::compute_dual() {
  buffer_.clear();
  int count = 0;
  for (int p = 0; p < m; ++p) {
    const double c = work_cost[head[p]];
    if (c == 0) continue;
    buffer_.array[p] = c;
    buffer_.index[count++] = p;
  }
  buffer_.count = count;
  if (count > 0) factor.btran(buffer_, 1.0);
  for (int j = 0; j < n; ++j)
    d[j] = nonbasic[j] ? work_cost[j] - (count > 0 ? column_dot(j, buffer_.array) : 0.0) : 0.0;
  for (int i = 0; i < m; ++i) d[n + i] = nonbasic[n + i] ? work_cost[n + i] - buffer_.array[i] : 0.0;
  charge(static_cast<std::int64_t>(matrix().index.size()) + m);
  buffer_.count = -1;
  buffer_.clear();
}

bool Core::must_stop(std::int64_t iteration_end, Outcome& outcome) {
  constexpr int kClockEvery = 100;
  report_work();
  Stop stop = control->iteration_callback();
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
  double sum = offset;
  for (int j = 0; j < total; ++j) {
    if (nonbasic[j] && value[j] != 0) sum += work_cost[j] * value[j];
  }
  for (int p = 0; p < m; ++p) sum += work_cost[head[p]] * x[p];
  return sum;
}

Core::Infeasibility Core::primal_infeasibility() const {
  Infeasibility result;
  for (int p = 0; p < m; ++p) {
    const double violation = std::max(x_lower[p] - x[p], x[p] - x_upper[p]);
    if (violation <= 0) continue;
    result.largest = std::max(result.largest, violation);
    if (violation > primal_tolerance) {
      ++result.count;
      result.sum += violation;
    }
  }
  return result;
}

Core::Infeasibility Core::dual_infeasibility() const {
  Infeasibility result;
  for (int j = 0; j < total; ++j) {
    if (!nonbasic[j]) continue;
    double violation;
    if (work_lower[j] == -kInf && work_upper[j] == kInf) {
      violation = std::fabs(d[j]);
    } else {
      violation = -move[j] * d[j];
    }
    if (violation <= 0) continue;
    result.largest = std::max(result.largest, violation);
    if (violation > dual_tolerance) {
      ++result.count;
      result.sum += violation;
    }
  }
  return result;
}

}  // namespace tovik::lp::simplex
