#include "mip/cuts/rounding.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kLeastFraction = 0.01, kLargestFraction = 0.99;  // of the side
constexpr double kZero = 1e-9;  // coefficients below count as 0, relative to the largest
constexpr double kLeastEfficacy = 1e-4;
constexpr double kInside = 1e-6;          // from both bounds
constexpr std::size_t kDeltas = 12;       // tried for each inequality
constexpr std::size_t kMostItems = 5000;  // of a knapsack
constexpr std::size_t kFewListed = 16;    // less than one of so many columns

double frac(double v) {
  return v - std::floor(v);
}

/* Of an integer term's coefficient a after rounding. A fraction that exceeds f0 by no more than rounding does not: to take less
 * is valid, and a cut that is left with such a share alone would be scaled up to one that forbids integer points. */
double rounded(double a, double f0) {
  const double whole = std::floor(a);
  const double excess = a - whole - f0;
  return excess > kZero ? whole + excess / (1 - f0) : whole;
}

}  // namespace

Rounding::Rounding(const Worker& worker, Substitution substitution)
    : worker_(worker),
      with_variable_bounds_(substitution == Substitution::variable_bounds),
      value_(static_cast<std::size_t>(worker.global.problem.num_columns())),
      is_listed_(value_.size()) {}

/* Adds to the sums by column that build() and shift() make. */
void Rounding::add(int j, double a, double factor) {
  if (is_listed_[j] == 0) {
    is_listed_[j] = 1;
    listed_.push_back(j);
  }
  value_[j].add_product(a, factor);
  largest_term_ = std::max(largest_term_, std::fabs(a * factor));
}

/* All variables >= 0. False where a column has no bound on the side that is needed. Continuous columns come first: they may
 * give a share to integer ones. */
bool Rounding::shift(const RowSum& sum, double sign, std::span<const double> x) {
  terms_.clear();
  used_variable_bound_ = false;
  lp::CompensatedSum side;
  side.add(sign * sum.side());
  largest_ = 0;
  for (const int j : sum.columns()) largest_ = std::max(largest_, std::fabs(sum.coefficient(j)));
  bool possible = true;
  for (const int j : sum.columns()) {
    const double a = sign * sum.coefficient(j);
    if (worker_.global.problem.is_integer[j] != 0) {
      add(j, a, 1);
    } else if (a != 0) {
      possible = possible && shift_continuous(j, a, x, side);
    }
  }
  for (const int j : listed_) {
    possible = possible && shift_integer(j, value_[j].value(), x, side);
    value_[j] = {};
    is_listed_[j] = 0;
  }
  listed_.clear();
  if (!possible || (with_variable_bounds_ && !used_variable_bound_)) return false;
  for (std::size_t k = 0; k < sum.slacks().size(); ++k) {
    const RowSum::SlackTerm& s = sum.slacks()[k];
    const bool integral = worker_.row(s.row).is_integral;
    terms_.push_back(
        {sign * s.coefficient, std::max(0.0, s.value), kInf, static_cast<int>(k), At::slack, integral});
  }
  side_ = side.value();
  return !terms_.empty();
}

/* To the bound nearest to its value; one that a binary column sets wins a tie. */
bool Rounding::shift_continuous(int j, double a, std::span<const double> x, lp::CompensatedSum& side) {
  const double lower = worker_.domain.global_lower(j), upper = worker_.domain.global_upper(j);
  // Rounding noise on a column: its best bound stands for it.
  if (std::fabs(a) <= kZero * largest_) {
    const double at = a > 0 ? lower : upper;
    side.add_product(-a, std::isinf(at) ? 0 : at);
    return !std::isinf(at);
  }
  if (lower == upper) {
    side.add_product(-a, lower);
    return true;
  }
  const bool from_upper = upper - x[j] < x[j] - lower;
  double distance = std::max(0.0, from_upper ? upper - x[j] : x[j] - lower);
  const VariableBound* best = nullptr;
  bool best_is_upper = false;
  if (with_variable_bounds_) {
    const auto look = [&](std::span<const VariableBound> bounds, bool is_upper) {
      for (const VariableBound& b : bounds) {
        const double far = std::max(0.0, is_upper ? b.at(x[b.binary]) - x[j] : x[j] - b.at(x[b.binary]));
        if (far > distance + kZero || (best != nullptr && far >= distance)) continue;
        if (worker_.domain.is_fixed_globally(b.binary)) continue;
        distance = far;
        best = &b;
        best_is_upper = is_upper;
      }
    };
    look(worker_.global.variable_bounds.lower(j), false);
    look(worker_.global.variable_bounds.upper(j), true);
  }
  if (best != nullptr) {
    used_variable_bound_ = true;
    side.add_product(-a, best->constant);
    add(best->binary, a, best->slope);
    terms_.push_back({best_is_upper ? -a : a, distance, kInf, j,
                      best_is_upper ? At::variable_upper : At::variable_lower, false, best});
    return true;
  }
  if (std::isinf(distance)) return false;
  side.add_product(-a, from_upper ? upper : lower);
  terms_.push_back(
      {from_upper ? -a : a, distance, upper - lower, j, from_upper ? At::upper : At::lower, false});
  return true;
}

