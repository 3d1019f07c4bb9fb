/* Quadratic objective and quadratic constraints through the public header. */
#include "support/describe_families.h"
#include "support/model_fixture.h"

namespace {

class QuadraticData : public support::WithModel {
 protected:
  std::string text() {
    const std::string text = support::describe_families(env_, lp_);
    errors();  // what is missing says so
    return text;
  }
};

/*     [ 2 1 0 ]
 * Q = [ 1 0 4 ]   with gaps between the columns, and the same with its halves different
 *     [ 0 4 6 ] */
struct Matrix {
  int beg[3] = {1, 4, 7}, cnt[3] = {2, 2, 2}, ind[9] = {9, 0, 1, 9, 0, 2, 9, 2, 1};
  double val[9] = {0, 2, 1, 0, 1, 4, 0, 6, 4};
  int copy(EnvHandle env, ProbHandle lp) const { return TVKcopyquad(env, lp, beg, cnt, ind, val); }
};

TEST_F(QuadraticData, ObjectiveIsCopiedQueriedChangedAndFollowsColumns) {
  ASSERT_EQ(Matrix().copy(env_, lp_), 0);
  EXPECT_EQ(text(), "type 5\nquad x*x 2\nquad x*y 1\nquad y*z 4\nquad z*z 6\n");
  EXPECT_EQ(TVKgetnumquad(env_, lp_), 3);
  EXPECT_EQ(TVKgetnumqpnz(env_, lp_), 6);
  int count = 0, surplus = 0, beg[2], ind[4];
  double val[4];
  ASSERT_EQ(TVKgetquad(env_, lp_, &count, beg, ind, val, 4, &surplus, 1, 2), 0);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(std::vector<int>(ind, ind + 2), (std::vector<int>{0, 2}));
  EXPECT_EQ(val[1], 4);
  int status = 0;
  ProbHandle copy = TVKcloneprob(env_, lp_, &status);
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 2, 0, 8), 0);
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 1, 2, 0), 0);
  ASSERT_EQ(TVKdelcols(env_, lp_, 1, 1), 0);
  ASSERT_EQ(TVKnewcols(env_, lp_, 2, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 3, 3, -1), 0);
  EXPECT_EQ(text(), "type 5\nquad x*x 2\nquad x*z 8\nquad z*z 6\nquad x4*x4 -1\n");
  ASSERT_EQ(TVKgetquad(env_, lp_, &count, beg, ind, val, 4, &surplus, 2, 3), 0);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(beg[1], 0);
  EXPECT_EQ(support::describe_families(env_, copy),
            "type 5\nquad x*x 2\nquad x*y 1\nquad y*z 4\nquad z*z 6\n");
  ASSERT_EQ(TVKlpopt(env_, copy), 1018);
  EXPECT_EQ(TVKfreeprob(env_, &copy), 0);
}

TEST_F(QuadraticData, ColumnsThatGoWhileTheMatrixIsEmptyAreForgotten) {
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 2, 2, 5), 0);
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 2, 2, 0), 0);
  ASSERT_EQ(TVKdelcols(env_, lp_, 1, 2), 0);
  ASSERT_EQ(TVKnewcols(env_, lp_, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 1, 1, 3), 0);
  ASSERT_EQ(TVKdelcols(env_, lp_, 0, 0), 0);
  EXPECT_EQ(text(), "type 5\nquad x2*x2 3\n");
}

TEST_F(QuadraticData, AsymmetryIsAnErrorOrAveraged) {
  Matrix matrix;
  matrix.val[4] = 3;  // of x, in the column of y
  ASSERT_EQ(matrix.copy(env_, lp_), 0);
  EXPECT_EQ(text(), "type 5\nquad x*x 2\nquad x*y 2\nquad y*z 4\nquad z*z 6\n");
  check_data();
  EXPECT_EQ(matrix.copy(env_, lp_), 5012);
  EXPECT_EQ(errors(), "TOVIK Error  5012: Q in objective is not symmetric.\n");
  matrix.val[4] = 1 + 1e-15;
  EXPECT_EQ(matrix.copy(env_, lp_), 0);
  matrix.ind[1] = 3;
  EXPECT_EQ(matrix.copy(env_, lp_), 1201);
  matrix.ind[1] = 1;
  EXPECT_EQ(matrix.copy(env_, lp_), 1222);
  EXPECT_EQ(TVKcopyquad(env_, lp_, matrix.beg, matrix.cnt, matrix.ind, nullptr), 1004);
  EXPECT_EQ(TVKchgqpcoef(env_, lp_, 0, 3, 1), 1200);
  double value = 0;
  EXPECT_EQ(TVKgetqpcoef(env_, lp_, -1, 0, &value), 1200);
  ASSERT_EQ(TVKchgprobtype(env_, lp_, 0), 0);
  int surplus = 0;
  EXPECT_EQ(TVKgetquad(env_, lp_, nullptr, nullptr, nullptr, nullptr, 0, &surplus, 0, 2), 5004);
}

