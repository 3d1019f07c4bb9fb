#include "mip/heuristics/diving_rules.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kLast = 1e6;                         // added to the score of what can be rounded at the end
constexpr double kNearlyDown = 0.2, kNearlyUp = 0.8;  // beyond these costs do not change the direction
constexpr std::size_t kProbed = 6;
constexpr std::int64_t kProbeIterations = 20;

double up_share(const Fraction& f) {
  return f.value - std::floor(f.value);
}

double penalty(const Worker& worker, const Fraction& f) {
  const Locks locks = worker.global.locks[f.column];
  return locks.down == 0 || locks.up == 0 ? kLast : 0;
}

}  // namespace

void FractionalDive::rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) {
  choices.clear();
  for (const Fraction& f : fractions) {
    const double up = up_share(f);
    choices.push_back({std::min(up, 1 - up) + penalty(worker, f), up >= 0.5});
  }
}

void LockDive::rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) {
  choices.clear();
  for (const Fraction& f : fractions) {
    const Locks locks = worker.global.locks[f.column];
    const double up = up_share(f);
    const bool goes_up = locks.up != locks.down ? locks.up < locks.down : up >= 0.5;
    const double distance = goes_up ? 1 - up : up;
    choices.push_back({std::min(locks.up, locks.down) + distance + penalty(worker, f), goes_up});
  }
}

void PseudoCostDive::rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) {
  choices.clear();
  const PseudoCosts& costs = worker.global.pseudo_costs;
  for (const Fraction& f : fractions) {
    const double up = up_share(f);
    const double up_gain = costs.gain(f.column, Direction::up) * (1 - up);
    const double down_gain = costs.gain(f.column, Direction::down) * up;
    const bool goes_up = up > kNearlyUp || (up >= kNearlyDown && up_gain < down_gain);
    const double ratio = goes_up ? (1 + down_gain) / (1 + up_gain) : (1 + up_gain) / (1 + down_gain);
    choices.push_back({penalty(worker, f) - (goes_up ? up : 1 - up) * ratio, goes_up});
  }
}

void GuidedDive::rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) {
  choices.clear();
  for (const Fraction& f : fractions) {
    const double aim = worker.global.incumbent[f.column];
    choices.push_back({std::fabs(f.value - aim), aim > f.value});
  }
}

void ProbingDive::rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) {
  choices.clear();
  std::vector<int> nearest;
  for (const Fraction& f : fractions) {
    const double up = up_share(f);
    choices.push_back({kLast + std::min(up, 1 - up), up >= 0.5});
    nearest.push_back(static_cast<int>(nearest.size()));
  }
  const std::size_t count = std::min(kProbed, nearest.size());
  std::partial_sort(nearest.begin(), nearest.begin() + static_cast<std::ptrdiff_t>(count), nearest.end(),
                    [&](int a, int b) {
                      return choices[a].score != choices[b].score ? choices[a].score < choices[b].score
                                                                  : a < b;
                    });
  const double base = worker.relaxation->objective();
  lp::simplex::Limits limits;
  limits.iterations = kProbeIterations;
  limits.cutoff = worker.global.cutoff;
  for (std::size_t k = 0; k < count; ++k) {
    const Fraction& f = fractions[nearest[k]];
    Choice& choice = choices[nearest[k]];
    const auto rise = [&](bool up) {
      const auto found =
          worker.relaxation->probe(worker.control, f.column, up ? std::ceil(f.value) : std::floor(f.value),
                                   up ? lp::simplex::Side::up : lp::simplex::Side::down, limits);
      worker.iterations += found.iterations;
      return std::min(std::max(0.0, found.bound - base), kLast / 2);
    };
    const double up = rise(true), down = rise(false);
    choice = {std::min(up, down), up != down ? up < down : choice.up};
  }
}

}  // namespace tovik::mip
