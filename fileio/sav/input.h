/* The bytes of a SAV file on their way into arrays: checksum, alignment and bounds in one pass.
 *
 * Memory grows with the bytes that have arrived, or up to what is known to come, never with what the file
 * merely claims. Every function that takes returns false when the file ends too early. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "fileio/sav/crc32c.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio::sav {

class Input {
 public:
  /* The source must be at its beginning. */
  explicit Input(ByteSource& source);

  bool take(void* to, std::size_t count);
  /* Appends `count` elements; the position must be a multiple of their size. T: char, std::int32_t,
   * std::int64_t, double. */
  template <class T>
  bool take_array(std::uint64_t count, std::vector<T>& to);
  template <class T>
  bool take_number(T& to);
  bool skip(std::uint64_t count);
  bool at_end();  // nothing is left
  /* Of all bytes taken so far. */
  std::uint32_t checksum();

 private:
  bool refill();
  /* Could so many bytes be left? */
  bool may_hold(std::uint64_t count) const;
  void account();

  ByteSource& source_;
  std::unique_ptr<char[]> buffer_;
  std::size_t at_ = 0, end_ = 0;  // at_ and the position in the file agree modulo the alignment
  std::size_t accounted_ = 0;     // bytes before it are in the checksum
  std::uint64_t size_;            // of the file, 0 when it is not known
  std::uint64_t read_ = 0;        // bytes that came from the source
  Crc32c crc_;
};

}  // namespace tovik::fileio::sav
