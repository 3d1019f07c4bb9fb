#include "cli/console.h"

#include <cstring>
#include <string_view>

namespace tovik::cli {

namespace {

constexpr std::chrono::milliseconds kBlink{200};

/* Lines of the short iteration log, in whose place the program has progress lines; not those of the node log. */
bool tells_of_iterations(const std::string_view text) {
  if (text.find("(tree size = ") != std::string_view::npos) return false;
  for (const char* head : {"\nIteration log", "Iteration: ", "Elapsed time = "}) {
    if (text.starts_with(head)) return true;
  }
  return false;
}

}  // namespace

Console::Console(const Environment& environment, FILE* stream, Verbosity verbosity, bool patient)
    : environment_(environment),
      stream_(stream),
      verbosity_(verbosity),
      patient_(patient),
      model_begin_(std::chrono::steady_clock::now()) {
  std::setvbuf(stream, nullptr, _IOLBF, 1 << 16);  // whoever reads a pipe sees progress at once
  EnvHandle env = environment.handle();
  environment.check(TVKgetchannels(env, &results_, &warning_, &error_, nullptr));
  environment.check(TVKaddfuncdest(env, results_, this, on_result));
  environment.check(TVKaddfuncdest(env, warning_, this, on_problem));
  environment.check(TVKaddfuncdest(env, error_, this, on_error));
}

Console::~Console() {
  EnvHandle env = environment_.handle();
  TVKdelfuncdest(env, results_, this, on_result);
  TVKdelfuncdest(env, warning_, this, on_problem);
  TVKdelfuncdest(env, error_, this, on_error);
  if (log_ != nullptr) TVKsetlogfile(env, nullptr);
}

bool Console::open_log(const std::string& name) {
  log_.reset(std::fopen(name.c_str(), "w"));
  if (log_ == nullptr) return false;
  environment_.check(TVKsetlogfile(environment_.handle(), log_.get()));
  return true;
}

void Console::log(const std::string& text) {
  logging_ = true;
  TVKmsgstr(results_, text.c_str());
  logging_ = false;
}

void Console::print(const std::string& text) {
  held_.clear();
  printing_ = true;
  TVKmsgstr(results_, text.c_str());
  printing_ = false;
}

void Console::progress(const std::string& text) {
  if (verbosity_ == Verbosity::full) show_held();
  log(text);
  last_line_ = std::chrono::steady_clock::now();
}

void Console::print_error(const std::string& text) {
  TVKmsgstr(error_, (text + "\n").c_str());
}

void Console::begin_model(const std::string& label) {
  label_ = label;
  first_error_.clear();
  presolve_seconds_.reset();
  held_.clear();
  model_begin_ = last_line_ = std::chrono::steady_clock::now();
}

void Console::on_result(void* self, const char* text) {
  auto& console = *static_cast<Console*>(self);
  double seconds = 0;
  if (std::sscanf(text, "Presolve time = %lf sec.", &seconds) == 1) console.presolve_seconds_ = seconds;
  const bool own = console.printing_ || console.logging_;
  if (console.verbosity_ == Verbosity::full && !own) return console.show_library_text(text);
  if (console.verbosity_ == Verbosity::full ||
      (console.verbosity_ == Verbosity::results && console.printing_)) {
    std::fputs(text, console.stream_);
  }
}

void Console::show_library_text(const char* text) {
  if (patient_ && tells_of_iterations(text)) return;
  if (patient_ && std::chrono::steady_clock::now() - model_begin_ < kBlink) {
    held_ += text;
    return;
  }
  show_held();
  std::fputs(text, stream_);
  last_line_ = std::chrono::steady_clock::now();
}

double Console::seconds_without_line() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - last_line_).count();
}

void Console::catch_up() {
  if (held_.empty() || std::chrono::steady_clock::now() - model_begin_ < kBlink) return;
  show_held();
  last_line_ = std::chrono::steady_clock::now();
}

void Console::show_held() {
  std::fputs(held_.c_str(), stream_);
  held_.clear();
}

void Console::on_problem(void* self, const char* text) {
  static_cast<Console*>(self)->write_problem(text);
}

void Console::on_error(void* self, const char* text) {
  auto& console = *static_cast<Console*>(self);
  if (console.silenced_ > 0) return;
  if (console.first_error_.empty()) console.first_error_.assign(text, std::strcspn(text, "\n"));
  console.write_problem(text);
}

void Console::write_problem(const char* text) {
  if (silenced_ > 0) return;
  if (stream_ == stdout) std::fflush(stdout);  // keeps the order on a terminal
  for (const char* line = text; *line != '\0';) {
    const char* end = std::strchr(line, '\n');
    const std::size_t length = end == nullptr ? std::strlen(line) : static_cast<std::size_t>(end - line) + 1;
    if (at_line_start_ && *line != '\n' && !label_.empty()) std::fprintf(stderr, "%s: ", label_.c_str());
    std::fwrite(line, 1, length, stderr);
    at_line_start_ = end != nullptr;
    line += length;
  }
}

}  // namespace tovik::cli
