/* Sets, indicator constraints, cuts, orders, MIP starts, types and problem types through the public
 * header. */
#include "support/describe_families.h"
#include "support/model_fixture.h"

namespace {

using support::describe_families;

/* The small model (columns x, y, z) with one item in every family. */
class MipData : public support::WithModel {
 protected:
  void fill() {
    const int beg[] = {0, 2}, ind[] = {2, 0, 1, 2};
    const double val[] = {5, 1, 0, 7};
    EXPECT_EQ(TVKcopysos(env_, lp_, 2, 4, "12", beg, ind, val, nullptr), 0);
    EXPECT_EQ(TVKEaddindconstr(env_, lp_, 1, 1, 2, 4, 'G', ind, val, "when"), 0);
    EXPECT_EQ(TVKaddusercuts(env_, lp_, 1, 2, val, "L", beg, ind, val, nullptr), 0);
    char name[] = "lazy", other[] = "l2";
    char* names[] = {name, other};
    EXPECT_EQ(TVKaddlazyconstraints(env_, lp_, 2, 4, val, "GE", beg, ind, val, names), 0);
    const int priority[] = {3, 4, 5}, direction[] = {-1, 0, 1}, effort[] = {2, -1};
    EXPECT_EQ(TVKcopyorder(env_, lp_, 3, ind, priority, direction), 0);
    EXPECT_EQ(TVKaddmipstarts(env_, lp_, 2, 4, beg, ind, val, effort, nullptr), 0);
    EXPECT_EQ(TVKchgctype(env_, lp_, 2, ind, "IS"), 0);
  }
  std::string text() {
    const std::string text = describe_families(env_, lp_);
    errors();  // what is missing says so
    return text;
  }
};

constexpr const char* kFilled =
    "type 1 SCI\n"
    "set - 1 z:5 x:1\n"
    "set - 2 y:0 z:7\n"
    "cut - L 5 z:5 x:1\n"
    "lazy lazy G 5 z:5 x:1\n"
    "lazy l2 E 1 z:7\n"
    "if y=0 when G 4 z:5 x:1\n"
    "order x 4 0\n"
    "order y 5 1\n"
    "order z 3 -1\n"
    "start - 2 z:5 x:1\n"
    "start - -1 y:0 z:7\n";

TEST_F(MipData, IsStoredClonedAndFollowsDeletedColumns) {
  fill();
  ASSERT_EQ(text(), kFilled);
  int status = -1;
  ProbHandle copy = TVKcloneprob(env_, lp_, &status);
  ASSERT_EQ(status, 0);
  int marks[] = {1, 0, 0};
  ASSERT_EQ(TVKdelsetcols(env_, lp_, marks), 0);
  EXPECT_EQ(text(),
            "type 1 CI\nset - 1 z:5\nset - 2 y:0 z:7\ncut - L 5 z:5\nlazy lazy G 5 z:5\nlazy l2 E 1 z:7\n"
            "if y=0 when G 4 z:5\norder y 5 1\norder z 3 -1\nstart - 2 z:5\nstart - -1 y:0 z:7\n");
  ASSERT_EQ(TVKdelcols(env_, lp_, 1, 1), 0);  // the last one
  ASSERT_EQ(TVKnewcols(env_, lp_, 1, nullptr, nullptr, nullptr, "B", nullptr), 0);
  EXPECT_EQ(text(),
            "type 1 CB\nset - 1\nset - 2 y:0\ncut - L 5\nlazy lazy G 5\nlazy l2 E 1\n"
            "if y=0 when G 4\norder y 5 1\nstart - 2\nstart - -1 y:0\n");
  ASSERT_EQ(TVKdelcols(env_, lp_, 0, 0), 0);  // the column that switches the indicator constraint
  EXPECT_EQ(text(),
            "type 1 B\nset - 1\nset - 2\ncut - L 5\nlazy lazy G 5\nlazy l2 E 1\nstart - 2\nstart - -1\n");
  EXPECT_EQ(describe_families(env_, copy), kFilled);
  EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
}

TEST_F(MipData, DeletesByRangeAndMarksAndTheRestKeepsItsNames) {
  const int beg[] = {0, 1, 2, 2}, ind[] = {0, 1};
  const double val[] = {1, 2, 3, 4};
  char a[] = "a", b[] = "b", c[] = "c", d[] = "d";
  char* names[] = {a, b, c, d};
  ASSERT_EQ(TVKaddsos(env_, lp_, 4, 2, "1212", beg, ind, val, names), 0);
  ASSERT_EQ(TVKaddmipstarts(env_, lp_, 4, 2, beg, ind, val, nullptr, names), 0);
  ASSERT_EQ(TVKaddusercuts(env_, lp_, 4, 2, nullptr, nullptr, beg, ind, val, names), 0);
  int marks[] = {0, 1, 2, 1};
  ASSERT_EQ(TVKdelsetsos(env_, lp_, marks), 0);
  EXPECT_EQ(std::vector<int>(marks, marks + 4), (std::vector<int>{0, -1, 1, -1}));
  int start_marks[] = {1, 0, 0, 0};
  ASSERT_EQ(TVKdelsetmipstarts(env_, lp_, start_marks), 0);
  ASSERT_EQ(TVKdelmipstarts(env_, lp_, 1, 1), 0);
  ASSERT_EQ(TVKdelusercuts(env_, lp_, 1, 2), 0);
  int index = -1;
  EXPECT_EQ(TVKgetmipstartindex(env_, lp_, "d", &index), 0);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(TVKgetsosindex(env_, lp_, "b", &index), 1210);
  EXPECT_EQ(TVKgetusercutindex(env_, lp_, "d", &index), 0);
  ASSERT_EQ(TVKchgname(env_, lp_, 's', 1, "new"), 0);
  const int both[] = {0, 1}, outside[] = {0, 2};
  EXPECT_EQ(TVKchgnames(env_, lp_, 's', 2, outside, names), 1200);
  EXPECT_EQ(TVKchgnames(env_, lp_, 'b', 1, both, names), 1003);
  char second[] = "cut";
  char* cuts[] = {second, d};
  ASSERT_EQ(TVKchgnames(env_, lp_, 'u', 2, both, cuts), 0);
  EXPECT_EQ(text(),
            "type 1 CCC\nset a 1 x:1\nset new 1\ncut cut E 0 x:1\ncut d E 0\nstart b 0 y:2\nstart d 0\n");
  ASSERT_EQ(TVKdelsos(env_, lp_, 0, 0), 0);
  ASSERT_EQ(TVKfreeusercuts(env_, lp_), 0);
  ASSERT_EQ(TVKdelnames(env_, lp_), 0);
  EXPECT_EQ(text(), "type 1 CCC\nset - 1\nstart b 0 #1:2\nstart d 0\n");
  EXPECT_EQ(TVKchgname(env_, lp_, 's', 1, "x"), 1200);
  EXPECT_EQ(TVKchgname(env_, lp_, 'z', 0, "x"), 1003);
}

/* Semi-continuous columns may be 0; integer ones keep their bounds. */
TEST_F(MipData, ARelaxationAdmitsTheZeroOfSemiContinuousColumns) {
  const int columns[] = {0, 1, 2};
  const char sides[] = "LL", upper_sides[] = "UU";
  const double low[] = {2, 3}, high[] = {8, 9};
  ASSERT_EQ(TVKchgbds(env_, lp_, 2, columns, upper_sides, high), 0);
  ASSERT_EQ(TVKchgbds(env_, lp_, 2, columns, sides, low), 0);
  const double below[] = {-5, -1};
  const int third[] = {2, 2};
  ASSERT_EQ(TVKchgbds(env_, lp_, 2, third, "LU", below), 0);
  ASSERT_EQ(TVKchgctype(env_, lp_, 3, columns, "SIN"), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp_, 0), 0);
  double lb[3], ub[3];
  ASSERT_EQ(TVKgetlb(env_, lp_, lb, 0, 2), 0);
  ASSERT_EQ(TVKgetub(env_, lp_, ub, 0, 2), 0);
  EXPECT_EQ(std::vector<double>(lb, lb + 3), (std::vector<double>{0, 3, -5}));
  EXPECT_EQ(std::vector<double>(ub, ub + 3), (std::vector<double>{8, 9, 0}));
}

