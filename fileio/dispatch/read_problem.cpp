#include "fileio/dispatch/read_problem.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "env/environment.h"
#include "env/problem.h"
#include "env/sav_signature.h"
#include "fileio/lp_format/dialogue.h"
#include "fileio/network/file.h"
#include "fileio/record/channel_log.h"
#include "fileio/record/file_families.h"
#include "fileio/record/recording_log.h"
#include "fileio/sav/saved_problem.h"
#include "include/tovik.h"
#include "model/store/load.h"
#include "param/hidden.h"

namespace tovik::fileio {
namespace {

/* A reader's lines for entry from standard input; prompts go to the results channel. */
class ChannelDialogue final : public DialogueLog {
 public:
  ChannelDialogue(Environment& env, ReadReport& report)
      : env_(env), channels_(env), log_(channels_, report) {}
  void warning(std::string_view text) override { log_.warning(text); }
  void dropped(std::string_view text) override { log_.dropped(text); }
  void result(std::string_view text) override { log_.result(text); }
  void prompt(std::string_view text) override {
    log_.result(text);
    if (env_.results_channel != nullptr) env_.results_channel->flush();
  }
  void failure(const ReadFailure& failure) override { status_ = report_failure(env_, failure); }
  Status status() const { return status_; }  // of the last failure

 private:
  Environment& env_;
  ChannelLog channels_;
  RecordingLog log_;
  Status status_;
};

/* A SAV file begins with a line feed, its signature and five bytes more. */
bool has_sav_signature(ByteSource& source) {
  char bytes[10];
  std::size_t size = 0;
  while (size < sizeof bytes) {
    const std::size_t count = source.read(bytes + size, sizeof bytes - size);
    if (count == 0) return false;
    size += count;
  }
  return std::string_view(bytes, sizeof bytes).starts_with(kSavSignature);
}

/* Reads the first bytes of a file whose name does not tell its format. */
Status guess_format(Environment& env, const char* name, Format& format) {
  OpenRequest request;
  request.name = name;
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, request, source); !status.ok()) return status;
  char byte = '\0';
  if (source->read(&byte, 1) == 1) {
    format = byte == '\n' && has_sav_signature(*source) ? Format::sav : format_of_first_byte(byte);
    return {};
  }
  return close_source(env, *source, false, name);
}

Status choose_format(Environment& env, const char* name, const char* type, Format& format) {
  if (type != nullptr) {
    format = format_of_type(type);
  } else {
    format = format_of_name(name);
    if (format == Format::unknown) {
      if (const Status status = guess_format(env, name, format); !status.ok()) return status;
    }
  }
  return format != Format::unknown ? Status{} : Status(TVK_ERROR_FILE_TYPE);
}

ReadOptions options_of(const Settings& settings) {
  const auto capacity = [&settings](int number, int standard) {
    const int value = settings.integer(number);
    return value < 0 ? standard : value;
  };
  ReadOptions options;
  options.expected_rows = capacity(param::kExpectedRows, 100);
  options.expected_columns = capacity(param::kExpectedColumns, 100);
  options.expected_nonzeros = capacity(param::kExpectedNonzeros, 500);
  return options;
}

Status read_file(Environment& env, const char* name, Format format, FileModel& model, ReadReport& report) {
  OpenRequest request;
  request.name = name;
  request.default_extension = format == Format::lp ? ".lp" : ".mps";
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, request, source); !status.ok()) return status;
  ChannelLog channels(env);
  RecordingLog log(channels, report);
  const ReadOptions options = options_of(env.settings);
  const ReadFailure failure =
      format == Format::lp ? read_lp(*source, options, log, model) : read_mps(*source, options, log, model);
  if (const Status s = close_source(env, *source, bool(failure), name); !s.ok()) return s;
  return failure ? report_failure(env, failure) : Status{};
}

/* Types that say 'C' only are dropped. */
model::ModelData model_data(FileModel&& file, const char* name) {
  if (std::ranges::all_of(file.types, [](char type) { return type == 'C'; })) file.types.clear();
  model::ModelData data = data_of(std::move(file));
  data.problem_name = name;
  return data;
}

Status load_file(Environment& env, Problem& problem, FileModel&& model, const char* name,
                 ReadReport&& report) {
  env.add_work(model.index.size() + model.rhs.size() + model.objective.size());
  const Status status = model::load(env, problem, model_data(std::move(model), name));
  if (status.ok()) problem.read_report = std::move(report);
  return status;
}

}  // namespace

Format format_of_type(std::string_view type) {
  if (starts_with_keyword(type, "LP")) return Format::lp;
  if (starts_with_keyword(type, "MPS")) return Format::mps;
  if (starts_with_keyword(type, "SAV")) return Format::sav;
  if (starts_with_keyword(type, "MIN") || starts_with_keyword(type, "NET")) return Format::network;
  return Format::unknown;
}

Format format_of_name(std::string_view name) {
  if (name.size() > 4 && ends_with_keyword(name, ".BZ2")) {
    name.remove_suffix(4);
  } else if (ends_with_keyword(name, ".GZ")) {
    name.remove_suffix(3);
  } else if (ends_with_keyword(name, ".Z")) {
    name.remove_suffix(2);
  }
  if (ends_with_keyword(name, ".LP")) return Format::lp;
  if (ends_with_keyword(name, ".MPS") || ends_with_keyword(name, ".QPS")) return Format::mps;
  if (ends_with_keyword(name, ".SAV")) return Format::sav;
  if (ends_with_keyword(name, ".NET") || ends_with_keyword(name, ".MIN")) return Format::network;
  return Format::unknown;
}

bool is_network_type(std::string_view type) {
  return type.size() <= 3 && format_of_type(type) == Format::network;
}

Format format_of_first_byte(char byte) {
  if (byte == '\n') return Format::lp;
  if (static_cast<unsigned char>(byte) < 32) return Format::sav;
  if (byte == '*' || byte == 'N' || byte == 'n') return Format::mps;
  if (byte == 'M' || byte == 'm' || byte == '\\' || byte == ' ') return Format::lp;
  return Format::unknown;
}

Status read_problem(Environment& env, Problem& problem, const char* name, const char* type) {
  Format format = Format::unknown;
  if (const Status status = choose_format(env, name, type, format); !status.ok()) return status;
  if (format == Format::sav) return read_saved_problem(env, problem, name);
  if (format == Format::network) return read_network_problem(env, problem, name);
  FileModel model;
  ReadReport report;
  if (const Status status = read_file(env, name, format, model, report); !status.ok()) return status;
  return load_file(env, problem, std::move(model), name, std::move(report));
}

Status read_problem_from_stdin(Environment& env, Problem& problem) {
  FileModel model;
  ReadReport report;
  ChannelDialogue dialogue(env, report);
  if (!read_lp_dialogue(stdin, options_of(env.settings), dialogue, model)) return dialogue.status();
  return load_file(env, problem, std::move(model), "<stdin>", std::move(report));
}

}  // namespace tovik::fileio
