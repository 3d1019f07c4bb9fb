#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "env/environment.h"
#include "fileio/params/file.h"
#include "fileio/stream/stream.h"
#include "include/tovik.h"
#include "param/hidden.h"
#include "param/registry.h"
#include "param/rollback.h"

namespace tovik::fileio {
namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::size_t kLongestLine = 559;

std::string_view without_blanks_in_front(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

/* The first word; `text` becomes what follows it and the blanks behind it. */
std::string_view take_word(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of(kBlanks), text.size());
  const std::string_view word = text.substr(0, end);
  text = without_blanks_in_front(text.substr(end));
  return word;
}

std::string_view without_comment(std::string_view line) {
  bool quoted = false;
  for (std::size_t k = 0; k < line.size(); ++k) {
    if (line[k] == '"') quoted = !quoted;
    if (line[k] == '#' && !quoted) return line.substr(0, k);
  }
  return line;
}

std::string_view without_plus(std::string_view text) {
  const bool plus = text.starts_with('+') && !text.starts_with("+-");
  return plus ? text.substr(1) : text;
}

/* The number that the text begins with, as far as it goes. One beyond the type becomes the largest there is,
 * which is beyond every range that a parameter has. */
bool begins_with_number(std::string_view text, int& value) {
  text = without_plus(text);
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc::result_out_of_range) return result.ec == std::errc();
  value = text[0] == '-' ? -std::numeric_limits<int>::max() : std::numeric_limits<int>::max();
  return true;
}

/* Decimal or, behind 0x, hexadecimal; infinite and undefined values too. */
bool begins_with_number(const std::string& text, double& value) {
  char* end = nullptr;
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  value = strtod_l(text.c_str(), &end, plain);
  return end != text.c_str();
}

class Reader {
 public:
  Reader(Environment& env, const char* name, ByteSource& source)
      : env_(env), name_(name), lines_(source, kBuffer) {}

  Status run();

  Status apply();

 private:
  static constexpr std::size_t kBuffer = 4096;
  struct Setting {
    const param::Entry* entry;
    int integer = 0;
    double real = 0;
    std::string text;
  };

  bool next_line();
  Status read_header();
  Status read_setting();
  void keep(Setting&& setting);
  Status tell_line(Status status);
  Status find_entry(std::string_view word, const param::Entry*& entry);
  Status read_integer(std::string_view text, Setting& setting);
  Status read_real(std::string_view text, Setting& setting);
  Status read_text(std::string_view text, Setting& setting);
  Status fail_at_line(int code) { return fail(env_, code, lines_.number()); }

  Environment& env_;
  const char* name_;
  LineReader lines_;
  std::string_view text_;  // of the line, without comment and blanks in front
  std::string_view word_;  // the parameter of the line
  bool overlong_ = false;
  Environment trial_;  // holds the settings so far
  std::vector<Setting> settings_;
};

/* The next line with content. */
bool Reader::next_line() {
  while (lines_.next()) {
    text_ = without_blanks_in_front(without_comment(lines_.line()));
    overlong_ = text_.size() > kLongestLine;
    if (overlong_) return true;
    if (!text_.empty()) return true;
    lines_.skip_rest_of_line();
  }
  return false;
}

Status Reader::run() {
  if (const Status status = param::install(trial_); !status.ok()) return status;
  if (!next_line()) return {};
  if (const Status status = read_header(); !status.ok()) return status;
  lines_.skip_rest_of_line();
  while (next_line()) {
    if (overlong_) return fail_at_line(TVK_ERROR_LINE_TOO_FEW_ENTRIES);
    if (const Status status = read_setting(); !status.ok()) return tell_line(status);
    lines_.skip_rest_of_line();
  }
  return {};
}

Status Reader::read_header() {
  for (const std::string_view expected : {"TOVIK", "Parameter", "File", "Version"}) {
    if (overlong_ || take_word(text_) != expected) return fail_at_line(TVK_ERROR_LINE_HEADER);
  }
  const std::string version(take_word(text_));
  if (version.empty()) return fail_at_line(TVK_ERROR_LINE_HEADER);
  if (version != kVersion) {
    message(env_.warning_channel,
            "Warning:  TOVIK version found in file %s (%s) does not match\n"
            "          this TOVIK version (%s).\n",
            name_, version.c_str(), kVersion);
  }
  return {};
}

/* A word that is a whole number is the parameter's number, unless names alone are wanted. */
Status Reader::find_entry(std::string_view word, const param::Entry*& entry) {
  const std::string_view digits = without_plus(word);
  int number = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool whole = parsed.ec != std::errc::invalid_argument && parsed.ptr == digits.data() + digits.size();
  if (whole && env_.settings.integer(param::kNamesOnly) == 0) {
    entry = param::locate(env_, number);
    return entry != nullptr ? Status() : Status(TVK_ERROR_PARAMETER_NUMBER);
  }
  entry = param::find_name(word);
  return entry != nullptr ? Status() : Status(TVK_ERROR_PARAMETER_NAME);
}

