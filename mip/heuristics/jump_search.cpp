#include "mip/heuristics/jump_search.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr int kSample = 25;        // entries of violated rows that a step looks at
constexpr int kRows = 5;           // in so many rows
constexpr std::int64_t kRest = 3;  // steps before a column moves again for the worse
constexpr std::int64_t kPolled = 64;
constexpr double kNoise = 1e-9;  // of a weighted violation
constexpr double kTrust = 0.5;   // of the feasibility tolerance, that activities carried along may use up

}  // namespace

JumpSearch::JumpSearch(const Domain& domain)
    : domain_(domain),
      scale_(static_cast<std::size_t>(domain.problem().num_rows()), 0.0),
      place_(scale_.size(), -1),
      moved_(static_cast<std::size_t>(domain.problem().num_columns()), -kRest) {
  const lp::Matrix& matrix = domain.problem().lp.matrix;
  for (std::size_t k = 0; k < matrix.index.size(); ++k) {
    double& largest = scale_[matrix.index[k]];
    largest = std::max(largest, std::fabs(matrix.value[k]));
  }
  for (double& s : scale_) s = s > 0 ? 1 / s : 1;
}

void JumpSearch::start(std::span<const double> x) {
  const Problem& problem = domain_.problem();
  const lp::Matrix& matrix = problem.lp.matrix;
  x_.assign(x.begin(), x.end());
  activity_.assign(scale_.size(), 0.0);
  weight_.assign(scale_.size(), 1.0);
  for (int j = 0; j < problem.num_columns(); ++j) {
    const double v = problem.is_integer[j] != 0 ? std::round(x_[j]) : x_[j];
    x_[j] = std::clamp(v, domain_.lower(j), std::max(domain_.lower(j), domain_.upper(j)));
    if (x_[j] == 0) continue;
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k)
      activity_[matrix.index[k]] += matrix.value[k] * x_[j];
  }
  work_ += static_cast<std::int64_t>(matrix.index.size());
  violated_.clear();
  std::fill(place_.begin(), place_.end(), -1);
  for (int i = 0; i < problem.num_rows(); ++i) note(i);
  fewest_ = violated_.size();
}

double JumpSearch::violation(int row, double activity) const {
  const lp::LpData& lp = domain_.problem().lp;
  return std::max({0.0, activity - lp.row_upper[row], lp.row_lower[row] - activity});
}

void JumpSearch::note(int row) {
  const bool is_violated = violation(row, activity_[row]) > kTrust * domain_.tolerances().feasibility;
  int& place = place_[row];
  if (is_violated && place < 0) {
    place = static_cast<int>(violated_.size());
    violated_.push_back(row);
  } else if (!is_violated && place >= 0) {
    violated_[place] = violated_.back();
    place_[violated_.back()] = place;
    violated_.pop_back();
    place = -1;
  }
}

/* What the weighted violation rises by. */
double JumpSearch::change(int column, double to) const {
  const lp::Matrix& matrix = domain_.problem().lp.matrix;
  const double step = to - x_[column];
  double sum = 0;
  for (int k = matrix.start[column]; k < matrix.start[column + 1]; ++k) {
    const int i = matrix.index[k];
    const double now = violation(i, activity_[i]);
    sum += weight(i) * (violation(i, activity_[i] + matrix.value[k] * step) - now);
  }
  return sum;
}

/* Where the function whose kinks are known is least, from the left, where its slope is given: of a flat piece the end that
 * costs less, else the one nearer to the present value. */
double JumpSearch::least_point(int column, double slope) {
  const double cost = domain_.problem().lp.cost[column];
  const double lower = domain_.lower(column), upper = domain_.upper(column);
  std::sort(kinks_.begin(), kinks_.end(), [](const Kink& a, const Kink& b) { return a.at < b.at; });
  double left = lower;
  std::size_t k = 0;
  for (; k < kinks_.size() && (slope < -kNoise || kinks_[k].at <= lower); ++k) {
    slope += kinks_[k].slope;
    left = std::max(left, kinks_[k].at);
  }
  if (slope < -kNoise) left = upper;
  left = std::min(left, upper);
  const double right = slope > kNoise      ? left
                       : k < kinks_.size() ? std::clamp(kinks_[k].at, left, upper)
                                           : upper;
  const double near = std::clamp(x_[column], left, right);
  const double end = cost > 0 ? left : cost < 0 ? right : near;
  const double v = std::isinf(end) ? near : end;
  return std::isinf(v) ? x_[column] : v;
}

