#include "lp/factor/joint_solver.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tovik::lp::factor {

namespace {

/* The values of one slot. The loops over k are short and of fixed length: they become vector instructions. */
template <int kLanes>
struct alignas(16) Lanes {
  double value[kLanes];

  bool all_zero() const {
    bool zero = true;
    for (int k = 0; k < kLanes; ++k) zero &= value[k] == 0.0;
    return zero;
  }
  void scale_and_drop(double factor) {
    for (int k = 0; k < kLanes; ++k) {
      const double v = value[k] * factor;
      value[k] = std::fabs(v) < kTiny ? 0.0 : v;
    }
  }
  void subtract(double factor, const Lanes& other) {
    for (int k = 0; k < kLanes; ++k) value[k] -= factor * other.value[k];
  }
};

double inverse_pivot(const Line&) {
  return 1.0;
}
double inverse_pivot(const PivotLine& line) {
  return line.inverse;
}

/* Solves with one triangle; returns the entries touched. */
template <int kLanes, bool kUp, class L>
std::int64_t sweep(const L* lines, const File& file, int first, int end, Lanes<kLanes>* const x) {
  const int* const index = file.index.data();
  const double* const entry = file.value.data();
  constexpr int step = kUp ? 1 : -1;
  const int last = kUp ? end : first - 1;
  std::int64_t touched = 0;
  for (int slot = kUp ? first : end - 1; slot != last; slot += step) {
    if (x[slot].all_zero()) continue;
    const L& line = lines[slot];
    Lanes<kLanes> value = x[slot];
    value.scale_and_drop(inverse_pivot(line));
    x[slot] = value;
    const int stop = line.start + line.length;
    for (int k = line.start; k < stop; ++k) x[index[k]].subtract(entry[k], value);
    touched += line.length;
  }
  return touched;
}

template <int kLanes>
void apply_etas(const Lu& lu, Lanes<kLanes>* const x) {
  const Etas& etas = lu.etas;
  for (int update = 0; update < lu.updates; ++update) {
    const Line& line = etas.line[update];
    const int* const index = etas.file.index.data() + line.start;
    const double* const entry = etas.file.value.data() + line.start;
    // Two sums run at once: one would wait for the result of each addition.
    Lanes<kLanes> value = x[etas.retired[update]];
    Lanes<kLanes> other{};
    int k = 0;
    for (; k + 2 <= line.length; k += 2) {
      value.subtract(entry[k], x[index[k]]);
      other.subtract(entry[k + 1], x[index[k + 1]]);
    }
    if (k < line.length) value.subtract(entry[k], x[index[k]]);
    value.subtract(-1.0, other);
    value.scale_and_drop(1.0);
    x[etas.retired[update]] = Lanes<kLanes>{};
    x[lu.rows + update] = value;
  }
}

/* The nonzeros of one lane in slot order. */
void pack(const double* x, int lanes, int slots, SparseVector& v) {
  v.packed_index.resize(static_cast<size_t>(slots) + 1);
  v.packed_value.resize(static_cast<size_t>(slots) + 1);
  int count = 0;
  for (int slot = 0; slot < slots; ++slot) {
    const double value = x[static_cast<size_t>(slot) * lanes];
    v.packed_index[count] = slot;
    v.packed_value[count] = value;
    count += std::fabs(value) >= kTiny;
  }
  v.packed_index.resize(count);
  v.packed_value.resize(count);
  v.want_pack = false;
}

/* Moves v into its lane and clears it; returns the first slot that holds a value. */
int load(SparseVector& v, const std::vector<int>& slot_of, int lanes, double* x) {
  int first = static_cast<int>(slot_of.size());
  const auto take = [&](int i) {
    const double value = v.array[i];
    v.array[i] = 0.0;
    if (std::fabs(value) < kTiny) return;
    x[static_cast<size_t>(slot_of[i]) * lanes] = value;
    first = std::min(first, slot_of[i]);
  };
  if (v.count < 0) {
    for (int i = 0; i < v.dimension(); ++i) take(i);
  } else {
    for (int k = 0; k < v.count; ++k) take(v.index[k]);
  }
  return first;
}

void store(const double* x, const std::vector<int>& slot_of, int lanes, SparseVector& v) {
  int count = 0;
  const int size = v.dimension();
  for (int i = 0; i < size; ++i) {
    const double value = x[static_cast<size_t>(slot_of[i]) * lanes];
    v.array[i] = value;
    v.index[count] = i;
    count += value != 0.0;
  }
  v.count = count;
}

}  // namespace

template <int kLanes>
void JointSolver::solve(std::span<SparseVector* const> vectors, Counts& counts) {
  const size_t wanted = static_cast<size_t>(kLanes) * (lu_.rows + lu_.update_limit);
  if (x_.size() < wanted) x_.assign(wanted, 0.0);
  auto* const x = reinterpret_cast<Lanes<kLanes>*>(x_.data());
  int first = lu_.rows;
  for (size_t k = 0; k < vectors.size(); ++k)
    first = std::min(first, load(*vectors[k], lu_.row_slot, kLanes, x_.data() + k));
  std::int64_t touched =
      sweep<kLanes, true>(lu_.l_column.data(), lu_.l_columns, std::max(first, lu_.first_l), lu_.rows, x);
  apply_etas<kLanes>(lu_, x);
  for (size_t k = 0; k < vectors.size(); ++k) {
    if (vectors[k]->want_pack) pack(x_.data() + k, kLanes, lu_.slots(), *vectors[k]);
  }
  touched += sweep<kLanes, false>(lu_.u_column.data(), lu_.u_columns, 0, lu_.slots(), x);
  for (size_t k = 0; k < vectors.size(); ++k) store(x_.data() + k, lu_.position_slot, kLanes, *vectors[k]);
  std::fill_n(x_.begin(), static_cast<size_t>(kLanes) * lu_.slots(), 0.0);
  const auto lanes = static_cast<std::int64_t>(vectors.size());
  const std::int64_t eta_entries = lu_.etas.file.used + lu_.updates;
  counts.solve_ticks += lanes * (touched + eta_entries + lu_.rows);
  counts.update_solve_ticks += lanes * eta_entries;
  counts.joint_solves += lanes;
}

void JointSolver::ftran(std::span<SparseVector* const> vectors, Counts& counts) {
  if (vectors.size() <= 2) {
    solve<2>(vectors, counts);
  } else {
    solve<4>(vectors, counts);
  }
}

}  // namespace tovik::lp::factor
