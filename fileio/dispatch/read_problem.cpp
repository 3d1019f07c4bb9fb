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
#include "fileio/stream/foreign.h"
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

/* By the first bytes of a file whose name does not tell. A SAV file begins with a line feed, its signature and five bytes
 * more. */
Format guess_format(PeekSource& source) {
  constexpr std::size_t kSavStart = 11;
  const std::string_view first = source.look(1);
  if (first.empty()) return Format::unknown;
  if (first[0] != '\n') return format_of_first_byte(first[0]);
  const std::string_view start = source.look(kSavStart).substr(1);
  return start.size() == kSavStart - 1 && start.starts_with(kSavSignature) ? Format::sav : Format::lp;
}

/* The default extension of a format; none where neither name nor type tells what it is. */
const char* extension_of(Format format) {
  switch (format) {
    case Format::unknown:
      return nullptr;
    case Format::lp:
      return ".lp";
    case Format::mps:
      return ".mps";
    case Format::sav:
      return ".sav";
    case Format::network:
      return ".net";
  }
  return nullptr;
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

Status read_text(Environment& env, ByteSource& source, const char* name, Format format, FileModel& model,
                 ReadReport& report) {
  ChannelLog channels(env);
  RecordingLog log(channels, report);
  const ReadOptions options = options_of(env.settings);
  const ReadFailure failure =
      format == Format::lp ? read_lp(source, options, log, model) : read_mps(source, options, log, model);
  if (const Status s = close_source(env, source, bool(failure), name); !s.ok()) return s;
  if (!failure) return {};
  tell_what_it_seems(env, name, Wanted::model);
  return report_failure(env, failure);
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
  Format format = type != nullptr ? format_of_type(type) : format_of_name(name);
  if (type != nullptr && format == Format::unknown) return TVK_ERROR_FILE_TYPE;
  std::unique_ptr<ByteSource> opened;
  if (const Status s = open_for_reading(env, {name, extension_of(format)}, opened); !s.ok()) return s;
  PeekSource source(std::move(opened));
  if (format == Format::unknown) {
    format = guess_format(source);
    const bool empty = source.look(1).empty();
    if (const Status s = empty ? close_source(env, source, false, name) : Status(); !s.ok()) return s;
    if (format == Format::unknown) {
      tell_what_it_seems(env, name, Wanted::model);
      return TVK_ERROR_FILE_TYPE;
    }
  }
  if (format == Format::sav) return read_saved_problem(env, problem, source, name);
  if (format == Format::network) return read_network_problem(env, problem, source, name);
  FileModel model;
  ReadReport report;
  if (const Status s = read_text(env, source, name, format, model, report); !s.ok()) return s;
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
