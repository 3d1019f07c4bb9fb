/* JSON on one line: objects in objects, members in the order of the calls. Names are our own and need no escapes. */
#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

namespace tovik::lp::run {

class JsonWriter {
 public:
  /* A member whose own members `fill` writes. */
  template <class Fill>
  void object(const char* name, Fill fill) {
    key(name);
    open();
    fill();
    close();
  }
  void count(const char* name, std::int64_t value) {
    key(name);
    text_ += std::to_string(value);
  }
  void flag(const char* name, bool value) {
    key(name);
    text_ += value ? "true" : "false";
  }
  void null(const char* name) {
    key(name);
    text_ += "null";
  }
  /* Four digits tell all that there is in an average. */
  void ratio(const char* name, double value) {
    key(name);
    digits(value, 4);
  }
  /* Null where it is none. */
  void number(const char* name, double value) {
    if (std::isnan(value) || std::isinf(value)) return null(name);
    key(name);
    digits(value, 13);
  }
  /* Our own words, which need no escapes. */
  void word(const char* name, const char* value) {
    key(name);
    text_ += '"';
    text_ += value;
    text_ += '"';
  }
  /* A member whose elements, each an element(), `fill` writes. */
  template <class Fill>
  void array(const char* name, Fill fill) {
    key(name);
    text_ += '[';
    first_ = true;
    fill();
    text_ += ']';
    first_ = false;
  }
  template <class Fill>
  void element(Fill fill) {
    separate();
    open();
    fill();
    close();
  }
  void open() {
    text_ += '{';
    first_ = true;
  }
  void close() {
    text_ += '}';
    first_ = false;
  }
  std::string release() { return std::move(text_); }

 private:
  void separate() {
    if (!first_) text_ += ',';
    first_ = false;
  }
  void digits(double value, int count) {
    std::array<char, 32> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, count);
    text_.append(text.data(), end.ptr);
  }
  void key(const char* name) {
    separate();
    text_ += '"';
    text_ += name;
    text_ += "\":";
  }
  std::string text_;
  bool first_ = true;
};

}  // namespace tovik::lp::run
