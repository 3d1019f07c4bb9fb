#include "lp/presolve/aggregator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "lp/presolve/doubleton_equation.h"
#include "lp/presolve/free_column.h"

namespace tovik::lp::presolve {
namespace {

constexpr int kMostKey = 400;               // (row length - 1) * (column length - 1) of a candidate
constexpr std::int64_t kWorkPerEntry = 20;  // of one round
constexpr int kPollEvery = 256;             // candidates between looks at the stop signals
constexpr double kPivot = 0.01;

struct Candidate {
  int key;  // product of the lengths without the pivot: bound of the new entries
  int row, column;
};

class Aggregator {
 public:
  explicit Aggregator(Workspace& ws)
      : ws_(ws),
        mark_(static_cast<size_t>(ws.num_rows()), 0),
        most_work_(ws.work() + kWorkPerEntry * static_cast<std::int64_t>(ws.original.matrix.index.size())) {}

  void run() {
    doubletons();
    if (!ws_.enabled(Rule::free_column)) return;
    for (int s = 0; s < ws_.num_columns(); ++s) {
      const Candidate c = candidate(s);
      if (c.row >= 0 && implied_free(ws_, s)) waiting_[c.key].push_back(s);
    }
    for (int key = 0; key <= kMostKey; ++key) {
      // This list does not grow meanwhile: a column that is put back goes to a larger key.
      for (const int s : waiting_[key]) {
        if (!within_limits()) return;
        try_column(s, key);
      }
    }
  }

 private:
  bool within_limits() {
    if (++looked_ % kPollEvery == 0 && !ws_.may_continue(true)) return false;
    return !ws_.done() && ws_.work() <= most_work_;
  }

  bool is_doubleton(int i) const { return ws_.row_alive(i) && ws_.row_length(i) == 2 && ws_.equation(i); }

  /* A substitution shortens other rows by one when they hold both columns: they may be next. */
  void doubletons() {
    if (!ws_.enabled(Rule::doubleton_equation)) return;
    std::vector<int> list;
    for (int i = 0; i < ws_.num_rows(); ++i) {
      if (is_doubleton(i)) list.push_back(i);
    }
    while (!list.empty() && within_limits()) {
      const int i = list.back();
      list.pop_back();
      if (!is_doubleton(i)) continue;
      const View row = ws_.row(i);
      const int one = row.index[0], two = row.index[1];
      if (!substitute_doubleton(ws_, i)) continue;
      const View column = ws_.column(ws_.column_alive(one) ? one : two);
      for (int k = 0; k < column.length; ++k) {
        if (is_doubleton(column.index[k])) list.push_back(column.index[k]);
      }
    }
  }

  /* The shortest equation in which column s is a good pivot; row -1 when there is none worth a try. */
  Candidate candidate(int s) {
    Candidate best{kMostKey + 1, -1, s};
    if (!ws_.column_alive(s) || ws_.is_protected(s)) return best;
    const int length = ws_.column_length(s);
    if (length == 0 || length - 1 > kMostKey) return best;
    const View v = ws_.column(s);
    ws_.add_work(v.length);
    double largest = 0;
    for (int k = 0; k < length; ++k) largest = std::max(largest, std::fabs(v.value[k]));
    for (int k = 0; k < length; ++k) {
      const int i = v.index[k];
      if (!ws_.equation(i)) continue;
      const std::int64_t key = std::int64_t{ws_.row_length(i) - 1} * (length - 1);
      if (key >= best.key) continue;
      const double a = std::fabs(v.value[k]);
      if (a < kPivot * largest && a < kPivot * ws_.activity(i).largest) continue;
      best.key = static_cast<int>(key);
      best.row = i;
    }
    return best;
  }

  void try_column(int s, int key) {
    const Candidate c = candidate(s);
    if (c.row < 0) return;
    if (c.key > key) {  // its row or column has grown since
      waiting_[c.key].push_back(s);
      return;
    }
    if (!implied_free(ws_, s) || !sound_pivot(ws_, c.row, s, ws_.entry(c.row, s))) return;
    if (little_fill(c)) substitute_free_column(ws_, c.row, s);
  }

  /* Counts the new entries that meet old ones, only when it matters. */
  bool little_fill(const Candidate& c) {
    const View row = ws_.row(c.row), column = ws_.column(c.column);
    std::int64_t excess = c.key - (row.length + column.length - 1) - ws_.settings.fill;
    if (excess <= 0) return true;
    for (int k = 0; k < column.length; ++k) mark_[column.index[k]] = 1;
    mark_[c.row] = 0;
    for (int k = 0; k < row.length && excess > 0; ++k) {
      if (row.index[k] == c.column) continue;
      const View other = ws_.column(row.index[k]);
      ws_.add_work(other.length);
      for (int q = 0; q < other.length; ++q) excess -= mark_[other.index[q]];
    }
    for (int k = 0; k < column.length; ++k) mark_[column.index[k]] = 0;
    return excess <= 0;
  }

  Workspace& ws_;
  std::vector<int> mark_;  // rows
  std::int64_t most_work_;
  std::array<std::vector<int>, kMostKey + 1> waiting_;  // columns by key
  int looked_ = 0;
};

}  // namespace

bool aggregate(Workspace& ws) {
  const int before = ws.counts.substitutions;
  ++ws.counts.aggregator_rounds;
  if (ws.may_continue(true)) Aggregator(ws).run();
  return ws.counts.substitutions > before;
}

}  // namespace tovik::lp::presolve
