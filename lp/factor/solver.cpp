#include "lp/factor/solver.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::factor {

namespace {

constexpr double kPlainStart =
    0.10;  // share of nonzeros in the right-hand side from which a sweep starts plain
constexpr double kPlainExpected = 0.12;  // expected share of the result from which it does
constexpr double kFirstSweep = 0.3;      // the first of two triangles gives about so much of the nonzeros
constexpr double kPlainSwitch = 0.10;    // share of visited slots at which a sparse sweep turns plain
constexpr double kGatherResult =
    0.30;  // share of nonzeros from which the result is gathered in order of its index
constexpr int kEtaColumnCost = 4;  // chained entries of the etas cost so many times those in rows

/* The two kinds of lines under one face: L has unit pivots. */
struct LowerLines {
  const Line* line;
  const int* index;
  const double* value;
  static double scaled(const Line&, double x) { return x; }
};

struct UpperLines {
  const PivotLine* line;
  const int* index;
  const double* value;
  static double scaled(const PivotLine& pivot, double x) { return x * pivot.inverse; }
};

/* Four sums run at once: one would wait for the result of each addition. */
double dot(const int* index, const double* value, int length, const double* x) {
  double sum0 = 0.0, sum1 = 0.0, sum2 = 0.0, sum3 = 0.0;
  int k = 0;
  for (; k + 4 <= length; k += 4) {
    sum0 += value[k] * x[index[k]];
    sum1 += value[k + 1] * x[index[k + 1]];
    sum2 += value[k + 2] * x[index[k + 2]];
    sum3 += value[k + 3] * x[index[k + 3]];
  }
  for (; k < length; ++k) sum0 += value[k] * x[index[k]];
  return (sum0 + sum1) + (sum2 + sum3);
}

/* One pass through a triangle. The list is of slots with a value: those outside first, then those visited. */
template <bool kUp, class Lines>
struct Sweep {
  static constexpr int kStep = kUp ? 1 : -1;

  const Lines& lines;
  double* x;
  int* list;
  std::int64_t touched = 0;
  int found = 0;
  int visited = 0;

  /* Slots that the triangle does not have stay listed; the others are to be visited. */
  void pass_outside(Workspace& work, int first, int end, bool plain) {
    for (int k = 0; k < work.count; ++k) {
      const int slot = list[k];
      if (slot < first || slot >= end) {
        list[found++] = slot;
      } else if (!plain) {
        work.pending.insert(slot);
      }
    }
  }

  /* The slot's value is final, and its line carries it to others, each of which `reach` is told. False when there
   * was none to speak of. */
  template <class Reach>
  bool eliminate(int slot, Reach reach) {
    const auto& line = lines.line[slot];
    const double value = Lines::scaled(line, x[slot]);
    if (std::fabs(value) < kTiny) {
      x[slot] = 0.0;
      return false;
    }
    x[slot] = value;
    list[found++] = slot;
    const int stop = line.start + line.length;
    for (int k = line.start; k < stop; ++k) {
      const int target = lines.index[k];
      x[target] -= lines.value[k] * value;
      reach(target);
    }
    touched += line.length;
    return true;
  }

  /* Sparse, until none is pending. True when there were more than pay: `slot` is then where to go on plain. */
  bool visit_pending(SlotSet& pending, int limit, int& slot) {
    for (;; slot += kStep) {
      slot = kUp ? pending.take_first(slot) : pending.take_last(slot);
      if (slot < 0) return false;
      ++visited;
      if (!eliminate(slot, [&](int target) { pending.insert(target); }) || visited <= limit) continue;
      pending.clear();
      slot += kStep;
      return true;
    }
  }

  /* Plain. */
  void visit_all(int slot, int last) {
    visited += std::abs(last - slot) / 4;
    for (; slot != last; slot += kStep) {
      if (x[slot] != 0.0) eliminate(slot, [](int) {});
    }
  }
};

}  // namespace

void Solver::resize() {
  const int slots = lu_.rows + lu_.update_limit;
  if (static_cast<int>(work_.x.size()) != slots) work_.resize(slots);
}

