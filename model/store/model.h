/* One model: objective, rows, columns, the sparse matrix, bounds, ranges, names, column types, and the
 * families of further mixed-integer and quadratic data.
 *
 * - Values: in the caller's units. Infinite bounds are stored as +-1e20. A range r of an 'R' row means rhs <=
 *   ax <= rhs + r for r >= 0 and rhs + r <= ax <= rhs for r < 0. The matrix holds no zeros and no row twice
 *   in a column.
 * - Matrix: kept column-wise in a VectorFile. A row-wise copy is built when rows are first read and then kept
 *   up to date; it is dropped where that would cost more than building it again, or when memory for it is
 *   short.
 * - Deletion: only marks; the arrays are compacted by the next other access (see deletions.h).
 * - Reading: const, but may build the row copy, a name index or compact: one thread at a time.
 * - Errors: bad_alloc; the model is then as before the call. Arguments are the caller's business: indices in
 *   range, sizes as stated. Functions marked noexcept cannot fail. */
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "model/base/deletions.h"
#include "model/base/names.h"
#include "model/base/vector_file.h"
#include "model/families/families.h"

namespace tovik::model {

struct ModelData;

using ColumnView = VectorView;  // index: rows, in no particular order
using RowView = VectorView;     // index: columns, ascending

inline constexpr double kInfinity = 1e20;

/* Columns to add. Null arrays mean: objective 0, lower 0, upper 1e20, type 'C', names generated (or none when
 * the model's columns have none). begin: position of each column's first entry; it ends where the next one
 * begins, the last at `entries`. */
struct NewColumns {
  int count = 0;
  const double* objective = nullptr;
  const double* lower = nullptr;
  const double* upper = nullptr;
  const char* types = nullptr;
  const char* const* names = nullptr;
  const int* begin = nullptr;  // with index and value; null when there are no entries
  const int* index = nullptr;
  const double* value = nullptr;
  int entries = 0;
};

/* Rows to add. Null arrays mean: rhs 0, sense 'E', range 0, names as for columns. */
struct NewRows {
  int count = 0;
  const double* rhs = nullptr;
  const char* sense = nullptr;
  const double* range = nullptr;
  const char* const* names = nullptr;
  const int* begin = nullptr;
  const int* index = nullptr;
  const double* value = nullptr;
  int entries = 0;
};

class Model {
 public:
  Model() = default;
  explicit Model(ModelData&& data);
  Model(const Model& other);  // compact, without derived structures
  Model& operator=(const Model&) = delete;

  // ---- Sizes, data and matrix
  int num_rows() const { return static_cast<int>(rhs_.size()) - row_deletions_.count(); }
  int num_columns() const { return static_cast<int>(objective_.size()) - column_deletions_.count(); }
  std::int64_t num_nonzeros() const { return compacted().columns_.entries(); }
  int objective_sense() const { return objective_sense_; }  // 1 minimize, -1 maximize
  double objective_offset() const { return objective_offset_; }
  std::span<const double> objective() const { return compacted().objective_; }
  std::span<const double> lower() const { return compacted().lower_; }
  std::span<const double> upper() const { return compacted().upper_; }
  std::span<const double> rhs() const { return compacted().rhs_; }
  std::span<const char> sense() const { return compacted().sense_; }
  /* One per row; 0 for rows other than 'R'. */
  std::span<const double> range() const { return compacted().range_; }
  std::span<const char> column_types() const { return compacted().types_; }  // empty for a continuous problem
  ColumnView column(int j) const { return compacted().columns_.at(j); }
  RowView row(int i) const;
  double coefficient(int i, int j) const noexcept;  // 0 where the matrix has no entry
  bool has_ranges() const;                          // is any row ranged?
  int count_type(char type) const;

  // ---- Names
  const NameTable& column_names() const { return compacted().column_names_; }
  const NameTable& row_names() const { return compacted().row_names_; }
  const std::string& objective_name() const { return objective_name_; }  // empty: none
  const std::string& bounds_name() const { return bounds_name_; }        // name of the bound set; empty: none
  void rename_columns(int count, const int* columns, const char* const* names);
  void rename_rows(int count, const int* rows, const char* const* names);
  void set_objective_name(std::string name) noexcept { objective_name_.swap(name); }
  void set_bounds_name(std::string name) noexcept { bounds_name_.swap(name); }
  void delete_names() noexcept;  // of rows, columns and the families

  // ---- Growing and shrinking
  void add_columns(const NewColumns& columns);
  /* Adds columns without entries, then rows that may refer to them. */
  void add_rows(const NewColumns& columns, const NewRows& rows);
  void delete_rows(int first, int last);
  void delete_columns(int first, int last);
  /* marks: one per row (column); exactly 1 deletes. */
  void delete_marked_rows(std::span<const int> marks);
  void delete_marked_columns(std::span<const int> marks);

  // ---- Changing values
  void set_objective_sense(int sense) noexcept { objective_sense_ = sense; }
  void set_objective_offset(double offset) noexcept { objective_offset_ = offset; }
  void set_objective(int j, double value) noexcept { change().objective_[at(j)] = value; }
  void set_lower(int j, double value) noexcept { change().lower_[at(j)] = value; }
  void set_upper(int j, double value) noexcept { change().upper_[at(j)] = value; }
  void set_rhs(int i, double value) noexcept { change().rhs_[at(i)] = value; }
  void set_sense(int i, char sense) noexcept;
  /* Without effect on a row that is not ranged. */
  void set_range(int i, double value) noexcept;
  /* A value of 0 removes the entry. */
  void set_coefficient(int i, int j, double value);
  /* After this, up to `extra` calls of set_coefficient for column j cannot fail. */
  void reserve_entries(int j, int extra) { change().columns_.reserve_entries(j, extra); }
  /* Sets every value smaller in magnitude than eps to zero and removes such matrix entries. */
  void remove_small(double eps) noexcept;

  // ---- Everything beyond rows and columns (families.h)
  const Families& families() const { return compacted().families_; }
  Families& change_families() noexcept { return change().families_; }

  // ---- Column types
  /* One letter per column, or empty. */
  void set_column_types(std::vector<char> types) noexcept { change().types_.swap(types); }
  /* The model must have types. */
  void set_column_type(int j, char type) noexcept { change().types_[at(j)] = type; }

 private:
  class GrowthGuard;

  static std::size_t at(int k) { return static_cast<std::size_t>(k); }
  const Model& compacted() const {
    if (row_deletions_.pending() || column_deletions_.pending()) [[unlikely]] {
      const_cast<Model*>(this)->compact();
    }
    return *this;
  }
  Model& change() noexcept {
    compacted();
    return *this;
  }
  void compact() noexcept;
  void build_rows() const;
  void pack_matrix(ModelData& data) const;
  void append_column_data(const NewColumns& columns);
  void append_row_data(const NewRows& rows);
  bool can_truncate_rows(int last);
  void truncate_rows(int first) noexcept;
  void truncate_columns(int first) noexcept;

  int objective_sense_ = 1;
  double objective_offset_ = 0;
  std::vector<double> objective_, lower_, upper_, rhs_, range_;
  std::vector<char> sense_, types_;
  VectorFile columns_;
  mutable std::unique_ptr<VectorFile> rows_;  // row-wise copy; null until rows are read
  NameTable column_names_{'x'}, row_names_{'c'};
  std::string objective_name_, bounds_name_;
  Families families_;
  Deletions row_deletions_, column_deletions_;
  bool last_rows_were_deleted_ = false;
};

}  // namespace tovik::model
