/* Column types. A problem that receives them becomes the mixed-integer kind of its type. */
#include <utility>
#include <vector>

#include "model/routines/changes.h"
#include "model/routines/check.h"
#include "model/routines/type_change.h"
#include "model/store/problem_type.h"

namespace tovik::model {

Status copy_types(Environment& env, Problem& problem, const char* types) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (types == nullptr) return TVK_ERROR_NULL_POINTER;
  Model& model = *problem.model;
  const int count = model.num_columns();
  if (checking(env)) {
    if (Status s = check_types(env, count, types); !s.ok()) return s;
  }
  model.set_column_types(std::vector<char>(types, types + count));
  problem.type = mixed_integer_type(problem.type);
  invalidate(problem, Change::column_types);
  return {};
}

Status change_types(Environment& env, Problem& problem, int count, const int* columns, const char* types) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({count}); !s.ok()) return s;
  if (count == 0) return {};
  if (columns == nullptr || types == nullptr) return TVK_ERROR_NULL_POINTER;
  if (checking(env)) {
    if (Status s = check_types(env, count, types); !s.ok()) return s;
  }
  Model& model = *problem.model;
  if (Status s = check_safe_indices(env, {'c', model.num_columns()}, count, columns); !s.ok()) return s;
  MixedInteger with_types(problem);
  with_types.commit();
  for (int k = 0; k < count; ++k) model.set_column_type(columns[k], types[k]);
  invalidate(problem, Change::column_types);
  return {};
}

}  // namespace tovik::model
