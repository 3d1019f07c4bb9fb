/* Names of files that a caller passes. */
#pragma once

namespace tovik::api {

inline bool is_no_file_name(const char* name) {
  return name == nullptr || name[0] == '\0';
}

}  // namespace tovik::api
