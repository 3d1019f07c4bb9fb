/* Environments: opening, closing, children, and handles that are not what they should be. */
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "support/environment_fixture.h"

namespace {

using Environments = support::WithEnvironment;

TEST_F(Environments, OpeningAndClosingSetStatusAndHandle) {
  EXPECT_EQ(TVKopenTOVIK(nullptr), nullptr);
  EXPECT_STREQ(TVKversion(env_), "12.2.0.0");
  int status = -1;
  EnvHandle other = TVKopenTOVIK(&status);
  ASSERT_NE(other, nullptr);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(TVKcloseTOVIK(nullptr), 1004);
  EXPECT_EQ(TVKcloseTOVIK(&other), 0);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(TVKcloseTOVIK(&other), 1002);
}

TEST_F(Environments, HandlesThatAreNotLiveEnvironmentsAreRefusedUnread) {
  int status = 0;
  EnvHandle closed = TVKopenTOVIK(&status);
  const EnvHandle stale = closed;
  ProbHandle lp = TVKcreateprob(env_, &status, "p");
  ASSERT_EQ(TVKcloseTOVIK(&closed), 0);
  const EnvHandle nowhere = reinterpret_cast<EnvHandle>(0x10);
  for (EnvHandle bad : {EnvHandle(nullptr), stale, nowhere, reinterpret_cast<EnvHandle>(lp),
                        reinterpret_cast<EnvHandle>(error_), reinterpret_cast<EnvHandle>(&status)}) {
    EnvHandle handle = bad;
    double time = 0;
    EXPECT_EQ(TVKcloseTOVIK(&handle), 1002);
    EXPECT_EQ(handle, bad);
    EXPECT_EQ(TVKversion(bad), nullptr);
    EXPECT_EQ(TVKgettime(bad, &time), 1002);
    EXPECT_EQ(TVKcreateprob(bad, &status, "q"), nullptr);
    EXPECT_EQ(status, 1002);
    EXPECT_EQ(TVKparenv(bad, &status), nullptr);
    EXPECT_EQ(status, 1002);
    EXPECT_EQ(TVKEgetmaxthreads(bad), 0);
    EXPECT_EQ(TVKaddchannel(bad), nullptr);
    EXPECT_EQ(TVKsetterminate(bad, nullptr), 1002);
    EXPECT_EQ(TVKgetstat(bad, lp), 0);
  }
  EXPECT_EQ(errors(), "");
}

TEST_F(Environments, ClosingInvalidatesWhatIsLeftInside) {
  int status = 0;
  EnvHandle env = TVKopenTOVIK(&status);
  ProbHandle lp = TVKcreateprob(env, &status, "left over");
  ChannelHandle channel = TVKaddchannel(env);
  const EnvHandle child = TVKparenv(env, &status);
  ASSERT_NE(child, nullptr);
  ASSERT_EQ(TVKcloseTOVIK(&env), 0);
  EXPECT_EQ(TVKgetprobtype(env_, lp), -1);
  EXPECT_EQ(errors(), "TOVIK Error  1009: No problem exists.\n");
  EXPECT_EQ(TVKflushchannel(env_, channel), 1051);
  EXPECT_EQ(TVKmsgstr(channel, "nobody"), 6);
  EXPECT_EQ(TVKversion(child), nullptr);
}

TEST_F(Environments, ChildrenInheritSettingsAndBelongToOneParent) {
  int marker = 0, status = -1;
  const auto callback = [](ConstEnvHandle, void*, int, void*) { return 0; };
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 77), 0);
  ASSERT_EQ(TVKEsetJNI(env_, &marker), 0);
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, callback, &marker), 0);
  EXPECT_EQ(TVKparenv(env_, nullptr), nullptr);
  EXPECT_EQ(errors(), "TOVIK Error  1004: Null pointer for required data.\n");
  EnvHandle child = TVKparenv(env_, &status);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(status, 0);

  int value = 0;
  void* handle = nullptr;
  EXPECT_EQ(TVKgetintparam(child, TVK_PARAM_ITLIM, &value), 0);
  EXPECT_EQ(value, 77);
  EXPECT_EQ(TVKEgetJNI(child), &marker);
  EXPECT_EQ(TVKgetlpcallbackfunc(child, nullptr, &handle), 0);
  EXPECT_EQ(handle, &marker);
  EXPECT_EQ(TVKEgetThreadNumber(env_), 0);
  EXPECT_EQ(TVKEgetThreadNumber(child), 1);

  EXPECT_EQ(TVKparenv(child, &status), nullptr);
  EXPECT_EQ(status, 1019);
  EnvHandle copy = child;
  EXPECT_EQ(TVKcloseTOVIK(&copy), 1021);
  EXPECT_STREQ(TVKversion(child), "12.2.0.0");

  EnvHandle other = TVKopenTOVIK(&status);
  EXPECT_EQ(TVKfreeparenv(other, &child), 1002);
  EXPECT_EQ(TVKcloseTOVIK(&other), 0);
  EXPECT_EQ(TVKfreeparenv(env_, nullptr), 1004);
  EXPECT_EQ(TVKfreeparenv(env_, &child), 0);
  EXPECT_EQ(child, nullptr);
  EXPECT_EQ(TVKfreeparenv(env_, &copy), 1002);
}

