/* Copying a whole model: what arrives, the order of the checks, and what is checked in any case. */
#include <cmath>
#include <functional>
#include <limits>

#include "support/describe_problem.h"
#include "support/model_fixture.h"

namespace {

using support::SmallModel;
using Copying = support::WithModel;

std::string line(int code, const std::string& text) {
  return "TOVIK Error  " + std::to_string(code) + ": " + text + ".\n";
}

const char* const kSmallText =
    "min 0\n"
    "x - 1 [0,10] c1:1 c3:5\n"
    "y - -2 [-1,inf] c1:2 c2:3\n"
    "z - 3 [-inf,inf] c2:1 c3:6\n"
    "c1 L 4\n"
    "c2 G 1\n"
    "c3 R -1 2\n";

TEST_F(Copying, BringsTheModelAndReplacesTheOldOne) {
  EXPECT_EQ(support::describe(env_, lp_), kSmallText);
  SmallModel gaps;  // space between columns, zeros, a range value of a row that is not ranged
  gaps.beg = {0, 3, 8};
  gaps.ind = {0, 2, 99, 0, 1, 99, 99, 99, 1, 2};
  gaps.val = {1, 5, 0, 2, 3, 0, 0, 0, 1, 0};
  gaps.range[0] = 7;
  gaps.sense = -1;
  ASSERT_EQ(gaps.copy(env_, lp_), 0);
  EXPECT_EQ(TVKgetobjsen(env_, lp_), TVK_MAX);
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 5);
  EXPECT_EQ(range(0), 0);
  EXPECT_EQ(coefficient(2, 2), 0);
  ASSERT_EQ(gaps.copy(env_, lp_, false), 0);
  int surplus = 0;
  EXPECT_EQ(TVKgetcolname(env_, lp_, nullptr, nullptr, 0, &surplus, 0, 0), 1219);
}

TEST_F(Copying, StructuralChecksComeFirstAndLeaveTheOldModel) {
  check_data();
  SmallModel bad;
  bad.columns = -1;
  EXPECT_EQ(bad.copy(env_, lp_), 1003);
  const double d[] = {0};
  const int i[] = {0};
  EXPECT_EQ(TVKcopylp(env_, lp_, 0, 0, 5, d, d, "", i, i, nullptr, d, d, d, nullptr), 1004);
  EXPECT_EQ(TVKcopylp(env_, lp_, 0, 0, 5, d, nullptr, "", i, i, i, d, d, d, nullptr), 1004);
  EXPECT_EQ(TVKcopylp(env_, nullptr, 0, 0, 5, nullptr, d, "", i, i, i, d, d, d, nullptr), 1009);
  EXPECT_EQ(support::describe(env_, lp_), kSmallText);
  EXPECT_EQ(TVKcopylp(env_, lp_, 0, 0, 1, d, d, "", i, i, i, d, d, d, nullptr), 0);
  EXPECT_EQ(TVKgetnumcols(env_, lp_) + TVKgetnumrows(env_, lp_) + TVKgetnumnz(env_, lp_), 0);
}

struct BadContent {
  const char* what;
  std::function<void(SmallModel&)> spoil;
  int code;
  std::string printed;
};

/* In the order of the checks; each case also carries the faults of all later ones, so the first failure must
 * win. */
const std::vector<BadContent>& bad_contents() {
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  const std::string number = "Numeric entry 1 is not a double precison number (NAN)";
  static const std::vector<BadContent> cases = {
      {"objective sense", [](SmallModel& m) { m.sense = 0; }, 1003,
       "Bad argument to Callable Library function"},
      {"objective", [=](SmallModel& m) { m.obj[1] = nan; }, 1225, number},
      {"right-hand side", [=](SmallModel& m) { m.rhs[2] = -infinity; }, 1233,
       "Numeric entry 2 is larger than allowed maximum of 1.79769e+308"},
      {"sense", [](SmallModel& m) { m.senses = "LGX"; }, 1215, "Illegal sense entry 2"},
      {"duplicate", [](SmallModel& m) { m.ind[1] = m.ind[0]; }, 1222, "Duplicate entry"},
      {"lower bound", [=](SmallModel& m) { m.lb[1] = nan; }, 1225, number},
      {"upper bound", [=](SmallModel& m) { m.ub[1] = nan; }, 1225, number},
      {"range", [=](SmallModel& m) { m.range[1] = nan; }, 1225, number},
      {"column name", [](SmallModel& m) { m.column_names[2] = nullptr; }, 1224,
       "Null pointer 2 in name array"},
      {"row name", [](SmallModel& m) { m.row_names[0] = nullptr; }, 1224, "Null pointer 0 in name array"}};
  return cases;
}

