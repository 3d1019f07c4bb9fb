/* Basis files.
 *
 * A basis has, for each column and row, a status: 0 at the lower bound, 1 basic, 2 at the upper bound, 3 free
 * and non-basic. What the file does not mention is a column at its lower bound or a basic row; a record XU
 * column row, XL column row   makes the column basic and puts the row at its upper or lower end, UL column,
 * LL column           puts the column at a bound (or a row, when no column is called so), BS name makes a
 * column or row basic, BR row value, SC column value  gives a basic row or a free non-basic column its value;
 * XU, XL and BS may carry one as well. */
#pragma once

#include <span>
#include <vector>

#include "fileio/model_writer.h"

namespace tovik::fileio {

struct BasisView {
  std::span<const int> column_status, row_status;
  int iterations = 0;  // that led to it
};

struct BasisFile {
  std::vector<int> column_status, row_status;
  /* One per column when the file tells the values of all basic columns, else empty. */
  std::vector<double> primal;
};

/* 1555 when the basic variables are not as many as the rows. */
ReadFailure write_basis(const WriteSource& source, const BasisView& basis, ReaderLog& log, TextWriter& out);

/* 1555 with the difference, or none when the numbers are equal. */
ReadFailure basic_count_failure(int basic, int rows);

/* The model must have names. Failures: 1434, 1465, 1550, 1551, 1553, 1554, 1555. */
ReadFailure read_basis(ByteSource& source, const model::Model& model, ReaderLog& log, BasisFile& basis);

}  // namespace tovik::fileio
