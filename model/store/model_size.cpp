/* Adding and deleting rows and columns of a model. */
#include <algorithm>
#include <utility>

#include "model/base/arrays.h"
#include "model/base/entry_packer.h"
#include "model/store/model.h"

namespace tovik::model {

namespace {

/* Entries of vector k in the beginnings-only form. */
template <class Batch>
VectorView entries_of(const Batch& batch, int k, EntryPacker& packer) {
  if (batch.begin == nullptr) return {nullptr, nullptr, 0};
  const int first = batch.begin[k];
  const int end = k + 1 < batch.count ? batch.begin[k + 1] : batch.entries;
  if (end <= first) return {nullptr, nullptr, 0};
  return packer.pack(batch.index + first, batch.value + first, end - first);
}

template <class T>
void drop_marked(std::vector<T>& values, std::span<const int> renumber) noexcept {
  if (values.empty()) return;
  std::size_t kept = 0;
  for (std::size_t k = 0; k < renumber.size(); ++k) {
    if (renumber[k] >= 0) values[kept++] = values[k];
  }
  values.resize(kept);
}

}  // namespace

/* Truncates a half-grown model to its former size, unless the growth was completed. */
class Model::GrowthGuard {
 public:
  explicit GrowthGuard(Model& model)
      : model_(model),
        rows_(model.num_rows()),
        columns_(model.num_columns()),
        column_names_(model.column_names_.size()),
        row_names_(model.row_names_.size()),
        types_(static_cast<int>(model.types_.size())) {}
  GrowthGuard(const GrowthGuard&) = delete;
  GrowthGuard& operator=(const GrowthGuard&) = delete;
  ~GrowthGuard() {
    if (!done_) roll_back();
  }
  /* Tells which columns may hold entries of new rows. */
  void watch(const NewRows& rows) { new_rows_ = &rows; }
  void complete() { done_ = true; }

 private:
  void roll_back() noexcept {
    if (new_rows_ != nullptr && new_rows_->begin != nullptr) {
      for (int p = 0; p < new_rows_->entries; ++p) drop_new_rows(new_rows_->index[p]);
    }
    model_.columns_.truncate(columns_);
    for (auto* values : {&model_.objective_, &model_.lower_, &model_.upper_}) truncate(*values, columns_);
    truncate(model_.types_, types_);
    for (auto* values : {&model_.rhs_, &model_.range_}) truncate(*values, rows_);
    truncate(model_.sense_, rows_);
    model_.column_names_.truncate(column_names_);
    model_.row_names_.truncate(row_names_);
  }
  void drop_new_rows(int j) noexcept {
    while (j < model_.columns_.size()) {
      const VectorView v = model_.columns_.at(j);
      if (v.count == 0 || v.index[v.count - 1] < rows_) return;
      model_.columns_.pop(j);
    }
  }
  template <class T>
  static void truncate(std::vector<T>& values, int size) noexcept {
    if (values.size() > at(size)) values.resize(at(size));
  }

