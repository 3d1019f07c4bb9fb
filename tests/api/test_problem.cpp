/* Problem objects: creating, copying, freeing, types, cleaning up. */
#include <vector>

#include "support/environment_fixture.h"

namespace {

class Problems : public support::WithEnvironment {
 protected:
  /* 2 rows, 3 columns with names; ranged second row; values on both sides of 1e-9. */
  ProbHandle small() {
    int status = -1;
    ProbHandle lp = TVKcreateprob(env_, &status, "small");
    const double obj[] = {1, -1e-10, 3}, rhs[] = {1e-9, -5e-10}, lb[] = {1e-10, 0, -1e20},
                 ub[] = {4, 1e20, 1e20};
    const double val[] = {1e-10, 1e-9, -1e-9, 2}, rng[] = {0, 5e-10};
    const int beg[] = {0, 2, 3}, cnt[] = {2, 1, 1}, ind[] = {0, 1, 0, 1};
    char x[] = "x", y[] = "y", z[] = "z", r[] = "r", s[] = "s";
    char *columns[] = {x, y, z}, *rows[] = {r, s};
    EXPECT_EQ(TVKcopylpwnames(env_, lp, 3, 2, TVK_MAX, obj, rhs, "LR", beg, cnt, ind, val, lb, ub, rng,
                              columns, rows),
              0);
    return lp;
  }
};

TEST_F(Problems, CreationWantsANameAndTellsWhy) {
  int status = -1;
  EXPECT_EQ(TVKcreateprob(env_, &status, nullptr), nullptr);
  EXPECT_EQ(status, 1004);
  EXPECT_EQ(TVKcreateprob(env_, nullptr, nullptr), nullptr);
  errors();
  ProbHandle lp = TVKcreateprob(env_, nullptr, "");
  ASSERT_NE(lp, nullptr);
  EXPECT_EQ(TVKgetprobtype(env_, lp), 0);
  EXPECT_EQ(TVKgetnumcols(env_, lp), 0);
  EXPECT_EQ(TVKgetobjsen(env_, lp), TVK_MIN);
  EXPECT_EQ(TVKgetstat(env_, lp), 0);
  EXPECT_EQ(errors(), "");
}

TEST_F(Problems, FreeingNullsTheHandleAndInvalidatesCopiesOfIt) {
  ProbHandle lp = small(), copy = lp, none = nullptr;
  EXPECT_EQ(TVKfreeprob(env_, nullptr), 1004);
  EXPECT_EQ(TVKfreeprob(env_, &none), 1009);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  EXPECT_EQ(lp, nullptr);
  errors();
  EXPECT_EQ(TVKfreeprob(env_, &copy), 1009);
  EXPECT_NE(copy, nullptr);
  EXPECT_EQ(errors(), "TOVIK Error  1009: No problem exists.\n");
  EXPECT_EQ(TVKchgprobtype(env_, copy, 1), 1009);
  EXPECT_EQ(TVKcleanup(env_, copy, 1), 1009);
  EXPECT_EQ(TVKunscaleprob(env_, nullptr), 1009);
  int status = 0;
  EXPECT_EQ(TVKcloneprob(env_, copy, &status), nullptr);
  EXPECT_EQ(status, 1009);
}

TEST_F(Problems, ACloneIsAModelOfItsOwn) {
  ProbHandle lp = small();
  ASSERT_EQ(TVKcopyctype(env_, lp, "CIS"), 0);
  int status = -1;
  ProbHandle copy = TVKcloneprob(env_, lp, &status);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(status, 0);
  ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
  EXPECT_EQ(TVKgetprobtype(env_, copy), 1);
  EXPECT_EQ(TVKgetobjsen(env_, copy), TVK_MAX);
  EXPECT_EQ(TVKgetnumnz(env_, copy), 4);
  char types[3], sense[2];
  double range[2];
  int z = -1, r = -1;
  EXPECT_EQ(TVKgetctype(env_, copy, types, 0, 2), 0);
  EXPECT_EQ(std::string(types, 3), "CIS");
  EXPECT_EQ(TVKgetsense(env_, copy, sense, 0, 1), 0);
  EXPECT_EQ(std::string(sense, 2), "LR");
  EXPECT_EQ(TVKgetrngval(env_, copy, range, 0, 1), 0);
  EXPECT_EQ(range[1], 5e-10);
  EXPECT_EQ(TVKgetcolindex(env_, copy, "z", &z), 0);
  EXPECT_EQ(z, 2);
  EXPECT_EQ(TVKgetrowindex(env_, copy, "r", &r), 0);
  EXPECT_EQ(r, 0);
}

TEST_F(Problems, RefusedTypesChangeNothing) {
  ProbHandle lp = small();
  const struct {
    int type, code;
  } refused[] = {{3, 1024}, {8, 1029}, {13, 9019}, {2, 1022}, {4, 1022}, {-1, 1022}};
  for (int from : {0, 1}) {
    ASSERT_EQ(TVKchgprobtype(env_, lp, from), 0);
    for (const auto& change : refused)
      EXPECT_EQ(TVKchgprobtype(env_, lp, change.type), change.code) << change.type;
    EXPECT_EQ(TVKgetprobtype(env_, lp), from);
  }
  char types[3] = {0, 0, 0};
  EXPECT_EQ(TVKgetctype(env_, lp, types, 0, 2), 0);
  EXPECT_EQ(std::string(types, 3), "CCC");
  EXPECT_EQ(warnings(), "");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 1), 0);
  EXPECT_EQ(TVKchgprobtype(env_, lp, 0), 0);
  EXPECT_EQ(warnings(), "Freeing MIP data.\n");
  EXPECT_EQ(TVKchgprobtype(env_, lp, 0), 0);
  EXPECT_EQ(warnings(), "");
}

