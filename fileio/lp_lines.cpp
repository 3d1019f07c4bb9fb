#include "fileio/lp_lines.h"

#include <cmath>

#include "fileio/model_reader.h"
#include "fileio/number_text.h"

namespace tovik::fileio::lp {
namespace {

constexpr std::string_view kIndent = "     ";
constexpr std::size_t kLongestPiece = 2 * kMaxNameLength + kNumberText + 16;

}  // namespace

void Lines::header(std::string_view text) {
  out_.put(text);
  out_.put('\n');
}

void Lines::piece(std::string_view text) {
  char* p = out_.room(kLongestPiece);
  if (used_ + text.size() > kWidth && used_ > kIndent.size()) {
    *p++ = '\n';
    p = copy_text(p, kIndent);
    used_ = kIndent.size();
  }
  out_.advance_to(copy_text(p, text));
  used_ += text.size();
}

void Lines::label(std::string_view name) {
  char text[kMaxNameLength + 2];
  text[0] = ' ';
  char* end = copy_text(text + 1, name);
  *end++ = ':';
  piece({text, static_cast<std::size_t>(end - text)});
  first_ = true;
}

void Lines::end() {
  out_.put('\n');
  used_ = 0;
}

char* Lines::sign(char* to, bool negative) {
  if (!first_ || negative) {
    *to++ = ' ';
    *to++ = negative ? '-' : '+';
  }
  *to++ = ' ';
  first_ = false;
  return to;
}

/* Sign and number of a term; a factor of one is not written. */
char* Lines::factor(char* to, double coefficient) {
  const double size = std::fabs(coefficient);
  to = sign(to, coefficient < 0);
  if (size == 1) return to;
  to = write_number(to, size);
  *to++ = ' ';
  return to;
}

void Lines::term(double coefficient, std::string_view name) {
  char text[kLongestPiece];
  char* end = copy_text(factor(text, coefficient), name);
  piece({text, static_cast<std::size_t>(end - text)});
}

void Lines::product(double coefficient, std::string_view name, std::string_view other) {
  char text[kLongestPiece];
  char* end = copy_text(factor(text, coefficient), name);
  end = name == other ? copy_text(end, "^2") : copy_text(copy_text(end, " * "), other);
  piece({text, static_cast<std::size_t>(end - text)});
}

void Lines::constant(double value) {
  char text[kLongestPiece];
  char* end = write_number(sign(text, value < 0), std::fabs(value));
  piece({text, static_cast<std::size_t>(end - text)});
}

void Lines::number(std::string_view before, double value) {
  char text[kLongestPiece];
  char* end = write_number(copy_text(text, before), value);
  piece({text, static_cast<std::size_t>(end - text)});
}

char* Lines::write_number(char* to, double value) {
  finite_ = finite_ && std::isfinite(value);
  return write_general15(to, value);
}

}  // namespace tovik::fileio::lp
