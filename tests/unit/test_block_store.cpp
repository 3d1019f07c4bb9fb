/* Blocks of bytes against a map: in memory and in files, compressed and not; files that cannot be made or written. */
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mip/search/block_store.h"
#include "support/random.h"
#include "support/scratch_files.h"

namespace {

namespace fs = std::filesystem;
using tovik::mip::BlockStore;
using State = BlockStore::State;

std::vector<char> draw_bytes(support::Random& random, int most) {
  std::vector<char> bytes(static_cast<std::size_t>(random.pick(1, most)));
  const bool compressible = random.chance(0.6);
  for (char& c : bytes) c = static_cast<char>(compressible ? random.below(3) : random.below(256));
  return bytes;
}

class Blocks : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "blocks-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    directory_ = name;
  }
  void TearDown() override { fs::remove_all(directory_); }

  fs::path directory_;
};

TEST_F(Blocks, ComeBackAsTheyWere) {
  support::Random random(5);
  BlockStore store;
  std::map<int, std::vector<char>> known;
  std::int64_t bytes = 0;
  for (int step = 0; step < 1500; ++step) {
    if (step % 50 == 0) store.configure(random.chance(0.5), random.chance(0.7), directory_.string());
    const bool grows = step % 500 < 300;
    if (known.empty() || random.chance(grows ? 0.7 : 0.3)) {
      int block = -1;
      std::vector<char> made = draw_bytes(random, random.chance(0.01) ? 3000000 : 20000);
      ASSERT_EQ(store.put(made, &block), State::done);
      bytes += static_cast<std::int64_t>(made.size());
      ASSERT_TRUE(known.emplace(block, std::move(made)).second);
    } else {
      auto it = known.begin();
      std::advance(it, random.below(static_cast<int>(known.size())));
      std::vector<char> read;
      ASSERT_EQ(store.get(it->first, &read), State::done);
      ASSERT_EQ(read, it->second);
      store.drop(it->first);
      bytes -= static_cast<std::int64_t>(read.size());
      known.erase(it);
    }
    ASSERT_EQ(store.bytes(), bytes);
    ASSERT_LE(store.stored_bytes(), bytes);
    ASSERT_TRUE(fs::is_empty(directory_));  // names are removed at once
  }
  for (const auto& [block, made] : known) {
    std::vector<char> read;
    ASSERT_EQ(store.get(block, &read), State::done);
    EXPECT_EQ(read, made);
    store.drop(block);
  }
  EXPECT_EQ(store.bytes(), 0);
  EXPECT_EQ(store.stored_bytes(), 0);
}

TEST_F(Blocks, FailuresLeaveWhatIsThere) {
  support::Random random(6);
  BlockStore store;
  const std::vector<char> first(100000, 'a'), second(3000000, 'b');
  int block = -1, none = -1;
  store.configure(false, true, (directory_ / "missing").string());
  EXPECT_EQ(store.put(first, &none), State::not_opened);
  store.configure(false, true, directory_.string());
  ASSERT_EQ(store.put(first, &block), State::done);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit little{1000,
                      before.rlim_max};  // the signal that comes with a write beyond it would end the program
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
  const State state = store.put(second, &none);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(state, State::not_written);
  EXPECT_EQ(none, -1);
  EXPECT_EQ(store.bytes(), 100000);
  std::vector<char> read;
  ASSERT_EQ(store.get(block, &read), State::done);
  EXPECT_EQ(read, first);
  ASSERT_EQ(store.put(second, &none), State::done);
  ASSERT_EQ(store.get(none, &read), State::done);
  EXPECT_EQ(read, second);
  support::truncate_scratch_files();
  EXPECT_EQ(store.get(block, &read), State::not_read);
  // What is written now makes the files grow again, with zeros where the others were.
  int later = -1;
  ASSERT_EQ(store.put(first, &later), State::done);
  EXPECT_EQ(store.get(block, &read), State::not_read);
  ASSERT_EQ(store.get(later, &read), State::done);
  EXPECT_EQ(read, first);
  store.drop(later);
  store.drop(block);
  store.drop(none);
  EXPECT_EQ(store.bytes(), 0);
}

}  // namespace
