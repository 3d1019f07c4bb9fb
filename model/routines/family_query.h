/* Queries of the families by the exported routines. */
#pragma once

#include "model/routines/family_changes.h"
#include "model/routines/query.h"

namespace tovik::model {

/* A range of vectors with one more value each, whose arrays may be null. */
Status get_sets(Environment& env, const Problem& problem, const Range& range, const SparseOutput& out,
                char* type);
struct PoolOutput {
  SparseOutput rows;
  double* rhs;
  char* sense;
};
Status get_pool_rows(Environment& env, const RowPool& pool, const Range& range, const PoolOutput& out);
Status get_starts(Environment& env, const Problem& problem, const Range& range, const SparseOutput& out,
                  int* effort);

struct OrderOutput {
  int* count;
  int* columns;
  int* priority;   // may be null
  int* direction;  // may be null
  int space;
  int* surplus;
};
Status get_order(const Problem& problem, const OrderOutput& out);

/* The terms of one row. */
struct TermsOutput {
  int* entries;
  int* index;
  double* value;
  int space;
  int* surplus;
};
struct IndicatorOutput {
  int* column;        // this and the next three may be null
  int* complemented;  // 0 or 1
  double* rhs;
  char* sense;
  TermsOutput terms;
};
Status get_indicator(Environment& env, const Problem& problem, int which, const IndicatorOutput& out);

Status get_quadratic(Environment& env, const Problem& problem, const Range& range, const SparseOutput& out);
Status get_quadratic_coefficient(const Problem& problem, int i, int j, double* value);

struct ProductsOutput {
  int* entries;
  int* column;
  int* other;
  double* value;
  int space;
  int* surplus;
};
struct QuadraticRowOutput {
  double* rhs;  // this and the next may be null
  char* sense;
  TermsOutput linear;
  ProductsOutput products;
};
Status get_quadratic_row(Environment& env, const Problem& problem, int which, const QuadraticRowOutput& out);

}  // namespace tovik::model
