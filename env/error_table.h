/* The error codes of the library with their texts. */
#pragma once

#include <span>

#include "env/error.h"

namespace tovik {

struct ErrorText {
  int code;
  const char* text;
};

/* All codes, ascending. error_text() of env/error.h looks one up. */
std::span<const ErrorText> error_texts();

}  // namespace tovik
