/* Bytes to lines, text to numbers, names to indices: what every reader stands on. */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "fileio/record/name_table.h"
#include "fileio/stream/number.h"
#include "fileio/stream/stream.h"

namespace {

using namespace tovik::fileio;

/* Delivers its text in pieces of random size. */
class CrumbSource final : public ByteSource {
 public:
  CrumbSource(std::string text, unsigned seed) : text_(std::move(text)), random_(seed) {}
  std::size_t read(char* buffer, std::size_t capacity) override {
    const std::size_t count = std::min({capacity, text_.size() - at_, std::size_t{1} + random_() % 9});
    std::memcpy(buffer, text_.data() + at_, count);
    at_ += count;
    return count;
  }
  bool finish() override { return true; }

 private:
  std::string text_;
  std::size_t at_ = 0;
  std::mt19937 random_;
};

TEST(LineReader, DeliversEveryByteOnceWhateverThePieces) {
  std::mt19937 random(7);
  for (unsigned trial = 0; trial < 300; ++trial) {
    std::string text;
    for (auto k = random() % 200; k > 0; --k) text += "ab-\n"[random() % 4];
    CrumbSource source(text, trial);
    LineReader reader(source, 1 + random() % 12);
    std::string seen;
    int line = 1;
    while (reader.next()) {
      EXPECT_EQ(reader.number(), line);
      const bool whole = reader.complete();
      const bool give_back = !whole && reader.line().size() > 1 && random() % 2 == 0;
      if (give_back) {
        reader.give_back(reader.line().size() / 2);
      } else {
        EXPECT_EQ(reader.line().data()[reader.line().size()], '\n');
      }
      seen += reader.line();
      if (whole) {
        seen += '\n';
        ++line;
      }
    }
    if (!text.empty() && text.back() != '\n') text += '\n';
    if (seen.size() + 1 == text.size())
      seen += '\n';  // the last line filled the buffer without its line feed
    EXPECT_EQ(seen, text);
  }
}

TEST(LineReader, SkipsTheRestOfALongLine) {
  const std::string text = "a\n" + std::string(100, 'x') + "\nb\n";
  MemorySource source(text);
  LineReader reader(source, 10);
  ASSERT_TRUE(reader.next() && reader.next());
  EXPECT_FALSE(reader.complete());
  reader.skip_rest_of_line();
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.line(), "b");
  EXPECT_EQ(reader.number(), 3);
  EXPECT_FALSE(reader.next());
}

TEST(ParseNumber, AgreesWithTheCLibraryOnRandomText) {
  std::mt19937_64 random(3);
  char text[64];
  for (int trial = 0; trial < 200000; ++trial) {
    double value;
    const std::uint64_t bits = random();
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    if (trial % 2 == 0)
      value = std::ldexp(1.0 + std::fabs(std::remainder(value, 1.0)), static_cast<int>(bits % 60) - 30);
    const char* formats[] = {"%.17g", "%.6g", "%+.15f", "%.3e", "%.0f", "%.25g"};
    std::snprintf(text, sizeof text, formats[bits % (std::fabs(value) < 1e15 ? 6 : 2)], value);
    const std::size_t length = std::strlen(text);
    double parsed = 0;
    ASSERT_TRUE(parse_whole_number(text, text + length, parsed)) << text;
    ASSERT_EQ(parsed, std::strtod(text, nullptr)) << text;
  }
}

TEST(ParseNumber, StopsWhereTheNumberStops) {
  using Kind = ParsedNumber::Kind;
  struct Case {
    const char* text;
    Kind kind;
    double value;
    int length;
  };
  const std::string many_zeros = "0." + std::string(500, '0') + "1", many_digits(400, '9');
  const Case cases[] = {
      {"12x", Kind::number, 12, 2},
      {"-.5e", Kind::number, -.5, 3},
      {"1e+", Kind::number, 1, 1},
      {"+3.", Kind::number, 3, 3},
      {"1d2", Kind::number, 100, 3},
      {"1.5D-2 ", Kind::number, .015, 6},
      {".", Kind::none, 0, 0},
      {"-", Kind::none, 0, 0},
      {"", Kind::none, 0, 0},
      {"inf", Kind::none, 0, 0},
      {"nan", Kind::none, 0, 0},
      {"0x1", Kind::number, 0, 1},
      {"--1", Kind::none, 0, 0},
      {"+-1", Kind::none, 0, 0},
      {"e5", Kind::none, 0, 0},
      {"1e309", Kind::out_of_range, 0, 5},
      {"-1e999999999999999999999", Kind::out_of_range, 0, 24},
      {"1e-999999999999999999999", Kind::number, 0, 24},
      {many_zeros.c_str(), Kind::number, 0, 503},
      {many_digits.c_str(), Kind::out_of_range, 0, 400},
      {"0e999", Kind::number, 0, 5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const ParsedNumber parsed = parse_number(c.text, c.text + std::strlen(c.text));
    EXPECT_EQ(parsed.kind, c.kind);
    EXPECT_EQ(parsed.end - c.text, c.length);
    if (c.kind == Kind::number) {
      EXPECT_EQ(parsed.value, c.value);
    }
  }
}

TEST(NameTable, KeepsOrderAndFindsEveryName) {
  NameTable table;
  std::vector<std::string> names;
  constexpr int kCount = 80000;  // the index takes large pages
  for (int k = 0; k < kCount; ++k)
    names.push_back(std::string(static_cast<std::size_t>(k % 19), 'n') + std::to_string(k));
  for (int k = 0; k < kCount; ++k) {
    const NameTable::Interned entry = table.intern(names[static_cast<std::size_t>(k)]);
    ASSERT_TRUE(entry.added && entry.id == k);
  }
  for (int k = 0; k < kCount; ++k) {
    ASSERT_EQ(table.find(names[static_cast<std::size_t>(k)]), k);
    ASSERT_FALSE(table.intern(names[static_cast<std::size_t>(k)]).added);
    ASSERT_STREQ(table.c_str(k), names[static_cast<std::size_t>(k)].c_str());
  }
  EXPECT_EQ(table.find("absent"), NameTable::kNone);
  const tovik::model::NameBlock block = table.release();
  ASSERT_EQ(block.size(), std::size_t{kCount});
  EXPECT_STREQ(block.name(kCount - 1), names[kCount - 1].c_str());
}

}  // namespace
