/* Priority-order files: one record for each column that has a priority, "UP column priority" with the branch
 * to be taken first (UP, DN), or "column priority" where it does not matter. */
#pragma once

#include <vector>

#include "fileio/record/model_writer.h"
#include "model/families/priority_order.h"

namespace tovik::fileio {

void write_order(const WriteSource& source, ReaderLog& log, TextWriter& out);

/* The model must have names. Failures: 1434, 1447 a column twice, 1463, 1465, 1551, 1553, 3006, 3012. */
ReadFailure read_order(ByteSource& source, const model::Model& model, ReaderLog& log,
                       std::vector<model::OrderEntry>& order);

}  // namespace tovik::fileio
