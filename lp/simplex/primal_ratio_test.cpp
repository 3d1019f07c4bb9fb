#include "lp/simplex/primal_ratio_test.h"

#include <algorithm>
#include <cmath>

#include "lp/simplex/primal_pricing.h"
#include "lp/simplex/tolerance.h"

namespace tovik::lp::simplex {
namespace {
constexpr double kGoodShare =
    0.1;  // a break point's pivot is good when it reaches this share of the largest one
constexpr double kGoodAlways = 1.0;  // ... or this size
}  // namespace

void PrimalRatioTest::resize(const Core& core) {
  const auto size = static_cast<size_t>(core.m());
  breaks_.reserve(2 * size);
  candidate_.reserve(size);
}

PrimalPick PrimalRatioTest::feasible(Core& core, const SparseVector& column, double direction, double slack) {
  const double smallest = pivot_tolerance(kColumnPivot, core.factor.updates());
  const double* const x = core.values.x().data();
  const double* const low = core.values.x_lower().data();
  const double* const high = core.values.x_upper().data();
  double theta = kInf;
  candidate_.clear();
  for_nonzeros(column, [&](int p) {
    const double a = direction * column.array[p];
    if (a > smallest) {
      if (low[p] == -kInf) return;
      const double room = std::max(0.0, x[p] - low[p] + slack);
      if (x[p] - low[p] <= theta * a) candidate_.push_back(p);
      if (room < theta * a) theta = room / a;
    } else if (a < -smallest) {
      if (high[p] == kInf) return;
      const double room = std::max(0.0, high[p] - x[p] + slack);
      if (high[p] - x[p] <= theta * -a) candidate_.push_back(p);
      if (room < theta * -a) theta = room / -a;
    }
  });
  core.charge(column.count < 0 ? core.m() : column.count);
  PrimalPick pick;
  double largest = 0;
  for (int p : candidate_) {
    const double a = direction * column.array[p];
    const double size = std::fabs(a);
    const double room = a > 0 ? x[p] - low[p] : high[p] - x[p];
    if (room > theta * size) continue;
    if (size > largest) {
      largest = size;
      pick = {p, column.array[p], room / size, a > 0 ? 1 : -1};
    }
  }
  return pick;
}

void PrimalRatioTest::collect(const Core& core, const SparseVector& column, double direction) {
  const double smallest = pivot_tolerance(kColumnPivot, core.factor.updates());
  const double tolerance = core.primal_tolerance();
  breaks_.clear();
  for_nonzeros(column, [&](int p) {
    const double alpha = column.array[p];
    const double a = direction * alpha;
    const double size = std::fabs(a);
    if (size <= smallest) return;
    // Distances to the bound met first and to the one behind it, seen in the direction of the motion.
    const double x = core.values.x(p);
    const double first = a > 0 ? x - core.values.x_upper(p) : core.values.x_lower(p) - x;
    const double second = a > 0 ? x - core.values.x_lower(p) : core.values.x_upper(p) - x;
    const int first_move = a > 0 ? -1 : 1;
    if (first > tolerance)
      breaks_.push_back({(first + tolerance) / size, first / size, alpha, p, first_move});
    if (second >= -tolerance && second < kInf) {
      breaks_.push_back({(second + tolerance) / size, second / size, alpha, p, -first_move});
    }
  });
}

PrimalPick PrimalRatioTest::infeasible(Core& core, const SparseVector& column, double direction, double slope,
                                       double limit) {
  collect(core, column, direction);
  core.charge(2 * static_cast<std::int64_t>(breaks_.size()) + column.count);
  const auto later = [](const Break& a, const Break& b) { return a.tight > b.tight; };
  std::make_heap(breaks_.begin(), breaks_.end(), later);
  // Pass break points while the slope stays negative; passed ones gather behind the heap.
  auto heap_end = breaks_.end();
  while (heap_end != breaks_.begin() && slope > 0 && breaks_.front().tight <= limit) {
    std::pop_heap(breaks_.begin(), heap_end, later);
    --heap_end;
    slope -= std::fabs(heap_end->alpha);
  }
  PrimalPick pick;
  if (heap_end == breaks_.end() || (slope > 0 && limit < kInf)) return pick;  // q reaches its own bound first
  // The minimum lies at the last one passed; beyond it only as far as every later bound is kept within its
  // tolerance.
  const double minimum = heap_end->tight;
  double reach = heap_end->relaxed;
  for (auto b = breaks_.begin(); b != heap_end; ++b) reach = std::min(reach, b->relaxed);
  reach = std::min(std::max(reach, minimum), limit);
  double largest = 0;
  for (const Break& b : breaks_) {
    if (b.tight <= reach) largest = std::max(largest, std::fabs(b.alpha));
  }
  const double good = std::min(kGoodShare * largest, kGoodAlways);
  double farthest = -kInf;
  double size = 0;
  for (const Break& b : breaks_) {
    if (b.tight > reach || std::fabs(b.alpha) < good) continue;
    if (b.tight > farthest || (b.tight == farthest && std::fabs(b.alpha) > size)) {
      farthest = b.tight;
      size = std::fabs(b.alpha);
      pick = {b.position, b.alpha, b.tight, b.leaving_move};
    }
  }
  return pick;
}

}  // namespace tovik::lp::simplex
