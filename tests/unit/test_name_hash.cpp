/* Names that were chosen to fall into one place of a table, for a hash that everybody knows. */
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include "fileio/record/name_table.h"
#include "model/base/name_hash.h"
#include "model/base/names.h"

namespace tovik {
namespace {

constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15u;

std::uint64_t inverse(std::uint64_t odd) {
  std::uint64_t x = odd;
  for (int k = 0; k < 6; ++k) x *= 2 - odd * x;
  return x;
}

/* Names of eight letters for which (word ^ 8 m) m, folded and times m, has the same upper half. */
std::set<std::string> colliding_names(std::size_t count) {
  std::set<std::string> names;
  const std::uint64_t back = inverse(kMultiplier);
  for (std::uint64_t low = 0; names.size() < count; ++low) {
    std::uint64_t h = (std::uint64_t{0x12345678} << 32 | low) * back;
    h ^= h >> 32;
    const std::uint64_t word = (h * back) ^ (8 * kMultiplier);
    char text[8];
    std::memcpy(text, &word, sizeof text);
    bool printable = true;
    for (const char c : text) printable = printable && static_cast<unsigned char>(c) > 32;
    if (printable) names.emplace(text, sizeof text);
  }
  return names;
}

TEST(NameHash, NamesChosenToCollideSpread) {
  const fileio::NameTable table;
  std::set<std::uint32_t> places;
  std::set<std::uint64_t> others;
  const auto names = colliding_names(2000);
  for (const std::string& name : names) {
    places.insert(table.key_of(name).hash / 2 & 0xffff);
    others.insert(model::hash_of(name) & 0xffff);
  }
  EXPECT_GT(places.size(), 1900u);
  EXPECT_GT(others.size(), 1900u);
}

TEST(NameHash, TheLowestOfEqualNamesIsFoundWhateverTheKey) {
  const char* texts[] = {"b", "a", "b", "a-name-that-is-longer-than-a-word", "a", "b"};
  model::NameTable table('x');
  table.append(0, 6, texts);
  EXPECT_EQ(table.find("a"), 1);
  EXPECT_EQ(table.find("b"), 0);
  EXPECT_EQ(table.find(texts[3]), 3);
  EXPECT_EQ(table.find("c"), -1);
}

}  // namespace
}  // namespace tovik
