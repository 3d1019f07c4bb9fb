/* A reader's log that hands everything on to another one and keeps a report of it for TVKgetreadwarnings. */
#pragma once

#include "env/read_report.h"
#include "fileio/record/model_reader.h"

namespace tovik::fileio {

class RecordingLog final : public ReaderLog {
 public:
  RecordingLog(ReaderLog& log, ReadReport& report) : log_(log), report_(report) {}
  void warning(std::string_view text) override {
    if (!text.starts_with(' ')) ++report_.warnings;
    report_.add(text);
    log_.warning(text);
  }
  void dropped(std::string_view text) override {
    ++report_.dropped;
    warning(text);
  }
  void note(std::string_view text) override { report_.add(text); }
  void result(std::string_view text) override { log_.result(text); }

 private:
  ReaderLog& log_;
  ReadReport& report_;
};

}  // namespace tovik::fileio
