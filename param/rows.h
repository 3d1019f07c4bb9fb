/* The words in which the rows of the parameter table are written. */
#pragma once

#include <array>

#include "param/hidden.h"
#include "param/registry.h"

/* Number and name from the one word that distinguishes a parameter. */
#define NAMED(word)                      \
  Name {                                 \
    TVK_PARAM_##word, "TVK_PARAM_" #word \
  }

namespace tovik::param::rows {

struct Name {
  int number;
  const char* text;
};

inline constexpr int kUnlimited = 2100000000;
inline constexpr int kReadLimit = 524999999;

constexpr Entry integer(Name name, int initial, int minimum, int maximum, const char* description) {
  Entry e;
  e.number = name.number;
  e.type = Type::integer;
  e.name = name.text;
  e.hidden = false;
  e.int_default = initial;
  e.int_minimum = minimum;
  e.int_maximum = maximum;
  e.description = description;
  return e;
}

constexpr Entry integer(Name name, int initial, int minimum, Ceiling ceiling, const char* description) {
  Entry e = integer(name, initial, minimum, initial, description);
  e.ceiling = ceiling;
  return e;
}

constexpr Entry real(Name name, double initial, double minimum, double maximum, const char* description) {
  Entry e;
  e.number = name.number;
  e.type = Type::real;
  e.name = name.text;
  e.hidden = false;
  e.real_default = initial;
  e.real_minimum = minimum;
  e.real_maximum = maximum;
  e.description = description;
  return e;
}

constexpr Entry text(Name name, const char* initial, const char* description) {
  Entry e;
  e.number = name.number;
  e.type = Type::text;
  e.name = name.text;
  e.hidden = false;
  e.text_default = initial;
  e.description = description;
  return e;
}

/* A parameter that is kept, written and read back, but that nothing reads yet. */
constexpr Entry unused(Entry e) {
  e.has_effect = false;
  return e;
}

/* Entries without a public name; those without a known reader get a wide range. */
constexpr Entry hidden(Entry e) {
  e.name = "";
  e.hidden = true;
  return e;
}

constexpr Entry hidden_integer(int number, int initial = 0, int minimum = -kUnlimited,
                               int maximum = kUnlimited) {
  return hidden(integer({number, ""}, initial, minimum, maximum, ""));
}

constexpr Entry hidden_integer(int number, int initial, int minimum, Ceiling ceiling) {
  return hidden(integer({number, ""}, initial, minimum, ceiling, ""));
}

constexpr Entry hidden_real(int number, double initial = 0, double minimum = -1e75, double maximum = 1e75) {
  return hidden(real({number, ""}, initial, minimum, maximum, ""));
}

constexpr Entry hidden_text(int number) {
  return hidden(text({number, ""}, "", ""));
}

}  // namespace tovik::param::rows