bool Rounding::shift_integer(int j, double a, std::span<const double> x, lp::CompensatedSum& side) {
  if (a == 0) return true;
  const double lower = worker_.domain.global_lower(j), upper = worker_.domain.global_upper(j);
  if (std::isinf(lower) && std::isinf(upper)) return false;
  if (std::fabs(a) <= kZero * largest_) {
    const double at = a > 0 ? lower : upper;
    side.add_product(-a, std::isinf(at) ? 0 : at);
    return !std::isinf(at);
  }
  const bool from_upper = upper - x[j] < x[j] - lower;
  side.add_product(-a, from_upper ? upper : lower);
  if (lower == upper) return true;
  terms_.push_back({from_upper ? -a : a, std::max(0.0, from_upper ? upper - x[j] : x[j] - lower),
                    upper - lower, j, from_upper ? At::upper : At::lower, true});
  return true;
}

void Rounding::complement(Term& term) {
  side_ -= term.coefficient * term.range;
  term.coefficient = -term.coefficient;
  term.value = std::max(0.0, term.range - term.value);
  term.at = term.at == At::upper ? At::lower : At::upper;
}

/* Terms that stand at 0 add nothing to the violation, and efficacy does without them. */
void Rounding::find_active_terms() {
  active_.clear();
  continuous_activity_ = continuous_norm_ = 0;
  for (std::size_t k = 0; k < terms_.size(); ++k) {
    const Term& t = terms_[k];
    if (t.value <= kZero) continue;
    if (t.is_integer) {
      active_.push_back(k);
    } else if (t.coefficient < 0) {
      continuous_activity_ += t.coefficient * t.value;
      continuous_norm_ += t.coefficient * t.coefficient;
    }
  }
}

/* Violation of the rounded inequality by the norm of the terms that do not stand at 0; negative where delta gives none. It
 * only chooses: what is handed out is measured anew. */
double Rounding::efficacy(double delta) const {
  const double f0 = frac(side_ / delta);
  if (f0 < kLeastFraction || f0 > kLargestFraction) return -1;
  const double share = 1 / (1 - f0), per_delta = 1 / delta;
  double activity = continuous_activity_ * per_delta * share;
  double norm = continuous_norm_ * per_delta * per_delta * share * share;
  for (const std::size_t k : active_) {
    const double a = terms_[k].coefficient * per_delta;
    const double c = rounded(a, f0);
    activity += c * terms_[k].value;
    norm += c * c;
  }
  return norm > 0 ? (activity - std::floor(side_ * per_delta)) / std::sqrt(norm) : -1;
}

/* Divisor and complements with the largest efficacy. 0: none is violated. */
double Rounding::best_delta(double* efficacy_found) {
  std::vector<double> deltas{1};
  for (const Term& t : terms_) {
    if (!t.is_integer || t.value <= kInside || !(t.value < t.range - kInside)) continue;
    const double d = std::fabs(t.coefficient);
    const bool known =
        std::any_of(deltas.begin(), deltas.end(), [&](double v) { return std::fabs(v - d) <= 1e-6 * v; });
    if (!known && deltas.size() < kDeltas) deltas.push_back(d);
  }
  double best = 0, chosen = 0;
  const auto attempt = [&](double delta) {
    const double e = efficacy(delta);
    if (e <= best) return false;
    best = e;
    chosen = delta;
    return true;
  };
  find_active_terms();
  for (const double d : deltas) attempt(d);
  if (chosen == 0) return 0;
  const double first = chosen;
  for (const double factor : {2.0, 4.0, 8.0, 0.5, 0.25, 0.125}) attempt(first / factor);
  // Integers strictly between their bounds may do better from the other one; the most fractional first.
  std::vector<std::size_t> between;
  for (std::size_t k = 0; k < terms_.size(); ++k) {
    const Term& t = terms_[k];
    if (t.is_integer && !std::isinf(t.range) && t.value > kInside && t.value < t.range - kInside)
      between.push_back(k);
  }
  std::sort(between.begin(), between.end(), [&](std::size_t a, std::size_t b) {
    const double far_a = std::fabs(terms_[a].value - terms_[a].range / 2),
                 far_b = std::fabs(terms_[b].value - terms_[b].range / 2);
    return far_a != far_b ? far_a < far_b : a < b;
  });
  for (const std::size_t k : between) {
    complement(terms_[k]);
    if (!attempt(chosen)) complement(terms_[k]);
  }
  *efficacy_found = best;
  return chosen;
}

bool Rounding::separate(const RowSum& sum, double sign, std::span<const double> x, CutClass kind,
                        std::vector<Cut>* cuts) {
  if (!shift(sum, sign, x)) return false;
  double best = 0;
  const double delta = best_delta(&best);
  bool found = !with_variable_bounds_ && find_cover(best) && make(sum, x, kind, cuts);
  if (best >= kLeastEfficacy) {
    round_by(delta);
    found |= make(sum, x, kind, cuts);
  }
  return found;
}

