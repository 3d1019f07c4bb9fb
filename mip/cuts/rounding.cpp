#include "mip/cuts/rounding.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kLeastFraction = 0.01, kLargestFraction = 0.99;  // of the side
constexpr double kZero = 1e-9;  // coefficients below count as 0, relative to the largest
constexpr double kLeastEfficacy = 1e-4;
constexpr std::size_t kDeltas = 12;  // tried for each inequality

double frac(double v) {
  return v - std::floor(v);
}

}  // namespace

/* All variables >= 0. False where a column has no bound on the side that is needed. */
bool Rounding::shift(const RowSum& sum, double sign, std::span<const double> x) {
  terms_.clear();
  lp::CompensatedSum side;
  side.add(sign * sum.side());
  double largest = 0;
  for (const int j : sum.columns()) largest = std::max(largest, std::fabs(sum.coefficient(j)));
  for (const int j : sum.columns()) {
    const double a = sign * sum.coefficient(j);
    if (a == 0) continue;
    const double lower = worker_.domain.lower(j), upper = worker_.domain.upper(j);
    const bool integer = worker_.global.problem.is_integer[j] != 0;
    if (std::isinf(lower) && std::isinf(upper)) return false;
    // Rounding noise on a column: its best bound stands for it.
    if (std::fabs(a) <= kZero * largest) {
      const double at = a > 0 ? lower : upper;
      if (std::isinf(at)) return false;
      side.add_product(-a, at);
      continue;
    }
    const bool from_upper = std::isinf(lower) || (!std::isinf(upper) && upper - x[j] < x[j] - lower);
    const double at = from_upper ? upper : lower;
    side.add_product(-a, at);
    if (lower == upper) continue;
    terms_.push_back({from_upper ? -a : a, std::max(0.0, from_upper ? upper - x[j] : x[j] - lower),
                      upper - lower, j, false, integer, from_upper});
  }
  for (std::size_t k = 0; k < sum.slacks().size(); ++k) {
    const RowSum::SlackTerm& s = sum.slacks()[k];
    const RelaxationRow row = worker_.row(s.row);
    const double value = std::max(0.0, slack_of(row, x).value);
    terms_.push_back({sign * s.coefficient, value, kInf, static_cast<int>(k), true, row.is_integral, false});
  }
  side_ = side.value();
  return !terms_.empty();
}

void Rounding::complement(Term& term) {
  side_ -= term.coefficient * term.range;
  term.coefficient = -term.coefficient;
  term.value = std::max(0.0, term.range - term.value);
  term.from_upper = !term.from_upper;
}

/* Violation by norm of the rounded inequality; negative where delta gives none. Slacks have no norm of their own. */
double Rounding::efficacy(double delta) const {
  const double f0 = frac(side_ / delta);
  if (f0 < kLeastFraction || f0 > kLargestFraction) return -1;
  double activity = 0, norm = 0;
  for (const Term& t : terms_) {
    const double a = t.coefficient / delta;
    const double c =
        t.is_integer ? std::floor(a) + std::max(0.0, frac(a) - f0) / (1 - f0) : std::min(0.0, a) / (1 - f0);
    activity += c * t.value;
    norm += c * c;
  }
  return norm > 0 ? (activity - std::floor(side_ / delta)) / std::sqrt(norm) : -1;
}

bool Rounding::separate(const RowSum& sum, double sign, std::span<const double> x, Cut* cut) {
  if (!shift(sum, sign, x)) return false;
  std::vector<double> deltas{1};
  for (const Term& t : terms_) {
    if (!t.is_integer || t.value <= 1e-6 || !(t.value < t.range - 1e-6)) continue;
    const double d = std::fabs(t.coefficient);
    const bool known =
        std::any_of(deltas.begin(), deltas.end(), [&](double v) { return std::fabs(v - d) <= 1e-6 * v; });
    if (!known && deltas.size() < kDeltas) deltas.push_back(d);
  }
  double best = 0, best_delta = 0;
  const auto attempt = [&](double delta) {
    const double e = efficacy(delta);
    if (e <= best) return false;
    best = e;
    best_delta = delta;
    return true;
  };
  for (const double d : deltas) attempt(d);
  if (best_delta == 0) return false;
  const double first = best_delta;
  for (const double factor : {2.0, 4.0, 8.0, 0.5, 0.25, 0.125}) attempt(first / factor);
  // Integers strictly between their bounds may do better from the other one; the most fractional first.
  std::vector<std::size_t> between;
  for (std::size_t k = 0; k < terms_.size(); ++k) {
    const Term& t = terms_[k];
    if (t.is_integer && !std::isinf(t.range) && t.value > 1e-6 && t.value < t.range - 1e-6)
      between.push_back(k);
  }
  std::sort(between.begin(), between.end(), [&](std::size_t a, std::size_t b) {
    const double far_a = std::fabs(terms_[a].value - terms_[a].range / 2),
                 far_b = std::fabs(terms_[b].value - terms_[b].range / 2);
    return far_a != far_b ? far_a < far_b : a < b;
  });
  for (const std::size_t k : between) {
    complement(terms_[k]);
    if (!attempt(best_delta)) complement(terms_[k]);
  }
  if (best < kLeastEfficacy || !build(sum, best_delta, cut)) return false;
  cut->rank = sum.rank() + 1;
  return finish_cut(worker_, x, cut);
}

/* Shifts back: x' = x - lower, or upper - x; slacks by their rows. */
bool Rounding::build(const RowSum& sum, double delta, Cut* cut) {
  const double f0 = frac(side_ / delta);
  const int columns = worker_.global.problem.num_columns();
  std::vector<int> index;
  std::vector<lp::CompensatedSum> value(static_cast<std::size_t>(columns));
  std::vector<char> listed(static_cast<std::size_t>(columns));
  lp::CompensatedSum side;
  side.add(std::floor(side_ / delta));
  const auto add = [&](int j, double a, double factor) {
    if (listed[j] == 0) {
      listed[j] = 1;
      index.push_back(j);
    }
    value[j].add_product(a, factor);
  };
  for (const Term& t : terms_) {
    const double a = t.coefficient / delta;
    const double c =
        t.is_integer ? std::floor(a) + std::max(0.0, frac(a) - f0) / (1 - f0) : std::min(0.0, a) / (1 - f0);
    if (c == 0) continue;
    if (t.is_slack) {
      const RowSum::SlackTerm& s = sum.slacks()[t.column];
      const RelaxationRow row = worker_.row(s.row);
      const double factor = s.at_upper ? -c : c;  // t = upper - a x, or a x - lower
      side.add_product(factor, s.at_upper ? row.upper : row.lower);
      for (std::size_t k = 0; k < row.columns.size(); ++k) add(row.columns[k], row.values[k], factor);
    } else {
      const double factor = t.from_upper ? -c : c;
      side.add_product(factor,
                       t.from_upper ? worker_.domain.upper(t.column) : worker_.domain.lower(t.column));
      add(t.column, 1, factor);
    }
  }
  std::sort(index.begin(), index.end());
  cut->columns.clear();
  cut->values.clear();
  for (const int j : index) {
    const double v = value[j].value();
    if (v == 0) continue;
    cut->columns.push_back(j);
    cut->values.push_back(v);
  }
  cut->side = side.value();
  return !cut->columns.empty();
}

}  // namespace tovik::mip
