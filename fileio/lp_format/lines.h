/* The lines of an LP file on their way out: pieces are put on a line while it stays within 96 characters; the
 * piece that would pass that begins the next one. Pieces are never cut, and begin with a blank. They are
 * written where they will stand and moved only when a line end comes before them. Names have at most
 * kMaxNameLength characters. */
#pragma once

#include <string_view>

#include "fileio/stream/output.h"

namespace tovik::fileio::lp_format {

class LineWriter {
 public:
  explicit LineWriter(TextWriter& out) : out_(out) {}

  void header(std::string_view text);  // a line by itself
  void label(std::string_view name);   // " NAME:", the next term is the first of an expression
  void piece(std::string_view text);
  void name(std::string_view name);  // " NAME"
  void member(std::string_view name, double weight);
  void number(std::string_view before, double value);
  void end();

  void begin_expression() { first_ = true; }
  void term(double coefficient, std::string_view name);
  /* A square when both names are the same. */
  void product(double coefficient, std::string_view name, std::string_view other);
  void constant(double value);

  /* Bounds: each stands on a line of its own, however long. Infinite ones are -inf and inf. */
  void statement(std::string_view name, std::string_view behind);
  void statement(std::string_view name, std::string_view sense, double value);
  void statement(double lower, std::string_view name, double upper);

  bool finite() const { return finite_; }  // all numbers so far were

 private:
  static constexpr std::size_t kWidth = 96;
  char* begin_piece() { return out_.room(kLongestPiece); }
  void end_piece(char* end);
  char* sign(char* to, bool negative);
  char* factor(char* to, double coefficient);
  char* write_number(char* to, double value);
  char* write_bound(char* to, double value);
  static const std::size_t kLongestPiece;

  TextWriter& out_;
  std::size_t used_ = 0;  // characters on the line
  bool first_ = true;
  bool finite_ = true;
};

}  // namespace tovik::fileio::lp_format