TEST_F(MipData, TypeChangesFreeWhatDoesNotBelong) {
  check_data();
  fill();
  const double diagonal[] = {2, 0, 4};
  const int zero = 0, one = 1;
  const double two = 2;
  ASSERT_EQ(TVKcopyqpsep(env_, lp_, diagonal), 0);
  EXPECT_EQ(TVKgetprobtype(env_, lp_), 7);
  ASSERT_EQ(TVKaddqconstr(env_, lp_, 0, 1, 3, 'L', nullptr, nullptr, &zero, &one, &two, nullptr), 0);
  EXPECT_EQ(TVKgetprobtype(env_, lp_), 11);
  const std::string all = text();
  EXPECT_EQ(TVKchgprobtype(env_, lp_, 13), 9019);
  EXPECT_EQ(TVKchgprobtype(env_, lp_, 12), 1022);
  EXPECT_EQ(TVKchgprobtype(env_, lp_, 11), 0);
  EXPECT_EQ(text(), all);
  const struct {
    int type;
    const char *freed, *left;
  } steps[] = {
      {10, "Freeing MIP data.\n", "type 10\nquad x*x 2\nquad z*z 4\nqrow - L 3 [ x*y:2 ]\n"},
      {11, "", "type 11 CCC\nquad x*x 2\nquad z*z 4\nqrow - L 3 [ x*y:2 ]\n"},
      {7, "Freeing QCONSTR data.\n", "type 7 CCC\nquad x*x 2\nquad z*z 4\n"},
      {5, "Freeing MIP data.\n", "type 5\nquad x*x 2\nquad z*z 4\n"},
      {1, "Freeing QP data.\n", "type 1 CCC\n"},
      {10, "Freeing MIP data.\n", "type 10\n"},
      {5, "Freeing QCONSTR data.\n", "type 5\n"},
      {0, "Freeing QP data.\n", "type 0\n"},
  };
  EXPECT_EQ(warnings(), "");
  for (const auto& step : steps) {
    ASSERT_EQ(TVKchgprobtype(env_, lp_, step.type), 0);
    EXPECT_EQ(warnings(), step.freed) << step.type;
    EXPECT_EQ(text(), step.left);
  }
  fill();
  ASSERT_EQ(TVKcopyqpsep(env_, lp_, diagonal), 0);
  ASSERT_EQ(TVKaddqconstr(env_, lp_, 0, 0, 3, 'L', nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(support::SmallModel().copy(env_, lp_), 0);
  EXPECT_EQ(warnings(), "Freeing MIP data.\nFreeing QP data.\nFreeing QCONSTR data.\n");
  EXPECT_EQ(text(), "type 0\n");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 0), 0);
  fill();
  ASSERT_EQ(TVKchgprobtype(env_, lp_, 0), 0);
  EXPECT_EQ(warnings(), "");
}

