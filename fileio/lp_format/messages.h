/* The warnings and the one failure of a read of an LP file. */
#pragma once

#include <string_view>
#include <utility>

#include "fileio/record/model_reader.h"

namespace tovik::fileio::lp_format {

class Messages {
 public:
  explicit Messages(ReaderLog& log) : log_(log) {}

  ReaderLog& log() { return log_; }

  /* Keeps the first failure; always false, so that a parser can return it. */
  bool fail(ReadFailure failure) {
    if (!failed()) failure_ = std::move(failure);
    return false;
  }
  bool failed() const { return failure_.code != 0; }
  ReadFailure take_failure() { return std::move(failure_); }

  /* Warnings about names: the first 20 are printed, count_suppressed() tells about the others. */
  void name_truncated(int line, std::string_view name) {
    if (names_.admit()) log_.warn("Warning, line %d: '%s' truncated.\n", line, std::string(name).c_str());
  }
  void name_not_valid(int line, std::string_view name) {
    if (names_.admit())
      log_.warn("Warning, line %d: '%s' not valid identifier.\n", line, std::string(name).c_str());
  }
  void name_unknown(int line, std::string_view name) {
    if (names_.admit())
      log_.warn("Warning, line %d: Name '%s' does not exist.\n", line, std::string(name).c_str());
  }
  void count_suppressed() {
    if (names_.suppressed() != 0) log_.warn("%d name warnings not printed.\n", names_.suppressed());
  }

 private:
  ReaderLog& log_;
  ReadFailure failure_;
  WarningLimit names_;
};

}  // namespace tovik::fileio::lp_format
