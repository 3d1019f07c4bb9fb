/* Vectors and linear forms of a problem brought to its presolved one and back, in the user's signs. */
#pragma once

#include <vector>

#include "lp/presolve/crush.h"
#include "lp/presolve_record/presolved.h"

namespace tovik::lp::run {

/* pi by row of the original; by reduced row. */
std::vector<double> crush_pi(const Presolved& presolved, const double* pi);
/* x, pi: by reduced column and row; by column and row of the original. */
std::vector<double> uncrush_x(const Presolved& presolved, const double* x);
std::vector<double> uncrush_pi(const Presolved& presolved, const double* pi);

/* A sparse form of `columns` variables made dense; an index that occurs twice counts twice. */
presolve::LinearForm dense_form(int columns, int count, const int* index, const double* value);

/* What became of row or column k: its place in the reduced problem, or a negative code (TVK_PRESTAT_). */
std::vector<int> row_codes(const Presolved& presolved);
std::vector<int> column_codes(const Presolved& presolved);

}  // namespace tovik::lp::run
