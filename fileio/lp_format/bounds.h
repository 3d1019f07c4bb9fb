/* The bounds section of an LP file: one statement a line, blanks do not count.
 *   name sense value, value sense name, value sense name sense value, name FREE */
#pragma once

#include <string>
#include <string_view>

#include "fileio/lp_format/builder.h"
#include "fileio/lp_format/scanner.h"

namespace tovik::fileio::lp_format {

class BoundReader {
 public:
  BoundReader(Scanner& scanner, Builder& builder, Messages& messages)
      : scanner_(scanner), builder_(builder), messages_(messages) {}

  bool read_section();  // false after a failure

 private:
  bool read_statement();
  bool read_free();
  bool read_name_first();
  bool read_value_first();
  bool read_sense(std::size_t& at, Sense& sense);
  bool read_value(std::string_view text, double& value);
  /* The column of a name, or -1 with a warning. */
  int column_of(std::string_view name);
  void apply(int column, Sense sense, double value);
  bool fail(int code) { return messages_.fail(ReadFailure::at(code, scanner_.line())); }

  Scanner& scanner_;
  Builder& builder_;
  Messages& messages_;
  std::string text_;  // the statement without blanks
};

}  // namespace tovik::fileio::lp_format
