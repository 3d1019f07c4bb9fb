/* Feeds bytes to the LP reader and checks what every reader promises about its result. Seeds:
 * tests/fileio/corpus/lp. */
#include "fuzz/reader_harness.h"

using namespace tovik::fileio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::SlowSource source({reinterpret_cast<const char*>(data), size});
  fuzz::SilentLog log;
  FileModel model;
  ReadOptions options;
  options.line_buffer = 1024;
  const ReadFailure failure = read_lp(source, options, log, model);
  if (failure) {
    fuzz::require(failure.code >= TVK_ERROR_TOO_MANY_ROWS && failure.code <= TVK_ERROR_LINE_NO_SOS_TYPE);
  } else {
    fuzz::check(model);
  }
  return 0;
}
