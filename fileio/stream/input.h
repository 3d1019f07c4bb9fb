/* A file that is read: plain bytes, with a look at the first ones, and an end to waiting.
 *
 * Pipes without a writer, terminals and devices are waited for in short steps, and every read looks at the flag that
 * the caller gave with TVKsetterminate: once it is set the input has failed. */
#pragma once

#include <cstddef>
#include <string_view>

#include "fileio/stream/process.h"

namespace tovik {
struct Environment;
}

namespace tovik::fileio {

class Input {
 public:
  static constexpr std::size_t kLook = 16;

  /* cause() says why when it is not open(). */
  Input(const Environment& env, const char* name);
  /* The reading end of a pipe. */
  Input(const Environment& env, Descriptor pipe);

  bool open() const { return file_.valid(); }
  const char* cause() const { return cause_; }
  /* Up to kLook first bytes; fewer where the file has no more. They are read again. */
  std::string_view look();
  /* 0 at the end and after a failure. */
  std::size_t read(char* buffer, std::size_t capacity);
  bool failed() const { return failed_; }
  bool interrupted() const;  // the flag is set
  std::size_t size() const;  // of a regular file, else 0
  /* The descriptor, at its first byte, for a program that reads it; false where there is no way back. */
  bool rewind();
  int descriptor() const { return file_.get(); }
  bool close() { return file_.close(); }

 private:
  std::size_t read_file(char* buffer, std::size_t capacity);
  bool wait() const;  // false when the flag is set first

  const Environment* env_;
  Descriptor file_;
  const char* cause_ = "";
  bool waits_ = false;  // reads may have to wait
  bool failed_ = false;
  char head_[kLook];
  std::size_t head_begin_ = 0, head_end_ = 0;
};

}  // namespace tovik::fileio
