/* Names of columns, rows, objective and problem: giving, removing, finding, and the ones that are generated. */
#include <string>
#include <vector>

#include "support/model_fixture.h"

namespace {

class Names : public support::WithModel {
 protected:
  int column(const char* name) {
    int index = -1;
    return TVKgetcolindex(env_, lp_, name, &index) == 0 ? index : -1;
  }
  void add_column(const char* name) {
    const char* const names[] = {name};
    ASSERT_EQ(TVKnewcols(env_, lp_, 1, nullptr, nullptr, nullptr, nullptr, name == nullptr ? nullptr : names),
              0);
  }
};

TEST_F(Names, IndexFollowsEveryChange) {
  EXPECT_EQ(column("y"), 1);
  EXPECT_EQ(column(""), -1);
  const int indices[] = {0, 1};
  char swapped_x[] = "y", swapped_y[] = "x";
  char* swap[] = {swapped_x, swapped_y};
  ASSERT_EQ(TVKchgcolname(env_, lp_, 2, indices, swap), 0);
  EXPECT_EQ(column("x"), 1);
  EXPECT_EQ(column("y"), 0);
  add_column("w");
  EXPECT_EQ(column("w"), 3);
  ASSERT_EQ(TVKdelcols(env_, lp_, 1, 1), 0);
  EXPECT_EQ(column("x"), -1);
  EXPECT_EQ(column("z"), 1);
  EXPECT_EQ(column("w"), 2);
  ASSERT_EQ(TVKdelcols(env_, lp_, 2, 2), 0);
  EXPECT_EQ(column("w"), -1);
  ASSERT_EQ(TVKchgname(env_, lp_, 'r', 2, "limit"), 0);
  int index = -1;
  EXPECT_EQ(TVKgetrowindex(env_, lp_, "limit", &index), 0);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(TVKgetrowindex(env_, lp_, "c3", &index), 1210);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(TVKgetrowindex(env_, lp_, nullptr, &index), 1004);
  EXPECT_EQ(TVKgetrowindex(env_, lp_, "c1", nullptr), 1004);
}

TEST_F(Names, EqualNamesGiveTheFirstPosition) {
  add_column("y");
  EXPECT_EQ(column("y"), 1);
  ASSERT_EQ(TVKchgname(env_, lp_, 'c', 0, "y"), 0);
  EXPECT_EQ(column("y"), 0);
  ASSERT_EQ(TVKchgname(env_, lp_, 'c', 0, "v"), 0);
  ASSERT_EQ(TVKdelcols(env_, lp_, 1, 1), 0);
  EXPECT_EQ(column("y"), 2);
}

TEST_F(Names, MadeUpNamesAvoidThoseGiven) {
  ASSERT_EQ(TVKchgname(env_, lp_, 'c', 0, "x4"), 0);
  ASSERT_EQ(TVKchgname(env_, lp_, 'c', 1, "x5"), 0);
  add_column(nullptr);
  EXPECT_EQ(column_name(3), "x6");
  add_column(nullptr);
  EXPECT_EQ(column_name(4), "x7");
  add_column("x8");
  add_column(nullptr);
  EXPECT_EQ(column_name(6), "x9");
  ASSERT_EQ(TVKdelnames(env_, lp_), 0);
  EXPECT_EQ(column("x"), -1);
  add_column(nullptr);
  int surplus = 0;
  EXPECT_EQ(TVKgetcolname(env_, lp_, nullptr, nullptr, 0, &surplus, 0, 0), 1219) << "still unnamed";
  ASSERT_EQ(TVKchgname(env_, lp_, 'c', 2, "x1"), 0);
  EXPECT_EQ(column_name(2), "x1");
  EXPECT_EQ(column_name(1), "x2");
  EXPECT_EQ(column_name(7), "x8");
}

TEST_F(Names, ArgumentsAreCheckedInOrder) {
  char name[] = "n";
  char* names[] = {name, nullptr};
  const int indices[] = {0, 3};
  EXPECT_EQ(TVKchgname(env_, lp_, 'z', 0, nullptr), 1003);
  EXPECT_EQ(TVKchgname(env_, lp_, 'c', 3, nullptr), 1004);
  EXPECT_EQ(TVKchgname(env_, lp_, 'c', 3, "n"), 1200);
  EXPECT_EQ(TVKchgname(env_, lp_, 'b', 99, "bounds"), 0);
  EXPECT_EQ(TVKchgcolname(env_, lp_, -1, nullptr, nullptr), 1003);
  EXPECT_EQ(TVKchgcolname(env_, lp_, 1, nullptr, names), 1004);
  EXPECT_EQ(TVKchgcolname(env_, lp_, 2, indices, names), 1224);
  names[1] = name;
  EXPECT_EQ(TVKchgcolname(env_, lp_, 2, indices, names), 1201);
  EXPECT_EQ(TVKchgrowname(env_, lp_, 2, indices, names), 1203);
  EXPECT_EQ(column_name(0), "x");
  EXPECT_EQ(TVKchgprobname(env_, lp_, nullptr), 1004);
  EXPECT_EQ(TVKcopyobjname(env_, lp_, nullptr), 1004);
}

TEST_F(Names, ProblemAndObjective) {
  char text[16] = {};
  int surplus = 0;
  EXPECT_EQ(TVKgetobjname(env_, lp_, text, 16, &surplus), 1219);
  ASSERT_EQ(TVKcopyobjname(env_, lp_, "cost"), 0);
  errors();
  EXPECT_EQ(TVKgetobjname(env_, lp_, nullptr, 0, &surplus), 1207);
  EXPECT_EQ(surplus, -5);
  EXPECT_EQ(errors(), "");
  EXPECT_EQ(TVKgetobjname(env_, lp_, text, 5, &surplus), 0);
  EXPECT_STREQ(text, "cost");
  EXPECT_EQ(surplus, 0);
  EXPECT_EQ(TVKgetprobname(env_, lp_, text, 3, &surplus), 1207);
  EXPECT_EQ(surplus, -3);
  EXPECT_EQ(std::string(text, 4), "smat") << "only what fits is written";
  ASSERT_EQ(TVKchgprobname(env_, lp_, "renamed"), 0);
  EXPECT_EQ(TVKgetprobname(env_, lp_, text, 16, &surplus), 0);
  EXPECT_STREQ(text, "renamed");
  EXPECT_EQ(surplus, 8);
}

TEST_F(Names, ManyRenamesKeepTheIndexRight) {
  const int n = 20000;
  ASSERT_EQ(TVKnewcols(env_, lp_, n - 3, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  for (int round = 0; round < 5; ++round) {
    for (int j = 0; j < n; ++j) {
      const std::string name = "r" + std::to_string(round) + "_" + std::to_string(j);
      ASSERT_EQ(TVKchgname(env_, lp_, 'c', j, name.c_str()), 0);
      if (j % 7 == round) {
        ASSERT_EQ(column(name.c_str()), j);
      }
    }
    EXPECT_EQ(column("r0_5"), round == 0 ? 5 : -1);
  }
}

}  // namespace
