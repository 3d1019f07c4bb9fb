/* A freed handle was accepted again as soon as its address went to the next object: a stale copy freed somebody else's
 * problem. A stale handle is refused for the life of the process. */
#include <cstdint>
#include <set>

#include "support/environment_fixture.h"

namespace {

class StaleHandles : public support::WithEnvironment {};

TEST_F(StaleHandles, OfEveryKindStayStaleWhateverComesAfterThem) {
  int status = -1;
  for (int round = 0; round < 200; ++round) {
    ProbHandle lp = TVKcreateprob(env_, &status, "p");
    NetProbHandle net = TVKNETcreateprob(env_, &status, "n");
    ChannelHandle channel = TVKaddchannel(env_);
    EnvHandle env = TVKopenTOVIK(&status);
    ProbHandle old_lp = lp;
    NetProbHandle old_net = net;
    ChannelHandle old_channel = channel;
    EnvHandle old_env = env;
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
    ASSERT_EQ(TVKNETfreeprob(env_, &net), 0);
    ASSERT_EQ(TVKdelchannel(env_, &channel), 0);
    ASSERT_EQ(TVKcloseTOVIK(&env), 0);
    lp = TVKcreateprob(env_, &status, "next");
    net = TVKNETcreateprob(env_, &status, "next");
    channel = TVKaddchannel(env_);
    env = TVKopenTOVIK(&status);
    EXPECT_EQ(TVKgetprobtype(env_, old_lp), -1);
    EXPECT_EQ(TVKfreeprob(env_, &old_lp), 1009);
    EXPECT_EQ(TVKNETfreeprob(env_, &old_net), 1009);
    EXPECT_EQ(TVKdisconnectchannel(env_, old_channel), 1051);
    EXPECT_EQ(TVKdelchannel(env_, &old_channel), 1051);
    EXPECT_EQ(TVKversion(old_env), nullptr);
    EXPECT_EQ(TVKcloseTOVIK(&old_env), 1002);
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
    ASSERT_EQ(TVKNETfreeprob(env_, &net), 0);
    ASSERT_EQ(TVKdelchannel(env_, &channel), 0);
    ASSERT_EQ(TVKcloseTOVIK(&env), 0);
  }
}

TEST_F(StaleHandles, NoHandleIsGivenTwice) {
  std::set<const void*> seen;
  int status = -1;
  for (int k = 0; k < 5000; ++k) {
    ProbHandle lp = TVKcreateprob(env_, &status, "p");
    EXPECT_TRUE(seen.insert(lp).second) << k;
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  for (int k = 0; k < 1000; ++k) EXPECT_TRUE(seen.insert(TVKcreateprob(env_, &status, "p")).second) << k;
}

/* Neither another kind's handle, nor one that differs in any bit. */
TEST_F(StaleHandles, NeighboursOfALiveHandleAreNone) {
  int status = -1;
  ProbHandle lp = TVKcreateprob(env_, &status, "p");
  const auto value = reinterpret_cast<std::uintptr_t>(lp);
  for (int bit = 0; bit < 64; ++bit) {
    const std::uintptr_t other = value ^ (std::uintptr_t{1} << bit);
    EXPECT_EQ(TVKgetprobtype(env_, reinterpret_cast<ProbHandle>(other)), -1) << bit;
    EXPECT_EQ(TVKversion(reinterpret_cast<EnvHandle>(other)) != nullptr,
              other == reinterpret_cast<std::uintptr_t>(env_));
  }
  EXPECT_EQ(TVKgetprobtype(env_, lp), 0);
}

}  // namespace
