/* Names of files that a caller passes. */
#pragma once

namespace tovik {

inline bool is_no_file_name(const char* name) {
  return name == nullptr || name[0] == '\0';
}

}  // namespace tovik
