/* Vector files: the values of a solution by names. Keys of the records: X value of a column, S slack of a
 * row, P dual of a row, D reduced cost of a column. */
#pragma once

#include <span>
#include <vector>

#include "fileio/record/model_writer.h"

namespace tovik::fileio {

struct VectorView {
  std::span<const double> x, slack, pi, dj;  // pi and dj may be empty
};

/* Each is empty when the file does not have its key; else one value per row or column, 0 where none is
 * given. */
struct VectorValues {
  std::vector<double> x, slack, pi, dj;
};

void write_vector(const WriteSource& source, const VectorView& values, ReaderLog& log, TextWriter& out);

/* The model must have names. Failures: 1434, 1465, 1551, 1553. */
ReadFailure read_vector(ByteSource& source, const model::Model& model, ReaderLog& log, VectorValues& values);

}  // namespace tovik::fileio
