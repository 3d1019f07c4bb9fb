/* Queries of the model by the exported routines: ranges of values, sparse ranges and names by the surplus
 * protocol (surplus.h). */
#pragma once

#include <algorithm>
#include <functional>
#include <span>

#include "env/environment.h"
#include "env/problem.h"
#include "model/routines/check.h"
#include "model/store/model.h"

namespace tovik::model {

/* An inclusive range of rows or columns, asked for by the named routine. */
struct Range {
  const char* routine;
  int begin, end;
};

template <class T>
Status copy_range(Environment& env, const Range& range, std::span<const T> values, T* out) {
  const int count = static_cast<int>(values.size());
  if (Status s = check_range(env, range.routine, range.begin, range.end, count); !s.ok()) return s;
  if (range.begin > range.end) return {};
  if (out == nullptr) return TVK_ERROR_NULL_POINTER;
  std::copy_n(values.data() + range.begin, range.end - range.begin + 1, out);
  return {};
}

struct SparseOutput {
  int* entries;
  int* begin;
  int* index;
  double* value;
  int space;
  int* surplus;
};
/* Vectors begin .. end of `count`. */
Status get_vectors(Environment& env, const Range& range, int count, const SparseOutput& out,
                   const std::function<VectorView(int)>& vector);
Status get_columns(Environment& env, const Model& model, const Range& range, const SparseOutput& out);
Status get_rows(Environment& env, const Model& model, const Range& range, const SparseOutput& out);

struct NameOutput {
  char** names;
  char* store;
  int space;
  int* surplus;
};
Status get_names(Environment& env, const NameTable& table, int count, const Range& range,
                 const NameOutput& out);
/* One text; 1219 for a null one. */
Status get_text(const char* text, char* store, int space, int* surplus);

/* Position of a name; 1210 when there is none. */
Status find_name(const NameTable& table, const char* name, int* position);

/* Types of a continuous problem: 3003. */
Status get_types(Environment& env, const Problem& problem, const Range& range, char* out);

}  // namespace tovik::model