  Model& model_;
  int rows_, columns_, column_names_, row_names_, types_;
  const NewRows* new_rows_ = nullptr;
  bool done_ = false;
};

void Model::append_column_data(const NewColumns& columns) {
  const int present = num_columns();
  column_names_.append(present, columns.count, columns.names);
  append_values(objective_, columns.objective, columns.count, 0.0);
  append_values(lower_, columns.lower, columns.count, 0.0);
  append_values(upper_, columns.upper, columns.count, kInfinity);
  for (std::size_t j = at(present); j < lower_.size(); ++j) {
    if (lower_[j] >= kInfinity) lower_[j] = kInfinity;
    if (lower_[j] <= -kInfinity) lower_[j] = -kInfinity;
    if (upper_[j] >= kInfinity) upper_[j] = kInfinity;
    if (upper_[j] <= -kInfinity) upper_[j] = -kInfinity;
  }
  if (columns.types != nullptr || !types_.empty()) {
    types_.resize(at(present), 'C');
    append_values(types_, columns.types, columns.count, 'C');
  }
}

void Model::append_row_data(const NewRows& rows) {
  const int present = num_rows();
  row_names_.append(present, rows.count, rows.names);
  append_values(sense_, rows.sense, rows.count, 'E');
  append_values(range_, rows.range, rows.count, 0.0);
  for (std::size_t i = at(present); i < sense_.size(); ++i) {
    if (sense_[i] != 'R') range_[i] = 0;
  }
  append_values(rhs_, rows.rhs, rows.count, 0.0);  // last: its size is the number of rows
}

void Model::add_columns(const NewColumns& columns) {
  compacted();
  GrowthGuard guard(*this);
  const int present = num_columns();
  append_column_data(columns);
  EntryPacker packer;
  if (columns.begin == nullptr) {
    columns_.append_empty(columns.count);
  } else {
    for (int k = 0; k < columns.count; ++k) columns_.append(entries_of(columns, k, packer));
  }
  guard.complete();
  if (!rows_ || columns.begin == nullptr) return;
  try {
    for (int j = present; j < columns_.size(); ++j) {
      const ColumnView v = columns_.at(j);
      for (int p = 0; p < v.count; ++p) rows_->push(v.index[p], j, v.value[p]);
    }
  } catch (...) {
    rows_.reset();
  }
}

void Model::add_rows(const NewColumns& columns, const NewRows& rows) {
  compacted();
  GrowthGuard guard(*this);
  if (columns.count > 0) {
    append_column_data(columns);
    columns_.append_empty(columns.count);
  }
  const int present = num_rows();
  append_row_data(rows);
  guard.watch(rows);
  EntryPacker packer;
  for (int k = 0; k < rows.count; ++k) {
    const VectorView v = entries_of(rows, k, packer);
    for (int p = 0; p < v.count; ++p) columns_.push(v.index[p], present + k, v.value[p]);
  }
  guard.complete();
  if (!rows_) return;
  try {
    if (rows.begin == nullptr) {
      rows_->append_empty(rows.count);
    } else {
      for (int k = 0; k < rows.count; ++k) rows_->append(entries_of(rows, k, packer));
    }
  } catch (...) {
    rows_.reset();
  }
}

void Model::delete_rows(int first, int last) {
  if (last == num_rows() - 1 && can_truncate_rows(last)) {
    truncate_rows(first);
    return;
  }
  row_deletions_.begin(static_cast<int>(rhs_.size()));
  row_deletions_.mark(first, last);
}

/* The last rows can be cut off at once where the row-wise copy names their entries. A first deletion of last
 * rows is not worth building that copy; programs that do it again add and delete rows in turn, and then it
 * is. */
bool Model::can_truncate_rows(int last) {
  if (row_deletions_.pending() || column_deletions_.pending() || last < 0) return false;
  if (!rows_ && last_rows_were_deleted_) {
    try {
      build_rows();
    } catch (...) {
      return false;
    }
  }
  last_rows_were_deleted_ = true;
  return rows_ != nullptr;
}

void Model::truncate_rows(int first) noexcept {
  for (int i = first; i < rows_->size(); ++i) {
    const RowView v = rows_->at(i);
    for (int p = 0; p < v.count; ++p) columns_.remove(v.index[p], columns_.find(v.index[p], i));
  }
  rows_->truncate(first);
  rhs_.resize(at(first));
  range_.resize(at(first));
  sense_.resize(at(first));
  if (!row_names_.empty()) row_names_.truncate(first);
}

void Model::delete_columns(int first, int last) {
  const bool pending = row_deletions_.pending() || column_deletions_.pending();
  if (last == num_columns() - 1 && !pending && families_.empty()) {
    truncate_columns(first);
    return;
  }
  column_deletions_.begin(static_cast<int>(objective_.size()));
  column_deletions_.mark(first, last);
}

void Model::truncate_columns(int first) noexcept {
  for (int j = first; rows_ && j < columns_.size(); ++j) {
    const ColumnView v = columns_.at(j);
    for (int p = 0; p < v.count; ++p) rows_->remove(v.index[p], rows_->find(v.index[p], j));
  }
  columns_.truncate(first);
  for (auto* values : {&objective_, &lower_, &upper_}) values->resize(at(first));
  if (!types_.empty()) types_.resize(at(first));
  if (!column_names_.empty()) column_names_.truncate(first);
}

void Model::delete_marked_rows(std::span<const int> marks) {
  compacted();
  if (std::find(marks.begin(), marks.end(), 1) == marks.end()) return;
  row_deletions_.begin(static_cast<int>(marks.size()));
  for (std::size_t k = 0; k < marks.size(); ++k) {
    if (marks[k] == 1) row_deletions_.mark_stored(static_cast<int>(k));
  }
}

void Model::delete_marked_columns(std::span<const int> marks) {
  compacted();
  if (std::find(marks.begin(), marks.end(), 1) == marks.end()) return;
  column_deletions_.begin(static_cast<int>(marks.size()));
  for (std::size_t k = 0; k < marks.size(); ++k) {
    if (marks[k] == 1) column_deletions_.mark_stored(static_cast<int>(k));
  }
}

/* Takes the marked columns and rows out of all arrays. */
void Model::compact() noexcept {
  if (column_deletions_.pending()) {
    rows_.reset();
    const auto renumber = column_deletions_.renumbering();
    columns_.keep_vectors(renumber);
    for (auto* values : {&objective_, &lower_, &upper_}) drop_marked(*values, renumber);
    drop_marked(types_, renumber);
    column_names_.renumber(renumber);
    families_.renumber_columns(renumber);
    column_deletions_.clear();
  }
  if (row_deletions_.pending()) {
    const auto renumber = row_deletions_.renumbering();
    columns_.renumber_indices(renumber);
    if (rows_) rows_->keep_vectors(renumber);
    for (auto* values : {&rhs_, &range_}) drop_marked(*values, renumber);
    drop_marked(sense_, renumber);
    row_names_.renumber(renumber);
    row_deletions_.clear();
  }
}

}  // namespace tovik::model
