#include "mip/heuristics/dive.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "mip/heuristics/rounding.h"

namespace tovik::mip {

using lp::Outcome;

namespace {

constexpr std::size_t kFreeLevels = 10;   // where the number of fractions need not fall
constexpr int kTurns = 10;                // of one dive, back to where there is another side
constexpr std::size_t kStepDivisor = 10;  // share of the fractions that one step rounds

bool round(Worker& worker, const Fraction& f, bool up) {
  const Reason reason{Reason::Kind::branching, f.column};
  if (up) {
    worker.domain.tighten_lower(f.column, std::ceil(f.value), reason);
  } else {
    worker.domain.tighten_upper(f.column, std::floor(f.value), reason);
  }
  return worker.propagate();
}

Outcome solve(Worker& worker, std::int64_t end) {
  if (worker.iterations >= end) return Outcome::iteration_limit;
  lp::simplex::Limits limits;
  limits.cutoff = worker.global.cutoff;
  limits.iterations = end - worker.iterations;
  return worker.solve(limits);
}

}  // namespace

Verdict Dive::call(Worker& worker, const Moment& moment) {
  if (!applies(worker)) return Verdict::nothing;
  // Bounds that moved without cutting the point off have not reached the relaxation yet.
  const std::int64_t end = worker.iterations + moment.iterations;
  if (worker.solve({}) != Outcome::optimal) return Verdict::nothing;
  const int position = worker.domain.position();
  const auto checkpoint = worker.relaxation->save();
  is_first_ = moment.first;
  const bool found = descend(worker, end);
  worker.backtrack(position);
  worker.relaxation->restore(*checkpoint);
  worker.solve({});
  return found ? Verdict::found : Verdict::nothing;
}

bool Dive::descend(Worker& worker, std::int64_t end) {
  turns_.clear();
  turns_left_ = is_first_ ? kTurns : 0;
  std::size_t first_count = 0;
  for (std::size_t depth = 0;; ++depth) {
    const std::span<const double> x = worker.relaxation->primal();
    const Shortfall shortfall = find_shortfall(worker, x);
    const std::size_t count = shortfall.fractions.size();
    if (count == 0) {
      worker.out.candidates.push_back({{x.begin(), x.end()}, name()});
      return true;
    }
    if (depth > 0) {
      if (std::optional<std::vector<double>> rounded = round_by_locks(worker, x)) {
        worker.out.candidates.push_back({std::move(*rounded), name()});
        return true;
      }
    }
    if (depth == 0) first_count = count;

    if (!is_first_ && depth >= kFreeLevels && count + depth / 2 > first_count) return false;
    if (!step(worker, shortfall.fractions, end) && !(is_first_ && turn(worker, end))) return false;
  }
}

bool Dive::step(Worker& worker, std::span<const Fraction> fractions, std::int64_t end) {
  rate(worker, fractions, choices_);
  order_.resize(fractions.size());
  std::iota(order_.begin(), order_.end(), 0);
  const std::size_t width = std::max<std::size_t>(1, fractions.size() / kStepDivisor);
  std::partial_sort(
      order_.begin(), order_.begin() + static_cast<std::ptrdiff_t>(width), order_.end(), [&](int a, int b) {
        return choices_[a].score != choices_[b].score ? choices_[a].score < choices_[b].score : a < b;
      });
  const Domain& domain = worker.domain;
  const int before = domain.position();
  const Fraction first = fractions[order_[0]];
  const bool up = choices_[order_[0]].up;
  if (round(worker, first, up)) {
    for (std::size_t k = 1; k < width; ++k) {
      const Fraction& f = fractions[order_[k]];
      if (f.value < domain.lower(f.column) || f.value > domain.upper(f.column)) continue;
      const int mark = domain.position();
      if (!round(worker, f, choices_[order_[k]].up)) worker.backtrack(mark);
    }
    const Outcome outcome = solve(worker, end);
    if (outcome == Outcome::optimal) {
      turns_.push_back({before, first, up});
      return true;
    }
    if (outcome != Outcome::infeasible && outcome != Outcome::objective_limit) return false;
  }
  worker.backtrack(before);
  return round(worker, first, !up) && solve(worker, end) == Outcome::optimal;
}

/* Back to the last step that has another side, and there. */
bool Dive::turn(Worker& worker, std::int64_t end) {
  while (!turns_.empty() && turns_left_-- > 0) {
    const Turn last = turns_.back();
    turns_.pop_back();
    worker.backtrack(last.position);
    if (round(worker, last.fraction, !last.up) && solve(worker, end) == Outcome::optimal) return true;
    if (worker.iterations >= end || worker.must_stop()) return false;
  }
  return false;
}

}  // namespace tovik::mip
