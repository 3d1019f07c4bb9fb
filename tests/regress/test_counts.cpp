/* Counts above what a problem can hold made routines run for a minute, or read past the arrays, before the limit was
 * looked at; and arguments at the ends of their type that crashed or overflowed. */
#include <climits>
#include <functional>
#include <limits>
#include <vector>

#include "support/model_fixture.h"

namespace {

class Counts : public support::WithModel {};

TEST_F(Counts, AboveTheLimitsAreRefusedBeforeAnythingIsRead) {
  ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_MILP), 0);
  int status = -1;
  NetProbHandle net = TVKNETcreateprob(env_, &status, "n");
  for (const int n : {2100000001, INT_MAX}) {
    const int one[1] = {0};
    int out[1] = {0};
    const double value[1] = {0};
    double number[1] = {0};
    const char letter[2] = "L";
    char text[1] = {0};
    char* names[1] = {text};
    const std::function<int()> calls[] = {
        [&] {
          return TVKcopylp(env_, lp_, n, 1, 1, value, value, letter, one, one, one, value, value, value,
                           value);
        },
        [&] {
          return TVKcopylp(env_, lp_, 1, n, 1, value, value, letter, one, one, one, value, value, value,
                           value);
        },
        [&] { return TVKaddrows(env_, lp_, 0, n, 1, value, letter, one, one, value, nullptr, names); },
        [&] { return TVKaddrows(env_, lp_, 0, 1, n, value, letter, one, one, value, nullptr, names); },
        [&] { return TVKaddrows(env_, lp_, n, 1, 1, value, letter, one, one, value, names, nullptr); },
        [&] { return TVKaddcols(env_, lp_, n, 1, value, one, one, value, value, value, names); },
        [&] { return TVKaddcols(env_, lp_, 1, n, value, one, one, value, value, value, names); },
        [&] { return TVKnewrows(env_, lp_, n, value, letter, value, names); },
        [&] { return TVKnewcols(env_, lp_, n, value, value, value, letter, names); },
        [&] { return TVKaddusercuts(env_, lp_, n, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
        [&] { return TVKaddusercuts(env_, lp_, 1, n, value, letter, one, one, value, nullptr); },
        [&] {
          return TVKaddlazyconstraints(env_, lp_, n, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        },
        [&] { return TVKaddmipstarts(env_, lp_, n, 0, nullptr, nullptr, nullptr, nullptr, nullptr); },
        [&] { return TVKaddmipstarts(env_, lp_, 1, n, one, one, value, nullptr, nullptr); },
        [&] { return TVKchgmipstarts(env_, lp_, n, one, 1, one, one, value, nullptr); },
        [&] { return TVKcopysos(env_, lp_, n, 1, letter, one, one, value, nullptr); },
        [&] { return TVKaddsos(env_, lp_, n, 1, letter, one, one, value, nullptr); },
        [&] { return TVKaddsos(env_, lp_, 1, n, letter, one, one, value, nullptr); },
        [&] { return TVKaddqconstr(env_, lp_, n, 1, 0, 'L', one, value, one, one, value, nullptr); },
        [&] { return TVKaddqconstr(env_, lp_, 1, n, 0, 'L', one, value, one, one, value, nullptr); },
        [&] { return TVKEaddindconstr(env_, lp_, 0, 0, n, 0, 'L', one, value, nullptr); },
        [&] { return TVKchgcoeflist(env_, lp_, n, one, one, value); },
        [&] { return TVKchgbds(env_, lp_, n, one, letter, value); },
        [&] { return TVKtightenbds(env_, lp_, n, one, letter, value); },
        [&] { return TVKchgrhs(env_, lp_, n, one, value); },
        [&] { return TVKchgrngval(env_, lp_, n, one, value); },
        [&] { return TVKchgsense(env_, lp_, n, one, letter); },
        [&] { return TVKchgobj(env_, lp_, n, one, value); },
        [&] { return TVKchgctype(env_, lp_, n, one, letter); },
        [&] { return TVKchgcolname(env_, lp_, n, one, names); },
        [&] { return TVKchgrowname(env_, lp_, n, one, names); },
        [&] { return TVKcopyorder(env_, lp_, n, one, one, one); },
        [&] { return TVKcopyprotected(env_, lp_, n, one); },
        [&] { return TVKNETcopynet(env_, net, 1, n, value, names, 1, one, one, value, value, value, names); },
        [&] { return TVKNETaddnodes(env_, net, n, value, names); },
        [&] { return TVKNETaddarcs(env_, net, n, one, one, value, value, value, names); },
        [&] { return TVKNETchgsupply(env_, net, n, one, value); },
    };
    for (const auto& call : calls) EXPECT_EQ(call(), 1012) << &call - calls << ' ' << n;
    ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_LP), 0);
    EXPECT_EQ(TVKstrongbranch(env_, lp_, one, n, number, number, 1), 1012);
    EXPECT_EQ(TVKpivotin(env_, lp_, one, n), 1012);
    EXPECT_EQ(TVKpivotout(env_, lp_, one, n), 1012);
    ASSERT_EQ(TVKpresolve(env_, lp_, 0), 0);
    EXPECT_EQ(TVKcrushform(env_, lp_, n, one, value, out, number, out, number), 1012);
    EXPECT_EQ(TVKuncrushform(env_, lp_, n, one, value, out, number, out, number), 1012);
    ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_MILP), 0);
  }
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 3);
  EXPECT_EQ(TVKgetnumrows(env_, lp_), 3);
}

TEST_F(Counts, TypesOfAProblemWithoutColumnsAreDisplayedForAnyRange) {
  int status = -1;
  ProbHandle empty = TVKcreateprob(env_, &status, "empty");
  for (const int begin : {-5, INT_MIN, 0, INT_MAX}) {
    for (const int end : {-1, 0, INT_MAX})
      EXPECT_EQ(TVKdisplayctype(env_, empty, results_, 'C', nullptr, begin, end), 0);
  }
}

TEST_F(Counts, ListOfChangedParametersForAnySpace) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 7), 0);
  int count = -1, surplus = 0;
  EXPECT_EQ(TVKgetchgparam(env_, &count, nullptr, INT_MIN, &surplus), 1207);
  EXPECT_EQ(surplus, -INT_MAX);
}

TEST_F(Counts, ABasisWithBadNormsLeavesBasisAndSolution) {
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  const int status = TVKgetstat(env_, lp_);
  std::vector<int> columns(3), rows(3), after(3);
  ASSERT_EQ(TVKgetbase(env_, lp_, columns.data(), rows.data()), 0);
  const int basic[] = {1, 1, 1}, lower[] = {0, 0, 0};
  const double norms[] = {1, -1, 1}, none[] = {1, std::numeric_limits<double>::quiet_NaN(), 1};
  EXPECT_EQ(TVKcopybasednorms(env_, lp_, lower, basic, norms), 1003);
  EXPECT_EQ(TVKcopybasednorms(env_, lp_, lower, basic, none), 1003);
  EXPECT_EQ(TVKgetstat(env_, lp_), status);
  ASSERT_EQ(TVKgetbase(env_, lp_, after.data(), nullptr), 0);
  EXPECT_EQ(after, columns);
}

}  // namespace