TEST_F(Copying, ContentIsCheckedInOrderAndOnlyUnderTheSwitch) {
  check_data();
  const auto& cases = bad_contents();
  for (std::size_t first = 0; first < cases.size(); ++first) {
    SCOPED_TRACE(cases[first].what);
    SmallModel bad;
    for (std::size_t k = first; k < cases.size(); ++k) cases[k].spoil(bad);
    EXPECT_EQ(bad.copy(env_, lp_), cases[first].code);
    EXPECT_EQ(errors(), line(cases[first].code, cases[first].printed));
    EXPECT_EQ(support::describe(env_, lp_), kSmallText);
  }
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 0), 0);
  SmallModel bad;
  for (const BadContent& c : cases) c.spoil(bad);
  ASSERT_EQ(bad.copy(env_, lp_), 0);
  EXPECT_EQ(TVKgetobjsen(env_, lp_), TVK_MIN);
  EXPECT_TRUE(std::isnan(coefficient(-1, 1)));
  EXPECT_EQ(coefficient(0, 0), 6) << "values of a repeated row are added up";
  EXPECT_EQ(sense(2), 'X');
  EXPECT_EQ(column_name(2), "x3");
  EXPECT_EQ(row_name(0), "c1");
}

TEST_F(Copying, MatrixFaults) {
  const struct {
    const char* what;
    std::function<void(SmallModel&)> spoil;
    int code;
    std::string printed;
    bool always;  // also found without the switch, with the same code
  } cases[] = {
      {"descending",
       [](SmallModel& m) {
         m.beg = {0, 3, 2};
       },
       1226, "Array entry 2 not ascending", false},
      {"starts below 0", [](SmallModel& m) { m.beg[0] = -1; }, 1200, "Index is outside range of valid values",
       true},
      {"negative count", [](SmallModel& m) { m.cnt[1] = -1; }, 1227,
       "Count entry 1 negative or larger than allowed", true},
      {"more than rows",
       [](SmallModel& m) {
         m.cnt = {2, 4, 1};
       },
       1228, "Count entry 1 indicates overlapping entries", true},
      {"overlap", [](SmallModel& m) { m.cnt[0] = 3; }, 1228, "Count entry 0 indicates overlapping entries",
       false},
      {"last error wins",
       [](SmallModel& m) {
         m.cnt = {-1, 3, 2};
       },
       1228, "Count entry 1 indicates overlapping entries", false},
      {"beyond the last position", [](SmallModel& m) { m.beg[2] = 2099999999; }, 1228,
       "Count entry 3 indicates overlapping entries", true},
      {"row too big", [](SmallModel& m) { m.ind[4] = 3; }, 1203, "Row index 4 out of range", true},
      {"row below 0", [](SmallModel& m) { m.ind[3] = -1; }, 1203, "Row index 3 out of range", true},
      {"value", [](SmallModel& m) { m.val[3] = std::nan(""); }, 1225,
       "Numeric entry 1 is not a double precison number (NAN)", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    SmallModel bad;
    c.spoil(bad);
    check_data();
    EXPECT_EQ(bad.copy(env_, lp_), c.code);
    EXPECT_EQ(errors(), line(c.code, c.printed));
    EXPECT_EQ(support::describe(env_, lp_), kSmallText);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 0), 0);
    if (!c.always) continue;
    EXPECT_EQ(bad.copy(env_, lp_), c.code);
    errors();
    EXPECT_EQ(support::describe(env_, lp_), kSmallText);
  }
}

TEST_F(Copying, RangedRowsNeedRangesOnlyUnderTheSwitch) {
  SmallModel m;
  const auto copy = [&] {
    return TVKcopylp(env_, lp_, m.columns, m.rows, m.sense, m.obj.data(), m.rhs.data(), m.senses.data(),
                     m.beg.data(), m.cnt.data(), m.ind.data(), m.val.data(), m.lb.data(), m.ub.data(),
                     nullptr);
  };
  EXPECT_EQ(copy(), 0);
  EXPECT_EQ(range(2), 0);
  check_data();
  EXPECT_EQ(copy(), 1003);
}

TEST_F(Copying, MakesAMixedIntegerProblemContinuous) {
  ASSERT_EQ(TVKcopyctype(env_, lp_, "CIB"), 0);
  ASSERT_EQ(TVKgetprobtype(env_, lp_), 1);
  check_data();
  ASSERT_EQ(SmallModel().copy(env_, lp_), 0);
  EXPECT_EQ(warnings(), "Freeing MIP data.\n");
  EXPECT_EQ(TVKgetprobtype(env_, lp_), 0);
  EXPECT_EQ(TVKgetnumint(env_, lp_), 0);
}

}  // namespace
