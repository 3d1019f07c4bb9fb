/* What readers and writers say, on the channels of an environment. */
#pragma once

#include <string>

#include "env/environment.h"
#include "env/error.h"
#include "fileio/record/model_reader.h"

namespace tovik::fileio {

class ChannelLog final : public ReaderLog {
 public:
  explicit ChannelLog(const Environment& env) : env_(env) {}
  void warning(std::string_view text) override { deliver(env_.warning_channel, text); }
  void result(std::string_view text) override { deliver(env_.results_channel, text); }

 private:
  static void deliver(Channel* channel, std::string_view text) {
    message(channel, "%s", std::string(text).c_str());
  }
  const Environment& env_;
};

/* Prints a reader's failure. */
Status report_failure(Environment& env, const ReadFailure& failure);

}  // namespace tovik::fileio
