/* Functions that free, from inside a delivery, what is being read; that take another environment's channel; or that
 * fail themselves, on the error channel, without end. */
#include <cstdio>
#include <vector>

#include "support/file_fixture.h"

namespace {

/* Frees all that it knows at each message, and keeps the codes. */
struct Freer {
  ConstEnvHandle reader = nullptr;
  EnvHandle env = nullptr;
  ProbHandle lp = nullptr;
  EnvHandle child = nullptr;
  std::vector<int> codes;
};

extern "C" void free_all(void* handle, const char*) {
  auto* self = static_cast<Freer*>(handle);
  EnvHandle env = self->env, child = self->child;
  ProbHandle lp = self->lp;
  const double cost = 1;
  const int column = 0;
  self->codes.push_back(TVKfreepresolve(env, lp));
  self->codes.push_back(TVKchgobj(env, lp, 1, &column, &cost));
  self->codes.push_back(TVKfreeprob(env, &lp));
  if (child != nullptr) self->codes.push_back(TVKfreeparenv(env, &child));
  self->codes.push_back(TVKcloseTOVIK(&env));
}

class CallbacksThatFree : public support::WithFiles {
 protected:
  void SetUp() override {
    WithFiles::SetUp();
    ASSERT_EQ(read_text("a.lp",
                        "minimize\n x + 2 y + z\nsubject to\n c1: x + y + z >= 2\n c2: x - y + 3 z <= 7\n"
                        " c3: 2 x + y - z >= 1\n c4: w >= 3\nend\n"),
              0);
    ASSERT_EQ(TVKpresolve(env_, lp_, 0), 0);
    ASSERT_EQ(TVKgetredlp(env_, lp_, &reduced_), 0);
    ASSERT_NE(reduced_, nullptr);
    results();
  }
  void expect_refused(const Freer& freer) {
    EXPECT_FALSE(freer.codes.empty());
    for (const int code : freer.codes) EXPECT_EQ(code, 1804);
  }
  ConstProbHandle reduced_ = nullptr;
};

TEST_F(CallbacksThatFree, TheOwnerOfAReducedProblemThatIsRead) {
  Freer freer{env_, env_, lp_, nullptr, {}};
  for (ChannelHandle channel : {results_, warning_})
    ASSERT_EQ(TVKaddfuncdest(env_, channel, &freer, free_all), 0);
  EXPECT_EQ(TVKdisplayprob(env_, reduced_, results_), 0);
  expect_refused(freer);
  freer.codes.clear();
  EXPECT_EQ(TVKdisplaysummary(env_, reduced_, warning_), 0);
  expect_refused(freer);
  freer.codes.clear();
  EXPECT_EQ(TVKsolwrite(env_, reduced_, path("none").c_str()), 1217);
  for (const char* name : {"r.lp", "r.mps", "r.sav"}) {
    EXPECT_EQ(TVKwriteprob(env_, reduced_, path(name).c_str(), nullptr), 0);
  }
  for (ChannelHandle channel : {results_, warning_})
    ASSERT_EQ(TVKdelfuncdest(env_, channel, &freer, free_all), 0);
  EXPECT_EQ(TVKfreepresolve(env_, lp_), 0) << "nobody reads it any more";
}

/* The environment of the call, where problem and channel are those of another one of the family. */
TEST_F(CallbacksThatFree, TheEnvironmentOfTheCall) {
  int status = -1;
  EnvHandle child = TVKparenv(env_, &status);
  ASSERT_NE(child, nullptr);
  Freer freer{child, env_, lp_, child, {}};
  ASSERT_EQ(TVKaddfuncdest(env_, results_, &freer, free_all), 0);
  EXPECT_EQ(TVKdisplayprob(child, lp_, results_), 0);
  expect_refused(freer);
  ASSERT_EQ(TVKdelfuncdest(env_, results_, &freer, free_all), 0);
  EXPECT_EQ(TVKfreeparenv(env_, &child), 0);
}

TEST_F(CallbacksThatFree, AChannelBelongsToItsFamily) {
  int status = -1;
  EnvHandle other = TVKopenTOVIK(&status);
  std::string text;
  const ChannelHandle own = results_;
  EXPECT_EQ(TVKdisconnectchannel(other, own), 1051);
  EXPECT_EQ(TVKflushchannel(other, own), 1051);
  EXPECT_EQ(TVKaddfuncdest(other, own, &text, support::keep_text), 1051);
  EXPECT_EQ(TVKdelfuncdest(other, own, &text, support::keep_text), 1051);
  EXPECT_EQ(TVKaddfpdest(other, own, stdout), 1051);
  EXPECT_EQ(TVKdelfpdest(other, own, stdout), 1051);
  ProbHandle lp = TVKcreateprob(other, &status, "p");
  EXPECT_EQ(TVKdisplayprob(other, lp, own), 1051);
  TVKmsgstr(own, "still connected");
  EXPECT_EQ(results(), "still connected");
  EXPECT_EQ(TVKcloseTOVIK(&other), 0);
  EnvHandle child = TVKparenv(env_, &status);
  EXPECT_EQ(TVKaddfuncdest(child, own, &text, support::keep_text), 0);
  EXPECT_EQ(TVKfreeparenv(env_, &child), 0);
}

struct Failing {
  EnvHandle env;
  int calls = 0;
  int code = 0;
};
extern "C" void fail_again(void* handle, const char*) {
  auto* self = static_cast<Failing*>(handle);
  ++self->calls;
  self->code = TVKsetintparam(self->env, 1, 1);  // no such parameter
}

TEST_F(CallbacksThatFree, AnErrorWithinTheDeliveryOfAnErrorGoesToFilesAlone) {
  Failing failing{env_};
  std::FILE* log = std::fopen(path("log").c_str(), "w");
  ASSERT_EQ(TVKsetlogfile(env_, log), 0);
  ASSERT_EQ(TVKaddfuncdest(env_, error_, &failing, fail_again), 0);
  EXPECT_EQ(TVKchgobjsen(env_, nullptr, 1), 1009);
  EXPECT_EQ(failing.calls, 1);
  EXPECT_EQ(failing.code, 1013);
  EXPECT_EQ(errors(), "TOVIK Error  1009: No problem exists.\n");
  ASSERT_EQ(TVKsetlogfile(env_, nullptr), 0);
  std::fclose(log);
  const std::string text = content("log");
  EXPECT_NE(text.find("1009"), std::string::npos) << text;
  EXPECT_NE(text.find("1013"), std::string::npos) << text;
  ASSERT_EQ(TVKdelfuncdest(env_, error_, &failing, fail_again), 0);
}

}  // namespace