TEST_F(MipData, ContentIsCheckedToTheLetterOnlyWhenAsked) {
  fill();
  const int beg[] = {0, 2}, twice[] = {0, 0, 1, 2}, far[] = {0, 1, 2, 3}, fine[] = {0, 1, 2, 0},
            priority[] = {1, -1}, direction[] = {0, 2};
  const int effort[] = {0, 7};
  const double val[] = {1, 2, 3, 4}, even[] = {1, 2, 1, 1};
  char name[] = "n";
  char* names[] = {name, nullptr};
  struct Case {
    std::function<int()> call;
    int code;
    const char* error;
  };
  const Case unchecked[] = {
      {[&] { return TVKaddsos(env_, lp_, 2, 4, "1X", beg, fine, val, nullptr); }, 3009,
       "Illegal sostype entry 1"},
      {[&] { return TVKaddsos(env_, lp_, 2, 4, "12", beg, twice, val, nullptr); }, 1222, "Duplicate entry"},
      {[&] { return TVKaddsos(env_, lp_, 2, 4, "12", beg, fine, even, nullptr); }, 3010,
       "Set does not have unique weights"},
      {[&] { return TVKaddsos(env_, lp_, 2, 0, "12", beg, nullptr, nullptr, names); }, 1224,
       "Null pointer 1 in name array"},
      {[&] { return TVKcopyorder(env_, lp_, 2, beg, priority, nullptr); }, 3006, "Negative priority entry 1"},
      {[&] { return TVKcopyorder(env_, lp_, 2, beg, nullptr, direction); }, 3007,
       "Illegal direction entry 1"},
      {[&] { return TVKaddmipstarts(env_, lp_, 2, 0, nullptr, nullptr, nullptr, effort, nullptr); }, 1003,
       "Bad argument to Callable Library function"},
      {[&] { return TVKaddlazyconstraints(env_, lp_, 2, 0, val, "LR", nullptr, nullptr, nullptr, nullptr); },
       1215, "Illegal sense entry 1"},
      {[&] { return TVKcopyctype(env_, lp_, "CXI"); }, 3021, "Illegal ctype entry 1"},
  };
  const Case always[] = {
      {[&] { return TVKaddsos(env_, lp_, 2, 4, "12", beg, far, val, nullptr); }, 1201,
       "Column index 3 out of range"},
      {[&] { return TVKcopysos(env_, lp_, 1, 4, nullptr, beg, far, val, nullptr); }, 1004,
       "Null pointer for required data"},
      {[&] { return TVKcopysos(env_, lp_, 1, 1, "1", beg, nullptr, nullptr, nullptr); }, 1004,
       "Null pointer for required data"},
      {[&] { return TVKcopysos(env_, lp_, -1, 4, "1", beg, far, val, nullptr); }, 1003,
       "Bad argument to Callable Library function"},
      {[&] { return TVKEaddindconstr(env_, lp_, 3, 0, 0, 0, 'L', nullptr, nullptr, nullptr); }, 1200,
       "Index is outside range of valid values"},
      {[&] { return TVKEaddindconstr(env_, lp_, 0, 0, 0, 0, 'R', nullptr, nullptr, nullptr); }, 1215,
       "Illegal sense entry 0"},
      {[&] { return TVKEaddindconstr(env_, lp_, 0, 0, 1, 0, 'L', far + 3, val, nullptr); }, 1201,
       "Column index 0 out of range"},
      {[&] { return TVKcopyorder(env_, lp_, 4, far, nullptr, nullptr); }, 1201,
       "Column index 3 out of range"},
      {[&] { return TVKaddusercuts(env_, lp_, 1, 1, val, "L", nullptr, nullptr, nullptr, nullptr); }, 1004,
       "Null pointer for required data"},
      {[&] { return TVKchgmipstarts(env_, lp_, 1, far + 2, 0, nullptr, nullptr, nullptr, nullptr); }, 1200,
       "Index is outside range of valid values"},
      {[&] { return TVKdelsetsos(env_, lp_, nullptr); }, 1004, "Null pointer for required data"},
  };
  const auto expect = [&](const Case& c, int code) {
    const std::string before = text();
    EXPECT_EQ(c.call(), code) << c.error;
    const std::string error = errors();
    if (code == 0) return;
    char line[200];
    std::snprintf(line, sizeof line, "TOVIK Error %5d: %s.\n", code, c.error);
    EXPECT_EQ(error, line);
    EXPECT_EQ(text(), before);
  };
  for (const Case& c : always) expect(c, c.code);
  check_data();
  for (const Case& c : always) expect(c, c.code);
  for (const Case& c : unchecked) expect(c, c.code);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 0), 0);
  for (const Case& c : unchecked) expect(c, 0);
}

