#include "mip/search/judge.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/base/sum.h"
#include "mip/domain/point.h"
#include "mip/worker/worker.h"

namespace tovik::mip {
namespace {

/* First position of the window of a set that loses least. */
std::size_t best_window(const OrderedSet& set, std::span<const double> x) {
  const auto width = static_cast<std::size_t>(set.type);
  std::size_t best = 0;
  double most = -1;
  for (std::size_t first = 0; first < set.columns.size(); ++first) {
    double kept = 0;
    for (std::size_t k = first; k < std::min(first + width, set.columns.size()); ++k) {
      kept += std::fabs(x[set.columns[k]]);
    }
    if (kept > most) {
      most = kept;
      best = first;
    }
  }
  return best;
}

bool is_on(const SemiColumn& semi, double v) {
  const double nearest = semi.lower > 0 ? semi.lower : semi.upper;  // to 0
  return std::fabs(v) > std::fabs(nearest) / 2;
}

template <class F>
void each_outside_window(const OrderedSet& set, std::span<const double> x, F f) {
  const std::size_t first = best_window(set, x);
  for (std::size_t k = 0; k < set.columns.size(); ++k) {
    if (k < first || k >= first + static_cast<std::size_t>(set.type)) f(set.columns[k]);
  }
}

bool is_active(const Indicator& indicator, std::span<const double> x) {
  return std::fabs(x[indicator.switch_column] - indicator.active_value) < 0.5;
}

void round_integers(const Problem& problem, std::vector<double>& x) {
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] != 0) x[j] = std::round(x[j]) + 0.0;
  }
}

}  // namespace

void Judge::snap(std::vector<double>& x) const {
  const lp::LpData& lp = problem_.lp;
  round_integers(problem_, x);
  for (int j = 0; j < lp.num_columns(); ++j) {
    x[j] = std::clamp(x[j], lp.lower[j], std::max(lp.lower[j], lp.upper[j])) + 0.0;
  }
  for (const SemiColumn& semi : problem_.semi_columns) {
    double& v = x[semi.column];
    v = is_on(semi, v) ? std::clamp(v, semi.lower, semi.upper) : 0;
  }
  for (const OrderedSet& set : problem_.sets) {
    each_outside_window(set, x, [&](int j) { x[j] = 0; });
  }
  for (const Indicator& indicator : problem_.indicators) {
    if (is_active(indicator, x)) x[indicator.slack] = 0;
  }
}

bool Judge::holds(std::span<const double> x) const {
  const PointViolation v = measure(problem_, x);
  const double tolerance = settings_.tolerances.feasibility;
  return v.integrality == 0 && v.primal() <= tolerance && v.object <= tolerance && satisfies_cuts(x);
}

double violation(const Cut& cut, std::span<const double> x) {
  lp::CompensatedSum sum;
  for (std::size_t k = 0; k < cut.columns.size(); ++k) sum.add_product(cut.values[k], x[cut.columns[k]]);
  return std::max({0.0, sum.value() - cut.side, cut.lower - sum.value()});
}

bool Judge::satisfies_cuts(std::span<const double> x) const {
  const double tolerance = settings_.tolerances.feasibility;
  return std::all_of(cuts_.begin(), cuts_.end(),
                     [&](const Cut& cut) { return violation(cut, x) <= tolerance; });
}

/* Bounds that leave the continuous columns free and decide all else as the snapped point does. */
void Judge::decide(std::span<const double> x, std::vector<lp::simplex::BoundChange>& bounds) const {
  const lp::LpData& lp = problem_.lp;
  std::vector<lp::simplex::BoundChange> of_column(static_cast<std::size_t>(lp.num_columns()), {-1, 0, 0});
  const auto set = [&](int j, double lower, double upper) { of_column[j] = {j, lower, upper}; };
  for (const SemiColumn& semi : problem_.semi_columns) {
    if (x[semi.column] != 0) {
      set(semi.column, semi.lower, semi.upper);
    } else {
      set(semi.column, 0, 0);
    }
  }
  for (const Indicator& indicator : problem_.indicators) {
    set(indicator.slack, 0, is_active(indicator, x) ? 0 : lp.upper[indicator.slack]);
  }
  for (const OrderedSet& ordered : problem_.sets) {
    for (const int j : ordered.columns) {
      if (of_column[j].column < 0) set(j, lp.lower[j], lp.upper[j]);
    }
  }
  for (const OrderedSet& ordered : problem_.sets) {
    each_outside_window(ordered, x, [&](int j) { set(j, 0, 0); });
  }
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (problem_.is_integer[j] != 0) set(j, x[j], x[j]);
    if (of_column[j].column >= 0) bounds.push_back(of_column[j]);
  }
}

bool Judge::complete(std::vector<double>& x) {
  if (fixed_ == nullptr) {
    fixed_ = std::make_unique<lp::simplex::Relaxation>(problem_.lp, settings_.lp, control_);
  }
  lp::simplex::RowBlock rows;
  rows.entries.rows = problem_.num_columns();
  for (; cuts_in_fixed_ < cuts_.size(); ++cuts_in_fixed_) append_row(cuts_[cuts_in_fixed_], rows);
  if (rows.entries.columns > 0) fixed_->add_rows(rows);
  std::vector<lp::simplex::BoundChange> bounds;
  decide(x, bounds);
  fixed_->change_bounds(bounds);
  const lp::Outcome outcome = fixed_->resolve(control_, {}, lp::simplex::Detail::verified);
  iterations_ += fixed_->iterations();
  if (outcome != lp::Outcome::optimal) return false;
  const std::span<const double> found = fixed_->primal();
  x.assign(found.begin(), found.end());
  return true;
}

bool Judge::accept_as_it_is(std::span<const double> x, Solution* solution) const {
  std::vector<double> point(x.begin(), x.end());
  snap(point);
  if (!holds(point)) return false;
  solution->objective = objective(problem_, point);
  solution->x = std::move(point);
  return true;
}

bool Judge::accept(std::span<const double> x, double cutoff, Solution* solution) {
  constexpr double kExact = 1e-9;  // violations up to here are rounding, beyond they would buy objective
  std::vector<double> point(x.begin(), x.end());
  snap(point);
  const bool has_continuous =
      std::find(problem_.is_integer.begin(), problem_.is_integer.end(), 0) != problem_.is_integer.end();
  const auto counts = [&](const std::vector<double>& p) {
    return holds(p) && objective(problem_, p) < cutoff;
  };
  const auto take = [&](std::vector<double>& p) {
    solution->objective = objective(problem_, p);
    solution->x = std::move(p);
    return true;
  };
  const bool as_it_is = counts(point);
  const bool is_exact = as_it_is && measure(problem_, point).primal() <= kExact;
  std::vector<double> completed = point;
  if (!is_exact && has_continuous && complete(completed)) {
    std::vector<double> snapped = completed;
    snap(snapped);
    if (counts(snapped)) return take(snapped);
    // A column put back on its bound may have carried a row beyond the tolerance, within which the LP had it.
    round_integers(problem_, completed);
    if (counts(completed)) return take(completed);
  }
  return as_it_is && take(point);
}

}  // namespace tovik::mip
