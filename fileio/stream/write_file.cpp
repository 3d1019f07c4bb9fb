#include "fileio/stream/write_file.h"

#include "include/tovik.h"

namespace tovik::fileio {

Status finish_file(TextWriter& out, ByteSink& sink) {
  return out.close() && sink.commit() ? Status() : Status(TVK_ERROR_TEMPORARY_FILE_WRITE);
}

}  // namespace tovik::fileio
