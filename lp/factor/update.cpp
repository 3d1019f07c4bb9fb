#include "lp/factor/update.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::factor {

namespace {

constexpr double kDiagonalGap = 1e-6;  // the two values of the new diagonal may differ by this share

/* Adds the entry (row, slot) to the row-wise copy of U; a row without room moves to the end of the file. */
void extend_row(int row, int slot, double value, Lu& lu) {
  PivotLine& line = lu.u_row[row];
  File& file = lu.u_rows;
  if (line.length == lu.u_row_capacity[row]) {
    const int capacity = line.length + line.length / 2 + 4;
    file.reserve(file.used + capacity);
    std::copy_n(file.index.begin() + line.start, line.length, file.index.begin() + file.used);
    std::copy_n(file.value.begin() + line.start, line.length, file.value.begin() + file.used);
    line.start = file.used;
    lu.u_row_capacity[row] = capacity;
    file.used += capacity;
  }
  file.index[line.start + line.length] = slot;
  file.value[line.start + line.length++] = value;
}

/* The row eta of this update: y solves U'y = e_p, so that eta = -u_pp y off the diagonal. */
void add_eta(const SparseVector& row, int p, double diagonal, Lu& lu) {
  Etas& etas = lu.etas;
  const int update = lu.updates;
  const int start = etas.file.used;
  const int length = static_cast<int>(row.packed_index.size());
  etas.file.reserve(start + length);
  if (etas.next.size() < etas.file.index.size()) {
    etas.next.resize(etas.file.index.size());
    etas.update.resize(etas.file.index.size());
  }
  for (int k = 0; k < length; ++k) {
    const int slot = row.packed_index[k];
    const double value = -diagonal * row.packed_value[k];
    if (slot == p || std::fabs(value) < kTiny) continue;
    const int entry = etas.file.used;
    etas.next[entry] = lu.links[slot].eta;
    etas.update[entry] = update;
    lu.links[slot].eta = entry;
    etas.file.append(slot, value);
  }
  etas.line[update] = {start, etas.file.used - start};
  etas.retired[update] = p;
}

}  // namespace

bool replace_column(const SparseVector& column, const SparseVector& row, int r, std::vector<double>& x,
                    Lu& lu) {
  const int p = lu.position_slot[r];
  const int slot = lu.slots();
  const double diagonal = 1.0 / lu.u_column[p].inverse;

  const int spike = static_cast<int>(column.packed_index.size());
  for (int k = 0; k < spike; ++k) x[column.packed_index[k]] = column.packed_value[k];
  double product = 0.0;
  for (std::size_t k = 0; k < row.packed_index.size(); ++k)
    product += row.packed_value[k] * x[row.packed_index[k]];
  for (int k = 0; k < spike; ++k) x[column.packed_index[k]] = 0.0;

  const double expected = column.array[r];
  if (!(std::fabs(product - expected) <= kDiagonalGap * std::min(std::fabs(product), std::fabs(expected))))
    return false;
  const double new_diagonal = diagonal * product;
  if (new_diagonal == 0.0) return false;

  add_eta(row, p, diagonal, lu);
  lu.links[p].successor = slot;
  lu.u_column[p] = {0, 0, 0.0};
  lu.u_row[p] = {0, 0, 0.0};
  lu.u_row_capacity[p] = 0;

  File& file = lu.u_columns;
  const int start = file.used;
  file.reserve(start + spike);
  for (int k = 0; k < spike; ++k) {
    const int i = column.packed_index[k];
    if (i == p) continue;
    file.append(i, column.packed_value[k]);
    extend_row(i, slot, column.packed_value[k], lu);
  }
  lu.u_column[slot] = {start, file.used - start, 1.0 / new_diagonal};
  lu.u_row[slot] = {0, 0, 1.0 / new_diagonal};
  lu.u_row_capacity[slot] = 0;
  lu.label[slot] = r;
  lu.position_slot[r] = slot;
  ++lu.updates;
  return true;
}

}  // namespace tovik::lp::factor
