/* The memory of one XML parser, bounded: names, declarations and the largest token are kept until the document ends, and a
 * document may have as many of them, and as large, as whoever wrote it likes. A solution file needs some ten thousand bytes.
 *
 *   XmlMemory memory;
 *   XmlParser parser = memory.make_parser();               // null: out of memory
 *   memory.parse(parser.get(), block, size, false);        // as XML_Parse; an error with exceeded(): the document's fault
 *
 * The memory must outlive the parser. */
#pragma once

#include <expat.h>

#include <cstddef>
#include <memory>

namespace tovik::fileio {

struct XmlParserFree {
  void operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }
};
using XmlParser = std::unique_ptr<XML_ParserStruct, XmlParserFree>;

class XmlMemory {
 public:
  /* A token takes up to half of it, and each block of a document is searched again with the token that it goes on with. */
  static constexpr std::size_t kMost = std::size_t{1} << 23;

  XmlMemory() = default;
  XmlMemory(const XmlMemory&) = delete;
  XmlMemory& operator=(const XmlMemory&) = delete;
  XmlParser make_parser();
  XML_Status parse(XML_ParserStruct* parser, const char* block, std::size_t size, bool last);
  bool exceeded() const { return exceeded_; }

 private:
  struct Block;
  class Current;
  static void* allocate(std::size_t size);
  static void* resize(void* memory, std::size_t size);
  static void release(void* memory);

  std::size_t used_ = 0;
  bool exceeded_ = false;
};

}  // namespace tovik::fileio
