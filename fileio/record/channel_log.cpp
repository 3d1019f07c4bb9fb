#include "fileio/record/channel_log.h"

namespace tovik::fileio {
namespace {

/* Prints one line of a failure. */
Status print_failure(Environment& env, const ReadFailure& failure) {
  using Arguments = ReadFailure::Arguments;
  const int code = failure.code;
  const char* text = failure.text.c_str();
  const char* text2 = failure.text2.c_str();
  switch (failure.arguments) {
    case Arguments::none:
      return fail(env, code);
    case Arguments::i:
      return fail(env, code, failure.first);
    case Arguments::ii:
      return fail(env, code, failure.first, failure.second);
    case Arguments::s:
      return fail(env, code, text);
    case Arguments::ss:
      return fail(env, code, text, text2);
    case Arguments::sss:
      return fail(env, code, text, text2, failure.text3.c_str());
    case Arguments::is:
      return fail(env, code, failure.first, text);
    case Arguments::iss:
      return fail(env, code, failure.first, text, text2);
    case Arguments::ic:
      return fail(env, code, failure.first, failure.letter);
    case Arguments::icc:
      return fail(env, code, failure.first, failure.letter, failure.letter2);
  }
  return code;
}

}  // namespace

Status report_failure(Environment& env, const ReadFailure& failure) {
  const Status status = print_failure(env, failure);
  for (const ReadFailure& line : failure.more) static_cast<void>(print_failure(env, line));
  return status;
}

}  // namespace tovik::fileio
