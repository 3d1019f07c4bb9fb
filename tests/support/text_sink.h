/* A file that is written into memory. */
#pragma once

#include <string>

#include "fileio/stream/output.h"

namespace support {

class TextSink final : public tovik::fileio::ByteSink {
 public:
  bool write(const char* bytes, std::size_t count) override {
    text.append(bytes, count);
    return true;
  }
  bool commit() override { return true; }
  std::string text;
};

}  // namespace support
