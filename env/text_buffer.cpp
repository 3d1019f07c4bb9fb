#include "env/text_buffer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace tovik {

void TextBuffer::append(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  append_list(format, arguments);
  va_end(arguments);
}

void TextBuffer::append_list(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int added = std::vsnprintf(data() + length_, capacity_ - length_, format, arguments);
  if (added < 0) {
    data()[length_] = '\0';  // a conversion that the C library refuses adds nothing
  } else {
    const std::size_t needed = length_ + static_cast<std::size_t>(added) + 1;
    if (needed > capacity_ && grow(needed))
      std::vsnprintf(data() + length_, capacity_ - length_, format, again);
    length_ = std::min(needed, capacity_) - 1;
  }
  va_end(again);
}

bool TextBuffer::grow(std::size_t needed) {
  const std::size_t capacity = std::max(needed, 2 * capacity_);
  std::unique_ptr<char[]> larger(new (std::nothrow) char[capacity]);
  if (!larger) return false;
  std::memcpy(larger.get(), text(), length_ + 1);
  grown_ = std::move(larger);
  capacity_ = capacity;
  return true;
}

}  // namespace tovik
