/* Every allocation of opening, creating, copying and adding fails once: the code is 1001, nothing is left
 * behind and what was there still works. */
#include <gtest/gtest.h>
#include <tovik.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <string_view>

namespace {

thread_local long allocations_left = -1;  // -1: all succeed
thread_local long outstanding = 0;

void* allocate(std::size_t size) {
  if (allocations_left == 0) return nullptr;
  if (allocations_left > 0) --allocations_left;
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory != nullptr) ++outstanding;
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --outstanding;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}

namespace {

/* Runs `attempt` with the first, second, ... allocation failing, until it succeeds; returns how often it
 * failed. */
int exhaust(const std::function<int()>& attempt, const std::function<void()>& undo) {
  for (int failures = 0;; ++failures) {
    const long before = outstanding;
    allocations_left = failures;
    const int code = attempt();
    allocations_left = -1;
    if (code == 0) {
      undo();
      EXPECT_EQ(outstanding, before);
      return failures;
    }
    EXPECT_EQ(code, 1001) << failures;
    EXPECT_EQ(outstanding, before) << failures;
    if (failures > 100000) return failures;
  }
}

void open_and_close() {
  int status = -1;
  EnvHandle env = TVKopenTOVIK(&status);
  ProbHandle lp = TVKcreateprob(env, &status, "first use fills what the process keeps");
  ASSERT_NE(lp, nullptr);
  ASSERT_EQ(TVKcloseTOVIK(&env), 0);
}

TEST(Memory, OpeningAnEnvironment) {
  for (int k = 0; k < 20; ++k) open_and_close();
  EnvHandle env = nullptr;
  const auto open = [&] {
    int status = -1;
    env = TVKopenTOVIK(&status);
    EXPECT_EQ(env == nullptr, status != 0);
    return status;
  };
  EXPECT_GT(exhaust(open, [&] { TVKcloseTOVIK(&env); }), 10);
}

TEST(Memory, WorkInsideAnEnvironment) {
  int status = -1;
  EnvHandle env = TVKopenTOVIK(&status), child = nullptr;
  ProbHandle lp = TVKcreateprob(env, &status, "a name too long to be kept without an allocation"),
             other = nullptr;
  const double obj[] = {1, 2, 3};
  ASSERT_EQ(TVKnewcols(env, lp, 3, obj, nullptr, nullptr, "IBC", nullptr), 0);
  ChannelHandle channel = TVKaddchannel(env), second = nullptr, error = nullptr;
  ASSERT_EQ(TVKgetchannels(env, nullptr, nullptr, &error, nullptr), 0);

  EXPECT_GT(exhaust(
                [&] {
                  other = TVKcreateprob(env, &status, "another name that is too long for a short string");
                  return status;
                },
                [&] { TVKfreeprob(env, &other); }),
            1);
  EXPECT_GT(exhaust([&] { return (other = TVKcloneprob(env, lp, &status)) == nullptr ? status : 0; },
                    [&] { TVKfreeprob(env, &other); }),
            2);
  ASSERT_NE(child = TVKparenv(env, &status), nullptr);  // the list of children keeps its room
  ASSERT_EQ(TVKfreeparenv(env, &child), 0);
  EXPECT_GT(exhaust([&] { return (child = TVKparenv(env, &status)) == nullptr ? status : 0; },
                    [&] { TVKfreeparenv(env, &child); }),
            10);
  EXPECT_GT(exhaust([&] { return (second = TVKaddchannel(env)) == nullptr ? 1001 : 0; },
                    [&] { TVKdelchannel(env, &second); }),
            1);

  /* Lists keep their room, so these are compared by what they do. */
  allocations_left = 0;
  EXPECT_EQ(TVKsetlogfile(env, stdout), 1001);
  EXPECT_EQ(TVKaddfpdest(env, channel, stdout), 1001);
  EXPECT_EQ(TVKchgprobtype(env, lp, 1), 0);
  allocations_left = -1;
  FILE* log = stdout;
  EXPECT_EQ(TVKgetlogfile(env, &log), 0);
  EXPECT_EQ(log, nullptr);
  EXPECT_EQ(TVKdelfpdest(env, error, stdout), 1052);
  EXPECT_EQ(TVKgetnumint(env, lp), 1);
  EXPECT_EQ(TVKcloseTOVIK(&env), 0);
}

/* A parameter file is applied whole or not at all. */
TEST(Memory, ReadingParameters) {
  char name[] = "/tmp/tovik-memory-XXXXXX";
  FILE* file = fdopen(mkstemp(name), "w");
  ASSERT_NE(file, nullptr);
  std::fprintf(file,
               "TOVIK Parameter File Version 12.2.0.0\nTVK_PARAM_ITLIM 5\nTVK_PARAM_WORKDIR \"%0400d\"\n", 7);
  std::fclose(file);
  int status = -1;
  EnvHandle env = TVKopenTOVIK(&status);
  ASSERT_EQ(TVKsetstrparam(env, TVK_PARAM_WORKDIR, "before"), 0);
  ASSERT_EQ(TVKsetintparam(env, TVK_PARAM_SIMDISPLAY, 2), 0);
  for (int allocations = 0; status != 0 || allocations == 0; ++allocations) {
    allocations_left = allocations;
    status = TVKreadcopyparam(env, name);
    allocations_left = -1;
    char text[TVK_STR_PARAM_MAX];
    int display = 0, limit = 0;
    TVKgetstrparam(env, TVK_PARAM_WORKDIR, text);
    TVKgetintparam(env, TVK_PARAM_SIMDISPLAY, &display);
    TVKgetintparam(env, TVK_PARAM_ITLIM, &limit);
    const bool applied = TVKstrlen(text) == 400 && display == 1 && limit == 5;
    const bool unchanged = std::string_view(text) == "before" && display == 2 && limit != 5;
    ASSERT_TRUE(status == 0 ? applied : status == 1001 && unchanged) << allocations << ' ' << status;
  }
  EXPECT_EQ(TVKcloseTOVIK(&env), 0);
  std::remove(name);
}

/* The report of a shortage needs no memory itself. */
TEST(Memory, AShortageIsReported) {
  int status = -1;
  static char said[200];
  EnvHandle env = TVKopenTOVIK(&status);
  ChannelHandle error = nullptr;
  TVKgetchannels(env, nullptr, nullptr, &error, nullptr);
  TVKaddfuncdest(env, error, nullptr, [](void*, const char* text) { TVKstrcpy(said, text); });
  allocations_left = 0;
  EXPECT_EQ(TVKcreateprob(env, &status, "p"), nullptr);
  allocations_left = -1;
  EXPECT_EQ(status, 1001);
  EXPECT_STREQ(said, "TOVIK Error  1001: Out of memory.\n");
  EXPECT_EQ(TVKcloseTOVIK(&env), 0);
}

}  // namespace
