/* What the display routines say about a model. */
#include "support/file_fixture.h"

namespace {

class Display : public support::WithFiles {
 protected:
  using ByName = int (*)(ConstEnvHandle, ConstProbHandle, ChannelHandle, const char*, int, int);
  using Whole = int (*)(ConstEnvHandle, ConstProbHandle, ChannelHandle);

  void load() {
    ASSERT_EQ(read_text("model.lp", kModel), 0) << errors();
    ASSERT_EQ(TVKchgprobname(env_, lp_, "p"), 0);
    warnings();
  }
  std::string shown(ByName routine, const char* pattern, int begin, int end, int code = 0) {
    EXPECT_EQ(routine(env_, lp_, results_, pattern, begin, end), code);
    return results();
  }
  std::string shown(Whole routine) {
    EXPECT_EQ(routine(env_, lp_, results_), 0);
    return results();
  }
  std::string of_type(int type, const char* pattern, int begin = 0, int end = 6, int code = 0) {
    EXPECT_EQ(TVKdisplayctype(env_, lp_, results_, type, pattern, begin, end), code);
    return results();
  }

  /* Columns x y b n1 n2 s t. */
  static inline const std::string kModel =
      "max cost: x + y + b + n1 + n2 + s + t + [ x^2 ] / 2 + 5\nst\n"
      "cap_a: x + 2 y <= 4\n cap_b: -2 <= x - y <= 8\n bal: b + n1 = 1\n"
      "q: x + [ x^2 + y^2 ] <= 9\n on: b = 1 -> x + y <= 3\n"
      "lazy constraints\n late: x <= 7\nbounds\n x <= 10\n y free\n n1 <= 8\n n2 <= 9\n s <= 5\n t <= 6\n"
      "binaries\n b\ngenerals\n n1 n2 t\nsemi-continuous\n s t\nsos\n pick: S1:: x:1 y:2\nend\n";
};

TEST_F(Display, ItemsByRangeAndPattern) {
  load();
  EXPECT_EQ(shown(TVKdisplayrows, nullptr, 0, 2),
            " cap_a: x + 2 y <= 4\n cap_b: -2 <= x - y <= 8\n bal: b + n1  = 1\n");
  EXPECT_EQ(shown(TVKdisplayrows, nullptr, 2, 2), " bal: b + n1  = 1\n");
  EXPECT_EQ(shown(TVKdisplayrows, "cap*", 0, 0), " cap_a: x + 2 y <= 4\n");
  EXPECT_EQ(shown(TVKdisplayrows, "?a*_?", 1, 2), " cap_b: -2 <= x - y <= 8\n");
  EXPECT_EQ(shown(TVKdisplayrows, nullptr, 2, 1), "");
  EXPECT_EQ(shown(TVKdisplayrows, "cap_?a", 0, 2), "No constraints match 'cap_?a'.\n");
  EXPECT_EQ(shown(TVKdisplayrows, "%s", 0, 2), "No constraints match '%s'.\n");
  EXPECT_EQ(shown(TVKdisplayqconstrs, "q*", 0, 0), " q: x + [ x^2 + y^2 ] <= 9\n");
  EXPECT_EQ(shown(TVKdisplayqconstrs, "Q", 0, 0), "No quadratic constraints match 'Q'.\n");
  EXPECT_EQ(shown(TVKEdisplayindconstrs, nullptr, 0, 0), " on: b = 1 -> x + y <= 3\n");
  EXPECT_EQ(shown(TVKdisplaylazyconstraints, "l*e", 0, 0), " late: x <= 7\n");
  EXPECT_EQ(shown(TVKdisplaysos, nullptr, 0, 0), " pick: S1 :: x:1 y:2\n");
  EXPECT_EQ(shown(TVKdisplayusercuts, nullptr, 0, -1), "There are no user cuts.\n");
  EXPECT_EQ(
      shown(TVKdisplaybounds, nullptr, 0, 6),
      " 0 <= x <= 10\n y Free\n 0 <= b <= 1\n 0 <= n1 <= 8\n 0 <= n2 <= 9\n 0 <= s <= 5\n 0 <= t <= 6\n");
  EXPECT_EQ(shown(TVKdisplaybounds, "n*2", 0, 6), " 0 <= n2 <= 9\n");
  EXPECT_EQ(shown(TVKdisplayobj), "Maximize\n cost: x + y + b + n1 + n2 + s + t + [ x^2 ] / 2 + 5\n");
}

TEST_F(Display, Types) {
  load();
  EXPECT_EQ(of_type('B', nullptr), " b\n");
  EXPECT_EQ(of_type('I', nullptr), " n1 n2\n");
  EXPECT_EQ(of_type('I', "?2"), " n2\n");
  EXPECT_EQ(of_type('S', nullptr), " s\n");
  EXPECT_EQ(of_type('N', "*"), " t\n");
  EXPECT_EQ(of_type('C', nullptr, 0, 0), " x\n");
  EXPECT_EQ(of_type('B', nullptr, 3, 6), "There are no binary variables in the specified range.\n");
  EXPECT_EQ(of_type('I', "x*"), "There are no matching general variables.\n");
  EXPECT_EQ(of_type('S', "x*"), "There are no matching semi-continuous variables.\n");
  EXPECT_EQ(of_type('Q', nullptr, 0, 6, 1003), "");
}

TEST_F(Display, NothingThere) {
  EXPECT_EQ(shown(TVKdisplayrows, nullptr, 0, -1), "There are no constraints.\n");
  EXPECT_EQ(shown(TVKdisplayqconstrs, nullptr, 0, 4), "There are no quadratic constraints.\n");
  EXPECT_EQ(shown(TVKEdisplayindconstrs, "*", 0, -1), "There are no indicator constraints.\n");
  EXPECT_EQ(of_type('B', nullptr, 0, -1), "There are no binary variables in the specified range.\n");
  EXPECT_EQ(shown(TVKdisplayprob), "Minimize\n obj:\nBounds\nEnd\n");
}

TEST_F(Display, MadeUpNamesAndNamesThatNoFileCouldHold) {
  load();
  ASSERT_EQ(TVKdelnames(env_, lp_), 0);
  EXPECT_EQ(shown(TVKdisplayrows, "c3", 0, 2), " c3: x3 + x4  = 1\n");
  int column = 0;
  std::string strange = "a b+c";
  char* name = strange.data();
  ASSERT_EQ(TVKchgcolname(env_, lp_, 1, &column, &name), 0);
  EXPECT_EQ(shown(TVKdisplaybounds, "a b+*", 0, 6), " 0 <= a b+c <= 10\n");
  EXPECT_EQ(warnings(), "");
}

TEST_F(Display, WholeProblemReadsBack) {
  load();
  const std::string before = model();
  ASSERT_EQ(read_text("again.lp", shown(TVKdisplayprob)), 0) << errors();
  ASSERT_EQ(TVKchgprobname(env_, lp_, "p"), 0);
  EXPECT_EQ(model(), before);
}

TEST_F(Display, Summary) {
  load();
  EXPECT_EQ(shown(TVKdisplaysummary),
            "Problem                 p  (mixed-integer quadratically constrained, maximize)\n"
            "Variables               7  (1 binary, 2 general, 1 semi-continuous, 1 semi-integer, 1 free, "
            "6 between two bounds, bounds 1 to 10)\n"
            "Objective nonzeros      7  (all 1, 1 quadratic terms, with a constant)\n"
            "Constraints             3  (1 <=, 1 =, 1 ranged, right-hand sides 1 to 4)\n"
            "Nonzeros                6  (1 to 2)\n"
            "Quadratic constraints   1\nIndicator constraints   1\nSpecial ordered sets    1\n"
            "Lazy constraints        1\n");
}

/* A destination must not change the model that it is told about. */
struct Meddler {
  EnvHandle env;
  ProbHandle lp;
  std::string text;
};

extern "C" void delete_a_row(void* handle, const char* text) {
  auto* meddler = static_cast<Meddler*>(handle);
  meddler->text += text;
  EXPECT_EQ(TVKdelrows(meddler->env, meddler->lp, 0, 0), 1804);
}

TEST_F(Display, RangesAndChannels) {
  load();
  EXPECT_EQ(shown(TVKdisplayrows, nullptr, 0, 3, 1200), "");
  EXPECT_EQ(shown(TVKdisplaybounds, "x", -1, 6, 1200), "");
  EXPECT_EQ(of_type('B', "b", 0, 7, 1200), "");
  EXPECT_EQ(TVKdisplayrows(env_, lp_, nullptr, nullptr, 0, 2), 1051);
  EXPECT_EQ(TVKdisplaysummary(env_, nullptr, results_), 1009);
  Meddler meddler{env_, lp_, {}};
  ChannelHandle channel = TVKaddchannel(env_);
  ASSERT_EQ(TVKaddfuncdest(env_, channel, &meddler, delete_a_row), 0);
  EXPECT_EQ(TVKdisplayrows(env_, lp_, channel, nullptr, 0, 2), 0);
  EXPECT_EQ(meddler.text, " cap_a: x + 2 y <= 4\n cap_b: -2 <= x - y <= 8\n bal: b + n1  = 1\n");
  EXPECT_EQ(TVKgetnumrows(env_, lp_), 3);
}

}  // namespace
