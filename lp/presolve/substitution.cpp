/* Workspace::substitute: the elimination of a column through an equation, in both orientations of the matrix.
 *
 * Each orientation is updated by itself: one pass over each of its vectors that change, with the added vector
 * marked, and no search across orientations. The change of an entry is computed from the same three numbers
 * in both, so that they stay equal bit for bit. The orientation whose vectors are shorter goes first and
 * counts for the other which of its vectors have entries in common with what is added; the rest only grow at
 * the end.
 */
#include <cmath>

#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kCancelled = 1e-12;  // relative to the larger operand: noise of a cancellation

bool cancels(double sum, double a, double b) {
  return std::fabs(sum) <= kCancelled * std::max(std::fabs(a), std::fabs(b));
}

/* Entries of a vector without one of them. */
struct Part {
  std::vector<int> index;
  std::vector<double> value;
  double left_out = 0;
  Part(const View& v, int without) {
    index.reserve(static_cast<size_t>(v.length));
    value.reserve(static_cast<size_t>(v.length));
    for (int k = 0; k < v.length; ++k) {
      if (v.index[k] == without) {
        left_out = v.value[k];
      } else {
        index.push_back(v.index[k]);
        value.push_back(v.value[k]);
      }
    }
  }
};

/* Vector targets.index[t] -= targets.value[t] * added / pivot, for each t. */
struct Elimination {
  CompressedVectors& vectors;
  const Part& targets;
  const Part& added;
  double pivot;
  std::vector<int>& mark;   // by index of an entry; zero, and left so
  std::vector<int>& met;    // in: entries that target t has in common, or empty when not known
  std::vector<int>& meets;  // out: targets that have entry k of `added`
  std::int64_t touched = 0;

  double change(size_t t, size_t k) const { return -(targets.value[t] * added.value[k]) / pivot; }

  void combine(size_t t, std::vector<char>& seen) {
    const int major = targets.index[t];
    View v = vectors.view(major);
    touched += v.length;
    for (int at = 0; at < v.length;) {
      const int k = mark[v.index[at]] - 1;
      if (k < 0) {
        ++at;
        continue;
      }
      seen[k] = 1;
      ++meets[k];
      const double old = v.value[at], delta = change(t, static_cast<size_t>(k));
      const double sum = old + delta;
      if (cancels(sum, old, delta)) {
        vectors.remove(major, at);
        v = vectors.view(major);
      } else {
        vectors.set_value(major, at, sum);
        ++at;
      }
    }
  }

  void run() {
    const size_t count = added.index.size();
    std::vector<char> seen(count);
    meets.assign(count, 0);
    for (size_t k = 0; k < count; ++k) mark[added.index[k]] = static_cast<int>(k) + 1;
    for (size_t t = 0; t < targets.index.size(); ++t) {
      seen.assign(count, 0);
      if (met.empty() || met[t] > 0) combine(t, seen);
      touched += static_cast<std::int64_t>(count);
      for (size_t k = 0; k < count; ++k) {
        if (!seen[k]) vectors.append(targets.index[t], added.index[k], change(t, k));
      }
    }
    for (const int k : added.index) mark[k] = 0;
  }
};

}  // namespace

void Workspace::substitute(int i, int s) {
  const Part in_row(row(i), s), in_column(column(s), i);
  const double pivot = in_row.left_out, beta = row_lower[i];
  remove_row(i, RemovalReason::aggregated);
  remove_column(s, RemovalReason::aggregated);
  ++counts.substitutions;
  if (const double c = cost[s]; c != 0) {
    for (size_t k = 0; k < in_row.index.size(); ++k) {
      move_cost(in_row.index[k], -(c * in_row.value[k]) / pivot);
    }
    add_offset(c * beta / pivot);
  }
  if (in_column.index.empty()) return;
  for (const int j : in_row.index) column_dirty_[j] = 1;
  for (size_t k = 0; k < in_column.index.size(); ++k)
    shift_sides(in_column.index[k], -(in_column.value[k] * beta) / pivot);
  std::int64_t row_work = 0, column_work = 0;
  for (const int r : in_column.index) row_work += row_length(r);
  for (const int j : in_row.index) column_work += column_length(j);
  std::vector<int> unknown, row_meets, column_meets;
  const bool rows_first = row_work <= column_work;
  Elimination by_row{rows_, in_column, in_row, pivot, mark_, rows_first ? unknown : column_meets, row_meets};
  Elimination by_column{columns_,    in_row, in_column, pivot, row_mark_, rows_first ? row_meets : unknown,
                        column_meets};
  if (rows_first) by_row.run();
  by_column.run();
  if (!rows_first) by_row.run();
  add_work(by_row.touched + by_column.touched);
}

}  // namespace tovik::lp::presolve
