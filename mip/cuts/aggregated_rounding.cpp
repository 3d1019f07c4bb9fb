#include "mip/cuts/aggregated_rounding.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr int kAggregations = 5;
constexpr int kFailures = 100;  // starts in a row without a cut
constexpr double kTight = 0.1;  // slack of a row relative to its norm
constexpr double kWidestFactor = 1e4;
constexpr double kDensest = 0.2;  // share of the columns in a sum, and a few more
constexpr int kDenseAtLeast = 500;

}  // namespace

Verdict AggregatedRounding::call(Worker& worker, const Moment& moment) {
  const Problem& problem = worker.global.problem;
  const std::span<const double> x = worker.relaxation->primal();
  const std::span<const double> y = worker.relaxation->duals();
  const int rows = problem.num_rows();
  row_score_.assign(static_cast<std::size_t>(rows), -1);
  slack_.assign(static_cast<std::size_t>(rows), kInf);
  std::vector<std::pair<double, int>> starts;
  for (int i = 0; i < rows; ++i) {
    const RelaxationRow row = worker.row(i);
    if (row.columns.empty()) continue;
    double norm = 0, fractions = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) {
      norm += row.values[k] * row.values[k];
      const int j = row.columns[k];
      if (problem.is_integer[j] != 0) fractions += std::fabs(row.values[k]) * fractionality(x[j]);
    }
    norm = std::sqrt(norm);
    const Slack slack = slack_of(row, x);
    if (!slack.exists || slack.value > kTight * norm) continue;
    slack_[i] = slack.value;
    row_score_[i] =
        fractions / norm + 1e-3 * (1 - slack.value / norm) + 1e-4 * std::min(1.0, std::fabs(y[i]));
    starts.emplace_back(row_score_[i], i);
  }
  std::stable_sort(starts.begin(), starts.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  RowSum sum(problem.num_columns());
  Rounding rounding(worker);
  int failures = 0;
  bool found = false;
  for (const auto& [score, i] : starts) {
    if (failures > kFailures || sum.entries() > moment.budget ||
        worker.control.poll_clock() != lp::Stop::none)
      break;
    const bool success = from_start(worker, i, sum, rounding);
    failures = success ? 0 : failures + 1;
    found |= success;
  }
  return found ? Verdict::found : Verdict::nothing;
}

bool AggregatedRounding::try_both_signs(Worker& worker, const RowSum& sum, Rounding& rounding) {
  bool found = false;
  for (const double sign : {1.0, -1.0}) {
    Cut cut;
    cut.kind = CutClass::mir;
    if (!rounding.separate(sum, sign, worker.relaxation->primal(), &cut)) continue;
    worker.out.cuts.push_back(std::move(cut));
    found = true;
  }
  return found;
}

bool AggregatedRounding::from_start(Worker& worker, int start, RowSum& sum, Rounding& rounding) {
  sum.clear();
  if (!sum.add(worker, start, 1, worker.relaxation->primal())) return false;
  const int densest = kDenseAtLeast + static_cast<int>(kDensest * worker.global.problem.num_columns());
  for (int k = 0; k <= kAggregations; ++k) {
    if (try_both_signs(worker, sum, rounding)) return true;
    if (k == kAggregations || static_cast<int>(sum.columns().size()) > densest || !aggregate(worker, sum))
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
    const double far = std::min(x[j] - worker.domain.lower(j), worker.domain.upper(j) - x[j]);
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
