#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/parallel_vectors.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::HashedVector;
using lp::presolve::ScatteredVector;
using lp::presolve::View;
using lp::presolve::Workspace;

constexpr int kCompared = 8;  // columns of a bucket that a column is compared with

bool is_whole(double v) {
  return v == std::round(v);
}

/* Entries of `gone` = ratio times those of `kept`. */
struct Pair {
  int kept, gone;
  double ratio;
};

class ParallelColumns {
 public:
  explicit ParallelColumns(PresolveState& state) : state_(state), ws_(state.ws()) {}

  /* True when one of the two has left. */
  bool reduce(const Pair& pair) {
    if (dominate(pair) || dominate({pair.gone, pair.kept, 1 / pair.ratio})) return true;
    return merge(pair);
  }

 private:
  /* The cost of one more of `gone` where `kept` makes up for it in all rows. */
  double difference(const Pair& p) const {
    const double wanted = p.ratio * ws_.cost[p.kept], d = ws_.cost[p.gone] - wanted;
    return std::fabs(d) <= 1e-12 * std::fabs(wanted) ? 0 : d;
  }

  /* `gone` goes to the better one of its bounds where `kept` can always make up for it. */
  bool dominate(const Pair& p) {
    const bool gone_whole = state_.is_integer(p.gone), kept_whole = state_.is_integer(p.kept);
    if (kept_whole && (!gone_whole || !is_whole(p.ratio))) return false;
    const double d = difference(p);
    for (const int direction : {-1, 1}) {  // of `gone`
      if (direction * d > 0) continue;
      const double bound = direction < 0 ? ws_.lower[p.gone] : ws_.upper[p.gone];
      if (std::isinf(bound)) continue;
      const bool kept_rises = (p.ratio > 0) == (direction < 0);
      if (!is_unlimited(p.kept, kept_rises)) continue;
      state_.fix(p.gone, bound);
      return true;
    }
    return false;
  }

  /* No bound, or one that a row implies. */
  bool is_unlimited(int j, bool up) {
    if (std::isinf(up ? ws_.upper[j] : ws_.lower[j])) return true;
    const View column = ws_.column(j);
    const std::vector<int> rows(column.index, column.index + column.length);
    const std::vector<double> values(column.value, column.value + column.length);
    ws_.add_work(column.length);
    for (std::size_t k = 0; k < rows.size(); ++k) {
      const double implied =
          up ? ws_.implied_upper(rows[k], j, values[k]) : -ws_.implied_lower(rows[k], j, values[k]);
      const double own = up ? ws_.upper[j] : -ws_.lower[j];
      if (implied <= own + 1e-9 * std::max(1.0, std::fabs(own))) return true;
    }
    return false;
  }

  /* Equal but for the factor: one column stands for the sum. Two binary columns stay, for the sake of cliques. */
  bool merge(const Pair& p) {
    if (difference(p) != 0 || state_.settings().linear_only) return false;
    const int j = p.kept, k = p.gone;
    if (state_.is_integer(j) != state_.is_integer(k)) return false;
    if (state_.is_integer(j) && (std::fabs(p.ratio) != 1 || state_.is_binary(j) || state_.is_binary(k)))
      return false;
    if (std::fabs(p.ratio) > 1e3 || std::fabs(p.ratio) < 1e-3) return false;
    const Postsolve::Box own{ws_.lower[j], ws_.upper[j]}, other{ws_.lower[k], ws_.upper[k]};
    double low = p.ratio * other.lower, high = p.ratio * other.upper;
    if (p.ratio < 0) std::swap(low, high);
    state_.postsolve.merged(j, own, k, other, p.ratio);
    ws_.remove_column(k, lp::presolve::RemovalReason::merged);
    ws_.change_bounds(j, own.lower + low, own.upper + high);
    return true;
  }

  PresolveState& state_;
  Workspace& ws_;
};

void reduce_bucket(PresolveState& state, const HashedVector* begin, const HashedVector* end,
                   ScatteredVector& scattered) {
  Workspace& ws = state.ws();
  ParallelColumns rule(state);
  std::vector<int> kept;
  for (const HashedVector* at = begin; at != end && state.goes_on(); ++at) {
    bool gone = false;
    for (std::size_t k = 0; k < kept.size() && !gone; ++k) {
      const View own = ws.column(kept[k]);
      scattered.load(own);
      ws.add_work(2 * own.length);
      const double ratio = scattered.ratio(ws.column(at->index));
      if (ratio == 0 || !rule.reduce({kept[k], at->index, ratio})) continue;
      gone = !ws.column_alive(at->index);
      if (!gone) kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(k--));
    }
    if (!gone && kept.size() < kCompared) kept.push_back(at->index);
  }
}

}  // namespace

void reduce_parallel_columns(PresolveState& state) {
  if (!state.allows(PresolveRule::parallel_columns)) return;
  Workspace& ws = state.ws();
  std::vector<HashedVector> candidates;
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (!ws.column_alive(j) || state.is_held(j) || ws.column_length(j) == 0 || state.is_fixed(j)) continue;
    const View column = ws.column(j);
    ws.add_work(column.length);
    candidates.push_back({lp::presolve::direction_hash(column), j});
  }
  lp::presolve::keep_shared_hashes(candidates);
  ScatteredVector scattered(ws.num_rows());
  for (std::size_t k = 0; k < candidates.size() && state.goes_on();) {
    std::size_t end = k + 1;
    while (end < candidates.size() && candidates[end].hash == candidates[k].hash) ++end;
    reduce_bucket(state, &candidates[k], candidates.data() + end, scattered);
    k = end;
  }
}

}  // namespace tovik::mip