bool Solver::start_plain(double expected_density) const {
  if (forced_ != SolveMode::automatic) return forced_ == SolveMode::plain;
  return work_.count > kPlainStart * lu_.rows || expected_density > kPlainExpected;
}

/* Solves with the triangle whose lines first..end-1 are given, ascending or descending. Slots outside pass
 * through. */
template <bool kUp, class Lines>
void Solver::sweep(const Lines& lines, int first, int end, bool plain) {
  Sweep<kUp, Lines> sweep{lines, work_.x.data(), work_.list.data()};
  sweep.pass_outside(work_, first, end, plain);
  const bool started_plain = plain;
  int slot = kUp ? first : end - 1;
  if (!plain) {
    const double share = forced_ == SolveMode::sparse ? 1.0 : kPlainSwitch;
    plain = sweep.visit_pending(work_.pending, static_cast<int>(share * lu_.rows) + 1, slot);
  }
  if (plain) sweep.visit_all(slot, kUp ? end : first - 1);
  work_.count = sweep.found;
  counts_.solve_ticks += sweep.touched + 2 * sweep.visited;
  ++(started_plain ? counts_.plain_sweeps : plain ? counts_.switched_sweeps : counts_.sparse_sweeps);
}

void Solver::load(SparseVector& v, const std::vector<int>& slot_of) {
  int count = 0;
  const auto take = [&](int i) {
    const double value = v.array[i];
    v.array[i] = 0.0;
    if (std::fabs(value) < kTiny) return;
    const int slot = slot_of[i];
    work_.x[slot] = value;
    work_.list[count++] = slot;
  };
  if (v.count < 0) {
    for (int i = 0; i < lu_.rows; ++i) take(i);
    counts_.solve_ticks += lu_.rows / 2;
  } else {
    for (int k = 0; k < v.count; ++k) take(v.index[k]);
    counts_.solve_ticks += v.count;
  }
  work_.count = count;
}

void Solver::store(SparseVector& v, const std::vector<int>& slot_of) {
  double* x = work_.x.data();
  int count = 0;
  if (work_.count > kGatherResult * lu_.rows) {
    for (int i = 0; i < lu_.rows; ++i) {
      const double value = x[slot_of[i]];
      v.array[i] = value;
      v.index[count] = i;
      count += value != 0.0;
    }
    for (int k = 0; k < work_.count; ++k) x[work_.list[k]] = 0.0;
  } else {
    for (int k = 0; k < work_.count; ++k) {
      const int slot = work_.list[k];
      const int i = lu_.label[slot];
      v.array[i] = x[slot];
      x[slot] = 0.0;
      v.index[count++] = i;
    }
  }
  v.count = count;
  counts_.solve_ticks += work_.count;
  work_.count = 0;
}

void Solver::pack(SparseVector& v) {
  v.packed_index.resize(work_.count);
  v.packed_value.resize(work_.count);
  int count = 0;
  for (int k = 0; k < work_.count; ++k) {
    const int slot = work_.list[k];
    const double value = work_.x[slot];
    if (std::fabs(value) < kTiny) continue;
    v.packed_index[count] = slot;
    v.packed_value[count++] = value;
  }
  v.packed_index.resize(count);
  v.packed_value.resize(count);
  v.want_pack = false;
}

void Solver::ftran_etas_by_rows() {
  const Etas& etas = lu_.etas;
  double* x = work_.x.data();
  for (int update = 0; update < lu_.updates; ++update) {
    const Line& line = etas.line[update];
    double value = x[etas.retired[update]];
    x[etas.retired[update]] = 0.0;
    value -= dot(etas.file.index.data() + line.start, etas.file.value.data() + line.start, line.length, x);
    if (std::fabs(value) < kTiny) continue;
    x[lu_.rows + update] = value;
    work_.list[work_.count++] = lu_.rows + update;
  }
  counts_.solve_ticks += etas.file.used + lu_.updates;
  counts_.update_solve_ticks += etas.file.used + lu_.updates;
}

