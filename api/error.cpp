/* Texts of error codes and solution statuses. */
#include <cstdio>
#include <cstring>

#include "env/error.h"
#include "env/status_table.h"
#include "include/tovik.h"

char* TVKgeterrorstring(ConstEnvHandle, int errcode, char* buffer) {
  if (errcode < 1 || errcode > 99999 || buffer == nullptr) return nullptr;
  const char* text = tovik::error_text(errcode);
  std::snprintf(buffer, TVK_TEXT_BUFFER_SIZE, "TOVIK Error %5d: %s.\n", errcode,
                text != nullptr ? text : "Unknown error code");
  return text != nullptr ? buffer : nullptr;
}

char* TVKgetstatstring(ConstEnvHandle, int statind, char* buffer) {
  if (buffer == nullptr) return nullptr;
  const char* text = tovik::status_text(statind);
  std::strcpy(buffer, text != nullptr ? text : "Unknown status value");
  return text != nullptr ? buffer : nullptr;
}
