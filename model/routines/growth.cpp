/* Adding and deleting rows and columns. */
#include <algorithm>
#include <cstdint>
#include <vector>

#include "model/routines/changes.h"
#include "model/routines/check.h"
#include "model/routines/protected_columns.h"
#include "model/routines/start_update.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

template <class Batch>
PackedMatrix matrix_of(const Batch& batch) {
  return {batch.count, batch.entries, batch.begin, batch.index, batch.value};
}

template <class Batch>
bool lacks_entries(const Batch& batch) {
  return batch.entries > 0 && (batch.begin == nullptr || batch.index == nullptr || batch.value == nullptr);
}

/* Entries that a batch really adds; where beginnings do not ascend a stretch may count more than once. */
template <class Batch>
std::int64_t count_entries(const Batch& batch) {
  if (batch.begin == nullptr) return 0;
  std::int64_t total = 0;
  for (int k = 0; k < batch.count; ++k) {
    const int end = k + 1 < batch.count ? batch.begin[k + 1] : batch.entries;
    total += std::max(end - batch.begin[k], 0);
  }
  return total;
}

/* A batch without entries needs no arrays, whatever was passed. */
template <class Batch>
Batch without_idle_arrays(Batch batch) {
  if (batch.entries == 0) {
    batch.begin = batch.index = nullptr;
    batch.value = nullptr;
  }
  return batch;
}

struct Growth {
  std::int64_t rows, columns, entries;
};

Status check_size(const Environment& env, const Model& model, const Growth& growth) {
  const bool fits = model.num_rows() + growth.rows <= env.size_limits[0] &&
                    model.num_columns() + growth.columns <= env.size_limits[1] &&
                    model.num_nonzeros() + growth.entries <= env.size_limits[2];
  return fits ? Status() : Status(TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
}

Status check_row_content(Environment& env, const NewColumns& columns, const NewRows& rows, int column_bound) {
  if (Status s = check_senses(env, rows.count, rows.sense); !s.ok()) return s;
  if (Status s = check_numbers(env, rows.count, rows.rhs); !s.ok()) return s;
  if (Status s = check_numbers(env, rows.count, rows.range); !s.ok()) return s;
  if (Status s = check_matrix(env, {'c', column_bound}, matrix_of(rows)); !s.ok()) return s;
  if (Status s = check_names(env, rows.count, rows.names); !s.ok()) return s;
  return check_names(env, columns.count, columns.names);
}

Status check_column_content(Environment& env, const NewColumns& columns, int row_bound) {
  if (Status s = check_numbers(env, columns.count, columns.objective); !s.ok()) return s;
  if (Status s = check_matrix(env, {'r', row_bound}, matrix_of(columns)); !s.ok()) return s;
  if (Status s = check_numbers(env, columns.count, columns.lower); !s.ok()) return s;
  if (Status s = check_numbers(env, columns.count, columns.upper); !s.ok()) return s;
  if (Status s = check_types(env, columns.count, columns.types); !s.ok()) return s;
  return check_names(env, columns.count, columns.names);
}

/* A mixed-integer problem without columns holds no types; the first columns bring them. */
NewColumns with_types(const Problem& problem, NewColumns columns, std::vector<char>& letters) {
  if (columns.types == nullptr && is_mixed_integer(problem.type) && problem.model->column_types().empty()) {
    letters.assign(static_cast<std::size_t>(columns.count), 'C');
    columns.types = letters.data();
  }
  return columns;
}

}  // namespace