/* Passes each nonzero on through the chain of its entries; slots of updates are visited in order. */
void Solver::ftran_etas_by_columns() {
  const Etas& etas = lu_.etas;
  double* x = work_.x.data();
  std::int64_t touched = work_.count;
  const auto pass_on = [&](int slot) {
    const SlotLinks& links = lu_.links[slot];
    const double value = x[slot];
    for (int k = links.eta; k >= 0; k = etas.next[k]) {
      const int target = lu_.rows + etas.update[k];
      x[target] -= etas.file.value[k] * value;
      work_.pending.insert(target);
      touched += kEtaColumnCost;
    }
    if (links.successor < 0) return true;
    x[links.successor] += value;
    x[slot] = 0.0;
    work_.pending.insert(links.successor);
    return false;
  };
  int kept = 0;
  for (int k = 0; k < work_.count; ++k) {
    const int slot = work_.list[k];
    if (pass_on(slot)) work_.list[kept++] = slot;
  }
  for (int slot = lu_.rows; (slot = work_.pending.take_first(slot)) >= 0;) {
    if (std::fabs(x[slot]) < kTiny) {
      x[slot] = 0.0;
    } else if (pass_on(slot)) {
      work_.list[kept++] = slot;
    }
  }
  work_.count = kept;
  counts_.solve_ticks += touched;
  counts_.update_solve_ticks += touched;
}

void Solver::ftran_etas() {
  if (lu_.updates == 0) return;
  if (kEtaColumnCost * work_.count < lu_.etas.file.used + lu_.updates) {
    ftran_etas_by_columns();
  } else {
    ftran_etas_by_rows();
  }
}

void Solver::btran_etas() {
  if (lu_.updates == 0) return;
  const Etas& etas = lu_.etas;
  double* x = work_.x.data();
  std::int64_t touched = lu_.updates / 4;
  for (int update = lu_.updates - 1; update >= 0; --update) {
    const double value = x[lu_.rows + update];
    if (value == 0.0) continue;
    x[lu_.rows + update] = 0.0;
    const int retired = etas.retired[update];
    x[retired] = value;
    work_.list[work_.count++] = retired;
    const Line& line = etas.line[update];
    for (int k = line.start; k < line.start + line.length; ++k) {
      const int target = etas.file.index[k];
      const double old = x[target];
      if (old == 0.0) work_.list[work_.count++] = target;
      const double sum = old - etas.file.value[k] * value;
      x[target] = std::fabs(sum) < kTiny ? kZero : sum;
    }
    touched += line.length;
  }
  int kept = 0;
  for (int k = 0; k < work_.count; ++k) {
    if (work_.list[k] < lu_.rows) work_.list[kept++] = work_.list[k];
  }
  work_.count = kept;
  counts_.solve_ticks += touched;
  counts_.update_solve_ticks += touched;
}

void Solver::ftran(SparseVector& v, double expected_density) {
  load(v, lu_.row_slot);
  const LowerLines lower{lu_.l_column.data(), lu_.l_columns.index.data(), lu_.l_columns.value.data()};
  sweep<true>(lower, lu_.first_l, lu_.rows, start_plain(kFirstSweep * expected_density));
  ftran_etas();
  if (v.want_pack) pack(v);
  const UpperLines upper{lu_.u_column.data(), lu_.u_columns.index.data(), lu_.u_columns.value.data()};
  sweep<false>(upper, 0, lu_.slots(), start_plain(expected_density));
  store(v, lu_.position_slot);
}

void Solver::btran(SparseVector& v, double expected_density) {
  load(v, lu_.position_slot);
  const UpperLines upper{lu_.u_row.data(), lu_.u_rows.index.data(), lu_.u_rows.value.data()};
  sweep<true>(upper, 0, lu_.slots(), start_plain(kFirstSweep * expected_density));
  if (v.want_pack) pack(v);
  btran_etas();
  const LowerLines lower{lu_.l_row.data(), lu_.l_rows.index.data(), lu_.l_rows.value.data()};
  sweep<false>(lower, lu_.first_l, lu_.rows, start_plain(expected_density));
  store(v, lu_.row_slot);
}

}  // namespace tovik::lp::factor
