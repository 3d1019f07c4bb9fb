/* Checks of model data that a caller passes in. Each prints the line of the first offending entry with its
 * position and returns the code as reported. Null arrays are accepted: what is required was asked for before.
 *
 * Content checks run only while TVK_PARAM_DATACHECK is 1 (checking(env)); checks of indices and extents that
 * protect the library's own memory have "safe" in their name and always run. */
#pragma once

#include <initializer_list>

#include "env/error.h"

namespace tovik {
struct Environment;
}

namespace tovik::model {

bool checking(const Environment& env);

/* Counts that a caller passes: 1003 below 0, 1012 above what a problem can hold of anything. Every routine asks before
 * it looks at an array. */
Status check_count(std::initializer_list<int> counts);

Status check_objective_sense(int sense);
Status check_numbers(Environment& env, int count, const double* values);
Status check_senses(Environment& env, int count, const char* senses);
/* Of rows that cannot be ranged: 'L', 'G' or 'E'. */
Status check_unranged_senses(Environment& env, int count, const char* senses);
Status check_range_presence(Environment& env, int count, const char* senses, const double* ranges);
Status check_bound_indicators(Environment& env, int count, const char* indicators);
Status check_types(Environment& env, int count, const char* types);
Status check_names(Environment& env, int count, const char* const* names);

/* What the indices of a matrix stand for; the letter chooses the message. */
struct IndexRule {
  char kind;  // 'c' columns, 'r' rows, 'n' nodes, 'a' arcs
  int bound;  // indices lie in 0 .. bound - 1
};

/* Vectors with beginnings and counts; space may be left between them. */
struct CountedMatrix {
  int vectors;
  const int* begin;
  const int* count;
  const int* index;
  const double* value;
};

/* Vectors one behind the other: each ends where the next begins, the last at `entries`. */
struct PackedMatrix {
  int vectors;
  int entries;
  const int* begin;
  const int* index;
  const double* value;
};

Status check_matrix(Environment& env, IndexRule rule, const CountedMatrix& matrix);
Status check_matrix(Environment& env, IndexRule rule, const PackedMatrix& matrix);

/* Only what keeps reads within the caller's arrays (the last vector of a counted matrix ends them) and
 * indices in range. */
Status check_safe(Environment& env, IndexRule rule, const CountedMatrix& matrix);
Status check_safe(Environment& env, IndexRule rule, const PackedMatrix& matrix);
Status check_safe_indices(Environment& env, IndexRule rule, int count, const int* indices);

/* The inclusive range begin..end of `count` items: one line for each end that is outside, then 1200. begin >
 * end passes. */
Status check_range(Environment& env, const char* routine, int begin, int end, int count);

}  // namespace tovik::model
