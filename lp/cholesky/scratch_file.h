/* A temporary file of a known size: written at places, read at places, gone when it is closed or the program ends, however
 * that happens: its name and the directory made for it are removed as soon as it is open.
 * Room    is reserved at once where the file system can do that, so that a full disk shows before any work is done.
 * Threads any number may read and write at a time, at different places.
 * Errors  State::file_not_opened, file_not_read, file_not_written; what is cut short counts as an error. */
#pragma once

#include <cstdint>
#include <string>

#include "lp/cholesky/cholesky.h"

namespace tovik::lp::cholesky {

class ScratchFile {
 public:
  ScratchFile() = default;
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  /* In a new directory below `directory` ("" is the current one). Again only after a failure. */
  [[nodiscard]] State open(const std::string& directory, std::int64_t bytes);
  const std::string& directory() const { return directory_; }  // the new one's name
  [[nodiscard]] State write(std::int64_t at, const void* data, std::int64_t bytes) const;
  [[nodiscard]] State read(std::int64_t at, void* data, std::int64_t bytes) const;

 private:
  void close();
  State reserve(std::int64_t bytes) const;

  int file_ = -1;
  std::string directory_;
};

}  // namespace tovik::lp::cholesky
