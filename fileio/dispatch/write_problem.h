/* Writing a problem to a file of any format: choice of the format, names, the file as a whole. */
#pragma once

#include <string_view>

#include "env/error.h"
#include "fileio/stream/output.h"

namespace tovik {
struct Problem;
}

namespace tovik::fileio {

enum class WriteFormat { unknown, lp, generic_lp, mps, generic_mps, sav };

/* LP, RLP, MPS, RMP, REW, SAV as prefixes in either case, of at most three characters. */
WriteFormat write_format_of_type(std::string_view type);
/* By the extension; of a compressed name by the one before. */
WriteFormat write_format_of_name(std::string_view name);

/* `type` may be null: then the name decides. Codes: 1421, 1424, 1422, 1650, 1803; of SAV files
 * 1562 in place of 1803. */
Status write_problem(Environment& env, const Problem& problem, const char* name, const char* type);
Status write_problem(Environment& env, const Problem& problem, const char* name, WriteFormat format);

/* Hands over the last bytes and makes the file stand; 1803 when that fails. */
Status finish_file(TextWriter& out, ByteSink& sink);

/* Creates a file and lets `write` fill it: int(TextWriter&), 0 or a code. The file is there only when all of
 * it is. Codes: 1421, 1422, 1803 bytes that could not be written, and that of `write`. */
template <class Write>
Status write_file(Environment& env, const char* name, Write&& write) {
  std::unique_ptr<ByteSink> sink;
  if (const Status status = create_file(env, name, sink); !status.ok()) return status;
  TextWriter out(*sink);
  if (const int code = write(out); code != 0) return code;
  return finish_file(out, *sink);
}
}  // namespace tovik::fileio
