#include "fileio/record/model_reader.h"

#include <cstdarg>
#include <cstdio>

namespace tovik::fileio {
namespace {

std::string format_text(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(static_cast<std::size_t>(length < 0 ? 0 : length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

}  // namespace

void ReaderLog::warn(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = format_text(format, arguments);
  va_end(arguments);
  warning(text);
}

void ReaderLog::warn_dropped(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = format_text(format, arguments);
  va_end(arguments);
  dropped(text);
}

void ReaderLog::print(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = format_text(format, arguments);
  va_end(arguments);
  result(text);
}

ReadFailure ReadFailure::plain(int code) {
  ReadFailure failure;
  failure.code = code;
  return failure;
}

ReadFailure ReadFailure::at(int code, int line) {
  ReadFailure failure = plain(code);
  failure.arguments = Arguments::i;
  failure.first = line;
  return failure;
}

ReadFailure ReadFailure::at(int code, int line, int other) {
  ReadFailure failure = at(code, line);
  failure.arguments = Arguments::ii;
  failure.second = other;
  return failure;
}

ReadFailure ReadFailure::at(int code, int line, char letter) {
  ReadFailure failure = at(code, line);
  failure.arguments = Arguments::ic;
  failure.letter = letter;
  return failure;
}

ReadFailure ReadFailure::at(int code, int line, char letter, char letter2) {
  ReadFailure failure = at(code, line, letter);
  failure.arguments = Arguments::icc;
  failure.letter2 = letter2;
  return failure;
}

ReadFailure ReadFailure::at(int code, int line, std::string_view text) {
  ReadFailure failure = at(code, line);
  failure.arguments = Arguments::is;
  failure.text = text;
  return failure;
}

ReadFailure ReadFailure::at(int code, int line, std::string_view text, std::string_view text2) {
  ReadFailure failure = at(code, line, text);
  failure.arguments = Arguments::iss;
  failure.text2 = text2;
  return failure;
}

ReadFailure ReadFailure::about(int code, std::string_view text) {
  ReadFailure failure = plain(code);
  failure.arguments = Arguments::s;
  failure.text = text;
  return failure;
}

ReadFailure ReadFailure::about(int code, std::string_view text, std::string_view text2) {
  ReadFailure failure = about(code, text);
  failure.arguments = Arguments::ss;
  failure.text2 = text2;
  return failure;
}

ReadFailure ReadFailure::about(int code, std::string_view text, std::string_view text2,
                               std::string_view text3) {
  ReadFailure failure = about(code, text, text2);
  failure.arguments = Arguments::sss;
  failure.text3 = text3;
  return failure;
}

}  // namespace tovik::fileio
