/* Adding and deleting user cuts and lazy constraints. */
#include "model/routines/changes.h"
#include "model/routines/family_changes.h"
#include "model/routines/query.h"
#include "model/routines/type_change.h"

namespace tovik::model {

namespace {

RowPool& change_rows(Problem& problem, Pool pool) {
  Families& families = problem.model->change_families();
  return pool == Pool::user_cuts ? families.user_cuts : families.lazy_constraints;
}

Status check_rows(Environment& env, const Problem& problem, const NewRows& rows, const PackedMatrix& matrix) {
  if (checking(env)) {
    if (Status s = check_unranged_senses(env, rows.count, rows.sense); !s.ok()) return s;
    if (Status s = check_numbers(env, rows.count, rows.rhs); !s.ok()) return s;
  }
  if (Status s = check_columns_matrix(env, problem, matrix); !s.ok()) return s;
  return checking(env) ? check_names(env, rows.count, rows.names) : Status();
}

/* A row that has no range value is an equation, as among the rows of the matrix. */
char sense_of(const NewRows& rows, int k) {
  const char sense = rows.sense == nullptr ? 'E' : rows.sense[k];
  return sense == 'R' ? 'E' : sense;
}

}  // namespace

const RowPool& rows_of(const Model& model, Pool pool) {
  return pool == Pool::user_cuts ? model.families().user_cuts : model.families().lazy_constraints;
}

Status add_pool_rows(Environment& env, Problem& problem, Pool pool, const NewRows& rows) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  const PackedMatrix matrix{rows.count, rows.entries, rows.begin, rows.index, rows.value};
  if (Status s = check_arrays(matrix); !s.ok() || rows.count == 0) return s;
  if (Status s = check_rows(env, problem, rows, matrix); !s.ok()) return s;
  RowPool& to = change_rows(problem, pool);
  if (Status s = check_entries(env, to.size(), rows.count); !s.ok()) return s;
  if (Status s = check_entries(env, to.entries(), rows.entries); !s.ok()) return s;
  MixedInteger with_types(problem);
  const RowPool::Extent before = to.extent();
  try {
    for (int k = 0; k < rows.count; ++k) {
      const double rhs = rows.rhs == nullptr ? 0.0 : rows.rhs[k];
      to.add({vector_of(matrix, k), sense_of(rows, k), rhs, name_of(rows.names, k)});
    }
  } catch (...) {
    to.truncate(before);
    throw;
  }
  with_types.commit();
  invalidate(problem, Change::rows);
  return {};
}

Status delete_pool_rows(Environment& env, Problem& problem, Pool pool, const Range& range) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  RowPool& rows = change_rows(problem, pool);
  const Status checked = check_range(env, range.routine, range.begin, range.end, rows.size());
  if (!checked.ok() || range.begin > range.end) return checked;
  delete_range(rows, range.begin, range.end);
  invalidate(problem, Change::rows);
  return {};
}

Status free_pool(Problem& problem, Pool pool) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  RowPool& rows = change_rows(problem, pool);
  if (rows.empty()) return {};
  rows.clear();
  invalidate(problem, Change::rows);
  return {};
}

}  // namespace tovik::model
