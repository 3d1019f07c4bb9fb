#include "fileio/lp_format/text.h"

#include <cstdint>

#include "include/tovik.h"

namespace tovik::fileio::lp_format {
namespace {

constexpr std::size_t kStretch = 559;  // characters that must hold a sign in a longer line

bool is_invalid(unsigned char c) {
  return (c < 32 && !is(static_cast<char>(c), kBlank | kLineEnd)) || c == 127 || c == 255;
}

/* Whether anything but plain content is in the line; one pass that the compiler turns into vector code. */
bool needs_cleaning(std::string_view text) {
  std::uint8_t found = 0;
  for (const char character : text) {
    const std::uint8_t c = static_cast<std::uint8_t>(character);
    found |= static_cast<std::uint8_t>((c < 32) & (c != '\t')) | static_cast<std::uint8_t>(c == '\\') |
             static_cast<std::uint8_t>(c == 127) | static_cast<std::uint8_t>(c == 255);
  }
  return found != 0;
}

bool is_sign(char c) {
  return c == '+' || c == '-';
}

}  // namespace

bool ContentLines::next() {
  if (has_rest_) {
    has_rest_ = false;
    fresh_ = true;
    clean(rest_);
    return true;
  }
  fresh_ = lines_.complete();
  if (!lines_.next()) return false;
  std::string_view raw = lines_.line();
  if (raw.size() >= kStretch && !check_length(raw)) return false;
  if (!lines_.complete() && !cut_piece(raw)) return false;
  if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
  if (!lines_.complete() || needs_cleaning(raw)) {
    clean(raw);
  } else {
    line_ = raw;
  }
  return true;
}

bool ContentLines::check_length(std::string_view raw) {
  raw = raw.substr(0, raw.find('\\'));
  std::size_t begin = 0;
  while (raw.size() - begin >= kStretch) {
    const std::size_t sign = raw.substr(begin, kStretch).find_last_of("+-");
    if (sign == std::string_view::npos || sign == 0) {
      return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NAME_TOO_LONG, number()));
    }
    begin += sign;
  }
  return true;
}

/* Cuts the piece of an over-long line before its last sign that is not inside an exponent or an arrow, and
 * leaves the rest for the next piece. A piece that ends in a comment needs no cut. */
bool ContentLines::cut_piece(std::string_view& raw) {
  if (raw.find('\\') != std::string_view::npos) return true;
  for (std::size_t i = raw.size() - 1; i > 0; --i) {
    if (!is_sign(raw[i]) || is_exponent_letter(raw[i - 1]) || raw[i - 1] == '<') continue;
    lines_.give_back(raw.size() - i);
    raw = lines_.line();
    return true;
  }
  return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NAME_TOO_LONG, number()));
}

void ContentLines::clean(std::string_view raw) {
  scratch_.clear();
  std::size_t i = 0;
  for (; i < raw.size(); ++i) {
    const char c = raw[i];
    if (is(c, kLineEnd)) break;
    if (is_invalid(static_cast<unsigned char>(c))) {
      messages_.log().warn("Warning, line %d: Unexpected character code %d skipped.\n", number(),
                           static_cast<int>(static_cast<unsigned char>(c)));
    } else {
      scratch_.push_back(c);
    }
  }
  if (i < raw.size() && raw[i] == '\\') {
    lines_.skip_rest_of_line();
  } else if (i < raw.size()) {
    rest_ = raw.substr(i + 1);
    has_rest_ = true;
  }
  scratch_.push_back('\n');
  line_ = std::string_view(scratch_).substr(0, scratch_.size() - 1);
}

}  // namespace tovik::fileio::lp_format
