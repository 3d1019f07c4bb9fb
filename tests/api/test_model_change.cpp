/* Changing a model: the checks of each routine in their order, thresholds, and what a change does to its
 * neighbours. */
#include <cmath>
#include <numeric>
#include <vector>

#include "support/describe_problem.h"
#include "support/model_fixture.h"

namespace {

using Changes = support::WithModel;

TEST_F(Changes, AddingRowsWithColumns) {
  EXPECT_EQ(TVKaddrows(env_, lp_, 3, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 3) << "without rows no columns are added";
  const double rhs[] = {7, 8, 9};
  const int begin[] = {0, 2, 4}, index[] = {3, 0, 4, 3};
  const double value[] = {1, 2, 3, 0};
  char u[] = "u", r4[] = "r4";
  char* columns[] = {u, nullptr};
  char* rows[] = {r4, nullptr, nullptr};
  ASSERT_EQ(TVKaddrows(env_, lp_, 2, 3, 4, rhs, "ERL", begin, index, value, columns, rows), 0);
  EXPECT_EQ(support::describe(env_, lp_),
            "min 0\n"
            "x - 1 [0,10] c1:1 c3:5 r4:2\n"
            "y - -2 [-1,inf] c1:2 c2:3\n"
            "z - 3 [-inf,inf] c2:1 c3:6\n"
            "u - 0 [0,inf] r4:1\n"
            "x5 - 0 [0,inf] c5:3\n"
            "c1 L 4\n"
            "c2 G 1\n"
            "c3 R -1 2\n"
            "r4 E 7\n"
            "c5 R 8 0\n"
            "c6 L 9\n");
}

TEST_F(Changes, AddedVectorsAreCheckedForIndicesAlwaysAndContentsUnderTheSwitch) {
  const double nan = std::nan("");
  const int begin[] = {0, 2}, index[] = {0, 1, 2, 1}, out[] = {0, 1, 2, 3}, twice[] = {0, 1, 1, 1},
            descending[] = {2, 0}, beyond[] = {0, 5};
  const double value[] = {1, 2, 3, 4}, bad[] = {1, 2, nan, 4}, rhs[] = {1, nan};
  const auto rows = [&](const double* r, const char* s, const int* b, const int* i, const double* v) {
    return TVKaddrows(env_, lp_, 0, 2, 4, r, s, b, i, v, nullptr, nullptr);
  };
  const auto columns = [&](const double* o, const int* b, const int* i, const double* v) {
    return TVKaddcols(env_, lp_, 2, 4, o, b, i, v, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(TVKaddrows(env_, lp_, -1, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            1003);
  EXPECT_EQ(rows(nullptr, nullptr, begin, nullptr, value), 1004);
  EXPECT_EQ(columns(nullptr, begin, index, nullptr), 1004);
  EXPECT_EQ(rows(nullptr, nullptr, beyond, index, value), 1200);
  EXPECT_EQ(rows(nullptr, nullptr, begin, out, value), 1201);
  errors();
  EXPECT_EQ(columns(nullptr, begin, out, value), 1203);
  EXPECT_EQ(errors(), "TOVIK Error  1203: Row index 3 out of range.\n");
  EXPECT_EQ(TVKgetnumrows(env_, lp_) + TVKgetnumcols(env_, lp_), 6);

  check_data();
  EXPECT_EQ(rows(rhs, "LX", descending, twice, bad), 1215);
  EXPECT_EQ(rows(rhs, "LL", descending, out, bad), 1225);
  EXPECT_EQ(rows(value, "LL", descending, out, bad), 1226);
  EXPECT_EQ(rows(value, "LL", begin, out, bad), 1201);
  errors();
  EXPECT_EQ(rows(value, "LL", begin, twice, bad), 1225);
  EXPECT_EQ(errors(), "TOVIK Error  1225: Numeric entry 2 is not a double precison number (NAN).\n");
  EXPECT_EQ(rows(value, "LL", begin, twice, value), 1222);
  EXPECT_EQ(columns(rhs, begin, out, bad), 1225);
  EXPECT_EQ(columns(value, begin, twice, value), 1222);
  EXPECT_EQ(TVKgetnumrows(env_, lp_) + TVKgetnumcols(env_, lp_), 6);

  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 0), 0);
  ASSERT_EQ(rows(value, nullptr, begin, twice, value), 0);
  EXPECT_EQ(coefficient(4, 1), 7) << "values of a repeated index are added up";
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 9);
  EXPECT_EQ(sense(4), 'E');
  const int whole[] = {0, 4};
  ASSERT_EQ(rows(value, nullptr, whole, index, value), 0) << "a beginning may equal the number of entries";
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 12);
}

TEST_F(Changes, DeletingByMarksAndByRange) {
  ASSERT_EQ(TVKnewrows(env_, lp_, 1, nullptr, nullptr, nullptr, nullptr), 0);
  int marks[] = {0, 1, 2, 1};
  EXPECT_EQ(TVKdelsetrows(env_, lp_, nullptr), 1004);
  ASSERT_EQ(TVKdelsetrows(env_, lp_, marks), 0);
  EXPECT_EQ(std::vector<int>(marks, marks + 4), (std::vector<int>{0, -1, 1, -1}));
  EXPECT_EQ(support::describe(env_, lp_),
            "min 0\n"
            "x - 1 [0,10] c1:1 c3:5\n"
            "y - -2 [-1,inf] c1:2\n"
            "z - 3 [-inf,inf] c3:6\n"
            "c1 L 4\n"
            "c3 R -1 2\n");
  errors();
  EXPECT_EQ(TVKdelcols(env_, lp_, -1, 3), 1200);
  EXPECT_EQ(errors(),
            "TOVIK Error  1205: TVKdelcols: 'begin' value -1 is less than 0.\n"
            "TOVIK Error  1206: TVKdelcols: 'end' value 3 is greater than 2.\n"
            "TOVIK Error  1200: Index is outside range of valid values.\n");
  ASSERT_EQ(TVKdelcols(env_, lp_, 0, 0), 0);
  ASSERT_EQ(TVKdelcols(env_, lp_, 0, 0), 0) << "a second deletion counts from the first one's result";
  EXPECT_EQ(support::describe(env_, lp_), "min 0\nz - 3 [-inf,inf] c3:6\nc1 L 4\nc3 R -1 2\n");
}

TEST_F(Changes, CoefficientAddresses) {
  const struct {
    int i, j, code;
  } cases[] = {{-1, -1, 1211}, {-1, -3, 1211}, {-2, 0, 1200}, {0, -3, 1200},
               {3, 0, 1200},   {0, 3, 1200},   {5, -2, 1200}};
  for (const auto& c : cases) EXPECT_EQ(TVKchgcoef(env_, lp_, c.i, c.j, 1), c.code) << c.i << ' ' << c.j;
  EXPECT_EQ(TVKchgcoef(env_, lp_, -1, 0, 11), 0);
  EXPECT_EQ(TVKchgcoef(env_, lp_, 0, -1, 12), 0);
  EXPECT_EQ(TVKchgcoef(env_, lp_, 2, -2, -4), 0);
  EXPECT_EQ(TVKchgcoef(env_, lp_, 0, -2, 5), 0) << "without effect on a row that is not ranged";
  EXPECT_EQ(TVKchgcoef(env_, lp_, 0, 2, 13), 0);
  EXPECT_EQ(TVKchgcoef(env_, lp_, 2, 0, 0), 0);
  EXPECT_EQ(coefficient(-1, 0), 11);
  EXPECT_EQ(coefficient(0, -1), 12);
  EXPECT_EQ(range(2), -4);
  EXPECT_EQ(range(0), 0);
  EXPECT_EQ(coefficient(0, 2), 13);
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 6) << "one entry came, one went";
  ASSERT_EQ(TVKdelrows(env_, lp_, 2, 2), 0);
  EXPECT_EQ(TVKchgcoef(env_, lp_, 0, -2, 1), 1216);
}