TEST_F(MipData, EmptyFamiliesAndContinuousProblemsSaySo) {
  int count = 7, surplus = 7;
  EXPECT_EQ(TVKcopyorder(env_, lp_, 0, nullptr, nullptr, nullptr), 3003);
  EXPECT_EQ(TVKaddmipstarts(env_, lp_, 1, 0, nullptr, nullptr, nullptr, nullptr, nullptr), 3003);
  EXPECT_EQ(TVKgetsos(env_, lp_, &count, nullptr, nullptr, nullptr, nullptr, 0, &surplus, 0, 0), 3015);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(surplus, 0);
  EXPECT_EQ(TVKgetsos(env_, lp_, &count, nullptr, nullptr, nullptr, nullptr, 0, &surplus, 0, -1), 0);
  EXPECT_EQ(TVKdelsos(env_, lp_, 0, 0), 3015);
  EXPECT_EQ(TVKaddsos(env_, lp_, 0, 0, "", &count, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(text(), "type 0\n");
  ASSERT_EQ(TVKchgprobtype(env_, lp_, 1), 0);
  EXPECT_EQ(TVKgetorder(env_, lp_, &count, nullptr, nullptr, nullptr, 0, &surplus), 3016);
  EXPECT_EQ(TVKdelmipstarts(env_, lp_, 0, 0), 3020);
  EXPECT_EQ(TVKgetmipstarts(env_, lp_, &count, nullptr, nullptr, nullptr, nullptr, 0, &surplus, 0, 0), 3020);
  errors();
  EXPECT_EQ(TVKdelusercuts(env_, lp_, -1, 0), 1200);
  EXPECT_EQ(errors(),
            "TOVIK Error  1205: TVKdelusercuts: 'begin' value -1 is less than 0.\n"
            "TOVIK Error  1206: TVKdelusercuts: 'end' value 0 is greater than -1.\n"
            "TOVIK Error  1200: Index is outside range of valid values.\n");
}

TEST_F(MipData, ShortArraysAreFilledAsFarAsTheyGo) {
  fill();
  int count = -1, surplus = -1, beg[2] = {-1, -1}, ind[3] = {-1, -1, -1};
  double val[3] = {-1, -1, -1};
  char type[2];
  errors();
  EXPECT_EQ(TVKgetsos(env_, lp_, &count, type, beg, ind, val, 0, &surplus, 0, 1), 1207);
  EXPECT_EQ(surplus, -4);
  EXPECT_EQ(beg[0], 0);
  EXPECT_EQ(errors(), "");
  EXPECT_EQ(TVKgetsos(env_, lp_, &count, type, beg, ind, val, 3, &surplus, 0, 1), 1207);
  EXPECT_EQ(errors(), "TOVIK Error  1207: Insufficient array length.\n");
  EXPECT_EQ(surplus, -1);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(std::string(type, 2), "12");
  EXPECT_EQ(beg[1], 2);
  EXPECT_EQ(ind[2], 1);
  int priority[3];
  EXPECT_EQ(TVKgetorder(env_, lp_, &count, ind, priority, nullptr, 2, &surplus), 1207);
  EXPECT_EQ(surplus, -1);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(priority[1], 5);
  EXPECT_EQ(TVKEgetindconstr(env_, lp_, nullptr, nullptr, &count, nullptr, nullptr, ind, val, 1, &surplus, 0),
            1207);
  EXPECT_EQ(surplus, -1);
  EXPECT_EQ(
      TVKEgetindconstr(env_, lp_, nullptr, nullptr, &count, nullptr, nullptr, nullptr, val, 9, &surplus, 0),
      1004);
  EXPECT_EQ(TVKEgetindconstr(env_, lp_, nullptr, nullptr, &count, nullptr, nullptr, ind, val, 9, &surplus, 1),
            1200);
}

TEST_F(MipData, StartsChangeInPart) {
  fill();
  const int which[] = {1, 0}, beg[] = {0, 2}, ind[] = {0, 2, 0}, effort[] = {4, 3};
  const double val[] = {9, 8, 7};
  ASSERT_EQ(TVKchgmipstarts(env_, lp_, 2, which, 3, beg, ind, val, nullptr), 0);
  ASSERT_EQ(TVKchgmipstarts(env_, lp_, 1, which, 0, nullptr, nullptr, nullptr, effort), 0);
  const std::string now = text();
  EXPECT_EQ(now.substr(now.find("start")), "start - 2 z:5 x:7\nstart - 4 y:0 z:8 x:9\n");
}

}  // namespace
