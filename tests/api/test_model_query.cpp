/* Queries: ranges, their messages, and the surplus protocol for sparse data and names. */
#include <vector>

#include "support/model_fixture.h"

namespace {

using Queries = support::WithModel;
using testing::Test;

TEST_F(Queries, RangesOutsidePrintTheirEndsThenFail) {
  double out[3] = {};
  EXPECT_EQ(TVKgetobj(env_, lp_, out, 0, 3), 1200);
  EXPECT_EQ(errors(),
            "TOVIK Error  1206: TVKgetobj: 'end' value 3 is greater than 2.\n"
            "TOVIK Error  1200: Index is outside range of valid values.\n");
  int surplus = 7, count = 7;
  EXPECT_EQ(TVKgetrows(env_, lp_, &count, nullptr, nullptr, nullptr, 0, &surplus, -2, 4), 1200);
  EXPECT_EQ(errors(),
            "TOVIK Error  1205: TVKgetrows: 'begin' value -2 is less than 0.\n"
            "TOVIK Error  1206: TVKgetrows: 'end' value 4 is greater than 2.\n"
            "TOVIK Error  1200: Index is outside range of valid values.\n");
  EXPECT_EQ(count, 0);
  EXPECT_EQ(surplus, 0);
  EXPECT_EQ(TVKgetlb(env_, lp_, nullptr, 0, 5), 1200) << "the range comes before the null array";
  EXPECT_EQ(TVKgetlb(env_, lp_, nullptr, 0, 2), 1004);
  EXPECT_EQ(TVKgetlb(env_, lp_, nullptr, 2, 1), 0) << "an empty range";
}

TEST_F(Queries, CountsAreZeroAfterAnError) {
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 3);
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 6);
  ProbHandle freed = lp_;
  ASSERT_EQ(TVKfreeprob(env_, &lp_), 0);
  EXPECT_EQ(TVKgetnumcols(env_, freed), 0);
  EXPECT_EQ(TVKgetobjsen(env_, freed), 0);
  EXPECT_EQ(errors(),
            "TOVIK Error  1009: No problem exists.\n"
            "TOVIK Error  1009: No problem exists.\n");
}

using SparseQuery = int (*)(ConstEnvHandle, ConstProbHandle, int*, int*, int*, double*, int, int*, int, int);

