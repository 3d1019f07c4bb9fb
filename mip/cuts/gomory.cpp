#include "mip/cuts/gomory.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr double kLeastFraction = 0.005;
constexpr double kSmallMultiplier = 1e-9, kWidestMultipliers = 1e6;
constexpr int kHighestRank = 20;

}  // namespace

Verdict GomoryCuts::call(Worker& worker, const Moment& moment) {
  const CutSettings& settings = worker.global.settings.cuts;
  if (settings.fractional_rounds > 0 && moment.root && moment.round >= settings.fractional_rounds)
    return Verdict::nothing;
  const std::span<const double> x = worker.relaxation->primal();
  const std::span<const int> head = worker.relaxation->basis_head();
  struct Position {
    int at;
    double fraction;
  };
  std::vector<Position> positions;
  for (int p = 0; p < static_cast<int>(head.size()); ++p) {
    const int j = head[p];
    if (j >= worker.global.problem.num_columns() || worker.global.problem.is_integer[j] == 0) continue;
    const double f = fractionality(x[j]);
    if (f >= kLeastFraction) positions.push_back({p, f});
  }
  std::stable_sort(positions.begin(), positions.end(),
                   [](const Position& a, const Position& b) { return a.fraction > b.fraction; });
  positions.resize(std::min(positions.size(), static_cast<std::size_t>(settings.fractional_candidates)));
  RowSum sum(worker.global.problem.num_columns());
  Rounding rounding(worker);
  bool found = false;
  for (const Position& p : positions) {
    if (sum.entries() > moment.budget || worker.must_stop()) break;
    found |= one_row(worker, p.at, sum, rounding);
  }
  worker.out.work += sum.entries();
  return found ? Verdict::found : Verdict::nothing;
}

bool GomoryCuts::one_row(Worker& worker, int position, RowSum& sum, Rounding& rounding) {
  lp::simplex::SparseEntries weights, tableau;
  worker.relaxation->tableau_row(position, weights, tableau);
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
    Cut cut;
    cut.kind = CutClass::fractional;
    if (!rounding.separate(sum, sign, x, &cut)) continue;
    worker.out.cuts.push_back(std::move(cut));
    found = true;
  }
  return found;
}

}  // namespace tovik::mip
