/* CRC-32C (polynomial 0x1EDC6F41, reflected, all ones before and behind): the checksum of SAV files.
 *
 * Slicing by eight: tables for eight bytes at once (Kounavis, Berry, "Novel table lookup-based algorithms for
 * high-performance CRC generation", IEEE Trans. Computers 57, 2008). Where the processor has an instruction
 * for it, that is used. */
#pragma once

#include <cstddef>
#include <cstdint>

namespace tovik::fileio {

class Crc32c {
 public:
  void add(const void* bytes, std::size_t count);
  std::uint32_t value() const { return ~state_; }

 private:
  std::uint32_t state_ = ~std::uint32_t{0};
};

/* A state `crc` after `count` more bytes, by tables only. */
std::uint32_t crc32c_by_tables(std::uint32_t crc, const unsigned char* bytes, std::size_t count);

}  // namespace tovik::fileio
