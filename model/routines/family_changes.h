/* Modification of the families by the exported routines: each worker checks its arguments in the documented
 * order, changes the data and discards what the change makes invalid. A failed call leaves the problem as it
 * was. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "model/routines/check.h"
#include "model/store/model.h"

namespace tovik::model {

/* ---- What the workers share (family_changes.cpp) */

/* Vector k of a packed matrix; empty where the caller gave no arrays. */
VectorView vector_of(const PackedMatrix& matrix, int k);
inline const char* name_of(const char* const* names, int k) {
  return names == nullptr ? nullptr : names[k];
}
/* As check_count(), then 1004 when entries lack an array. */
Status check_arrays(const PackedMatrix& matrix);
/* The full check while data are checked, else what keeps memory safe. */
Status check_columns_matrix(Environment& env, const Problem& problem, const PackedMatrix& matrix);
/* 1012 when a family of `present` entries would exceed the limit. */
Status check_entries(const Environment& env, std::int64_t present, std::int64_t more);
/* The range first..last for the named routine; `none` is the code for a range of a family that has no
 * item. */
Status check_family_range(Environment& env, const char* routine, int begin, int end, int count, int none = 0);

/* Deletes items first .. last of a family. */
template <class Family>
void delete_range(Family& family, int first, int last) {
  family.renumber(renumbering_without(family.size(), first, last));
}

/* Deletes the items whose entry of delstat is exactly 1 and writes the new position of each, -1 for a deleted
 * one. */
template <class Family>
bool delete_marked(Family& family, int* delstat) {
  const auto count = static_cast<std::size_t>(family.size());
  const std::vector<int> renumber = renumbering_without(std::span<const int>(delstat, count));
  const int before = family.size();
  family.renumber(renumber);
  std::copy(renumber.begin(), renumber.end(), delstat);
  return family.size() != before;
}

/* ---- Special ordered sets (set_changes.cpp) */
struct SetList {
  int count;
  int entries;
  const char* type;
  const int* begin;
  const int* column;
  const double* weight;
  const char* const* names;  // may be null
};
Status copy_sets(Environment& env, Problem& problem, const SetList& list);
Status add_sets(Environment& env, Problem& problem, const SetList& list);
Status delete_sets(Environment& env, Problem& problem, int begin, int end);
Status delete_set_of_sets(Problem& problem, int* delstat);

/* ---- User cuts and lazy constraints (pool_changes.cpp) */
enum class Pool { user_cuts, lazy_constraints };
const RowPool& rows_of(const Model& model, Pool pool);
Status add_pool_rows(Environment& env, Problem& problem, Pool pool, const NewRows& rows);
struct Range;
Status delete_pool_rows(Environment& env, Problem& problem, Pool pool, const Range& range);
Status free_pool(Problem& problem, Pool pool);

/* ---- Indicator constraints (indicator_changes.cpp) */
struct IndicatorArguments {
  int column;
  bool complemented;
  int entries;
  double rhs;
  int sense;
  const int* index;
  const double* value;
  const char* name;  // may be null
};
Status add_indicator(Environment& env, Problem& problem, const IndicatorArguments& arguments);
Status delete_indicators(Environment& env, Problem& problem, int begin, int end);

/* ---- Priority order and MIP starts (guidance_changes.cpp) */
struct OrderList {
  int count;
  const int* columns;
  const int* priority;   // may be null: 0
  const int* direction;  // may be null: 0
};
Status copy_order(Environment& env, Problem& problem, const OrderList& list);
struct StartList {
  int count;
  int entries;
  const int* begin;
  const int* column;
  const double* value;
  const int* effort;         // may be null
  const char* const* names;  // may be null
};
Status add_starts(Environment& env, Problem& problem, const StartList& list);
/* Values of columns that a start has not yet are added to it. */
Status change_starts(Environment& env, Problem& problem, const int* starts, const StartList& list);
Status delete_starts(Environment& env, Problem& problem, int begin, int end);
Status delete_set_of_starts(Problem& problem, int* delstat);

/* ---- Quadratic data (quadratic_changes.cpp) */
struct QuadraticMatrix {
  const int* begin;
  const int* count;
  const int* index;
  const double* value;
};
Status copy_quadratic(Environment& env, Problem& problem, const QuadraticMatrix& matrix);
Status copy_separable(Environment& env, Problem& problem, const double* diagonal);
Status change_quadratic(Environment& env, Problem& problem, int i, int j, double value);
struct QuadraticRowArguments {
  int entries, terms;
  double rhs;
  int sense;
  const int* index;
  const double* value;
  const int* column;
  const int* other;
  const double* product;
  const char* name;  // may be null
};
Status add_quadratic_row(Environment& env, Problem& problem, const QuadraticRowArguments& arguments);
Status delete_quadratic_rows(Environment& env, Problem& problem, int begin, int end);

}  // namespace tovik::model
