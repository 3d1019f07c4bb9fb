#include "bench/nodes/rounding.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

using tovik::lp::kInf;

constexpr double kDepth = 1e-3;       // least violation over the norm
constexpr double kFraction = 0.02;    // least fraction of a right-hand side that is rounded
constexpr double kSmallest = 1e-5;    // least coefficient of a cut, relative to its largest
constexpr double kNoise = 1e-10;      // such a coefficient is left out
constexpr std::size_t kDivisors = 8;  // tried a row

}  // namespace

void Rounding::deepen(const Inequality& row, std::span<const LooseSlack> slacks, Cut& best) {
  if (!shift_columns(row)) return;
  for (const double divisor : divisors(row)) {
    Cut cut = round(row, slacks, divisor);
    if (cut.depth > std::max(kDepth, best.depth) && tidy(cut.row)) best = std::move(cut);
  }
}

/* From the nearer bounds; false where there is none, or one that rounding cannot use. */
bool Rounding::shift_columns(const Inequality& row) {
  shifts_.clear();
  right_ = row.right;
  for (std::size_t k = 0; k < row.index.size(); ++k) {
    const int j = row.index[k];
    const double below = x_[j] - model_.lp.lower[j], above = model_.lp.upper[j] - x_[j];
    if (below == kInf && above == kInf) return false;
    shifts_.push_back(below <= above ? Shift{model_.lp.lower[j], 1, std::max(below, 0.0)}
                                     : Shift{model_.lp.upper[j], -1, std::max(above, 0.0)});
    if (model_.integer[j] && fraction(shifts_[k].bound) > 0) return false;
    right_ -= row.value[k] * shifts_[k].bound;
  }
  return true;
}

std::vector<double> Rounding::divisors(const Inequality& row) const {
  std::vector<double> found;
  for (std::size_t k = 0; k < row.index.size() && found.size() < kDivisors; ++k) {
    const double size = std::fabs(row.value[k]);
    const bool known = std::find(found.begin(), found.end(), size) != found.end();
    if (model_.integer[row.index[k]] && shifts_[k].y > kIntegral && size > 0 && !known) found.push_back(size);
  }
  return found;
}

Cut Rounding::round(const Inequality& row, std::span<const LooseSlack> slacks, double divisor) {
  Cut cut;
  const double whole = std::floor(right_ / divisor), rest = right_ / divisor - whole;
  if (rest < kFraction || rest > 1 - kFraction) return cut;
  Inequality rounded;
  rounded.right = whole;
  for (std::size_t k = 0; k < row.index.size(); ++k) {
    const Shift& s = shifts_[k];
    const double a = s.sign * row.value[k] / divisor;
    const double part = a - std::floor(a);
    const double c = model_.integer[row.index[k]] ? std::floor(a) + std::max(0.0, part - rest) / (1 - rest)
                                                  : std::min(a, 0.0) / (1 - rest);
    rounded.index.push_back(row.index[k]);
    rounded.value.push_back(c * s.sign);
    rounded.right += c * s.sign * s.bound;
  }
  combination_.add(rounded, 1);
  Inequality side;
  for (const LooseSlack& slack : slacks) {
    row_side(model_, slack.row, slack.sign, side);
    combination_.add(side, slack.weight / (divisor * (1 - rest)));
  }
  cut.row = combination_.take();
  cut.depth = depth(cut.row);
  return cut;
}

/* Leaves out what is noise, at the bound where it weighs most; false when small coefficients remain. */
bool Rounding::tidy(Inequality& cut) const {
  double largest = 0;
  for (const double c : cut.value) largest = std::max(largest, std::fabs(c));
  std::size_t kept = 0;
  for (std::size_t k = 0; k < cut.index.size(); ++k) {
    const int j = cut.index[k];
    const double c = cut.value[k];
    if (std::fabs(c) > kNoise * largest) {
      if (std::fabs(c) < kSmallest * largest) return false;
      cut.index[kept] = j;
      cut.value[kept++] = c;
      continue;
    }
    const double bound = c > 0 ? model_.lp.lower[j] : model_.lp.upper[j];
    if (std::isinf(bound)) return false;
    cut.right -= c * bound;
  }
  cut.index.resize(kept);
  cut.value.resize(kept);
  return kept > 0;
}

double Rounding::depth(const Inequality& cut) const {
  double activity = 0, norm2 = 0;
  for (std::size_t k = 0; k < cut.index.size(); ++k) {
    activity += cut.value[k] * x_[cut.index[k]];
    norm2 += cut.value[k] * cut.value[k];
  }
  return norm2 > 0 ? (activity - cut.right) / std::sqrt(norm2) : 0;
}

}  // namespace bench
