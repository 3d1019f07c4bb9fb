#include "model/routines/copy.h"

#include <numeric>
#include <utility>

#include "model/routines/changes.h"
#include "model/routines/check.h"
#include "model/routines/type_change.h"
#include "model/store/load.h"
#include "model/store/model.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

CountedMatrix matrix_of(const CopyArguments& a) {
  return {a.columns, a.begin, a.count, a.index, a.value};
}

Status check_content(Environment& env, const CopyArguments& a) {
  if (Status s = check_objective_sense(a.sense); !s.ok()) return s;
  if (Status s = check_numbers(env, a.columns, a.objective); !s.ok()) return s;
  if (Status s = check_numbers(env, a.rows, a.rhs); !s.ok()) return s;
  if (Status s = check_senses(env, a.rows, a.senses); !s.ok()) return s;
  if (Status s = check_range_presence(env, a.rows, a.senses, a.range); !s.ok()) return s;
  if (Status s = check_matrix(env, {'r', a.rows}, matrix_of(a)); !s.ok()) return s;
  if (Status s = check_numbers(env, a.columns, a.lower); !s.ok()) return s;
  if (Status s = check_numbers(env, a.columns, a.upper); !s.ok()) return s;
  if (Status s = check_numbers(env, a.rows, a.range); !s.ok()) return s;
  if (Status s = check_names(env, a.columns, a.column_names); !s.ok()) return s;
  return check_names(env, a.rows, a.row_names);
}

std::int64_t count_entries(const CopyArguments& a) {
  return std::accumulate(a.count, a.count + a.columns, std::int64_t{0});
}

/* Closes the gaps between the caller's columns. */
void collect_matrix(const CopyArguments& a, ModelData& data) {
  const auto entries = static_cast<std::size_t>(count_entries(a));
  data.index.reserve(entries);
  data.value.reserve(entries);
  data.start.reserve(static_cast<std::size_t>(a.columns) + 1);
  data.start.push_back(0);
  for (int j = 0; j < a.columns; ++j) {
    data.index.insert(data.index.end(), a.index + a.begin[j], a.index + a.begin[j] + a.count[j]);
    data.value.insert(data.value.end(), a.value + a.begin[j], a.value + a.begin[j] + a.count[j]);
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
  }
}

ModelData collect(const CopyArguments& a) {
  ModelData data;
  data.objective_sense = a.sense < 0 ? -1 : 1;
  data.objective.assign(a.objective, a.objective + a.columns);
  data.lower.assign(a.lower, a.lower + a.columns);
  data.upper.assign(a.upper, a.upper + a.columns);
  data.rhs.assign(a.rhs, a.rhs + a.rows);
  data.sense.assign(a.senses, a.senses + a.rows);
  if (a.range != nullptr) data.range.assign(a.range, a.range + a.rows);
  collect_matrix(a, data);
  data.column_names = collect_names('x', a.columns, a.column_names);
  data.row_names = collect_names('c', a.rows, a.row_names);
  return data;
}

bool lacks_required(const CopyArguments& a) {
  return a.objective == nullptr || a.rhs == nullptr || a.senses == nullptr || a.begin == nullptr ||
         a.count == nullptr || a.index == nullptr || a.value == nullptr || a.lower == nullptr ||
         a.upper == nullptr;
}

}  // namespace

Status copy_model(Environment& env, Problem& problem, const CopyArguments& a) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({a.columns, a.rows}); !s.ok()) return s;
  const auto& limits = env.size_limits;
  if (a.rows > limits[0] || a.columns > limits[1]) return TVK_ERROR_SIZE_LIMITS_TOO_LARGE;
  if (lacks_required(a)) return TVK_ERROR_NULL_POINTER;
  const Status content = checking(env) ? check_content(env, a) : check_safe(env, {'r', a.rows}, matrix_of(a));
  if (!content.ok()) return content;
  if (count_entries(a) > limits[2]) return TVK_ERROR_SIZE_LIMITS_TOO_LARGE;
  return load(env, problem, collect(a));
}

namespace {

/* The problem type of a model with these data; sets and the like bring types with them. */
int complete(ModelData& data) {
  if (data.types.empty() && data.families.has_mixed_integer()) data.types.assign(data.objective.size(), 'C');
  if (data.problem_type >= 0) return data.problem_type;
  int type = data.types.empty() && !data.families.has_mixed_integer() ? TVK_PROBTYPE_LP : TVK_PROBTYPE_MILP;
  if (!data.families.quadratic_objective.empty()) type = quadratic_type(type);
  if (!data.families.quadratic_rows.empty()) type = quadratically_constrained_type(type);
  return type;
}

}  // namespace

Status load(Environment& env, Problem& problem, ModelData&& data) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  std::string name = std::move(data.problem_name);
  const int type = complete(data);
  auto fresh = std::make_unique<Model>(std::move(data));
  announce_freeing(env, problem, kMixedIntegerData | kQuadraticObjectiveData | kQuadraticRowData);
  problem.model = std::move(fresh);
  problem.type = type;
  if (!name.empty()) problem.name.swap(name);
  problem.protected_columns.clear();
  invalidate(problem, Change::whole_problem);
  return {};
}

}  // namespace tovik::model