TEST_F(QuadraticData, ConstraintsAreStoredInOneFormAndFollowColumns) {
  const int lin[] = {2, 0}, row[] = {2, 0, 1, 1}, col[] = {0, 2, 1, 0};
  const double value[] = {3, -1}, product[] = {1, 2, 5, 0};
  ASSERT_EQ(TVKaddqconstr(env_, lp_, 2, 4, 7, 'G', lin, value, row, col, product, "ball"), 0);
  ASSERT_EQ(TVKaddqconstr(env_, lp_, 0, 0, -7, 'L', nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(text(), "type 10\nqrow ball G 7 z:3 x:-1 [ x*z:3 y*y:5 ]\nqrow q2 L -7 [ ]\n");
  EXPECT_EQ(TVKlpopt(env_, lp_), 1031);
  int index = -1;
  EXPECT_EQ(TVKgetqconstrindex(env_, lp_, "q2", &index), 0);
  EXPECT_EQ(index, 1);
  const double small = 1e-12;
  ASSERT_EQ(TVKaddqconstr(env_, lp_, 1, 1, small, 'L', lin, &small, row, col, &small, "tiny"), 0);
  ASSERT_EQ(TVKchgqpcoef(env_, lp_, 0, 1, small), 0);
  ASSERT_EQ(TVKcleanup(env_, lp_, 1e-9), 0);
  ASSERT_EQ(TVKdelqconstrs(env_, lp_, 1, 1), 0);
  ASSERT_EQ(TVKdelcols(env_, lp_, 0, 0), 0);
  EXPECT_EQ(text(), "type 10\nqrow ball G 7 z:3 [ y*y:5 ]\nqrow tiny L 0 [ ]\n");

  int linear = 0, products = 0, linear_surplus = 0, surplus = 0, i = 0, j = 0, k = 0;
  double a = 0, b = 0;
  errors();
  EXPECT_EQ(TVKgetqconstr(env_, lp_, &linear, &products, nullptr, nullptr, &k, &a, 1, &linear_surplus, &i, &j,
                          &b, 0, &surplus, 0),
            1207);
  EXPECT_EQ(surplus, -1);
  EXPECT_EQ(errors(), "");
  EXPECT_EQ(TVKgetqconstr(env_, lp_, &linear, &products, nullptr, nullptr, &k, &a, -1, &linear_surplus, &i,
                          &j, &b, 1, &surplus, 0),
            1207);
  EXPECT_EQ(linear_surplus, -2);
  EXPECT_EQ(products, 1);
  EXPECT_EQ(errors(), "TOVIK Error  1207: Insufficient array length.\n");
}

TEST_F(QuadraticData, BadConstraintsChangeNothing) {
  const int index[] = {0, 0, 3};
  const double value[] = {1, 2, 3};
  EXPECT_EQ(TVKaddqconstr(env_, lp_, 0, 0, 0, 'E', nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            6002);
  EXPECT_EQ(errors(), "TOVIK Error  6002: Sense must be 'L' or 'G'.\n");
  EXPECT_EQ(TVKaddqconstr(env_, lp_, 0, 3, 0, 'L', nullptr, nullptr, index, index, value, nullptr), 1201);
  EXPECT_EQ(TVKaddqconstr(env_, lp_, 0, -1, 0, 'L', nullptr, nullptr, index, index, value, nullptr), 1003);
  EXPECT_EQ(TVKaddqconstr(env_, lp_, 0, 1, 0, 'L', nullptr, nullptr, index, nullptr, value, nullptr), 1004);
  check_data();
  errors();
  EXPECT_EQ(TVKaddqconstr(env_, lp_, 0, 2, 0, 'L', nullptr, nullptr, index, index, value, nullptr), 5011);
  EXPECT_EQ(errors(), "TOVIK Error  5011: Duplicate entry in 'q1' for pair 'x' and 'x'.\n");
  EXPECT_EQ(TVKaddqconstr(env_, lp_, 2, 0, 0, 'L', index, value, nullptr, nullptr, nullptr, nullptr), 1222);
  EXPECT_EQ(text(), "type 0\n");
}

}  // namespace
