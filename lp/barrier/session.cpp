#include "lp/barrier/session.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/verify/certificates.h"
#include "lp/verify/point.h"

namespace tovik::lp::barrier {
namespace {

/* Largest of |v_i| * unit_i. */
double largest_scaled(const std::vector<double>& v, const std::vector<double>& unit) {
  double largest = 0;
  for (std::size_t i = 0; i < v.size(); ++i) {
    const double entry = std::fabs(v[i]) * unit[i];
    if (!(entry <= largest)) largest = entry;  // what is no number counts as the largest
  }
  return largest;
}

/* Corrections that pay: each costs a solve, and saves a share of a factorization. */
int corrections_by_cost(double factor_cost, double solve_cost) {
  const double ratio = factor_cost / std::max(1.0, solve_cost);
  return ratio > 50 ? 3 : ratio > 30 ? 2 : 1;
}

}  // namespace

Session::Session(const LpData& problem, const Options& wishes, Control& outside, Observer* looking_on)
    : lp(problem),
      options(wishes),
      control(outside),
      observer(looking_on),
      form(problem),
      kkt(form),
      newton(form, kkt) {}

bool Session::prepare() {
  if (failed(kkt.analyze(options, control, observer))) return false;
  constexpr int kLargest = 10;
  corrections_ = options.correctors >= 0 ? std::min(options.correctors, kLargest)
                                         : corrections_by_cost(kkt.factor_cost(), kkt.solve_cost());
  result.setup = kkt.setup();
  result.setup.correctors = corrections_;
  if (observer != nullptr) observer->setup(result.setup);
  if (failed(kkt.allocate())) return false;
  if (observer != nullptr && kkt.storage().out_of_core) observer->out_of_core(kkt.storage());
  return true;
}

Quality Session::measure(const Point& at, const Blocks& missing, double tau) const {
  Quality q;
  q.primal = largest_scaled(missing.primal, form.residual_unit) / tau;
  q.upper = largest_scaled(missing.upper, form.value_unit) / tau;
  q.dual = largest_scaled(missing.dual, form.cost_unit) / tau;
  const double primal = form.objective_unit * primal_value(form, at) / tau;
  const double dual = form.objective_unit * dual_value(form, at) / tau;
  q.primal_objective = primal + form.offset;
  q.dual_objective = dual + form.offset;
  q.relative_primal = std::max(q.primal, q.upper) / (1 + form.largest_side);
  q.relative_dual = q.dual / (1 + form.largest_cost);
  // A large constant makes any gap relatively small: it counts up to a share only.
  constexpr double kMostByOffset = 1e3;
  const double varying = 1 + 0.5 * std::fabs(primal + dual);
  const double whole = 1 + 0.5 * std::fabs(q.primal_objective + q.dual_objective);
  q.gap = std::fabs(primal - dual) / std::min(whole, kMostByOffset * varying);
  q.objective_size = std::min(1 + std::fabs(q.primal_objective), kMostByOffset * (1 + std::fabs(primal)));
  q.gap_without_offset = std::fabs(primal - dual) / varying;
  return q;
}

bool Session::is_optimal(const Quality& q) const {
  return q.relative_primal <= options.tolerance && q.relative_dual <= options.tolerance &&
         q.gap <= options.tolerance;
}

void Session::begin() {
  last_farkas_ = last_ray_ = kInf;
  newton.set_refinements(Newton::kRefinements);
}

bool Session::is_within_tolerances(const Quality& q) const {
  return q.gap <= options.tolerance && std::max(q.primal, q.upper) <= options.primal_tolerance &&
         q.dual <= options.dual_tolerance;
}

bool Session::settle(const Point& at, double tau, const Quality& quality, bool stands_still) {
  constexpr int kMore = 8;  // iterations that may go on for the absolute tolerances
  constexpr int kWithoutGain = 3;
  const bool good = is_optimal(quality);
  const bool near = !good && (stands_still || !options.absolute) && is_within_tolerances(quality);
  if (settling_ == 0 && !good && !near) return false;
  if (!options.absolute) {
    end(Ending::optimal);
    return true;
  }
  if (good || near) {
    Point scaled = at;
    for (double& v : scaled.x) v /= tau;
    for (double& v : scaled.y) v /= tau;
    const std::vector<double> x = form.original_values(scaled.x);
    const std::vector<double> y = form.original_multipliers(scaled.y);
    const auto entries = verify::entries_of(lp.matrix);
    const std::vector<double> activity = verify::activities(lp.num_rows(), entries, x);
    std::vector<double> d(x.size());
    for (int j = 0; j < lp.num_columns(); ++j) d[j] = verify::reduced_cost(lp.cost[j], j, entries, y).value();
    const Violation violation =
        verify::measure_violation(lp, {x, activity, d, y, {}, {}}, options.primal_tolerance);
    const double excess =
        std::max(violation.primal() / options.primal_tolerance, violation.dual / options.dual_tolerance);
    if (near && excess > 1) return false;
    if (excess < best_violation_) {
      unsettled_ = 0;
      best_violation_ = excess;
      best_ = at;
      best_tau_ = tau;
      has_best_ = true;
      result.worst_residual = quality.worst();
      result.gap_without_offset = quality.gap_without_offset;
      result.at.primal_objective = quality.primal_objective;
      result.at.dual_objective = quality.dual_objective;
    }
  }
  ++settling_;
  ++unsettled_;
  if (best_violation_ > 1 && settling_ <= kMore && unsettled_ <= kWithoutGain) return false;
  end(Ending::optimal);
  return true;
}

bool Session::keep_if_better(const Point& at, double tau, const Quality& quality, double mean_product) {
  constexpr double kClearly = 0.9;
  const double worst = quality.worst();
  if (best_violation_ < kInf || !std::isfinite(worst) ||
      (has_best_ && worst > kClearly * result.worst_residual))
    return false;
  best_ = at;
  best_tau_ = tau;
  has_best_ = true;
  result.worst_residual = worst;
  result.at.primal_objective = quality.primal_objective;
  result.at.dual_objective = quality.dual_objective;
  result.at.complementarity = mean_product;
  return true;
}

bool Session::is_near_enough() const {
  constexpr double kNear = 1e-5;  // worst relative residual
  return !options.absolute && has_best_ && result.worst_residual <= kNear;
}

bool Session::is_lost(const Quality& quality) const {
  constexpr double kNearlyOptimal = 1e-4, kMuchWorse = 1e3;
  return has_best_ && result.worst_residual < kNearlyOptimal &&
         !(quality.worst() <= kMuchWorse * std::max(result.worst_residual, options.tolerance));
}

namespace {
constexpr double kNearProof = 1e-6;  // relative residual from which on a proof is tried
constexpr double kMuchNearer = 0.2;  // and again

/* Times that the equations of a direction that is no proof yet are met better, with the last factor. */
constexpr int kPolishings = 2;

/* Shares of the largest entry up to which a direction's entries may be noise of the iteration: each is tried. */
constexpr double kNoise[] = {0, 1e-10, 1e-8, 1e-6, 1e-4};

std::vector<double> without_noise(std::vector<double> v, double share) {
  const double least = share * largest_magnitude(v);
  for (double& entry : v) {
    if (std::fabs(entry) <= least) entry = 0;
  }
  return v;
}
}  // namespace

bool Session::try_farkas(const Point& at) {
  const double gap = dual_value(form, at);
  if (!(gap > 0)) return false;
  std::vector<double> y = at.y;
  std::vector<double> residual(static_cast<std::size_t>(form.n));
  const auto measure_residual = [&] {
    for (int j = 0; j < form.n; ++j) residual[j] = at.z[j] - at.v[j];
    add_transposed_product(form, 1, y, residual);
  };
  measure_residual();
  const double near = largest_magnitude(residual) / gap;
  if (!(near < kNearProof) || near > kMuchNearer * last_farkas_) return false;
  last_farkas_ = near;
  if (proves_infeasible(y)) return true;
  for (int round = 0; round < kPolishings && result.factorizations > 0; ++round) {
    for (double& v : residual) v = -v;
    std::vector<double> rows(static_cast<std::size_t>(form.m), 0.0);
    kkt.solve(rows, residual, control);
    for (int i = 0; i < form.m; ++i) y[i] += rows[i];
    if (proves_infeasible(y)) return true;
    measure_residual();
  }
  return false;
}

bool Session::proves_infeasible(const std::vector<double>& y) {
  for (const double share : kNoise) {
    verify::FarkasProof proof;
    const std::vector<double> multipliers = form.original_multipliers(without_noise(y, share));
    if (!verify::check_farkas(lp, verify::entries_of(lp.matrix), multipliers, proof)) continue;
    result.farkas = std::move(proof.multipliers);
    result.farkas_gap = proof.gap;
    end(Ending::infeasible);
    return true;
  }
  return false;
}

bool Session::try_ray(const Point& at, const Quality& quality) {
  const double slope = -primal_value(form, at);
  if (!(slope > 0)) return false;
  std::vector<double> x = at.x;
  std::vector<double> residual(static_cast<std::size_t>(form.m));
  const auto measure_residual = [&] {
    std::fill(residual.begin(), residual.end(), 0.0);
    add_product(form, 1, x, residual);
  };
  measure_residual();
  double near = largest_magnitude(residual);
  for (int j = 0; j < form.n; ++j) {
    if (form.has_upper[j]) near = std::max(near, x[j]);
  }
  near /= slope;
  if (!(near < kNearProof) || near > kMuchNearer * last_ray_) return false;
  last_ray_ = near;
  const Ending ending =
      quality.relative_primal <= options.tolerance ? Ending::unbounded : Ending::infeasible_or_unbounded;
  if (proves_unbounded(x, ending)) return true;
  for (int j = 0; j < form.n; ++j) {
    if (form.has_upper[j]) x[j] = 0;
  }
  for (int round = 0; round < kPolishings && result.factorizations > 0; ++round) {
    measure_residual();
    for (double& v : residual) v = -v;
    std::vector<double> columns(static_cast<std::size_t>(form.n), 0.0);
    kkt.solve(residual, columns, control);
    for (int j = 0; j < form.n; ++j) {
      if (!form.has_upper[j]) x[j] = form.has_lower[j] ? std::max(0.0, x[j] + columns[j]) : x[j] + columns[j];
    }
    if (proves_unbounded(x, ending)) return true;
  }
  return false;
}

bool Session::proves_unbounded(const std::vector<double>& x, Ending ending) {
  for (const double share : kNoise) {
    std::vector<double> ray = form.original_direction(without_noise(x, share));
    if (!verify::check_ray(lp, verify::entries_of(lp.matrix), ray)) continue;
    result.ray = std::move(ray);
    end(ending);
    return true;
  }
  return false;
}

Progress Session::progress() const {
  return BarrierProgress{.iterations = result.iterations,
                         .primal_objective = now_.primal_objective,
                         .dual_objective = now_.dual_objective,
                         .primal_infeasibility = std::max(now_.primal, now_.upper),
                         .dual_infeasibility = now_.dual};
}

bool Session::must_stop() {
  Stop now = control.poll();
  if (now == Stop::none) now = control.poll_clock();
  if (now == Stop::none && std::exchange(is_news_, false)) now = control.iteration_callback(*this);
  switch (now) {
    case Stop::time_limit:
      end(Ending::time_limit);
      return true;
    case Stop::tick_limit:
      end(Ending::tick_limit);
      return true;
    case Stop::user_abort:
      end(Ending::user_abort);
      return true;
    default:
      break;
  }
  if (result.iterations < options.iteration_limit) return false;
  end(Ending::iteration_limit);
  return true;
}

bool Session::beyond_range(const Quality& q) {
  if (q.primal_objective < -options.objective_range && q.relative_primal <= options.tolerance) {
    end(Ending::primal_objective_limit);
    return true;
  }
  if (q.dual_objective > options.objective_range && q.relative_dual <= options.tolerance) {
    end(Ending::dual_objective_limit);
    return true;
  }
  return false;
}

bool Session::failed(cholesky::State state) {
  switch (state) {
    case cholesky::State::done:
      return false;
    case cholesky::State::out_of_memory:
      end(Ending::out_of_memory);
      return true;
    case cholesky::State::file_not_opened:
      end(Ending::file_not_opened);
      return true;
    case cholesky::State::file_not_read:
      end(Ending::file_not_read);
      return true;
    case cholesky::State::file_not_written:
      end(Ending::file_not_written);
      return true;
    default:
      if (!must_stop()) end(Ending::user_abort);
      return true;
  }
}

void Session::end(Ending ending) {
  result.ending = ending;
}

void Session::log(const Quality& q, double mean_product, std::optional<double> ratio) {
  now_ = q;
  is_news_ = true;
  if (observer == nullptr) return;
  Iteration now;
  now.number = result.iterations;
  now.primal_objective = q.primal_objective;
  now.dual_objective = q.dual_objective;
  now.primal_infeasibility = q.primal;
  now.upper_infeasibility = q.upper;
  now.dual_infeasibility = q.dual;
  now.complementarity = mean_product * form.objective_unit;
  now.has_ratio = ratio.has_value();
  now.ratio = ratio.value_or(0);
  observer->iteration(now);
}

Result Session::release() {
  if (has_best_) {
    for (double& v : best_.x) v /= best_tau_;
    for (double& v : best_.y) v /= best_tau_;
    result.x = form.original_values(best_.x);
    result.y = form.original_multipliers(best_.y);
    result.has_point = true;
  }
  result.solves = newton.solves();
  return std::move(result);
}

}  // namespace tovik::lp::barrier
