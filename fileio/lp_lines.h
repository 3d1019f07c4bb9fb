/* The lines of an LP file on their way out: pieces are put on a line while it stays within 96 characters; the
 * piece that would pass that begins the next one. Pieces are never cut, and begin with a blank. */
#pragma once

#include <string_view>

#include "fileio/output.h"

namespace tovik::fileio::lp {

class Lines {
 public:
  explicit Lines(TextWriter& out) : out_(out) {}

  void header(std::string_view text);  // a line by itself
  void label(std::string_view name);   // " NAME:", the next term is the first of an expression
  void piece(std::string_view text);
  void number(std::string_view before, double value);
  void end();

  void begin_expression() { first_ = true; }
  void term(double coefficient, std::string_view name);
  /* A square when both names are the same. */
  void product(double coefficient, std::string_view name, std::string_view other);
  void constant(double value);

  char* write_number(char* to, double value);  // to memory
  bool finite() const { return finite_; }      // all numbers so far were

 private:
  static constexpr std::size_t kWidth = 96;
  char* sign(char* to, bool negative);
  char* factor(char* to, double coefficient);

  TextWriter& out_;
  std::size_t used_ = 0;  // characters on the line
  bool first_ = true;
  bool finite_ = true;
};

}  // namespace tovik::fileio::lp