/* Codes whose text has no line get one on the warning channel. */
Status Reader::tell_line(Status status) {
  switch (status.code()) {
    case TVK_ERROR_PARAMETER_NUMBER:
    case TVK_ERROR_PARAMETER_NAME:
    case TVK_ERROR_PARAMETER_TOO_SMALL:
    case TVK_ERROR_PARAMETER_TOO_BIG:
    case TVK_ERROR_STRING_TOO_LONG:
    case TVK_ERROR_BAD_ARGUMENT:
      message(env_.warning_channel, "Warning, line %d: '%.255s' is not set.\n", lines_.number(),
              std::string(word_).c_str());
      break;
    default:
      break;
  }
  return status;
}

Status Reader::read_setting() {
  const param::Entry* entry = nullptr;
  word_ = take_word(text_);
  if (const Status status = find_entry(word_, entry); !status.ok()) return status;
  Setting setting;
  setting.entry = entry;
  Status status;
  switch (entry->type) {
    case param::Type::none:
      return {};
    case param::Type::integer:
      status = read_integer(text_, setting);
      break;
    case param::Type::real:
      status = read_real(text_, setting);
      break;
    case param::Type::text:
      status = read_text(text_, setting);
      break;
  }
  if (status.ok()) keep(std::move(setting));
  return status;
}

/* The last one counts: what a file may say of a parameter has no end. */
void Reader::keep(Setting&& setting) {
  const auto same = std::ranges::find(settings_, setting.entry, &Setting::entry);
  if (same != settings_.end()) settings_.erase(same);
  settings_.push_back(std::move(setting));
}

Status Reader::read_integer(std::string_view text, Setting& setting) {
  const std::string word(take_word(text));
  if (!begins_with_number(word, setting.integer))
    return fail(env_, TVK_ERROR_LINE_NUMBER_CONVERSION, lines_.number(), word.c_str());
  if (word.find_first_of("-.", 1) != std::string::npos) {
    message(env_.warning_channel, "Warning, line %d: non-integral value specified for integer parameter.\n",
            lines_.number());
  }
  const Status status = param::check_integer(trial_, setting.entry->number, setting.integer);
  if (status.ok()) trial_.settings.set_integer(setting.entry->number, setting.integer);
  return status;
}

Status Reader::read_real(std::string_view text, Setting& setting) {
  const std::string word(take_word(text));
  if (!begins_with_number(word, setting.real))
    return fail(env_, TVK_ERROR_LINE_NUMBER_CONVERSION, lines_.number(), word.c_str());
  const Status status = param::check_real(trial_, setting.entry->number, setting.real);
  if (status.ok()) trial_.settings.set_real(setting.entry->number, setting.real);
  return status;
}

Status Reader::read_text(std::string_view text, Setting& setting) {
  if (text.starts_with('"')) {
    const std::size_t end = text.find('"', 1);
    if (end == std::string_view::npos) return fail_at_line(TVK_ERROR_LINE_TOO_FEW_ENTRIES);
    setting.text = text.substr(1, end - 1);
  } else {
    setting.text = take_word(text);
  }
  if (setting.text.empty()) return fail_at_line(TVK_ERROR_LINE_TOO_FEW_ENTRIES);
  const Status status = param::check_text(trial_, setting.entry->number, setting.text);
  if (status.ok()) trial_.settings.set_text(setting.entry->number, setting.text.c_str());
  return status;
}

/* All settings or, when memory runs out, none. */
Status Reader::apply() {
  param::Rollback rollback(env_);
  param::reset(env_);
  for (const Setting& setting : settings_) {
    const int number = setting.entry->number;
    const Status status =
        setting.entry->type == param::Type::integer ? param::set_integer(env_, number, setting.integer)
        : setting.entry->type == param::Type::real  ? param::set_real(env_, number, setting.real)
                                                    : param::set_text(env_, number, setting.text.c_str());
    if (!status.ok()) return status;
  }
  rollback.commit();
  return {};
}

}  // namespace

Status read_parameter_file(Environment& env, const char* name) {
  OpenRequest request;
  request.name = name;
  request.default_extension = ".prm";
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, request, source); !status.ok()) return status;
  Reader reader(env, name, *source);
  const Status status = reader.run();
  if (const Status s = close_source(env, *source, !status.ok(), name); !s.ok()) return s;
  return status.ok() ? reader.apply() : status;
}

}  // namespace tovik::fileio
