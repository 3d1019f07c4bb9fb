#include "fileio/xml/xml_memory.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace tovik::fileio {

/* What stands in front of the bytes that the parser gets. */
struct alignas(std::max_align_t) XmlMemory::Block {
  XmlMemory* owner;
  std::size_t size;
};

/* The parser asks for memory without saying who it is: its owner on this thread. A handler may come to read another
 * document meanwhile. */
class XmlMemory::Current {
 public:
  explicit Current(XmlMemory& memory) : before_(std::exchange(memory_, &memory)) {}
  ~Current() { memory_ = before_; }
  Current(const Current&) = delete;
  Current& operator=(const Current&) = delete;
  static XmlMemory& memory() { return *memory_; }

 private:
  static thread_local XmlMemory* memory_;
  XmlMemory* before_;
};

thread_local XmlMemory* XmlMemory::Current::memory_ = nullptr;

void* XmlMemory::allocate(std::size_t size) {
  XmlMemory& memory = Current::memory();
  if (size > kMost || sizeof(Block) + size > kMost - memory.used_) {
    memory.exceeded_ = true;
    return nullptr;
  }
  void* const place = ::operator new(sizeof(Block) + size, std::nothrow);
  if (place == nullptr) return nullptr;
  memory.used_ += sizeof(Block) + size;
  return new (place) Block{&memory, size} + 1;
}

void* XmlMemory::resize(void* memory, std::size_t size) {
  void* const larger = allocate(size);
  if (larger == nullptr || memory == nullptr) return larger;
  std::memcpy(larger, memory, std::min(size, (static_cast<const Block*>(memory) - 1)->size));
  release(memory);
  return larger;
}

void XmlMemory::release(void* memory) {
  if (memory == nullptr) return;
  Block* const block = static_cast<Block*>(memory) - 1;
  block->owner->used_ -= sizeof(Block) + block->size;
  ::operator delete(block);
}

XmlParser XmlMemory::make_parser() {
  static constexpr XML_Memory_Handling_Suite kFunctions = {allocate, resize, release};
  const Current current(*this);
  return XmlParser(XML_ParserCreate_MM(nullptr, &kFunctions, nullptr));
}

XML_Status XmlMemory::parse(XML_ParserStruct* parser, const char* block, std::size_t size, bool last) {
  const Current current(*this);
  return XML_Parse(parser, block, static_cast<int>(size), last ? 1 : 0);
}

}  // namespace tovik::fileio
