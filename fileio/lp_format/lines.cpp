#include "fileio/lp_format/lines.h"

#include <cmath>

#include "fileio/record/model_reader.h"
#include "fileio/stream/number_text.h"

namespace tovik::fileio::lp_format {
namespace {

constexpr std::string_view kBreak = "\n     ";
constexpr std::size_t kIndent = kBreak.size() - 1;

}  // namespace

const std::size_t LineWriter::kLongestPiece = 2 * kMaxNameLength + 2 * kNumberText + 32;

void LineWriter::header(std::string_view text) {
  out_.put(text);
  out_.put('\n');
}

/* The piece stands where begin_piece() said. */
void LineWriter::end_piece(char* end) {
  char* const begin = out_.at();
  const auto size = static_cast<std::size_t>(end - begin);
  used_ += size;
  if (used_ > kWidth && used_ - size > kIndent) {
    std::memmove(begin + kBreak.size(), begin, size);
    copy_text(begin, kBreak);
    end += kBreak.size();
    used_ = kIndent + size;
  }
  out_.advance_to(end);
}

void LineWriter::piece(std::string_view text) {
  end_piece(copy_text(begin_piece(), text));
}

void LineWriter::name(std::string_view name) {
  char* p = begin_piece();
  *p++ = ' ';
  end_piece(copy_text(p, name));
}

void LineWriter::label(std::string_view text) {
  char* p = begin_piece();
  *p++ = ' ';
  p = copy_text(p, text);
  *p++ = ':';
  end_piece(p);
  first_ = true;
}

void LineWriter::end() {
  out_.put('\n');
  used_ = 0;
}

char* LineWriter::sign(char* to, bool negative) {
  if (!first_ || negative) {
    *to++ = ' ';
    *to++ = negative ? '-' : '+';
  }
  *to++ = ' ';
  first_ = false;
  return to;
}

/* Sign and number of a term; a factor of one is not written. */
char* LineWriter::factor(char* to, double coefficient) {
  const double size = std::fabs(coefficient);
  to = sign(to, coefficient < 0);
  if (size == 1) return to;
  to = write_number(to, size);
  *to++ = ' ';
  return to;
}

void LineWriter::term(double coefficient, std::string_view name) {
  end_piece(copy_text(factor(begin_piece(), coefficient), name));
}

void LineWriter::product(double coefficient, std::string_view name, std::string_view other) {
  char* end = copy_text(factor(begin_piece(), coefficient), name);
  end_piece(name == other ? copy_text(end, "^2") : copy_text(copy_text(end, " * "), other));
}

void LineWriter::constant(double value) {
  end_piece(write_number(sign(begin_piece(), value < 0), std::fabs(value)));
}

void LineWriter::number(std::string_view before, double value) {
  end_piece(write_number(copy_text(begin_piece(), before), value));
}

void LineWriter::member(std::string_view name, double weight) {
  char* p = begin_piece();
  *p++ = ' ';
  p = copy_text(p, name);
  *p++ = ':';
  end_piece(write_number(p, weight));
}

void LineWriter::statement(std::string_view name, std::string_view behind) {
  char* p = begin_piece();
  *p++ = ' ';
  out_.advance_to(copy_text(copy_text(copy_text(p, name), behind), "\n"));
}

void LineWriter::statement(std::string_view name, std::string_view sense, double value) {
  char* p = begin_piece();
  *p++ = ' ';
  p = write_number(copy_text(copy_text(p, name), sense), value);
  *p++ = '\n';
  out_.advance_to(p);
}

void LineWriter::statement(double lower, std::string_view name, double upper) {
  char* p = begin_piece();
  *p++ = ' ';
  p = copy_text(write_bound(p, lower), " <= ");
  p = copy_text(copy_text(p, name), " <= ");
  out_.advance_to(copy_text(write_bound(p, upper), "\n"));
}

char* LineWriter::write_bound(char* to, double value) {
  if (value >= kInfinity) return copy_text(to, "inf");
  return value <= -kInfinity ? copy_text(to, "-inf") : write_number(to, value);
}

char* LineWriter::write_number(char* to, double value) {
  finite_ = finite_ && std::isfinite(value);
  return write_general15(to, value);
}

}  // namespace tovik::fileio::lp_format