TEST_F(Changes, CoefficientListsOfOneTwoAndMore) {
  const double value[] = {7, 8, 9, std::nan("")};
  const auto list = [&](std::vector<int> rows, std::vector<int> columns) {
    return TVKchgcoeflist(env_, lp_, static_cast<int>(rows.size()), rows.data(), columns.data(), value);
  };
  EXPECT_EQ(TVKchgcoeflist(env_, lp_, -1, nullptr, nullptr, nullptr), 1003);
  EXPECT_EQ(TVKchgcoeflist(env_, lp_, 0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKchgcoeflist(env_, lp_, 1, nullptr, nullptr, nullptr), 1004);
  EXPECT_EQ(list({1, 1}, {2, 2}), 1222);
  EXPECT_EQ(list({9, 9}, {9, 9}), 1222);
  EXPECT_EQ(list({1, 9}, {0, 0}), 1200);
  EXPECT_EQ(list({0, 1, 0}, {0, 1, 0}), 1222);
  errors();
  EXPECT_EQ(list({0, -1, 3}, {0, -1, 0}), 1203);
  EXPECT_EQ(errors(), "TOVIK Error  1203: Row index 1 out of range.\n");
  EXPECT_EQ(list({0, 1, 2}, {0, 1, -1}), 1201);
  EXPECT_EQ(coefficient(0, 0), 1) << "none of them changed anything";
  EXPECT_EQ(coefficient(1, 0), 0);
  EXPECT_EQ(list({-1, 1}, {2, -1}), 0);
  EXPECT_EQ(coefficient(-1, 2), 7);
  EXPECT_EQ(coefficient(1, -1), 8);
  EXPECT_EQ(list({2, 1, 0}, {1, 1, 2}), 0);
  EXPECT_EQ(coefficient(2, 1), 7);
  EXPECT_EQ(coefficient(1, 1), 8);
  EXPECT_EQ(coefficient(0, 2), 9);
  check_data();
  EXPECT_EQ(list({0, 1, 2, 9}, {0, 1, 2, 9}), 1225) << "numbers come before indices";
}

TEST_F(Changes, BoundThresholds) {
  const struct {
    char which;
    double value, lower, upper;  // of column x with bounds [-3, 10] before
    const char* warning;
  } cases[] = {
      {'L', 1e18, -3, 10, "Warning:  Infinity lower bound ignored.\n"},
      {'L', -1e17, -1e20, 10, ""},
      {'L', 1e-11, 0, 10, ""},
      {'L', 1e-10, 1e-10, 10, ""},
      {'L', -9.9e16, -9.9e16, 10, ""},
      {'U', 5e17, -3, 1e20, ""},
      {'U', -1e17, -3, 10, "Warning:  -Infinity upper bound ignored.\n"},
      {'B', 1e-12, 0, 0, ""},
      {'B', 1e18, -3, 1e20, "Warning:  Infinity lower bound ignored.\n"},
      {'B', -1e18, -1e20, 10, "Warning:  -Infinity upper bound ignored.\n"},
      {'B', 4, 4, 4, ""},
      {'X', 4, -3, 10, ""},
  };
  const int column = 0, twice[] = {0, 0};
  const double before[] = {-3, 10};
  for (const auto& c : cases) {
    ASSERT_EQ(TVKchgbds(env_, lp_, 2, twice, "LU", before), 0);
    EXPECT_EQ(TVKchgbds(env_, lp_, 1, &column, &c.which, &c.value), 0);
    EXPECT_EQ(lower(0), c.lower) << c.which << ' ' << c.value;
    EXPECT_EQ(upper(0), c.upper) << c.which << ' ' << c.value;
    EXPECT_EQ(warnings(), c.warning);
  }
  const double tight[] = {-5, 9, 0, 20};
  const int columns[] = {0, 0, 0, 0};
  EXPECT_EQ(TVKtightenbds(env_, lp_, 4, columns, "LULU", tight), 0);
  EXPECT_EQ(lower(0), 0);
  EXPECT_EQ(upper(0), 9);
  const int outside = 3;
  EXPECT_EQ(TVKchgbds(env_, lp_, -1, nullptr, nullptr, nullptr), 1003);
  EXPECT_EQ(TVKchgbds(env_, lp_, 1, nullptr, "L", before), 1004);
  EXPECT_EQ(TVKchgbds(env_, lp_, 1, &outside, "L", before), 1201);
  check_data();
  EXPECT_EQ(TVKchgbds(env_, lp_, 1, &column, "X", before), 1229);
}

TEST_F(Changes, SensesAndRangesGoTogether) {
  const int rows[] = {0, 2};
  ASSERT_EQ(TVKchgsense(env_, lp_, 2, rows, "RL"), 0);
  EXPECT_EQ(range(0), 0);
  EXPECT_EQ(range(2), 0);
  const double ranges[] = {-5, 6};
  ASSERT_EQ(TVKchgrngval(env_, lp_, 2, rows, ranges), 0);
  EXPECT_EQ(range(0), -5);
  EXPECT_EQ(range(2), 0);
  ASSERT_EQ(TVKchgsense(env_, lp_, 1, rows, "G"), 0);
  EXPECT_EQ(TVKchgrngval(env_, lp_, 2, rows, ranges), 1216);
  const int outside[] = {0, 3};
  EXPECT_EQ(TVKchgrhs(env_, lp_, 2, outside, ranges), 1203);
  EXPECT_EQ(TVKchgobj(env_, lp_, 2, outside, ranges), 1201);
  EXPECT_EQ(coefficient(0, -1), 4) << "nothing is changed when a later index is bad";
  EXPECT_EQ(TVKchgobjsen(env_, lp_, -7), 0);
  EXPECT_EQ(TVKgetobjsen(env_, lp_), TVK_MAX);
  EXPECT_EQ(TVKchgobjsen(env_, lp_, 0), 0);
  EXPECT_EQ(TVKgetobjsen(env_, lp_), TVK_MIN);
}

TEST_F(Changes, CleanupRemovesWhatIsStrictlySmaller) {
  ASSERT_EQ(TVKchgcoef(env_, lp_, 0, 0, 1e-10), 0);
  ASSERT_EQ(TVKchgcoef(env_, lp_, 0, 1, 1e-9), 0);
  ASSERT_EQ(TVKcleanup(env_, lp_, 1e-9), 0);
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 5);
  EXPECT_EQ(coefficient(0, 1), 1e-9);
}

TEST_F(Changes, PatternsThatWouldBeQuadraticInANaiveStore) {
  const int n = 100000;
  ASSERT_EQ(TVKnewcols(env_, lp_, n, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKnewrows(env_, lp_, n, nullptr, nullptr, nullptr, nullptr), 0);
  for (int k = 0; k < n; ++k) {
    ASSERT_EQ(TVKchgcoef(env_, lp_, static_cast<int>(k * 7919L % n) + 3, 5, k + 1), 0);
    ASSERT_EQ(TVKchgcoef(env_, lp_, 5, static_cast<int>(k * 7919L % n) + 3, k + 1), 0);
  }
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 6 + 2 * n - 1);
  EXPECT_EQ(
      coefficient(n + 2, 5), 1 + [&] {
        int k = 0;
        while (k * 7919L % n != n - 1) ++k;
        return k;
      }());
  for (int k = 0; k < n; ++k) ASSERT_EQ(TVKdelrows(env_, lp_, k % 2, k % 2), 0);
  for (int k = 0; k < n; ++k) ASSERT_EQ(TVKdelcols(env_, lp_, 3, 3), 0);
  EXPECT_EQ(TVKgetnumrows(env_, lp_), 3);
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 3);
}

}  // namespace
