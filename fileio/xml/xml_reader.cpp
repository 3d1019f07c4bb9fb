#include "fileio/xml/xml_reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>

#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr int kDeepest = 100;  // elements within each other; a sound file has four, and each one takes memory

/* Two-byte characters of UTF-8 as the single bytes that they stand for. */
std::string folded(const char* text) {
  std::string bytes;
  for (; *text != '\0'; ++text) {
    const auto first = static_cast<unsigned char>(text[0]), second = static_cast<unsigned char>(text[1]);
    if ((first & 0xE0) == 0xC0 && (second & 0xC0) == 0x80) {
      bytes += static_cast<char>((first & 0x1F) << 6 | (second & 0x3F));
      ++text;
    } else {
      bytes += *text;
    }
  }
  return bytes;
}

}  // namespace

XmlReader::XmlReader(ReaderLog& log) : log_(log), parser_(memory_.make_parser()) {
  if (!parser_) throw std::bad_alloc();
  XML_SetUserData(parser_.get(), this);
  XML_SetElementHandler(parser_.get(), on_start, on_end);
  XML_SetXmlDeclHandler(parser_.get(), on_declaration);
}

/* No exception may pass through the parser. */
template <class Work>
void XmlReader::guarded(void* self, Work&& work) {
  XmlReader& reader = *static_cast<XmlReader*>(self);
  if (reader.out_of_memory_ || reader.failure_) return;
  try {
    work(reader);
  } catch (const std::bad_alloc&) {
    reader.out_of_memory_ = true;
  }
  if (reader.out_of_memory_ || reader.failure_) XML_StopParser(reader.parser_.get(), XML_FALSE);
}

void XMLCALL XmlReader::on_start(void* self, const XML_Char* name, const XML_Char** attributes) {
  guarded(self, [&](XmlReader& reader) {
    if (++reader.depth_ > kDeepest)
      reader.failure_ = ReadFailure::at(TVK_ERROR_XML_PARSE, reader.line(), "elements nested too deep");
    if (!reader.failure_) reader.start(name, attributes);
  });
}

void XMLCALL XmlReader::on_end(void* self, const XML_Char* name) {
  guarded(self, [&](XmlReader& reader) {
    --reader.depth_;
    reader.end(name);
  });
}

void XMLCALL XmlReader::on_declaration(void* self, const XML_Char*, const XML_Char* encoding, int) {
  if (encoding == nullptr) return;
  std::string word(encoding);
  std::ranges::transform(word, word.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
  static_cast<XmlReader*>(self)->latin1_ = word == "iso-8859-1";
}

std::string XmlReader::text(const char* bytes) const {
  return latin1_ ? folded(bytes) : std::string(bytes);
}

double XmlReader::number(const char* digits, double absent) {
  if (digits == nullptr) return absent;
  double value = 0;
  if (!parse_whole_number(digits, digits + std::strlen(digits), value))
    failure_ = ReadFailure::at(TVK_ERROR_LINE_NUMBER_CONVERSION, line(), digits);
  return value;
}

int XmlReader::resolve(const Identity& element, const model::NameTable& names, int count, bool column) {
  const double index = element.index == nullptr ? -1 : std::trunc(number(element.index, -1));
  const bool inside = index >= 0 && index < count;
  if (failure_) return -1;
  if (element.name != nullptr && !names.empty()) {
    const std::string name = text(element.name);
    if (inside && names.name(static_cast<int>(index)) == name) return static_cast<int>(index);
    const int found = names.find(name);
    if (found < 0) {
      warn(column ? "Warning, line %d: '%.255s' is not a variable.\n"
                  : "Warning, line %d: '%.255s' is not a constraint.\n",
           line(), name.c_str());
    }
    return found;
  }
  if (inside) return static_cast<int>(index);
  const int shown = static_cast<int>(std::clamp(index, -2147483647.0, 2147483647.0));
  warn(column ? "Warning, line %d: Variable index '%d' out of range.\n"
              : "Warning, line %d: Constraint index '%d' out of range.\n",
       line(), shown);
  return -1;
}

ReadFailure XmlReader::run(ByteSource& source) {
  const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
  for (bool last = false; !last;) {
    std::size_t size = 0;
    while (size < kBlock) {
      const std::size_t count = source.read(block.get() + size, kBlock - size);
      if (count == 0) break;
      size += count;
    }
    last = size < kBlock;
    if (memory_.parse(parser_.get(), block.get(), size, last) == XML_STATUS_OK) continue;
    const XML_Error error = XML_GetErrorCode(parser_.get());
    if (memory_.exceeded()) return ReadFailure::at(TVK_ERROR_XML_PARSE, line(), "elements too large");
    if (out_of_memory_ || error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    if (failure_) return failure_;
    return ReadFailure::at(TVK_ERROR_XML_PARSE, line(), XML_ErrorString(error));
  }
  if (warnings_.suppressed() > 0) log_.warn("%d warnings not printed.\n", warnings_.suppressed());
  return {};
}

}  // namespace tovik::fileio
