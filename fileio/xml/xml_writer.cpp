#include "fileio/xml/xml_writer.h"

#include <charconv>
#include <cmath>

#include "fileio/stream/number_text.h"

namespace tovik::fileio {
namespace {

bool is_plain(unsigned char c) {
  return c >= 0x20 && c < 0x80;
}

/* Bytes of the character that begins at `at`, as legal UTF-8; 0 when it is none that XML allows. */
std::size_t utf8_length(std::string_view text, std::size_t at) {
  const auto byte = [text, at](std::size_t k) {
    return at + k < text.size() ? static_cast<unsigned char>(text[at + k]) : 0u;
  };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4) return 0;
  unsigned code = first & (0x7Fu >> length);
  for (std::size_t k = 1; k < length; ++k) {
    if ((byte(k) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(k) & 0x3F);
  }
  constexpr unsigned kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  const bool fine =
      code >= kSmallest[length] && code <= 0x10FFFF && !surrogate && code != 0xFFFE && code != 0xFFFF;
  return fine ? length : 0;
}

bool is_space(char c) {
  return c == '\t' || c == '\n' || c == '\r';
}

}  // namespace

XmlText xml_text(std::string_view text) {
  XmlText kind = XmlText::utf8;
  for (std::size_t at = 0; at < text.size();) {
    const auto c = static_cast<unsigned char>(text[at]);
    if (c < 0x20 && !is_space(text[at])) return XmlText::impossible;
    const std::size_t length = is_plain(c) ? 1 : utf8_length(text, at);
    if (length == 0) kind = XmlText::latin1;
    at += length == 0 ? 1 : length;
  }
  return kind;
}

XmlWriter::XmlWriter(TextWriter& out, bool latin1) : out_(out) {
  out_.put(latin1 ? "<?xml version = \"1.0\" encoding=\"iso-8859-1\" standalone=\"yes\"?>\n"
                  : "<?xml version = \"1.0\" standalone=\"yes\"?>\n");
}

void XmlWriter::indent() {
  for (int k = 0; k < level_; ++k) out_.put(' ');
}

void XmlWriter::open(std::string_view name) {
  indent();
  out_.put('<');
  out_.put(name);
  out_.put(">\n");
  ++level_;
}

void XmlWriter::begin_container(std::string_view name) {
  indent();
  out_.put('<');
  out_.put(name);
}

void XmlWriter::end_of_attributes() {
  out_.put(">\n");
  ++level_;
}

void XmlWriter::open_with_version(std::string_view name, std::string_view version) {
  begin_container(name);
  attribute("version", version);
  end_of_attributes();
}

void XmlWriter::close(std::string_view name) {
  --level_;
  indent();
  out_.put("</");
  out_.put(name);
  out_.put(">\n");
}

void XmlWriter::begin(std::string_view name, bool tall) {
  indent();
  out_.put('<');
  out_.put(name);
  tall_ = tall;
  ++level_;
}

void XmlWriter::end() {
  out_.put("/>\n");
  tall_ = false;
  --level_;
}

void XmlWriter::start_attribute(std::string_view name) {
  if (tall_) {
    out_.put('\n');
    indent();
  }
  out_.put(' ');
  out_.put(name);
  out_.put("=\"");
}

void XmlWriter::escaped(std::string_view text) {
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::string_view entity;
    switch (text[at]) {
      case '"':
        entity = "&quot;";
        break;
      case '&':
        entity = "&amp;";
        break;
      case '\'':
        entity = "&apos;";
        break;
      case '<':
        entity = "&lt;";
        break;
      case '>':
        entity = "&gt;";
        break;
      case '\t':
        entity = "&#9;";
        break;
      case '\n':
        entity = "&#10;";
        break;
      case '\r':
        entity = "&#13;";
        break;
      default:
        continue;
    }
    out_.put(text.substr(begin, at - begin));
    out_.put(entity);
    begin = at + 1;
  }
  out_.put(text.substr(begin));
}

void XmlWriter::attribute(std::string_view name, std::string_view text) {
  start_attribute(name);
  escaped(text);
  out_.put('"');
}

void XmlWriter::attribute(std::string_view name, int value) {
  start_attribute(name);
  char* p = out_.room(kNumberText);
  out_.advance_to(copy_text(std::to_chars(p, p + 12, value).ptr, "\""));
}

void XmlWriter::attribute(std::string_view name, double value) {
  finite_ = finite_ && std::isfinite(value);
  start_attribute(name);
  char* to = out_.room(kNumberText + 1);
  out_.advance_to(copy_text(all_digits_ ? write_shortest(to, value) : write_general15(to, value), "\""));
}

}  // namespace tovik::fileio
