// A known solution that a search follows: nobody may lose it, and who does is named.
#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "support/market_split.h"
#include "support/mip_fixture.h"

namespace {

constexpr int kFollowStart = 1126;

constexpr const char* kPairs =
    "max\n 8 a + 7 b + 5 c + d\nst\n r: 4 a + 4 b + 4 c + 4 d <= 10\nbounds\n d <= 3\nbin\n a b c\ngen\n "
    "d\nend";
constexpr const char* kLots =
    "min\n 30 y1 + 25 y2 + 30 y3 + 20 y4 + 2 x1 + x2 + 2 x3 + x4 + s1 + s2 + s3\nst\n"
    " b1: x1 - s1 = 7\n b2: s1 + x2 - s2 = 4\n b3: s2 + x3 - s3 = 9\n b4: s3 + x4 = 5\n"
    " v1: x1 - 12 y1 <= 0\n v2: x2 - 12 y2 <= 0\n v3: x3 - 12 y3 <= 0\n v4: x4 - 12 y4 <= 0\n"
    " k: 3 n + 5 m + y1 >= 11.5\nbounds\n n <= 9\n m <= 9\nbin\n y1 y2 y3 y4\ngen\n n m\nend";

class MipFollowedStart : public support::MipModels {
 protected:
  void follow(ProbHandle lp, const std::vector<double>& x) {
    std::vector<int> columns(x.size());
    std::iota(columns.begin(), columns.end(), 0);
    const int begin = 0;
    ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, static_cast<int>(x.size()), &begin, columns.data(), x.data(),
                              nullptr, nullptr),
              0);
    ASSERT_EQ(TVKsetintparam(env_, kFollowStart, 1), 0);
  }
};

TEST_F(MipFollowedStart, IsKeptBySearchesThatFindItThemselves) {
  for (const std::string& model : {std::string(kPairs), std::string(kLots), support::market_split({})}) {
    const ProbHandle lp = read(model);
    ASSERT_EQ(TVKsetintparam(env_, kFollowStart, 0), 0);
    ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    const double optimum = objective(lp);
    follow(lp, x(lp));
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
    for (const int presolve : {1, 0}) {
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL) << model;
      EXPECT_NEAR(objective(lp), optimum, 1e-6) << model;
      EXPECT_EQ(warnings(), "") << model;
    }
  }
}

TEST_F(MipFollowedStart, IsReportedWithWhatLosesIt) {
  const ProbHandle lp = read(kPairs);
  const int begin = 0, indices[] = {0, 1};
  const double one = 1, values[] = {1, 1};
  const char less = 'L';
  ASSERT_EQ(TVKaddusercuts(env_, lp, 1, 2, &one, &less, &begin, indices, values, nullptr), 0);
  follow(lp, {1, 1, 0, 0});
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, -1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_RINSHEUR, -1), 0);
  solve(lp);
  EXPECT_NE(warnings().find("Followed MIP start lost: cut of class"), std::string::npos) << warnings();
}

TEST_F(MipFollowedStart, MustBeASolution) {
  const ProbHandle lp = read(kPairs);
  follow(lp, {1, 1, 1, 0});
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_EQ(objective(lp), 15);
  EXPECT_NE(warnings().find("MIP start 'm1' is no solution that could be followed."), std::string::npos)
      << warnings();
}

}  // namespace
