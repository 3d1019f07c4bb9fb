/* What a model writer is: a function from a model to text. Writers know no environment and no file; the
 * dispatch opens the file, prints what they say, and commits.
 *
 *   int write_mps(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out);
 *
 * The result is 0 or a code: 1650 for a number that is not finite, which no file can hold. */
#pragma once

#include <string_view>

#include "fileio/record/model_reader.h"
#include "fileio/stream/output.h"
#include "model/store/model.h"

namespace tovik::fileio {

struct WriteSource {
  const model::Model& model;
  std::string_view name;  // of the problem
};

struct WriteOptions {
  bool generic_names = false;  // c1, x1 ... in place of the model's names
  bool long_numbers = true;    // MPS: all digits; else as many as fit into twelve columns
};

int write_mps(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out);
int write_lp(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out);

/* A problem name as it stands in a file: at most 255 bytes, control characters replaced. */
std::string title(std::string_view problem_name);

}  // namespace tovik::fileio
