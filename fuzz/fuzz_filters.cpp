/* Feeds bytes to the reader of filter files, and checks what it promises. Seeds: tests/fileio/corpus/filters. */
#include "fileio/xml/filter_file.h"
#include "fuzz/reader_harness.h"
#include "fuzz/small_model.h"

using namespace tovik;
using namespace tovik::fileio;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const model::Model model = fuzz::small_model();
  fuzz::SlowSource source(std::string_view(reinterpret_cast<const char*>(data), size));
  fuzz::SilentLog log;
  std::vector<SolutionFilter> filters;
  const ReadFailure failure = read_filters(source, model, log, filters);
  require(!failure || failure.code == TVK_ERROR_XML_PARSE ||
          failure.code == TVK_ERROR_LINE_NUMBER_CONVERSION);
  if (failure) return 0;
  for (const SolutionFilter& filter : filters) {
    const bool is_diversity = filter.kind == SolutionFilter::Kind::diversity;
    require(filter.coefficient.size() == filter.column.size());
    require(filter.reference.size() == (is_diversity ? filter.column.size() : 0));
    require(filter.lower == filter.lower && filter.upper == filter.upper);
    for (const int j : filter.column) require(j >= 0 && j < model.num_columns());
  }
  return 0;
}
