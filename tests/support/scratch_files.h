/* The temporary files without a name that the process has open. */
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

namespace support {

/* Cuts them all off, as a failing disk may; there must be some. */
inline void truncate_scratch_files() {
  namespace fs = std::filesystem;
  int found = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    const std::string target = fs::read_symlink(entry.path(), error).string();
    if (error || target.find("/tvktmp1 (deleted)") == std::string::npos) continue;
    EXPECT_EQ(::truncate(entry.path().c_str(), 0), 0);
    ++found;
  }
  EXPECT_GT(found, 0);
}

}  // namespace support
