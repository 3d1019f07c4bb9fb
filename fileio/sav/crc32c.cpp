#include "fileio/sav/crc32c.h"

#include <array>
#include <bit>
#include <cstring>

namespace tovik::fileio {
namespace {

constexpr std::size_t kSlices = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, kSlices>;

/* Entry b of table k: the remainder of byte b followed by k zero bytes. */
constexpr Tables make_tables() {
  Tables tables{};
  for (std::uint32_t b = 0; b < 256; ++b) {
    std::uint32_t remainder = b;
    for (int bit = 0; bit < 8; ++bit) remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? 0x82F63B78u : 0u);
    tables[0][b] = remainder;
  }
  for (std::size_t k = 1; k < kSlices; ++k) {
    for (std::size_t b = 0; b < 256; ++b) {
      const std::uint32_t before = tables[k - 1][b];
      tables[k][b] = before >> 8 ^ tables[0][before & 255];
    }
  }
  return tables;
}

constexpr Tables kTables = make_tables();

std::uint64_t load_word(const unsigned char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return std::endian::native == std::endian::big ? __builtin_bswap64(word) : word;
}

using Extend = std::uint32_t (*)(std::uint32_t, const unsigned char*, std::size_t);

#if defined(__x86_64__)
__attribute__((target("sse4.2"))) std::uint32_t by_instruction(std::uint32_t crc, const unsigned char* bytes,
                                                               std::size_t count) {
  std::uint64_t state = crc;
  for (; count >= 8; bytes += 8, count -= 8) state = __builtin_ia32_crc32di(state, load_word(bytes));
  auto rest = static_cast<std::uint32_t>(state);
  for (; count != 0; ++bytes, --count) rest = __builtin_ia32_crc32qi(rest, *bytes);
  return rest;
}

Extend fastest() {
  return __builtin_cpu_supports("sse4.2") != 0 ? by_instruction : crc32c_by_tables;
}
#else
Extend fastest() {
  return crc32c_by_tables;
}
#endif

}  // namespace

std::uint32_t crc32c_by_tables(std::uint32_t crc, const unsigned char* bytes, std::size_t count) {
  for (; count >= kSlices; bytes += kSlices, count -= kSlices) {
    const std::uint64_t word = load_word(bytes) ^ crc;
    crc = 0;
    for (std::size_t k = 0; k < kSlices; ++k) crc ^= kTables[kSlices - 1 - k][word >> (8 * k) & 255];
  }
  for (; count != 0; ++bytes, --count) crc = crc >> 8 ^ kTables[0][(crc ^ *bytes) & 255];
  return crc;
}

void Crc32c::add(const void* bytes, std::size_t count) {
  static const Extend extend = fastest();
  state_ = extend(state_, static_cast<const unsigned char*>(bytes), count);
}

}  // namespace tovik::fileio