Status add_rows(Environment& env, Problem& problem, const NewColumns& columns, const NewRows& new_rows) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({columns.count, new_rows.count, new_rows.entries}); !s.ok()) return s;
  if (new_rows.count == 0) return {};
  if (lacks_entries(new_rows)) return TVK_ERROR_NULL_POINTER;
  const NewRows rows = without_idle_arrays(new_rows);
  Model& model = *problem.model;
  if (Status s = check_size(env, model, {rows.count, columns.count, 0}); !s.ok()) return s;
  const int column_bound = model.num_columns() + columns.count;
  const Status content = checking(env) ? check_row_content(env, columns, rows, column_bound)
                                       : check_safe(env, {'c', column_bound}, matrix_of(rows));
  if (!content.ok()) return content;
  if (Status s = check_size(env, model, {0, 0, count_entries(rows)}); !s.ok()) return s;
  reserve_start(problem, rows.count, columns.count);
  std::vector<char> letters;
  model.add_rows(with_types(problem, columns, letters), rows);
  if (columns.count == 0) {
    apply_to_presolved_model(env, problem, Change::rows, {}, "Adding rows to");
  } else {
    discard_presolved_model(env, problem, "Adding rows to");
  }
  extend_start(problem);
  invalidate(
      problem, Change::rows,
      {Edit::added(Edit::Dimension::columns, columns.count), Edit::added(Edit::Dimension::rows, rows.count)});
  return {};
}

Status add_columns(Environment& env, Problem& problem, const NewColumns& new_columns) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({new_columns.count, new_columns.entries}); !s.ok()) return s;
  if (new_columns.count == 0) return {};
  if (lacks_entries(new_columns)) return TVK_ERROR_NULL_POINTER;
  const NewColumns columns = without_idle_arrays(new_columns);
  Model& model = *problem.model;
  if (Status s = check_size(env, model, {0, columns.count, 0}); !s.ok()) return s;
  const int row_bound = model.num_rows();
  const Status content = checking(env) ? check_column_content(env, columns, row_bound)
                                       : check_safe(env, {'r', row_bound}, matrix_of(columns));
  if (!content.ok()) return content;
  if (Status s = check_size(env, model, {0, 0, count_entries(columns)}); !s.ok()) return s;
  reserve_start(problem, 0, columns.count);
  std::vector<char> letters;
  model.add_columns(with_types(problem, columns, letters));
  discard_presolved_model(env, problem, "Adding columns to");
  extend_start(problem);
  invalidate(problem, Change::add_columns, {Edit::added(Edit::Dimension::columns, columns.count)});
  if (columns.types != nullptr) {
    problem.type = mixed_integer_type(problem.type);
    invalidate(problem, Change::column_types);
  }
  return {};
}

Status delete_rows(Environment& env, Problem& problem, int begin, int end) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_range(env, "TVKdelrows", begin, end, problem.model->num_rows()); !s.ok()) return s;
  if (begin > end) return {};
  problem.model->delete_rows(begin, end);
  drop_start_rows(problem, begin, end);
  invalidate(problem, Change::rows, {Edit::deleted(Edit::Dimension::rows, begin, end)});
  return {};
}

Status delete_columns(Environment& env, Problem& problem, int begin, int end) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_range(env, "TVKdelcols", begin, end, problem.model->num_columns()); !s.ok()) return s;
  if (begin > end) return {};
  problem.model->delete_columns(begin, end);
  drop_start_columns(problem, begin, end);
  drop_protected(problem, begin, end);
  invalidate(problem, Change::delete_columns, {Edit::deleted(Edit::Dimension::columns, begin, end)});
  return {};
}

Status delete_row_set(Problem& problem, int* delstat) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
  const int count = problem.model->num_rows();
  if (any_marked(delstat, count)) {
    const std::span<const int> marks(delstat, static_cast<std::size_t>(count));
    problem.model->delete_marked_rows(marks);
    drop_start_rows(problem, marks);
    invalidate(problem, Change::rows, {Edit::deleted(Edit::Dimension::rows, marks)});
  }
  write_new_positions(delstat, count);
  return {};
}

Status delete_column_set(Problem& problem, int* delstat) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
  const int count = problem.model->num_columns();
  if (any_marked(delstat, count)) {
    const std::span<const int> marks(delstat, static_cast<std::size_t>(count));
    problem.model->delete_marked_columns(marks);
    drop_start_columns(problem, marks);
    drop_protected(problem, marks);
    invalidate(problem, Change::delete_columns, {Edit::deleted(Edit::Dimension::columns, marks)});
  }
  write_new_positions(delstat, count);
  return {};
}

}  // namespace tovik::model
