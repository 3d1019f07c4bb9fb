/* Feeds bytes to the reader of solution and MIP-start files, and checks what it promises. Seeds:
 * tests/fileio/corpus/solution. */
#include "fileio/xml/solution_file.h"
#include "fuzz/reader_harness.h"
#include "fuzz/small_model.h"

using namespace tovik::fileio;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tovik::model::Model model = fuzz::small_model();
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (const bool several : {false, true}) {
    fuzz::SlowSource source(bytes);
    fuzz::SilentLog log;
    std::vector<SolutionFile> solutions;
    int found = 0;
    const ReadFailure failure = read_solutions(source, model, {!several, several}, log, solutions, found);
    require(!failure || failure.code == TVK_ERROR_XML_PARSE ||
            failure.code == TVK_ERROR_LINE_NUMBER_CONVERSION);
    require(solutions.size() <= static_cast<std::size_t>(found) && (several || solutions.size() <= 1));
    for (const SolutionFile& solution : solutions) {
      require(solution.x.size() == (several ? 0 : 6) && solution.effort >= 0 && solution.effort <= 4);
      require(solution.values.index.size() == solution.values.value.size());
      require(several != solution.values.index.empty());
      for (const int status : solution.column_status) require(status >= -1 && status <= 3);
    }
  }
  fuzz::SlowSource source(bytes);
  fuzz::SilentLog log;
  SolutionFile start;
  if (!read_start_text(source, model, log, start)) require(start.x.size() == 6);
  return 0;
}
