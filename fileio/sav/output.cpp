#include "fileio/sav/output.h"

#include <algorithm>
#include <bit>

namespace tovik::fileio::sav {
namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 16;
constexpr std::size_t kPiece = std::size_t{1} << 18;  // still in the cache when the system copies it

}  // namespace

Output::Output(ByteSink& sink) : sink_(sink), buffer_(std::make_unique_for_overwrite<char[]>(kBuffer)) {
  put("\n", 1);
  put(kSavSignature.data(), kSavSignature.size());
  put(kTransferMark.data(), kTransferMark.size());
  put("", 1);
  put_number(kMajor);
  put_number(kMinor);
}

void Output::emit(const char* bytes, std::size_t count) {
  while (count != 0 && !failed_) {
    const std::size_t now = std::min(count, kPiece);
    crc_.add(bytes, now);
    failed_ = !sink_.write(bytes, now);
    bytes += now;
    count -= now;
  }
}

void Output::flush() {
  emit(buffer_.get(), used_);
  used_ = 0;
}

void Output::put(const void* bytes, std::size_t count) {
  position_ += count;
  if (count > kBuffer - used_) flush();
  if (count >= kBuffer) {
    emit(static_cast<const char*>(bytes), count);
  } else if (count != 0) {
    std::memcpy(buffer_.get() + used_, bytes, count);
    used_ += count;
  }
}

template <class T>
void Output::put_number(T value) {
  if constexpr (std::endian::native == std::endian::big && sizeof value > 1) {
    char* const bytes = reinterpret_cast<char*>(&value);
    std::reverse(bytes, bytes + sizeof value);
  }
  put(&value, sizeof value);
}

template <class T>
void Output::add(std::span<const T> values) {
  if constexpr (std::endian::native == std::endian::little || sizeof(T) == 1) {
    put(values.data(), values.size_bytes());
  } else {
    for (const T value : values) put_number(value);
  }
}

void Output::pad() {
  static constexpr char kZeros[kAlignment] = {};
  put(kZeros, (kAlignment - position_ % kAlignment) % kAlignment);
}

void Output::header(std::uint32_t kind, char type, std::uint8_t flags, std::uint64_t count) {
  pad();
  put_number(kind);
  put_number(type);
  put_number(flags);
  put_number(std::uint16_t{0});
  put_number(count);
}

bool Output::close() {
  header(kEnd, kTypeLetter<std::int64_t>, 0, 1);
  flush();
  put_number(std::uint64_t{crc_.value()});
  flush();
  return !failed_;
}

template void Output::add(std::span<const char>);
template void Output::add(std::span<const std::int32_t>);
template void Output::add(std::span<const std::int64_t>);
template void Output::add(std::span<const double>);

}  // namespace tovik::fileio::sav
