/* The frame of every writer of text files: the file as a whole, there only when all of it is. */
#pragma once

#include "env/error.h"
#include "fileio/stream/output.h"

namespace tovik::fileio {

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
