/* Basis files.
 *
 * A basis has, for each column and row, a status: 0 at the lower bound, 1 basic, 2 at the upper bound, 3
 * non-basic and free or between its bounds. What the file does not mention is a column at its lower bound or
 * a basic row. The records:
 * - XU column row, XL column row: makes the column basic and puts the row at its upper or lower end;
 * - UL column, LL column: puts the column at a bound (or a row, when no column is called so);
 * - BS name: makes a column or row basic;
 * - BR row value: gives a basic row its slack;
 * - SC column value, SR row value: gives a column or row of status 3 its value or slack.
 *
 * XU, XL and BS may carry the value of their column as well.
 *
 * A basis with values is a superbasis: all basic columns and rows have their values, and those of status 3
 * too. Mixed-integer problems have none, as their nodes start from vertices: there only free columns may be
 * of status 3. */
#pragma once

#include <span>
#include <vector>

#include "fileio/record/model_writer.h"

namespace tovik::fileio {

struct BasisView {
  std::span<const int> column_status, row_status;
  int iterations = 0;                               // that led to it
  std::span<const double> primal = {}, slack = {};  // of all columns and rows; empty when not known
};

/* Whether the basis is written with values: the columns' are known, and the problem may have such a basis. */
bool is_superbasis(const model::Model& model, const BasisView& basis);

struct BasisFile {
  std::vector<int> column_status, row_status;
  /* One per column when the file tells the values of all basic columns, else empty; the same of rows, of
   * which only a file that tells those of columns has any. */
  std::vector<double> primal, slack;
};

/* 1555 when the basic variables are not as many as the rows, 1650 when a value is not finite: no reader takes
 * it. */
ReadFailure write_basis(const WriteSource& source, const BasisView& basis, ReaderLog& log, TextWriter& out);

/* 1555 with the difference, or none when the numbers are equal. */
ReadFailure basic_count_failure(int basic, int rows);

/* The model must have names. Failures: 1434, 1465, 1550, 1551, 1553, 1554, 1555. */
ReadFailure read_basis(ByteSource& source, const model::Model& model, ReaderLog& log, BasisFile& basis);

}  // namespace tovik::fileio
