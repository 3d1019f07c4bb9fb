/* Replacing a problem's whole model by one that a caller passes as arrays. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::model {

struct CopyArguments {
  int columns, rows, sense;
  const double* objective;
  const double* rhs;
  const char* senses;
  const int* begin;
  const int* count;
  const int* index;
  const double* value;
  const double* lower;
  const double* upper;
  const double* range;              // may be null
  const char* const* column_names;  // may be null
  const char* const* row_names;     // may be null
};

Status copy_model(Environment& env, Problem& problem, const CopyArguments& arguments);

}  // namespace tovik::model
