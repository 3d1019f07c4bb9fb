#include "env/error.h"

#include <cstdarg>

#include "env/environment.h"
#include "env/text_buffer.h"

namespace tovik {
namespace {

constexpr int kPresolveDisplay = 1043;  // parameter: 0 silences the conclusions of presolve
constexpr int kLargestCode = 99999;

bool is_presolve_conclusion(int code) {
  switch (code) {
    case TVK_ERROR_PRESOLVE_INFEASIBLE_OR_UNBOUNDED:
    case TVK_ERROR_PRESOLVE_ABORTED:
    case TVK_ERROR_PRESOLVE_INFEASIBLE:
    case TVK_ERROR_PRESOLVE_UNBOUNDED:
    case TVK_ERROR_PRESOLVE_TIME_LIMIT:
    case TVK_ERROR_PRESOLVE_TICK_LIMIT:
      return true;
    default:
      return false;
  }
}

const char* printed_text(const Environment& env, int code) {
  if (is_presolve_conclusion(code) && env.settings.integer(kPresolveDisplay) == 0) return nullptr;
  const char* text = code <= kLargestCode ? error_text(code) : nullptr;
  return text != nullptr ? text : " Unknown error code";
}

void print(Environment& env, const TextBuffer& line) {
  if (env.error_channel == nullptr) return;
  const UncountedWork uncounted(env);
  if (env.error_channel->delivering()) {
    env.error_channel->write_to_files(line.text());
  } else {
    env.error_channel->write(line.text());
  }
}

}  // namespace

Status fail(Environment& env, int code, ...) noexcept {
  if (const char* text = printed_text(env, code); text != nullptr) {
    TextBuffer line;
    line.append("TOVIK Error %5d: ", code);
    std::va_list arguments;
    va_start(arguments, code);
    line.append_list(text, arguments);
    va_end(arguments);
    line.append(".\n");
    print(env, line);
  }
  return Status::reported(code);
}

int report(Environment& env, Status status) noexcept {
  const int code = status.code();
  if (code == 0 || status.is_reported()) return code;
  if (code < 0) return -code;
  if (const char* text = printed_text(env, code); text != nullptr) {
    TextBuffer line;
    line.append("TOVIK Error %5d: %s.\n", code, text);
    print(env, line);
  }
  return code;
}

}  // namespace tovik