bool Rounding::make(const RowSum& sum, std::span<const double> x, CutClass kind, std::vector<Cut>* cuts) {
  Cut cut;
  cut.kind = kind;
  cut.rank = sum.rank() + 1;
  if (!build(sum, &cut) || !finish_cut(worker_, x, &cut)) return false;
  cuts->push_back(std::move(cut));
  return true;
}

/* Ascending; a long list is read off the marks. */
void Rounding::order_listed() {
  if (listed_.size() < is_listed_.size() / kFewListed) {
    std::sort(listed_.begin(), listed_.end());
    return;
  }
  listed_.clear();
  for (std::size_t j = 0; j < is_listed_.size(); ++j) {
    if (is_listed_[j] != 0) listed_.push_back(static_cast<int>(j));
  }
}

void Rounding::round_by(double delta) {
  const double f0 = frac(side_ / delta);
  cut_side_ = std::floor(side_ / delta);
  cut_values_.clear();
  for (const Term& t : terms_) {
    const double a = t.coefficient / delta;
    cut_values_.push_back(t.is_integer ? rounded(a, f0) : std::min(0.0, a) / (1 - f0));
  }
}

/* Of the shifted inequality as a knapsack: binaries with positive weights, and what the other integers may take from it. False where
 * it gives no cut of more efficacy than that. Where continuous variables may take from it, or bounds that binaries set, rounding
 * does as well, and models of lot sizing were solved later with covers than without. */
bool Rounding::find_cover(double efficacy_to_beat) {
  cover_.clear();
  double capacity = side_;
  bool with_rest = false, is_fractional = false;
  for (const Term& t : terms_) {
    if (!is_item(t)) {
      if (t.coefficient < 0 && !t.is_integer) return false;
      with_rest = with_rest || t.coefficient < 0;
      continue;
    }
    if (t.coefficient < 0) capacity -= t.coefficient;
    const double value = std::clamp(t.coefficient < 0 ? 1 - t.value : t.value, 0.0, 1.0);
    is_fractional = is_fractional || (value > kInside && value < 1 - kInside);
    cover_.add(std::fabs(t.coefficient), value);
  }
  if (!is_fractional || !(capacity > 0) || cover_.size() > kMostItems || !cover_.find(capacity, with_rest))
    return false;
  const double efficacy = take_cover();
  if (efficacy < kLeastEfficacy || efficacy <= efficacy_to_beat) return false;
  cover_.complete();
  take_cover();
  return true;
}

/* The cover as a cut on the terms; its efficacy. */
double Rounding::take_cover() {
  cut_side_ = cover_.side();
  cut_values_.clear();
  double activity = 0, norm = 0;
  std::size_t item = 0;
  for (const Term& t : terms_) {
    double c = std::min(0.0, t.coefficient);
    if (is_item(t)) {
      c = cover_.coefficient(item++);
      if (t.coefficient < 0) {
        cut_side_ -= c;
        c = -c;
      }
    }
    cut_values_.push_back(c);
    if (t.value <= kZero) continue;
    activity += c * t.value;
    norm += c * c;
  }
  return norm > 0 ? (activity - cut_side_) / std::sqrt(norm) : 0;
}

/* Shifts back: each variable by its bound, slacks by their rows. */
bool Rounding::build(const RowSum& sum, Cut* cut) {
  largest_term_ = 0;
  lp::CompensatedSum side;
  side.add(cut_side_);
  for (std::size_t at = 0; at < terms_.size(); ++at) {
    const Term& t = terms_[at];
    const double c = cut_values_[at];
    if (c == 0) continue;
    switch (t.at) {
      case At::slack: {
        const RowSum::SlackTerm& s = sum.slacks()[t.column];
        const RelaxationRow row = worker_.row(s.row);
        const double factor = s.at_upper ? -c : c;  // t = upper - a x, or a x - lower
        side.add_product(factor, s.at_upper ? row.upper : row.lower);
        for (std::size_t k = 0; k < row.columns.size(); ++k) add(row.columns[k], row.values[k], factor);
        break;
      }
      case At::lower:
        side.add_product(c, worker_.domain.global_lower(t.column));
        add(t.column, 1, c);
        break;
      case At::upper:
        side.add_product(-c, worker_.domain.global_upper(t.column));
        add(t.column, 1, -c);
        break;
      case At::variable_lower:
      case At::variable_upper: {
        const double factor = t.at == At::variable_lower ? c : -c;  // t = factor (x - slope z - constant)
        side.add_product(factor, t.bound->constant);
        add(t.column, 1, factor);
        add(t.bound->binary, -t.bound->slope, factor);
      }
    }
  }
  order_listed();
  cut->columns.clear();
  cut->values.clear();
  double largest = 0;
  for (const int j : listed_) {
    const double v = value_[j].value();
    value_[j] = {};
    is_listed_[j] = 0;
    if (v == 0) continue;
    cut->columns.push_back(j);
    cut->values.push_back(v);
    largest = std::max(largest, std::fabs(v));
  }
  listed_.clear();
  cut->side = side.value();
  return largest > kZero * largest_term_;  // else everything has cancelled
}

}  // namespace tovik::mip
