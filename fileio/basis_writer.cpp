#include <algorithm>

#include "fileio/basis_file.h"
#include "fileio/card_file.h"
#include "include/tovik.h"
#include "model/default_names.h"

namespace tovik::fileio {
namespace {

void write_pair(TextWriter& out, char end, std::string_view column, std::string_view row) {
  char* p = copy_text(out.room(2 * kMaxNameLength + 16), " X");
  *p++ = end;
  *p++ = ' ';
  p = copy_text(copy_text(copy_text(p, column), "  "), row);
  *p++ = '\n';
  out.advance_to(p);
}

}  // namespace

ReadFailure basic_count_failure(int basic, int rows) {
  if (basic == rows) return {};
  ReadFailure failure = ReadFailure::at(TVK_ERROR_BASIC_VARIABLE_COUNT, std::abs(basic - rows));
  failure.arguments = ReadFailure::Arguments::is;
  failure.text = basic > rows ? "extra" : "too few";
  return failure;
}

ReadFailure write_basis(const WriteSource& source, const BasisView& basis, ReaderLog& log, TextWriter& out) {
  const model::Model& model = source.model;
  const int rows = model.num_rows(), columns = model.num_columns();
  const auto basic =
      std::ranges::count(basis.column_status, TVK_BASIC) + std::ranges::count(basis.row_status, TVK_BASIC);
  if (ReadFailure failure = basic_count_failure(static_cast<int>(basic), rows)) return failure;
  const WriterNames column_names = card_names(model.column_names(), model::kColumnFamily, columns, log);
  const WriterNames row_names = card_names(model.row_names(), model::kRowFamily, rows, log);
  out.put("NAME          " + title(source.name));
  out.print("  Iterations %d  Rows %d  Cols %d\n", basis.iterations, rows, columns);
  int row = 0;  // as many rows are non-basic as columns are basic
  for (int j = 0; j < columns; ++j) {
    if (basis.column_status[static_cast<std::size_t>(j)] != TVK_BASIC) continue;
    while (basis.row_status[static_cast<std::size_t>(row)] == TVK_BASIC) ++row;
    const auto at = static_cast<std::size_t>(row);
    const bool upper = model.sense()[at] == 'G' || basis.row_status[at] == TVK_AT_UPPER;
    write_pair(out, upper ? 'U' : 'L', column_names[j], row_names[row]);
    ++row;
  }
  for (int j = 0; j < columns; ++j) {
    if (basis.column_status[static_cast<std::size_t>(j)] != TVK_AT_UPPER) continue;
    out.put(" UL ");
    out.put(column_names[j]);
    out.put('\n');
  }
  out.put("ENDATA\n");
  return {};
}

}  // namespace tovik::fileio
