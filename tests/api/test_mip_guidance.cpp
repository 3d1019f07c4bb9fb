// What guides the search without changing what is searched for: priority orders, generated ones, user cuts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/mip_fixture.h"

namespace {

/* Two binaries may be on of four; the relaxation ends at (1, 1, 0.5, 0) without cuts. */
constexpr const char* kModel =
    "max\n 8 a + 7 b + 5 c + d\nst\n r: 4 a + 4 b + 4 c + 4 d <= 10\nbounds\n a <= 1\n d <= 3\nbin\n b "
    "c\ngen\n a "
    "d\nend";

class MipGuidance : public support::MipModels {
 protected:
  void SetUp() override {
    MipModels::SetUp();
    lp_ = read(kModel);
    for (const int family : {TVK_PARAM_COVERS, TVK_PARAM_CLIQUES, TVK_PARAM_MIRCUTS, TVK_PARAM_FRACCUTS,
                             TVK_PARAM_FLOWCOVERS, TVK_PARAM_IMPLBD, TVK_PARAM_ZEROHALFCUTS}) {
      ASSERT_EQ(TVKsetintparam(env_, family, -1), 0);
    }
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_RINSHEUR, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPINTERVAL, 1), 0);
  }
  /* Names of the columns that were branched on, in their order. */
  std::string branchings() {
    std::string text;
    EXPECT_EQ(TVKaddfuncdest(env_, log_, &text, support::keep_text), 0);
    EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPSEARCH, 1), 0);
    EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
    solve(lp_);
    EXPECT_EQ(TVKdelfuncdest(env_, log_, &text, support::keep_text), 0);
    std::string names;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find('\n', at);
      if (text[at] != ' ') names += text[at];
      if (end == std::string::npos) break;
      at = end + 1;
    }
    return names;
  }
  void add_cut(const std::vector<int>& columns, double rhs, char sense) {
    const std::vector<double> values(columns.size(), 1.0);
    const int begin = 0;
    ASSERT_EQ(TVKaddusercuts(env_, lp_, 1, static_cast<int>(columns.size()), &rhs, &sense, &begin,
                             columns.data(), values.data(), nullptr),
              0);
  }

  ProbHandle lp_ = nullptr;
};

TEST_F(MipGuidance, OrdersAreGeneratedWhereTheModelHasNone) {
  const char* const lines[] = {nullptr, "Generated priority order by decreasing cost.\n",
                               "Generated priority order by increasing bound range.\n",
                               "Generated priority order by increasing cost per coefficient count.\n"};
  for (int type = 0; type <= 3; ++type) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPORDTYPE, type), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
    log_text_.clear();
    EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp_), 15, 1e-9);
    EXPECT_EQ(log_text_.find("Generated") != std::string::npos, type > 0);
    if (type > 0) {
      EXPECT_NE(log_text_.find(lines[type]), std::string::npos) << log_text_;
    }
  }
  const int column = 0, priority = 5;
  ASSERT_EQ(TVKcopyorder(env_, lp_, 1, &column, &priority, nullptr), 0);
  log_text_.clear();
  solve(lp_);
  EXPECT_EQ(log_text_.find("Generated"), std::string::npos);
  ASSERT_EQ(TVKcopyorder(env_, lp_, 0, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPORDIND, 0), 0);
  solve(lp_);
  EXPECT_EQ(log_text_.find("Generated"), std::string::npos);
}

TEST_F(MipGuidance, OrdersDecideWhatIsBranchedOn) {
  TVKfreeprob(env_, &lp_);
  // Three pairs of columns, each 1.3 in the relaxation.
  lp_ = read(
      "max\n 3 a + 2.9 p + 2 b + 1.9 q + 0.9 c + r\nst\n 3 a + 2 p <= 6.5\n 2 a + 3 p <= 6.5\n 3 b + 2 q <= "
      "6.5\n 2 b + 3 q <= 6.5\n 3 c + 2 r <= 6.5\n 2 c + 3 r <= 6.5\nbounds\n a <= 9\n p <= 9\n b <= 5\n q "
      "<= "
      "9\n c <= 9\n r <= 9\ngen\n a p b q c r\nend");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, -1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPORDTYPE, 1), 0);
  EXPECT_EQ(branchings().substr(0, 1), "a");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPORDTYPE, 2), 0);
  EXPECT_EQ(branchings().substr(0, 1), "b");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPORDTYPE, 3), 0);
  EXPECT_EQ(branchings().substr(0, 1), "c");
}

TEST_F(MipGuidance, UserCutsBecomeRowsWhereTheyAreViolated) {
  add_cut({0, 1, 2, 3}, 2, 'L');
  add_cut({0, 3}, 3, 'L');  // holds everywhere
  log_text_.clear();
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp_), 15, 1e-9);
  EXPECT_EQ(TVKgetnodecnt(env_, lp_), 1);
  EXPECT_NE(log_text_.find("User: 1"), std::string::npos) << log_text_;
}

TEST_F(MipGuidance, UserCutsFollowThePresolvedModel) {
  TVKfreeprob(env_, &lp_);
  // f is fixed and g is h: columns that presolve takes out of the cut.
  lp_ = read(
      "max\n 8 a + 7 b + 5 c + d - h - g + f\nst\n r: 4 a + 4 b + 4 c + 3 d + h <= 10.5\n s: h - g = 0\n t: "
      "h + "
      "d >= 0.5\n u: a + b + c - 0.3 g <= 2.5\nbounds\n f = 2\n d <= 3\n g <= 4\n h <= 4\nbin\n a b c\ngen\n "
      "d h "
      "g\nend");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  const double best = objective(lp_);
  const int begin = 0, indices[] = {0, 1, 2, 5, 6};
  const double values[] = {1, 1, 1, -0.1, 1}, rhs = 4.2;  // holds at every solution; f is 2
  const char sense = 'L';
  ASSERT_EQ(TVKaddusercuts(env_, lp_, 1, 5, &rhs, &sense, &begin, indices, values, nullptr), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp_), best, 1e-9);
}

TEST_F(MipGuidance, WhatUserCutsCutOffIsNotSearchedForButTaken) {
  add_cut({0, 1}, 1, 'E');
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp_), 13, 1e-9);
  const int begin = 0, columns[] = {0, 1, 2, 3};
  const double values[] = {1, 1, 0, 0};
  ASSERT_EQ(TVKaddmipstarts(env_, lp_, 1, 4, &begin, columns, values, nullptr, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp_), 15, 1e-9);
  ASSERT_EQ(TVKfreeusercuts(env_, lp_), 0);
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp_), 15, 1e-9);
}

}  // namespace
