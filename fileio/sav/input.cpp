#include "fileio/sav/input.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "fileio/sav/format.h"

namespace tovik::fileio::sav {
namespace {

constexpr std::size_t kBuffer = (std::size_t{1} << 16) + kAlignment;
constexpr std::size_t kFirstRoom = std::size_t{1} << 16;  // elements, of a file whose size is not known

}  // namespace

Input::Input(ByteSource& source)
    : source_(source),
      buffer_(std::make_unique_for_overwrite<char[]>(kBuffer)),
      size_(source.expected_size()) {}

void Input::account() {
  crc_.add(buffer_.get() + accounted_, at_ - accounted_);
  accounted_ = at_;
}

std::uint32_t Input::checksum() {
  account();
  return crc_.value();
}

/* Reads once, behind what is left of the buffer; false at the end of the file. */
bool Input::refill() {
  account();
  const std::size_t left = end_ - at_, to = at_ % kAlignment;
  if (left != 0) std::memmove(buffer_.get() + to, buffer_.get() + at_, left);
  at_ = accounted_ = to;
  end_ = to + left;
  const std::size_t count = source_.read(buffer_.get() + end_, kBuffer - end_);
  end_ += count;
  read_ += count;
  return count != 0;
}

bool Input::may_hold(std::uint64_t count) const {
  if (size_ == 0) return true;
  return count <= std::max(size_, read_) - read_ + (end_ - at_);
}

bool Input::take(void* to, std::size_t count) {
  char* place = static_cast<char*>(to);
  while (count != 0) {
    if (at_ == end_ && !refill()) return false;
    const std::size_t now = std::min(count, end_ - at_);
    std::memcpy(place, buffer_.get() + at_, now);
    at_ += now;
    place += now;
    count -= now;
  }
  return true;
}

template <class T>
bool Input::take_number(T& to) {
  if (!take(&to, sizeof to)) return false;
  if constexpr (std::endian::native == std::endian::big) {
    char* const bytes = reinterpret_cast<char*>(&to);
    std::reverse(bytes, bytes + sizeof to);
  }
  return true;
}

template <class T>
bool Input::take_array(std::uint64_t count, std::vector<T>& to) {
  if (count > std::numeric_limits<std::uint64_t>::max() / sizeof(T) || !may_hold(count * sizeof(T)))
    return false;
  if (size_ != 0) to.reserve(static_cast<std::size_t>(count));
  for (std::uint64_t left = count; left != 0;) {
    const std::size_t whole = (end_ - at_) / sizeof(T);
    if (whole == 0) {
      if (!refill()) return false;
      continue;
    }
    const std::size_t now = static_cast<std::size_t>(std::min<std::uint64_t>(left, whole));
    if (to.size() + now > to.capacity()) {
      const std::size_t more = std::max(to.size(), kFirstRoom);
      to.reserve(to.size() + std::max(now, static_cast<std::size_t>(std::min<std::uint64_t>(left, more))));
    }
    const T* const first = reinterpret_cast<const T*>(buffer_.get() + at_);
    to.insert(to.end(), first, first + now);
    if constexpr (std::endian::native == std::endian::big && sizeof(T) > 1) {
      for (std::size_t k = to.size() - now; k < to.size(); ++k) {
        char* const bytes = reinterpret_cast<char*>(&to[k]);
        std::reverse(bytes, bytes + sizeof(T));
      }
    }
    at_ += now * sizeof(T);
    left -= now;
  }
  return true;
}

bool Input::skip(std::uint64_t count) {
  if (!may_hold(count)) return false;
  while (count != 0) {
    if (at_ == end_ && !refill()) return false;
    const std::size_t now = static_cast<std::size_t>(std::min<std::uint64_t>(count, end_ - at_));
    at_ += now;
    count -= now;
  }
  return true;
}

bool Input::at_end() {
  return at_ == end_ && !refill();
}

template bool Input::take_array(std::uint64_t, std::vector<char>&);
template bool Input::take_array(std::uint64_t, std::vector<std::int32_t>&);
template bool Input::take_array(std::uint64_t, std::vector<std::int64_t>&);
template bool Input::take_array(std::uint64_t, std::vector<double>&);
template bool Input::take_number(std::uint16_t&);
template bool Input::take_number(std::uint32_t&);
template bool Input::take_number(std::uint64_t&);

}  // namespace tovik::fileio::sav
