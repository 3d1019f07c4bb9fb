/* Where writers put their bytes.
 *
 * ByteSink     takes the bytes of one file; only commit() makes them the file.
 * TextWriter   a buffer in front of a sink.
 *
 * A regular file is written under another name in its folder, forced to the disk and then renamed: whatever
 * goes wrong, and whenever the process ends, the name stands for the old file or for the whole new one. (A
 * process that is killed may leave ".tovik-..." behind.) The new file keeps the permissions of the old one; a
 * symbolic link stays and its target is replaced. Where the system lets no new file take the old one's place
 * (EACCES, EPERM, EROFS, EBUSY) the old one is overwritten. Pipes, devices and what stands for an open
 * descriptor (/dev/stdout, /dev/fd/3) are written as they are.
 *
 * A name that says so is compressed in the process (codec.h). */
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "env/error.h"

namespace tovik {
struct Environment;
}

namespace tovik::fileio {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  /* False when the bytes cannot be taken; then everything later fails too. */
  virtual bool write(const char* bytes, std::size_t count) = 0;
  /* The last call: true when the file is there for good. Without it nothing changes. */
  virtual bool commit() = 0;
};

/* Opens a file for writing. Prints its own errors: 1421 for a null or empty name, 1422 with the name. */
Status create_file(Environment& env, const char* name, std::unique_ptr<ByteSink>& sink);

/* Text on its way to a sink. A writer asks for room, writes there and says where it ended:
 *
 *   char* p = out.room(200);
 *   out.advance_to(write_shortest(p, value));
 */
class TextWriter {
 public:
  static constexpr std::size_t kLargestPiece = 4096;
  explicit TextWriter(ByteSink& sink)
      : sink_(sink), buffer_(std::make_unique_for_overwrite<char[]>(kBuffer)), at_(buffer_.get()) {}

  /* Up to kLargestPiece bytes to write to. */
  char* room(std::size_t bytes) {
    if (static_cast<std::size_t>(buffer_.get() + kBuffer - at_) < bytes) flush();
    return at_;
  }
  void advance_to(char* end) { at_ = end; }
  char* at() { return at_; }        // where the next byte goes
  void put(std::string_view text);  // of any length
  void put(char c) {
    *room(1) = c;
    ++at_;
  }
  /* Formats by the printf rules, at most kLargestPiece - 1 bytes. For texts and whole numbers only: what
   * printf makes of a fraction depends on the locale. */
  void print(const char* format, ...) __attribute__((format(printf, 2, 3)));

  /* Hands over what is left; true when the sink has taken everything. */
  bool close() {
    flush();
    return !failed_;
  }

 private:
  static constexpr std::size_t kBuffer = std::size_t{1} << 18;
  void flush() {
    const std::size_t count = static_cast<std::size_t>(at_ - buffer_.get());
    if (count != 0 && !failed_) failed_ = !sink_.write(buffer_.get(), count);
    at_ = buffer_.get();
  }

  ByteSink& sink_;
  std::unique_ptr<char[]> buffer_;
  char* at_;
  bool failed_ = false;
};

/* Copies `text` to `to` and returns the end. */
inline char* copy_text(char* to, std::string_view text) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

}  // namespace tovik::fileio
