/* Adding and deleting indicator constraints. */
#include "model/routines/changes.h"
#include "model/routines/family_changes.h"
#include "model/routines/type_change.h"

namespace tovik::model {

Status add_indicator(Environment& env, Problem& problem, const IndicatorArguments& a) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  const int begin = 0;
  const PackedMatrix matrix{1, a.entries, &begin, a.index, a.value};
  if (Status s = check_arrays(matrix); !s.ok()) return s;
  if (a.column < 0 || a.column >= problem.model->num_columns()) return TVK_ERROR_INDEX_RANGE;
  if (a.sense != 'L' && a.sense != 'G' && a.sense != 'E') return fail(env, TVK_ERROR_SENSE_ENTRY, 0);
  if (checking(env)) {
    if (Status s = check_numbers(env, 1, &a.rhs); !s.ok()) return s;
  }
  if (Status s = check_columns_matrix(env, problem, matrix); !s.ok()) return s;
  Indicators& indicators = problem.model->change_families().indicators;
  if (Status s = check_entries(env, indicators.rows().entries(), a.entries); !s.ok()) return s;
  MixedInteger with_types(problem);
  const PoolRow row{vector_of(matrix, 0), static_cast<char>(a.sense), a.rhs, a.name};
  indicators.add({row, a.column, a.complemented});
  with_types.commit();
  invalidate(problem, Change::sets);
  return {};
}

Status delete_indicators(Environment& env, Problem& problem, int begin, int end) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Indicators& indicators = problem.model->change_families().indicators;
  const Status range = check_range(env, "TVKEdelindconstrs", begin, end, indicators.size());
  if (!range.ok() || begin > end) return range;
  delete_range(indicators, begin, end);
  invalidate(problem, Change::sets);
  return {};
}

}  // namespace tovik::model