/* What a callback or message function must not do to a problem at work, and what it may. */
struct Meddler {
  EnvHandle env, child;
  ProbHandle lp;
  std::vector<int> refused;
  int columns = -1;
};
extern "C" void meddle(void* handle, const char*) {
  auto* self = static_cast<Meddler*>(handle);
  if (!self->refused.empty()) return;
  self->refused.push_back(1804);  // its own error lines come back here
  ProbHandle lp = self->lp;
  EnvHandle env = self->env, child = self->child;
  self->refused = {TVKfreeprob(env, &lp), TVKdelcols(env, lp, 0, 0), TVKlpopt(child, lp), TVKcloseTOVIK(&env),
                   TVKfreeparenv(env, &child)};
  self->columns = TVKgetnumcols(env, lp);
}
extern "C" int meddle_lp(ConstEnvHandle, void*, int, void* handle) {
  meddle(handle, "");
  return 0;
}
extern "C" void meddle_profile(ConstEnvHandle, int, void* handle) {
  meddle(handle, "");
}

TEST_F(Problems, AProblemAtWorkIsNotChangedOrFreedUnderIt) {
  int status = -1;
  EnvHandle child = TVKparenv(env_, &status);
  ASSERT_EQ(status, 0);
  /* Lives in the child and is worked on through the parent, so that either environment would take it away. */
  ProbHandle lp = TVKcreateprob(child, &status, "busy");
  const double obj[] = {3, 2}, rhs[] = {4}, val[] = {1, 1};
  const int beg[] = {0}, ind[] = {0, 1};
  ASSERT_EQ(TVKnewcols(env_, lp, 2, obj, nullptr, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKaddrows(env_, lp, 0, 1, 2, rhs, "G", beg, ind, val, nullptr, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  const std::vector<int> all_refused(5, 1804);
  const auto meddled = [&](const char* how, const auto& install, const auto& work) {
    Meddler meddler{env_, child, lp, {}};
    ASSERT_EQ(install(&meddler), 0);
    EXPECT_EQ(work(), 0) << how;
    EXPECT_EQ(meddler.refused, all_refused) << how;
    EXPECT_EQ(meddler.columns, 2) << how;
  };
  const auto solve = [&] { return TVKprimopt(env_, lp); };
  meddled(
      "lp callback", [&](void* m) { return TVKsetlpcallbackfunc(env_, meddle_lp, m); }, solve);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
  meddled(
      "profiling", [&](void* m) { return TVKsetprofcallbackfunc(env_, meddle_profile, m); }, solve);
  ASSERT_EQ(TVKsetprofcallbackfunc(env_, nullptr, nullptr), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 1), 0);
  meddled(
      "message", [&](void* m) { return TVKaddfuncdest(env_, warning_, m, meddle); },
      [&] { return TVKchgprobtype(env_, lp, 0); });
  ASSERT_EQ(TVKdisconnectchannel(env_, warning_), 0);
  meddled(
      "message of a writer", [&](void* m) { return TVKaddfuncdest(env_, warning_, m, meddle); },
      [&] { return TVKlpwrite(env_, lp, "/dev/null"); });
  ASSERT_EQ(TVKdisconnectchannel(env_, warning_), 0);
  EXPECT_EQ(TVKdelcols(env_, lp, 0, 0), 0);  // allowed again afterwards
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  EXPECT_EQ(TVKfreeparenv(env_, &child), 0);
}

TEST_F(Problems, CleanupIsStrictAndReachesEveryValue) {
  ProbHandle lp = small();
  ASSERT_EQ(TVKcleanup(env_, lp, 1e-9), 0);
  double obj[3], rhs[2], lb[3], range[2], value = -1;
  EXPECT_EQ(TVKgetnumnz(env_, lp), 3);
  EXPECT_EQ(TVKgetcoef(env_, lp, 1, 0, &value), 0);
  EXPECT_EQ(value, 1e-9);
  EXPECT_EQ(TVKgetcoef(env_, lp, 0, 1, &value), 0);
  EXPECT_EQ(value, -1e-9);
  ASSERT_EQ(TVKgetobj(env_, lp, obj, 0, 2), 0);
  EXPECT_EQ(obj[1], 0);
  ASSERT_EQ(TVKgetrhs(env_, lp, rhs, 0, 1), 0);
  EXPECT_EQ(rhs[0], 1e-9);
  EXPECT_EQ(rhs[1], 0);
  ASSERT_EQ(TVKgetlb(env_, lp, lb, 0, 2), 0);
  EXPECT_EQ(lb[0], 0);
  ASSERT_EQ(TVKgetrngval(env_, lp, range, 0, 1), 0);
  EXPECT_EQ(range[1], 0);
}

}  // namespace
