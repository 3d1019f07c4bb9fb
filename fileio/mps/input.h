/* A source in blocks of whole lines, for a scanner that finds the line ends itself.
 *
 * Blocks are handed over as soon as they hold a line, so that a decompressor works on while a block is
 * parsed. The buffer does not grow: a line that does not fit it ends the reading. */
#pragma once

#include <vector>

#include "fileio/mps/fields.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio::mps {

class LineBlocks {
 public:
  static constexpr std::size_t kBlock = std::size_t{1} << 18;

  explicit LineBlocks(ByteSource& source) : source_(source), buffer_(kBlock + kScanSlack) {}

  /* The next block, each of its lines ended by a line feed (the last line of the file too); kScanSlack bytes
   * behind it can be read. False at the end, and before a line that is too long. */
  bool next();
  const char* begin() const { return buffer_.data() + begin_; }
  const char* end() const { return buffer_.data() + end_; }
  bool line_too_long() const { return too_long_; }
  /* Reads the rest of the source without looking at it. */
  void drain();

 private:
  ByteSource& source_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0, end_ = 0;  // the block handed over
  std::size_t filled_ = 0;           // bytes in the buffer
  bool at_end_ = false, too_long_ = false;
};

}  // namespace tovik::fileio::mps
