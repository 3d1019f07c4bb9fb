/* Where memory ran out while a compressed file was opened the process hung, or a temporary file stayed. */
#include "support/failing_memory.h"
#include "support/file_fixture.h"

namespace {

class MemoryAndCompression : public support::WithFiles {
 protected:
  std::size_t files() const {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_)) ++count;
    return count;
  }
};

TEST_F(MemoryAndCompression, EveryFailureIsToldAndNothingStays) {
  ASSERT_EQ(read_text("a.lp", "minimize\n x + y\nsubject to\n c: x + 2 y >= 1\nend\n"), 0);
  const std::string command = "cd '" + folder_.string() + "' && xz -k a.lp 2> /dev/null";
  const bool has_xz = std::system(command.c_str()) == 0;
  for (const char* suffix : {".gz", ".bz2", ".xz"}) {
    const std::string name = path("a.lp") + suffix;
    const bool writes = std::string(suffix) != ".xz";
    if (!writes && !has_xz) continue;
    for (const bool writing : {true, false}) {
      if (writing && !writes) continue;
      int code = -1;
      long k = 0;
      for (; code != 0 && k < 3000; ++k) {
        const std::size_t before = files();
        support::allocations_until_failure = k;
        code = writing ? TVKwriteprob(env_, lp_, name.c_str(), nullptr)
                       : TVKreadcopyprob(env_, lp_, name.c_str(), nullptr);
        const bool failed = support::allocations_until_failure < 0;
        support::allocations_until_failure = -1;
        if (code != 0) {
          EXPECT_EQ(files(), before) << suffix << ' ' << k;
        }
        if (code != 0 && !failed) FAIL() << code;
      }
      EXPECT_EQ(code, 0) << suffix;
      EXPECT_GT(k, 5) << suffix;
    }
  }
}

}  // namespace
