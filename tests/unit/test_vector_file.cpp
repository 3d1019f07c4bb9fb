/* The file of sparse vectors under long random use: entries, lookups and room against ordered maps. */
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "model/base/vector_file.h"

namespace {

using tovik::model::VectorFile;
using tovik::model::VectorView;
using Reference = std::vector<std::map<int, double>>;

void expect_equal(const VectorFile& file, const Reference& reference) {
  ASSERT_EQ(file.size(), static_cast<int>(reference.size()));
  std::int64_t entries = 0;
  for (int k = 0; k < file.size(); ++k) {
    const VectorView v = file.at(k);
    const auto& expected = reference[static_cast<std::size_t>(k)];
    ASSERT_EQ(v.count, static_cast<int>(expected.size()));
    entries += v.count;
    for (int p = 0; p < v.count; ++p) {
      const auto found = expected.find(v.index[p]);
      ASSERT_NE(found, expected.end());
      ASSERT_EQ(found->second, v.value[p]);
      ASSERT_EQ(file.find(k, v.index[p]), p);
    }
    ASSERT_EQ(file.find(k, 1 << 20), -1);
  }
  EXPECT_EQ(file.entries(), entries);
}

/* Some vectors are long (looked up by hash, moved often), most short; bulk changes fall in between. */
TEST(VectorFile, FollowsAReferenceThroughRandomUse) {
  std::mt19937 random(17);
  const auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
  VectorFile file;
  Reference reference(50);
  file.append_empty(50);
  for (int step = 0; step < 60000; ++step) {
    const int k = below(4) == 0 ? below(3) : below(file.size());
    auto& expected = reference[static_cast<std::size_t>(k)];
    const int index = below(k < 3 ? 3000 : 60);
    const int position = file.find(k, index);
    ASSERT_EQ(position >= 0, expected.count(index) == 1);
    if (position < 0) {
      file.push(k, index, step);
      expected[index] = step;
    } else if (below(3) == 0) {
      file.remove(k, position);
      expected.erase(index);
    } else {
      file.set_value(k, position, -step);
      expected[index] = -step;
    }
    if (step % 1000 != 999) continue;
    if (step % 3000 == 2999) file.sort(below(3));
    if (step % 4000 == 3999) {
      std::vector<int> renumber(3000);
      int kept = 0;
      for (int& r : renumber) r = below(5) == 0 ? -1 : kept++;
      file.renumber_indices(renumber);
      for (auto& vector : reference) {
        std::map<int, double> fresh;
        for (const auto& [i, value] : vector) {
          if (renumber[static_cast<std::size_t>(i)] >= 0)
            fresh[renumber[static_cast<std::size_t>(i)]] = value;
        }
        vector.swap(fresh);
      }
    }
    if (step % 9000 == 8999) {
      std::vector<int> renumber;
      Reference kept;
      for (int v = 0; v < file.size(); ++v) {
        const bool drop = v >= 3 && below(6) == 0;
        renumber.push_back(drop ? -1 : static_cast<int>(kept.size()));
        if (!drop) kept.push_back(reference[static_cast<std::size_t>(v)]);
      }
      file.keep_vectors(renumber);
      reference.swap(kept);
      const int indices[] = {5, 3};
      const double values[] = {1, 2};
      file.append({indices, values, 2});
      reference.push_back({{5, 1}, {3, 2}});
      file.append_empty(2);
      reference.resize(reference.size() + 2);
    }
    expect_equal(file, reference);
    expect_equal(VectorFile(file), reference);
  }
}

TEST(VectorFile, PromisedRoomSurvivesOtherGrowth) {
  VectorFile file;
  file.append_empty(1000);
  file.reserve_entries(0, 500);
  for (int k = 1; k < 1000; ++k) {
    for (int i = 0; i < 40; ++i) file.push(k, i, 1);
  }
  const int* const place = file.at(0).index;
  for (int i = 0; i < 500; ++i) file.push(0, i, 1);
  EXPECT_EQ(file.at(0).index, place) << "pushes into promised room must not move anything";
  EXPECT_EQ(file.at(0).count, 500);
}

}  // namespace
