#include "lp/presolve/rounds.h"

#include <algorithm>

#include "lp/presolve/aggregator.h"
#include "lp/presolve/dependent_rows.h"
#include "lp/presolve/dominated_column.h"
#include "lp/presolve/fixed_column.h"
#include "lp/presolve/forcing_row.h"
#include "lp/presolve/free_row.h"
#include "lp/presolve/parallel_columns.h"
#include "lp/presolve/parallel_rows.h"
#include "lp/presolve/singleton_row.h"
#include "lp/presolve/slack_column.h"
#include "lp/presolve/sparsify.h"
#include "lp/presolve/zero_cost_column.h"

namespace tovik::lp::presolve {
namespace {

constexpr int kMostSweeps = 40;  // of the cheap rules in one round
constexpr int kMostRounds = 12;
constexpr double kLittleSweep = 1e-4;  // share of rows and columns below which a sweep brought little
constexpr double kLittleRound = 5e-4;
constexpr std::int64_t kWorkPerEntry = 100;  // entries touched per entry of the original before presolve ends

std::int64_t size_of(const Workspace& ws) {
  return std::int64_t{ws.rows_left()} + ws.columns_left();
}

void try_row(Workspace& ws, int i) {
  if (!ws.row_alive(i) || ws.done()) return;
  if (remove_free_row(ws, i)) return;
  if (ws.row_length(i) == 0) return;
  if (ws.row_length(i) == 1 && remove_singleton_row(ws, i)) return;
  if (remove_forcing_row(ws, i)) return;
}

void try_column(Workspace& ws, int j) {
  if (!ws.column_alive(j) || ws.done()) return;
  if (remove_fixed_column(ws, j)) return;
  if (ws.column_length(j) == 0) {
    remove_empty_column(ws, j);
    return;
  }
  if (fix_by_signs(ws, j) || remove_zero_cost_column(ws, j)) return;
  if (ws.column_length(j) == 1 && remove_slack_column(ws, j)) return;
}

/* Rules for one row or column at a time, on those that changed, until none is queued. */
void sweep(Workspace& ws) {
  for (int count = 0; count < kMostSweeps && ws.queued() && ws.may_continue(); ++count) {
    const std::int64_t before = size_of(ws);
    for (const int i : ws.take_rows()) try_row(ws, i);
    for (const int j : ws.take_columns()) try_column(ws, j);
    if (count > 0 && static_cast<double>(before - size_of(ws)) <= kLittleSweep * static_cast<double>(before))
      break;
  }
}

/* Back-off: an expensive rule that finds nothing skips as many rounds as it has failed in a row. */
class BackOff {
 public:
  template <class F>
  void run(F rule) {
    if (skip_ > 0) {
      --skip_;
      return;
    }
    failures_ = rule() ? 0 : failures_ + 1;
    skip_ = failures_;
  }

 private:
  int failures_ = 0, skip_ = 0;
};

}  // namespace

void run_rounds(Workspace& ws) {
  const int most = ws.settings.passes < 0 ? kMostRounds : ws.settings.passes;
  const auto entries = static_cast<std::int64_t>(ws.original.matrix.index.size());
  const std::int64_t budget = kWorkPerEntry * (entries + size_of(ws));
  BackOff dual_bounds, parallel;
  if (ws.settings.dependency == 1 || ws.settings.dependency == 3) remove_dependent_rows(ws);
  int rounds_left = ws.settings.aggregator < 0 ? most : ws.settings.aggregator;
  for (int round = 0; round < most && !ws.done() && ws.work() <= budget; ++round) {
    const std::int64_t before = size_of(ws);
    ++ws.counts.rounds;
    sweep(ws);
    if (rounds_left > 0) {
      --rounds_left;
      if (aggregate(ws)) sweep(ws);
    }
    // After the substitutions, which make rows and columns alike.
    dual_bounds.run([&] { return use_dual_bounds(ws); });
    parallel.run([&] {
      const bool rows = merge_parallel_rows(ws);
      return merge_parallel_columns(ws) || rows;
    });
    sweep(ws);
    if (static_cast<double>(before - size_of(ws)) <= kLittleRound * static_cast<double>(before)) break;
  }
  if (ws.settings.dependency != 1 && remove_dependent_rows(ws)) sweep(ws);
  sparsify_rows(ws);
}

}  // namespace tovik::lp::presolve
