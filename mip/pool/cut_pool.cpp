#include "mip/pool/cut_pool.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik::mip {
namespace {

constexpr int kOldest = 10;                    // rounds without violation
constexpr std::int64_t kMostWork = 100000000;  // entries compared in one selection: some tenths of a second
constexpr double kAtBound = 1e-9;
constexpr double kLeastNormShare = 1e-3;  // of a cut's terms between bounds, by that of all
constexpr double kObjectiveWeight = 0.1, kIntegerWeight = 0.1;

double norm_of(std::span<const double> values) {
  double sum = 0;
  for (const double v : values) sum += v * v;
  return std::sqrt(sum);
}

double violation_of(const Cut& cut, std::span<const double> x) {
  double activity = 0;
  for (std::size_t k = 0; k < cut.columns.size(); ++k) activity += cut.values[k] * x[cut.columns[k]];
  return activity - cut.side;
}

/* Of the terms on columns between their bounds: how far the point moves is measured where it can move both ways. */
double norm_between_bounds(const Cut& cut, const lp::LpData& lp, std::span<const double> x) {
  double sum = 0;
  for (std::size_t k = 0; k < cut.columns.size(); ++k) {
    const int j = cut.columns[k];
    if (x[j] > lp.lower[j] + kAtBound && x[j] < lp.upper[j] - kAtBound) sum += cut.values[k] * cut.values[k];
  }
  return std::sqrt(sum);
}

}  // namespace

/* Of the support and of the values relative to the first one, coarsely. */
std::uint64_t CutPool::hash_of(const Cut& cut) {
  std::uint64_t hash = 0x9e3779b97f4a7c15ULL;
  for (std::size_t k = 0; k < cut.columns.size(); ++k) {
    const auto ratio =
        static_cast<std::int64_t>(std::llround(cut.values[k] / std::fabs(cut.values[0]) * 1e5));
    hash ^= static_cast<std::uint64_t>(cut.columns[k]) * 0xbf58476d1ce4e5b9ULL +
            static_cast<std::uint64_t>(ratio);
    hash = (hash ^ (hash >> 31)) * 0x94d049bb133111ebULL;
  }
  return hash;
}

bool CutPool::add(Cut cut) {
  if (cut.columns.empty()) return false;
  const double norm = norm_of(cut.values);
  const std::uint64_t hash = hash_of(cut);
  if (const auto same = by_hash_.find(hash); same != by_hash_.end()) {
    Kept& kept = cuts_[same->second];
    if (kept.cut.columns != cut.columns || cut.side / norm >= kept.cut.side / kept.norm) return false;
    kept = {std::move(cut), norm, hash};
    return true;
  }
  by_hash_.emplace(hash, cuts_.size());
  cuts_.push_back({std::move(cut), norm, hash});
  return true;
}

void CutPool::remove(std::size_t k) {
  by_hash_.erase(cuts_[k].hash);
  if (k + 1 != cuts_.size()) {
    cuts_[k] = std::move(cuts_.back());
    by_hash_[cuts_[k].hash] = k;
  }
  cuts_.pop_back();
}

double CutPool::score(const Kept& kept, double efficacy) const {
  double product = 0;
  int integers = 0;
  for (std::size_t k = 0; k < kept.cut.columns.size(); ++k) {
    product += kept.cut.values[k] * problem_.lp.cost[kept.cut.columns[k]];
    integers += problem_.is_integer[kept.cut.columns[k]] != 0 ? 1 : 0;
  }
  const double parallel = cost_norm_ > 0 ? std::fabs(product) / (kept.norm * cost_norm_) : 0;
  return efficacy + kObjectiveWeight * parallel +
         kIntegerWeight * integers / static_cast<double>(kept.cut.columns.size());
}

std::vector<Cut> CutPool::select(std::span<const double> x, const SelectionRules& rules) {
  if (cost_norm_ < 0) cost_norm_ = norm_of(problem_.lp.cost);
  struct Violated {
    std::size_t at;
    double score;
  };
  std::vector<Violated> violated;
  for (std::size_t k = 0; k < cuts_.size(); ++k) {
    Kept& kept = cuts_[k];
    work_ += static_cast<std::int64_t>(kept.cut.columns.size());
    const double by = violation_of(kept.cut, x);
    if (by > rules.least_violation && by > rules.least_efficacy * kept.norm) {
      const double norm =
          std::max(norm_between_bounds(kept.cut, problem_.lp, x), kLeastNormShare * kept.norm);
      violated.push_back({k, score(kept, by / norm)});
      kept.age = 0;
    } else {
      ++kept.age;
    }
  }
  std::sort(violated.begin(), violated.end(), [](const Violated& a, const Violated& b) {
    return a.score != b.score ? a.score > b.score : a.at < b.at;
  });

  std::vector<std::size_t> chosen;
  std::vector<double> stamp(x.size(), 0.0);
  std::vector<char> is_out(violated.size());
  const std::int64_t most_work = work_ + kMostWork;
  const auto limit = static_cast<std::size_t>(rules.limit);
  for (std::size_t a = 0; a < violated.size() && chosen.size() < limit && work_ < most_work; ++a) {
    if (is_out[a] != 0) continue;
    const Kept& best = cuts_[violated[a].at];
    chosen.push_back(violated[a].at);
    for (std::size_t k = 0; k < best.cut.columns.size(); ++k) stamp[best.cut.columns[k]] = best.cut.values[k];
    for (std::size_t b = a + 1; b < violated.size(); ++b) {
      if (is_out[b] != 0) continue;
      const Kept& other = cuts_[violated[b].at];
      double product = 0;
      for (std::size_t k = 0; k < other.cut.columns.size(); ++k) {
        product += stamp[other.cut.columns[k]] * other.cut.values[k];
      }
      work_ += static_cast<std::int64_t>(other.cut.columns.size());
      if (product > rules.most_parallel * best.norm * other.norm) is_out[b] = 1;
    }
    for (const int j : best.cut.columns) stamp[j] = 0;
  }

  std::vector<Cut> result;
  for (const std::size_t k : chosen) result.push_back(cuts_[k].cut);
  std::vector<char> leaves(cuts_.size());
  for (const std::size_t k : chosen) leaves[k] = 1;
  for (std::size_t k = 0; k < cuts_.size(); ++k) leaves[k] = leaves[k] != 0 || cuts_[k].age > kOldest ? 1 : 0;
  for (std::size_t k = cuts_.size(); k-- > 0;) {
    if (leaves[k] != 0) remove(k);
  }
  return result;
}

}  // namespace tovik::mip
