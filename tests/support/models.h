/* How many random models a test makes: the environment variable TOVIK_MODELS asks for more, or fewer. */
#pragma once

#include <cstdlib>

namespace support {

inline int models(int otherwise) {
  const char* const wanted = std::getenv("TOVIK_MODELS");
  return wanted != nullptr ? std::atoi(wanted) : otherwise;
}

}  // namespace support