JumpSearch::Jump JumpSearch::jump_of(int column) {
  const Problem& problem = domain_.problem();
  const lp::LpData& lp = problem.lp;
  const double lower = domain_.lower(column), upper = domain_.upper(column), now = x_[column];
  const bool is_integer = problem.is_integer[column] != 0;
  work_ += lp.matrix.start[column + 1] - lp.matrix.start[column];
  if (is_integer && upper - lower == 1) {
    const double other = now == lower ? upper : lower;
    return {other, -change(column, other)};
  }
  kinks_.clear();
  double slope = 0;  // far to the left
  for (int k = lp.matrix.start[column]; k < lp.matrix.start[column + 1]; ++k) {
    const int i = lp.matrix.index[k];
    const double a = lp.matrix.value[k], w = weight(i) * std::fabs(a);
    const double to_upper = now + (lp.row_upper[i] - activity_[i]) / a;
    const double to_lower = now + (lp.row_lower[i] - activity_[i]) / a;
    const double rises = a > 0 ? to_upper : to_lower, falls = a > 0 ? to_lower : to_upper;
    if (!std::isinf(rises)) kinks_.push_back({rises, w});
    if (std::isinf(falls)) continue;
    kinks_.push_back({falls, w});
    slope -= w;
  }
  const double best = least_point(column, slope);
  if (!is_integer) return {best, best == now ? -kInf : -change(column, best)};
  Jump jump{now, -kInf};
  for (const double v : {std::floor(best), std::ceil(best), now - 1, now + 1}) {
    if (v == now || v < lower || v > upper || (jump.score > -kInf && std::fabs(v - now) == 1)) continue;
    const double score = -change(column, v);
    if (score > jump.score) jump = {v, score};
  }
  return jump;
}

void JumpSearch::move(int column, double to) {
  const lp::Matrix& matrix = domain_.problem().lp.matrix;
  const double step = to - x_[column];
  x_[column] = to;
  for (int k = matrix.start[column]; k < matrix.start[column + 1]; ++k) {
    activity_[matrix.index[k]] += matrix.value[k] * step;
    note(matrix.index[k]);
  }
  work_ += matrix.start[column + 1] - matrix.start[column];
  moved_[column] = steps_;
}

void JumpSearch::step(lp::simplex::EngineRandom& random) {
  ++steps_;
  const std::vector<double>& cost = domain_.problem().lp.cost;
  int best = -1, waiting = -1;  // of all, and of those that have not just moved
  Jump best_jump{0, -kInf}, waiting_jump{0, -kInf};
  const auto is_better = [&](int j, const Jump& jump, int than, const Jump& other) {
    if (than < 0 || std::fabs(jump.score - other.score) > kNoise) return jump.score > other.score;
    return cost[j] * (jump.value - x_[j]) < cost[than] * (other.value - x_[than]);
  };
  std::vector<int> rows;
  for (int r = 0; r < kRows; ++r) {
    const int i = violated_[random.below(static_cast<int>(violated_.size()))];
    rows.push_back(i);
    const RowView row = domain_.row(i);
    const int length = static_cast<int>(row.columns.size());
    ++work_;
    if (length == 0) continue;
    const int looks = std::min(length, kSample / kRows);
    const int first = random.below(length);
    for (int k = 0, seen = 0; k < length && seen < looks; ++k) {
      ++work_;
      const int j = row.columns[(first + k) % length];
      if (domain_.is_fixed(j)) continue;
      ++seen;
      const Jump jump = jump_of(j);
      if (is_better(j, jump, best, best_jump)) {
        best = j;
        best_jump = jump;
      }
      if (steps_ - moved_[j] > kRest && is_better(j, jump, waiting, waiting_jump)) {
        waiting = j;
        waiting_jump = jump;
      }
    }
  }
  if (best >= 0 && best_jump.score > kNoise) {
    move(best, best_jump.value);
    return;
  }
  for (const int i : rows) weight_[i] += 1;
  if (waiting >= 0 && waiting_jump.score > -kInf) move(waiting, waiting_jump.value);
}

bool JumpSearch::run(lp::simplex::EngineRandom& random, std::int64_t work, lp::Control& control) {
  const std::int64_t end = work_ + work;
  while (!violated_.empty() && work_ < end) {
    if (steps_ % kPolled == 0 && (control.poll() != lp::Stop::none || control.poll_clock() != lp::Stop::none))
      return false;
    step(random);
    fewest_ = std::min(fewest_, violated_.size());
  }
  return violated_.empty();
}

}  // namespace tovik::mip
