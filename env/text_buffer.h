/* Formatted text of any length. Up to 1,023 bytes need no memory, so that "Out of memory" can be told when
 * there is none; a longer text is cut there only if it cannot be allocated. */
#pragma once

#include <cstdarg>
#include <cstddef>
#include <memory>

namespace tovik {

class TextBuffer {
 public:
  void append(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void append_list(const char* format, std::va_list arguments) __attribute__((format(printf, 2, 0)));
  const char* text() const { return grown_ ? grown_.get() : fixed_; }
  int length() const { return static_cast<int>(length_); }

 private:
  bool grow(std::size_t needed);
  char* data() { return grown_ ? grown_.get() : fixed_; }

  char fixed_[1024] = {0};
  std::unique_ptr<char[]> grown_;
  std::size_t capacity_ = sizeof fixed_;
  std::size_t length_ = 0;
};

}  // namespace tovik
