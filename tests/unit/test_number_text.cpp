/* Numbers as text: what is written reads back, with as few digits as that takes, and 15 digits are those that
 * the value rounds to. */
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "fileio/stream/number_text.h"

namespace {

using namespace tovik::fileio;

using Form = char* (*)(char*, double);

std::string text_of(Form form, double value) {
  char text[kNumberText];
  return {text, form(text, value)};
}

std::string printed(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

/* Digits between the first and the last that is not zero. */
std::size_t digits_of(const std::string& text) {
  std::string digits;
  for (const char c : text.substr(0, text.find('e'))) {
    if (c >= '0' && c <= '9') digits += c;
  }
  digits.erase(0, digits.find_first_not_of('0'));
  return digits.find_last_not_of('0') + 1;
}

std::string fewest_digits(double value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr};
}

/* Values as models have them, and any others. */
double random_value(std::mt19937_64& random, int kind) {
  const auto below = [&random](std::uint64_t bound) { return static_cast<double>(random() % bound); };
  const double sign = random() % 2 == 0 ? 1 : -1;
  switch (kind) {
    case 0:
      return sign * below(100000) / 100;
    case 1:
      return sign * below(1000000000) / 1e6;
    case 2:
      return sign * below(10000000000000000) / 1e3;
    case 3:
      return sign * std::ldexp(below(100000), -static_cast<int>(random() % 40));
    case 4:  // 16 digits, the last one 5
      return std::strtod(("0." + std::to_string(100000000000000 + random() % 900000000000000) + "5").c_str(),
                         nullptr);
    case 5:
      return sign * below(1000) / 1e6 + below(3) * 5e-16;
    default: {
      const std::uint64_t bits = random();
      double value;
      std::memcpy(&value, &bits, sizeof value);
      return std::isnormal(value) ? value : 1;
    }
  }
}

TEST(NumberText, RandomValues) {
  std::mt19937_64 random(20240607);
  for (int k = 0; k < 70000; ++k) {
    const double value = random_value(random, k % 7);
    const std::string shortest = text_of(write_shortest, value), fifteen = text_of(write_general15, value);
    ASSERT_EQ(std::strtod(shortest.c_str(), nullptr), value) << shortest;
    ASSERT_EQ(fifteen, printed(value, 15));
    if (value == 0) continue;
    ASSERT_LE(digits_of(shortest), digits_of(fewest_digits(value))) << shortest;
    const double read = std::strtod(fifteen.c_str(), nullptr);
    ASSERT_EQ(text_of(write_general15, read), fifteen) << "what was read is written as it was";
  }
}

TEST(NumberText, Edges) {
  const std::pair<double, const char*> cases[] = {{0, "0"},
                                                  {-0.0, "-0"},
                                                  {0.1, "0.1"},
                                                  {1e15, "1e+15"},
                                                  {999999999999999, "999999999999999"},
                                                  {0.0001, "0.0001"},
                                                  {0.00001, "1e-05"},
                                                  {1e20, "1e+20"},
                                                  {0.99999999999999989, "1"},
                                                  {9.9999999999999982, "10"},
                                                  {0.30000000000000004, "0.3"},
                                                  {1 / 3.0, "0.333333333333333"},
                                                  {2 / 3.0, "0.666666666666667"},
                                                  {4503599627370497.5, "4.5035996273705e+15"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(text_of(write_general15, value), text);
  EXPECT_EQ(text_of(write_shortest, 0.30000000000000004), "0.30000000000000004");
  EXPECT_EQ(text_of(write_shortest, 5e-324), "5e-324");
}

}  // namespace
