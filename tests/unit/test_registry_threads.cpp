/* Environments on several threads: each works by itself while handles come and go, and none is taken for
 * another. */
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "env/registry.h"
#include "include/tovik.h"

namespace {

TEST(RegistryThreads, EachThreadHasItsOwnEnvironments) {
  std::atomic<int> wrong{0};
  const auto work = [&] {
    for (int round = 0; round < 50; ++round) {
      int status = -1;
      EnvHandle env = TVKopenTOVIK(&status);
      for (int k = 0; k < 20; ++k) {
        ProbHandle lp = TVKcreateprob(env, &status, "p"), stale = lp;
        wrong += TVKgetprobtype(env, lp) != 0;
        wrong += TVKfreeprob(env, &lp) != 0;
        wrong += tovik::find_record(stale, tovik::HandleKind::problem) != nullptr;
      }
      wrong += TVKcloseTOVIK(&env) != 0;
    }
  };
  std::vector<std::thread> threads;
  for (int k = 0; k < 4; ++k) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

/* What one thread frees is gone for all. */
TEST(RegistryThreads, AHandleFreedElsewhereIsForgotten) {
  int status = -1;
  EnvHandle env = TVKopenTOVIK(&status);
  const EnvHandle stale = env;
  ASSERT_NE(TVKversion(stale), nullptr);
  std::thread([&] { TVKcloseTOVIK(&env); }).join();
  EXPECT_EQ(TVKversion(stale), nullptr);
}

}  // namespace