TEST_F(Queries, SparseSurplusProtocol) {
  const struct {
    SparseQuery query;
    std::vector<int> begin, index;
    std::vector<double> value;
  } cases[] = {{TVKgetcols, {0, 2, 4}, {0, 2, 0, 1, 1, 2}, {1, 5, 2, 3, 1, 6}},
               {TVKgetrows, {0, 2, 4}, {0, 1, 1, 2, 0, 2}, {1, 2, 3, 1, 5, 6}}};
  for (const auto& c : cases) {
    int count = 9, surplus = 9;
    std::vector<int> begin(3, 9), index(6, 9);
    std::vector<double> value(6, 9);
    EXPECT_EQ(c.query(env_, lp_, &count, begin.data(), nullptr, nullptr, 0, &surplus, 0, 2), 1207);
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(surplus, -6);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(begin, std::vector<int>(3, 0));

    EXPECT_EQ(c.query(env_, lp_, &count, begin.data(), index.data(), value.data(), 6, &surplus, 0, 2), 0);
    EXPECT_EQ(count, 6);
    EXPECT_EQ(surplus, 0);
    EXPECT_EQ(begin, c.begin);
    EXPECT_EQ(index, c.index);
    EXPECT_EQ(value, c.value);

    index.assign(6, 9);
    begin.assign(3, 9);
    EXPECT_EQ(c.query(env_, lp_, &count, begin.data(), index.data(), value.data(), 3, &surplus, 0, 2), 1207);
    EXPECT_EQ(errors(), "TOVIK Error  1207: Insufficient array length.\n");
    EXPECT_EQ(count, 3);
    EXPECT_EQ(surplus, -3);
    EXPECT_EQ(begin, c.begin);
    EXPECT_EQ(index, (std::vector<int>{c.index[0], c.index[1], c.index[2], 9, 9, 9}));

    EXPECT_EQ(c.query(env_, lp_, &count, begin.data(), index.data(), value.data(), 6, &surplus, 2, 1), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(surplus, 6);
    EXPECT_EQ(c.query(env_, lp_, &count, nullptr, nullptr, nullptr, 0, &surplus, 1, 0), 0);
    EXPECT_EQ(surplus, 0);
    EXPECT_EQ(c.query(env_, lp_, &count, begin.data(), index.data(), value.data(), 0, nullptr, 0, 2), 1004);
    EXPECT_EQ(c.query(env_, lp_, &count, begin.data(), nullptr, value.data(), 6, &surplus, 0, 2), 1004);
    EXPECT_EQ(surplus, 0);
    errors();
  }
}

TEST_F(Queries, NameSurplusProtocol) {
  ASSERT_EQ(TVKchgname(env_, lp_, 'c', 1, "long"), 0);
  char store[9];
  char* names[3] = {};
  int surplus = 9;
  EXPECT_EQ(TVKgetcolname(env_, lp_, nullptr, nullptr, 0, &surplus, 0, 2), 1207);
  EXPECT_EQ(surplus, -9);
  EXPECT_EQ(errors(), "");
  ASSERT_EQ(TVKgetcolname(env_, lp_, names, store, 9, &surplus, 0, 2), 0);
  EXPECT_EQ(surplus, 0);
  EXPECT_EQ(std::string(store, 9), std::string("x\0long\0z", 9));
  EXPECT_EQ(names[2], store + 7);
  names[2] = nullptr;
  EXPECT_EQ(TVKgetcolname(env_, lp_, names, store, 4, &surplus, 0, 2), 1207);
  EXPECT_EQ(surplus, -5);
  EXPECT_EQ(std::string(store, 4), std::string("x\0lo", 4));
  EXPECT_EQ(names[1], store + 2);
  EXPECT_EQ(names[2], nullptr);
  EXPECT_EQ(errors(), "TOVIK Error  1207: Insufficient array length.\n");
  EXPECT_EQ(TVKgetcolname(env_, lp_, names, store, 9, &surplus, 2, 1), 0);
  EXPECT_EQ(surplus, 9);
  EXPECT_EQ(TVKgetcolname(env_, lp_, names, store, 9, nullptr, 0, 2), 1004);
  EXPECT_EQ(TVKdelnames(env_, lp_), 0);
  EXPECT_EQ(TVKgetrowname(env_, lp_, names, store, 9, &surplus, 0, 3), 1200)
      << "the range comes before the names";
  EXPECT_EQ(TVKgetrowname(env_, lp_, nullptr, nullptr, 0, &surplus, 0, 2), 1219);
}

TEST_F(Queries, SingleCoefficientsAndTheirAddresses) {
  EXPECT_EQ(coefficient(2, 0), 5);
  EXPECT_EQ(coefficient(0, 2), 0);
  EXPECT_EQ(coefficient(-1, 1), -2);
  EXPECT_EQ(coefficient(1, -1), 1);
  EXPECT_EQ(coefficient(2, -2), 2);
  double value = 0;
  EXPECT_EQ(TVKgetcoef(env_, lp_, 3, 0, &value), 1200);
  EXPECT_EQ(TVKgetcoef(env_, lp_, 0, 0, nullptr), 1004);
}

TEST_F(Queries, ColumnTypes) {
  char types[3] = {};
  EXPECT_EQ(TVKgetctype(env_, lp_, types, 0, 3), 1200);
  EXPECT_EQ(TVKgetctype(env_, lp_, nullptr, 0, 2), 1004);
  EXPECT_EQ(TVKgetctype(env_, lp_, types, 0, 2), 3003);
  check_data();
  errors();
  EXPECT_EQ(TVKcopyctype(env_, lp_, "CXB"), 3021);
  EXPECT_EQ(errors(), "TOVIK Error  3021: Illegal ctype entry 1.\n");
  EXPECT_EQ(TVKgetprobtype(env_, lp_), 0);
  EXPECT_EQ(TVKcopyctype(env_, lp_, nullptr), 1004);
  EXPECT_EQ(TVKcopyctype(env_, lp_, "ISB"), 0);
  EXPECT_EQ(TVKgetprobtype(env_, lp_), 1);
  const int indices[] = {1, 0};
  EXPECT_EQ(TVKchgctype(env_, lp_, 2, indices, "NI"), 0);
  EXPECT_EQ(TVKgetctype(env_, lp_, types, 0, 2), 0);
  EXPECT_EQ(std::string(types, 3), "INB");
  EXPECT_EQ(TVKgetnumint(env_, lp_), 1);
  EXPECT_EQ(TVKgetnumbin(env_, lp_), 1);
  EXPECT_EQ(TVKgetnumsemiint(env_, lp_), 1);
  EXPECT_EQ(TVKgetnumsemicont(env_, lp_), 0);
  EXPECT_EQ(TVKdelcols(env_, lp_, 0, 2), 0);
  EXPECT_EQ(TVKnewcols(env_, lp_, 2, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKgetctype(env_, lp_, types, 0, 1), 0) << "the problem is still a mixed-integer one";
  EXPECT_EQ(std::string(types, 2), "CC");
}

}  // namespace
