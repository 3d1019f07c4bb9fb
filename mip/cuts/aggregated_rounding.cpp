#include "mip/cuts/aggregated_rounding.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr int kFailures = 100;  // starts in a row without a cut
constexpr double kTight = 0.1;  // slack of a row relative to its norm
constexpr double kZero = 1e-9;
constexpr double kWidestFactor = 1e4;
constexpr double kDensest = 0.2;  // share of the columns in a sum, and a few more
constexpr int kDenseAtLeast = 500;

}  // namespace

Verdict AggregatedRounding::call(Worker& worker, const Moment& moment) {
  if (substitution_ == Substitution::variable_bounds && worker.global.variable_bounds.columns().empty())
    return Verdict::nothing;
  score_rows(worker);
  RowSum sum(worker.global.problem.num_columns());
  Rounding rounding(worker, substitution_);
  int failures = 0;
  bool found = false;
  for (const auto& [score, i] : starts_) {
    if (failures > kFailures || sum.entries() > moment.budget || worker.must_stop()) break;
    const bool success = from_start(worker, i, sum, rounding);
    failures = success ? 0 : failures + 1;
    found |= success;
  }
  worker.out.work += sum.entries() + rounding.work();
  return found ? Verdict::found : Verdict::nothing;
}

/* Tight rows, those with fractional columns and a dual value first. A column at a bound that a binary column sets is as
 * fractional as that. */
void AggregatedRounding::score_rows(const Worker& worker) {
  const Problem& problem = worker.global.problem;
  const std::span<const double> x = worker.relaxation->primal();
  const std::span<const double> y = worker.relaxation->duals();
  const int rows = problem.num_rows();
  row_score_.assign(static_cast<std::size_t>(rows), -1);
  starts_.clear();
  const auto fraction_of = [&](int j) {
    if (problem.is_integer[j] != 0) return fractionality(x[j]);
    double fraction = 0;
    if (substitution_ == Substitution::variable_bounds) {
      for (const VariableBound& b : worker.global.variable_bounds.upper(j)) {
        if (x[j] >= b.at(x[b.binary]) - kZero)
          fraction = std::max(fraction, std::fabs(b.slope) * fractionality(x[b.binary]));
      }
    }
    return fraction;
  };
  for (int i = 0; i < rows; ++i) {
    const RelaxationRow row = worker.row(i);
    if (row.columns.empty()) continue;
    double norm = 0, fractions = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) {
      norm += row.values[k] * row.values[k];
      fractions += std::fabs(row.values[k]) * fraction_of(row.columns[k]);
    }
    norm = std::sqrt(norm);
    const Slack slack = slack_of(row, x);
    if (!slack.exists || slack.value > kTight * norm) continue;
    row_score_[i] =
        fractions / norm + 1e-3 * (1 - slack.value / norm) + 1e-4 * std::min(1.0, std::fabs(y[i]));
    starts_.emplace_back(row_score_[i], i);
  }
  std::stable_sort(starts_.begin(), starts_.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
}

/* Of a continuous column from its nearest bound. */
double AggregatedRounding::distance(const Worker& worker, int j) const {
  const std::span<const double> x = worker.relaxation->primal();
  double far = std::min(x[j] - worker.domain.global_lower(j), worker.domain.global_upper(j) - x[j]);
  if (substitution_ == Substitution::variable_bounds) {
    for (const VariableBound& b : worker.global.variable_bounds.lower(j))
      far = std::min(far, x[j] - b.at(x[b.binary]));
    for (const VariableBound& b : worker.global.variable_bounds.upper(j))
      far = std::min(far, b.at(x[b.binary]) - x[j]);
  }
  return far;
}

bool AggregatedRounding::try_both_signs(Worker& worker, const RowSum& sum, Rounding& rounding) {
  const CutClass kind = substitution_ == Substitution::bounds ? CutClass::mir : CutClass::flow_cover;
  bool found = false;
  for (const double sign : {1.0, -1.0}) {
    found |= rounding.separate(sum, sign, worker.relaxation->primal(), kind, &worker.out.cuts);
  }
  return found;
}

bool AggregatedRounding::from_start(Worker& worker, int start, RowSum& sum, Rounding& rounding) {
  sum.clear();
  if (!sum.add(worker, start, 1, worker.relaxation->primal())) return false;
  const int densest = kDenseAtLeast + static_cast<int>(kDensest * worker.global.problem.num_columns());
  const int aggregations = worker.global.settings.cuts.aggregations;
  for (int k = 0; k <= aggregations; ++k) {
    if (try_both_signs(worker, sum, rounding)) return true;
    if (k == aggregations || static_cast<int>(sum.columns().size()) > densest || !aggregate(worker, sum))
      return false;
  }
  return false;
}

/* Eliminates the continuous column that is farthest from its bounds; false where there is none, or no row for it. */
bool AggregatedRounding::aggregate(const Worker& worker, RowSum& sum) {
  const Problem& problem = worker.global.problem;
  const std::span<const double> x = worker.relaxation->primal();
  int best = -1;
  double farthest = 1e-6;
  for (const int j : sum.columns()) {
    if (problem.is_integer[j] != 0 || std::fabs(sum.coefficient(j)) < 1e-9) continue;
    const double far = distance(worker, j);
    if (far <= farthest && !(std::isinf(far) && best < 0)) continue;
    farthest = far;
    best = j;
  }
  if (best < 0) return false;
  const lp::Matrix& columns = problem.lp.matrix;
  int row = -1;
  double value = 0, score = -1;
  for (int k = columns.start[best]; k < columns.start[best + 1]; ++k) {
    const int i = columns.index[k];
    if (row_score_[i] <= score || sum.has_row(i)) continue;
    const double factor = std::fabs(sum.coefficient(best) / columns.value[k]);
    if (factor > kWidestFactor || factor < 1 / kWidestFactor) continue;
    row = i;
    value = columns.value[k];
    score = row_score_[i];
  }
  return row >= 0 && sum.add(worker, row, -sum.coefficient(best) / value, x);
}

}  // namespace tovik::mip
