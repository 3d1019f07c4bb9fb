/* Bytes of memory, a look at first bytes, and lines of any source. */
#include <algorithm>
#include <cstring>
#include <limits>

#include "fileio/stream/stream.h"

namespace tovik::fileio {

std::size_t MemorySource::read(char* buffer, std::size_t capacity) {
  const std::size_t count = std::min(capacity, rest_.size());
  if (count != 0) std::memcpy(buffer, rest_.data(), count);
  rest_.remove_prefix(count);
  return count;
}

std::string_view PeekSource::look(std::size_t count) {
  std::size_t size = seen_.size();
  if (size < count) seen_.resize(count);
  while (size < count) {
    const std::size_t more = source_->read(seen_.data() + size, count - size);
    if (more == 0) break;
    size += more;
  }
  seen_.resize(size);
  return {seen_.data(), std::min(size, count)};
}

std::size_t PeekSource::read(char* buffer, std::size_t capacity) {
  if (delivered_ == seen_.size()) return source_->read(buffer, capacity);
  const std::size_t count = std::min(capacity, seen_.size() - delivered_);
  std::memcpy(buffer, seen_.data() + delivered_, count);
  delivered_ += count;
  return count;
}

LineReader::LineReader(ByteSource& source, std::size_t buffer_size)
    : source_(source),
      capacity_(buffer_size),
      buffer_(std::make_unique_for_overwrite<char[]>(buffer_size + 1)) {}

/* Makes room in front and reads once; false at the end of the data. There is room when the buffer is not
 * full. */
bool LineReader::refill() {
  if (begin_ != 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  const std::size_t count = source_.read(buffer_.get() + end_, capacity_ - end_);
  end_ += count;
  at_end_ = count == 0;
  return !at_end_;
}

bool LineReader::next() {
  const bool begins = complete_;
  const auto count_line = [&] {
    if (begins && number_ != std::numeric_limits<int>::max()) ++number_;
  };
  std::size_t searched = 0;  // bytes from begin_ on that hold no line feed
  for (;;) {
    const char* text = buffer_.get() + begin_;
    const std::size_t size = end_ - begin_;
    if (const void* feed = size == searched ? nullptr : std::memchr(text + searched, '\n', size - searched)) {
      const std::size_t length = static_cast<std::size_t>(static_cast<const char*>(feed) - text);
      line_ = {text, length};
      begin_ += length + 1;
      count_line();
      complete_ = true;
      return true;
    }
    searched = size;
    const bool full = size == capacity_;
    if (!full && !at_end_ && refill()) continue;
    if (!full && size == 0) {
      complete_ = true;
      line_ = {};
      return false;
    }
    buffer_[end_] = '\n';
    line_ = {buffer_.get() + begin_, size};
    begin_ = end_;
    count_line();
    complete_ = !full;
    return true;
  }
}

void LineReader::give_back(std::size_t count) {
  begin_ -= count;
  line_.remove_suffix(count);
}

void LineReader::skip_rest_of_line() {
  while (!complete_ && next()) {
  }
}

}  // namespace tovik::fileio
