#include "mip/cuts/gomory.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr double kLeastFraction = 0.005;
constexpr double kSmallMultiplier = 1e-9, kWidestMultipliers = 1e6;
constexpr int kHighestRank = 20;
constexpr double kShare = 1.0 / 3;  // of the candidates that may be, where effort counts

}  // namespace

Verdict GomoryCuts::call(Worker& worker, const Moment& moment) {
  const CutSettings& settings = worker.global.settings.cuts;
  if (settings.fractional_rounds > 0 && moment.root && moment.round >= settings.fractional_rounds)
    return Verdict::nothing;
  const std::vector<int> positions = candidates(worker);
  RowSum sum(worker.global.problem.num_columns());
  Rounding rounding(worker);
  bool found = false;
  for (const int position : positions) {
    if (sum.entries() > moment.budget || worker.must_stop()) break;
    found |= one_row(worker, position, sum, rounding);
  }
  worker.out.work += sum.entries() + rounding.work();
  return found ? Verdict::found : Verdict::nothing;
}

/* Rows of fractional basic columns. A short row of the inverse basis sums few rows and gives a cut that cuts deep: the product of
 * the two fractions by the square of its norm, which is the dual steepest edge weight, says which come first. */
std::vector<int> GomoryCuts::candidates(const Worker& worker) {
  const CutSettings& settings = worker.global.settings.cuts;
  const std::span<const double> x = worker.relaxation->primal();
  const std::span<const int> head = worker.relaxation->basis_head();
  const bool has_norms = worker.relaxation->has_dual_norms();
  struct Position {
    int at;
    double score;
  };
  std::vector<Position> positions;
  for (int p = 0; p < static_cast<int>(head.size()); ++p) {
    const int j = head[p];
    if (j >= worker.global.problem.num_columns() || worker.global.problem.is_integer[j] == 0) continue;
    const double f = fractionality(x[j]);
    if (f < kLeastFraction) continue;
    positions.push_back({p, f * (1 - f) / (has_norms ? worker.relaxation->dual_norms()[p] : 1)});
  }
  std::stable_sort(positions.begin(), positions.end(),
                   [](const Position& a, const Position& b) { return a.score > b.score; });
  int most = settings.fractional_candidates;
  if (settings.fractional == 0) most = static_cast<int>(std::ceil(kShare * most));
  std::vector<int> result;
  for (const Position& p : positions) {
    if (static_cast<int>(result.size()) == most) break;
    result.push_back(p.at);
  }
  return result;
}

bool GomoryCuts::one_row(Worker& worker, int position, RowSum& sum, Rounding& rounding) {
  lp::simplex::SparseEntries weights;
  worker.relaxation->tableau_row(position, weights, nullptr);
  double largest = 0;
  for (const double w : weights.value) largest = std::max(largest, std::fabs(w));
  if (!(largest > 0) || largest > kWidestMultipliers) return false;
  sum.clear();
  const std::span<const double> x = worker.relaxation->primal();
  for (std::size_t k = 0; k < weights.index.size(); ++k) {
    if (std::fabs(weights.value[k]) < kSmallMultiplier * largest) continue;
    if (!sum.add(worker, weights.index[k], weights.value[k], x)) return false;
  }
  if (sum.rank() > kHighestRank) return false;
  bool found = false;
  for (const double sign : {1.0, -1.0}) {
    found |= rounding.separate(sum, sign, x, CutClass::fractional, &worker.out.cuts);
  }
  return found;
}

}  // namespace tovik::mip
