#include "fileio/mps/input.h"

#include <cstring>

namespace tovik::fileio::mps {

namespace {

/* Bytes up to and with the last line feed of [text, text + size), looking at the new bytes only. */
std::size_t whole_lines(const char* text, std::size_t from, std::size_t size) {
  while (size > from && text[size - 1] != '\n') --size;
  return size > from ? size : 0;
}

}  // namespace

bool LineBlocks::next() {
  const std::size_t rest = filled_ - end_;
  if (rest > 0) std::memmove(buffer_.data(), buffer_.data() + end_, rest);
  filled_ = rest;
  begin_ = end_ = 0;
  while (!at_end_ && filled_ < kBlock) {
    const std::size_t got = source_.read(buffer_.data() + filled_, kBlock - filled_);
    at_end_ = got == 0;
    const std::size_t before = filled_;
    filled_ += got;
    end_ = whole_lines(buffer_.data(), before, filled_);
    if (end_ > 0) return true;
  }
  if (filled_ == 0) return false;
  if (filled_ == kBlock) {  // no line feed in sight
    too_long_ = true;
    return false;
  }
  buffer_[filled_++] = '\n';
  end_ = filled_;
  return true;
}

void LineBlocks::drain() {
  end_ = filled_ = 0;
  while (!at_end_) at_end_ = source_.read(buffer_.data(), kBlock) == 0;
}

}  // namespace tovik::fileio::mps
