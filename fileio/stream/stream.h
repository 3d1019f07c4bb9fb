/* Where readers get their bytes and lines from.
 *
 *   ByteSource   the bytes of one opened file, of a compressor's output or of a block of memory.
 *   LineReader   cuts a source into lines without copying them, in a buffer of fixed size; memory does not
 *                grow with the file.
 *
 * Compression is told by the first bytes of a file, whatever its name: gzip and bzip2 are decoded in the process, xz, zstd
 * and the old compress through the programs xz, zstd and gzip, which read the file on standard input and are never started
 * through a shell. A file whose name promises compression must be compressed. What was decoded counts only when finish()
 * says that the file ended well, so a reader must build its result aside and drop it when finish() is false: half a file
 * is never loaded. After an error of its own a reader asks failed() and leaves the rest unread. */
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "env/error.h"

namespace tovik::fileio {

enum class Compression { none, gzip, bzip2 };

/* By the ending of the name alone: .bz2 and .gz in either case, .Z in upper case only. */
Compression compression_of(std::string_view name);

/* The keyword rule of file types and suffixes: each character of `pattern` (upper case) equals the text's
 * character or its lower-case form. The text may go on after the pattern. */
bool starts_with_keyword(std::string_view text, std::string_view pattern);
bool ends_with_keyword(std::string_view text, std::string_view pattern);

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /* Reads up to `capacity` bytes (at least 1 asked); 0 at the end of the data and after a failure. */
  virtual std::size_t read(char* buffer, std::size_t capacity) = 0;
  /* Call once, after the last read: true when all of the file arrived. What is left of a compressed file is read and
   * checked. */
  virtual bool finish() = 0;
  /* Something went wrong so far. */
  virtual bool failed() const { return false; }
  /* Why, behind "is not read: ". */
  virtual const char* cause() const { return "it ends early or is damaged"; }
  /* How many bytes are still to come, as far as known beforehand; 0 when it is not. A hint for first
   * capacities, never a promise. */
  virtual std::size_t expected_size() const { return 0; }
};

/* Bytes that the caller keeps alive. */
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::string_view bytes) : rest_(bytes) {}
  std::size_t read(char* buffer, std::size_t capacity) override;
  bool finish() override { return true; }
  std::size_t expected_size() const override { return rest_.size(); }

 private:
  std::string_view rest_;
};

/* A source whose first bytes can be looked at before they are read: what a pipe has given it does not give again. */
class PeekSource final : public ByteSource {
 public:
  explicit PeekSource(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}
  /* The first `count` bytes, fewer where the data ends or fails before. Before the first read. */
  std::string_view look(std::size_t count);
  std::size_t read(char* buffer, std::size_t capacity) override;
  bool finish() override { return source_->finish(); }
  bool failed() const override { return source_->failed(); }
  const char* cause() const override { return source_->cause(); }
  std::size_t expected_size() const override { return source_->expected_size(); }

 private:
  std::unique_ptr<ByteSource> source_;
  std::vector<char> seen_;
  std::size_t delivered_ = 0;  // of those
};

struct OpenRequest {
  const char* name = nullptr;
  const char* default_extension = nullptr;  // with its dot, any case; null: the name is tried as it is only
  bool allow_compressed = true;
};

/* Opens a file for reading. Prints its own errors: 1421 for a null or empty name, 1423 with the name (and
 * once more with the name that the default extension made) behind a warning that tells why, 1001. */
Status open_for_reading(Environment& env, const OpenRequest& request, std::unique_ptr<ByteSource>& source);
/* When a reader is through: 1423, behind a warning, for a file that did not arrive whole, of which the contents tell nothing.
 * What is behind an error of the reader's own is not read. */
Status close_source(Environment& env, ByteSource& source, bool reader_failed, const char* name);

/* The lines of a source, in place.
 *
 *   LineReader lines(source);
 *   while (lines.next()) parse(lines.line(), lines.number());
 *
 * line() is without its line feed and lives until the next call of next(). The byte behind it is a line feed,
 * so that a scanner needs no end test of its own. A line that does not fit the buffer is delivered in part:
 * complete() is false and what next() delivers is its continuation, with the same number. */
class LineReader {
 public:
  static constexpr std::size_t kDefaultBuffer = std::size_t{1} << 20;
  explicit LineReader(ByteSource& source, std::size_t buffer_size = kDefaultBuffer);

  bool next();  // false when no line is left
  std::string_view line() const { return line_; }
  int number() const { return number_; }       // physical line, from 1; stays at the largest int beyond
  bool complete() const { return complete_; }  // the line ends with a line feed or with the data
  /* What the buffer holds of the lines to come: something to prepare for, to be seen as lines later. */
  std::string_view coming() const { return {buffer_.get() + begin_, end_ - begin_}; }
  /* Of an incomplete line: gives the last `count` bytes back, they begin the next piece. At least one byte
   * must stay. */
  void give_back(std::size_t count);
  /* Skips what is still to come of the current line. */
  void skip_rest_of_line();

 private:
  bool refill();

  ByteSource& source_;
  std::size_t capacity_;            // bytes ever filled
  std::unique_ptr<char[]> buffer_;  // capacity, then room for the closing line feed
  std::size_t begin_ = 0;           // first byte not yet delivered
  std::size_t end_ = 0;             // end of the bytes in the buffer
  bool at_end_ = false;
  bool complete_ = true;
  int number_ = 0;
  std::string_view line_;
};

}  // namespace tovik::fileio
