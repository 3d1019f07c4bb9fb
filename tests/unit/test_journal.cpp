/* The journal of changes against a plain record of the same changes, and what it loses. */
#include "env/journal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>

namespace tovik {
namespace {

constexpr Edit::Dimension kRows = Edit::Dimension::rows;
constexpr Edit::Dimension kColumns = Edit::Dimension::columns;

/* Rows by identity: those that the engine knows are 0 .. known - 1. */
struct Record {
  std::vector<int> present;
  std::set<int> touched;
  int known = 0, next = 0;

  explicit Record(int count) { start(count); }
  void start(int count) {
    present.resize(static_cast<std::size_t>(count));
    std::iota(present.begin(), present.end(), 0);
    touched.clear();
    known = next = count;
  }
  void erase(int first, int last) {
    for (int k = first; k <= last; ++k) touched.erase(present[k]);
    present.erase(present.begin() + first, present.begin() + last + 1);
  }
  std::vector<int> deleted() const {
    std::vector<int> result;
    for (int id = 0; id < known; ++id) {
      if (std::find(present.begin(), present.end(), id) == present.end()) result.push_back(id);
    }
    return result;
  }
};

TEST(Journal, NamesWhatHasChanged) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&](std::size_t n) { return static_cast<int>(random() % n); };
    Journal journal;
    Record record(12);
    journal.start(12, 3);
    for (int step = 0; step < 40; ++step) {
      const int size = static_cast<int>(record.present.size());
      switch (below(6)) {
        case 0: {
          const int count = 1 + below(3);
          for (int k = 0; k < count; ++k) record.present.push_back(record.next++);
          journal.record(Edit::added(kRows, count));
          break;
        }
        case 1: {
          if (size == 0) break;
          const int first = below(record.present.size()), last = std::min(size - 1, first + below(3));
          record.erase(first, last);
          journal.record(Edit::deleted(kRows, first, last));
          break;
        }
        case 2: {
          std::vector<int> marks(record.present.size());
          for (int& mark : marks) mark = below(4);
          for (int k = size - 1; k >= 0; --k) {
            if (marks[k] == 1) record.erase(k, k);
          }
          journal.record(Edit::deleted(kRows, marks));
          break;
        }
        default: {
          if (size == 0) break;
          const int which[] = {below(record.present.size()), below(record.present.size())};
          for (const int k : which) record.touched.insert(record.present[k]);
          journal.record(Edit::values(kRows, which));
        }
      }
      if (step == 20) {  // the engine has followed
        journal.clear();
        record.start(static_cast<int>(record.present.size()));
      }
      const Journal::Changes& rows = journal.rows();
      ASSERT_FALSE(journal.structure_lost());
      const std::vector<int> gone = record.deleted();
      ASSERT_TRUE(std::equal(gone.begin(), gone.end(), rows.deleted().begin(), rows.deleted().end()));
      ASSERT_EQ(rows.added(), static_cast<int>(record.present.size() + gone.size()) - record.known);
      std::set<int> touched;
      for (const int k : rows.touched()) touched.insert(record.present[k]);
      ASSERT_EQ(touched, record.touched);
      ASSERT_EQ(journal.structure_changed(), rows.added() > 0 || !gone.empty());
    }
    EXPECT_TRUE(journal.columns().touched().empty());
  }
}

TEST(Journal, SaysWhatItHasLost) {
  Journal journal;
  EXPECT_TRUE(journal.values_lost() && journal.structure_lost()) << "nothing is on record before the start";
  journal.clear();
  EXPECT_TRUE(journal.values_lost());
  journal.start(5000, 5000);
  EXPECT_FALSE(journal.values_lost() || journal.structure_changed());
  const int one = 7;
  for (int k = 0; k < 100000; ++k) journal.record(Edit::values(kColumns, {&one, 1}));
  EXPECT_TRUE(journal.values_lost());
  EXPECT_FALSE(journal.structure_lost());
  journal.clear();
  EXPECT_FALSE(journal.values_lost());
  journal.record(Edit::deleted(kRows, 0, 4000));
  EXPECT_TRUE(journal.structure_lost() && journal.structure_changed());
  journal.clear();
  EXPECT_TRUE(journal.structure_lost() && journal.values_lost()) << "only a new engine knows the structure";
  journal.start(3, 3);
  EXPECT_FALSE(journal.values_lost() || journal.structure_changed());
}

}  // namespace
}  // namespace tovik