TEST_F(Environments, ThereAreAsManyChildrenAsThreads) {
  std::vector<EnvHandle> children;
  int status = 0;
  for (int k = 0; k < TVKEgetmaxthreads(env_); ++k) children.push_back(TVKparenv(env_, &status));
  EXPECT_EQ(status, 0);
  EXPECT_EQ(std::count(children.begin(), children.end(), nullptr), 0);
  EXPECT_EQ(TVKparenv(env_, &status), nullptr);
  EXPECT_EQ(status, 1020);
  ASSERT_EQ(TVKfreeparenv(env_, &children.front()), 0);
  children.front() = TVKparenv(env_, &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(TVKEgetThreadNumber(children.front()), 1);
}

TEST_F(Environments, ProblemsAreSharedWithinAFamilyOnly) {
  int status = 0;
  EnvHandle child = TVKparenv(env_, &status), other = TVKopenTOVIK(&status);
  ProbHandle ours = TVKcreateprob(env_, &status, "ours"), childs = TVKcreateprob(child, &status, "child's");
  ProbHandle foreign = TVKcreateprob(other, &status, "foreign");
  EXPECT_EQ(TVKgetprobtype(child, ours), 0);
  EXPECT_EQ(TVKgetprobtype(env_, childs), 0);
  EXPECT_EQ(TVKgetprobtype(env_, foreign), -1);
  EXPECT_EQ(errors(), "TOVIK Error  1806: Problem is not member of this environment.\n");
  EXPECT_EQ(TVKfreeprob(env_, &foreign), 1806);
  EXPECT_NE(foreign, nullptr);
  EXPECT_EQ(TVKfreeprob(env_, &childs), 0);
  EXPECT_EQ(TVKcloseTOVIK(&other), 0);
}

TEST_F(Environments, TheClockRunsForwardInBothUnits) {
  for (int type : {0, 1, 2}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CLOCKTYPE, type), 0);
    double before = 0, after = 0;
    ASSERT_EQ(TVKgettime(env_, &before), 0);
    volatile double sink = 0;
    for (int k = 0; k < 2000000; ++k) sink = sink + k;
    ASSERT_EQ(TVKgettime(env_, &after), 0);
    EXPECT_GT(after, before) << type;
    EXPECT_LT(after - before, 60) << type;
  }
  EXPECT_EQ(TVKgettime(env_, nullptr), 1004);
}

TEST(OverrideFile, AFileThatCannotBeReadIsToldOnStandardOutputOnly) {
  setenv("MERU_TOVIK_PARAMETER_FILE", "/nowhere/at all.prm", 1);
  testing::internal::CaptureStdout();
  int status = -1;
  EnvHandle env = TVKopenTOVIK(&status);
  ChannelHandle results = nullptr;
  ASSERT_EQ(TVKgetchannels(env, &results, nullptr, nullptr, nullptr), 0);
  TVKmsgstr(results, "not on the screen");
  int screen = -1;
  EXPECT_EQ(TVKgetintparam(env, TVK_PARAM_SCRIND, &screen), 0);
  EXPECT_EQ(TVKcloseTOVIK(&env), 0);
  unsetenv("MERU_TOVIK_PARAMETER_FILE");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Reading override parameter file '/nowhere/at all.prm' failed.\n");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(screen, 0);
}

TEST(Utilities, SortersAgree) {
  std::vector<int> keys{5, -1, 3, 3, 2147483647, -2147483647 - 1, 0};
  std::vector<int> other = keys, sorted = keys;
  std::sort(sorted.begin(), sorted.end());
  TVKEisort(static_cast<int>(keys.size()), keys.data());
  TVKEinsort(static_cast<int>(other.size()), other.data());
  EXPECT_EQ(keys, sorted);
  EXPECT_EQ(other, sorted);
  TVKEisort(0, nullptr);
  TVKEinsort(0, nullptr);
}

}  // namespace
