#include "lp/factor/update.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::factor {

namespace {

constexpr double kDiagonalGap = 1e-6;  // the two values of the new diagonal may differ by this share

/* The record of the update at hand, or none. */
UpdateRecord* start_record(int r, int p, Lu& lu) {
  if (!lu.recording) return nullptr;
  if (lu.recorded == static_cast<int>(lu.records.size())) lu.records.emplace_back();
  UpdateRecord& record = lu.records[lu.recorded++];
  record.position = r;
  record.retired = p;
  record.u_column = lu.u_column[p];
  record.u_row = lu.u_row[p];
  record.u_row_capacity = lu.u_row_capacity[p];
  record.u_columns_used = lu.u_columns.used;
  record.u_rows_used = lu.u_rows.used;
  record.etas_used = lu.etas.file.used;
  record.rows.clear();
  record.links.clear();
  return &record;
}

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
void add_eta(const SparseVector& row, int p, double diagonal, Lu& lu, UpdateRecord* record) {
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
    if (record != nullptr) record->links.push_back({slot, lu.links[slot].eta});
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

  UpdateRecord* const record = start_record(r, p, lu);
  add_eta(row, p, diagonal, lu, record);
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
    if (record != nullptr) record->rows.push_back({i, lu.u_row[i], lu.u_row_capacity[i]});
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

void Lu::copy(const Lu& other) {
  rows = other.rows;
  updates = other.updates;
  update_limit = other.update_limit;
  logicals = other.logicals;
  first_l = other.first_l;
  label = other.label;
  row_slot = other.row_slot;
  position_slot = other.position_slot;
  l_column = other.l_column;
  l_row = other.l_row;
  l_columns.copy(other.l_columns);
  l_rows.copy(other.l_rows);
  u_column = other.u_column;
  u_row = other.u_row;
  u_row_capacity = other.u_row_capacity;
  u_columns.copy(other.u_columns);
  u_rows.copy(other.u_rows);
  etas.line = other.etas.line;
  etas.retired = other.etas.retired;
  etas.file.copy(other.etas.file);
  const auto eta_entries = static_cast<std::size_t>(other.etas.file.used);
  if (etas.next.size() < etas.file.index.size()) {
    etas.next.resize(etas.file.index.size());
    etas.update.resize(etas.file.index.size());
  }
  std::copy_n(other.etas.next.begin(), eta_entries, etas.next.begin());
  std::copy_n(other.etas.update.begin(), eta_entries, etas.update.begin());
  links = other.links;
  recording = false;
  recorded = 0;
}

void undo_update(Lu& lu) {
  const UpdateRecord& record = lu.records[--lu.recorded];
  --lu.updates;
  for (auto row = record.rows.rbegin(); row != record.rows.rend(); ++row) {
    lu.u_row[row->slot] = row->line;
    lu.u_row_capacity[row->slot] = row->capacity;
  }
  for (auto link = record.links.rbegin(); link != record.links.rend(); ++link)
    lu.links[link->slot].eta = link->eta;
  const int p = record.retired;
  lu.links[p].successor = -1;
  lu.u_column[p] = record.u_column;
  lu.u_row[p] = record.u_row;
  lu.u_row_capacity[p] = record.u_row_capacity;
  lu.position_slot[record.position] = p;
  lu.u_columns.used = record.u_columns_used;
  lu.u_rows.used = record.u_rows_used;
  lu.etas.file.used = record.etas_used;
}

}  // namespace tovik::lp::factor
