/* A small model in an open environment, for tests of the model routines through the public header. */
#pragma once

#include <array>
#include <string>
#include <vector>

#include "support/environment_fixture.h"

namespace support {

/*   minimize x - 2 y + 3 z
 *   c1:  x + 2 y        <= 4
 *   c2:      3 y +   z  >= 1
 *   c3:  -1 <= 5 x + 6 z <= 1    (ranged: rhs -1, range 2)
 *   0 <= x <= 10, y >= -1, z free */
struct SmallModel {
  int columns = 3, rows = 3, sense = 1;
  std::vector<double> obj{1, -2, 3}, rhs{4, 1, -1}, lb{0, -1, -1e30}, ub{10, 1e20, 5e20}, range{0, 0, 2};
  std::string senses = "LGR";
  std::vector<int> beg{0, 2, 4}, cnt{2, 2, 2}, ind{0, 2, 0, 1, 1, 2};
  std::vector<double> val{1, 5, 2, 3, 1, 6};
  std::vector<const char*> column_names{"x", "y", "z"}, row_names{"c1", "c2", "c3"};

  int copy(ConstEnvHandle env, ProbHandle lp, bool named = true) {
    return TVKcopylpwnames(env, lp, columns, rows, sense, obj.data(), rhs.data(), senses.data(), beg.data(),
                           cnt.data(), ind.data(), val.data(), lb.data(), ub.data(), range.data(),
                           named ? const_cast<char**>(column_names.data()) : nullptr,
                           named ? const_cast<char**>(row_names.data()) : nullptr);
  }
};

class WithModel : public WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    int status = -1;
    lp_ = TVKcreateprob(env_, &status, "small");
    ASSERT_EQ(status, 0);
    ASSERT_EQ(SmallModel().copy(env_, lp_), 0);
  }
  void check_data() { ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 1), 0); }

  double coefficient(int i, int j) {
    double value = -12345;
    EXPECT_EQ(TVKgetcoef(env_, lp_, i, j, &value), 0);
    return value;
  }
  double lower(int j) { return real(TVKgetlb, j); }
  double upper(int j) { return real(TVKgetub, j); }
  double range(int i) { return real(TVKgetrngval, i); }
  char sense(int i) {
    char letter = 0;
    EXPECT_EQ(TVKgetsense(env_, lp_, &letter, i, i), 0);
    return letter;
  }
  std::string column_name(int j) { return name(TVKgetcolname, j); }
  std::string row_name(int i) { return name(TVKgetrowname, i); }

  ProbHandle lp_ = nullptr;

 private:
  double real(int (*query)(ConstEnvHandle, ConstProbHandle, double*, int, int), int k) {
    double value = -12345;
    EXPECT_EQ(query(env_, lp_, &value, k, k), 0);
    return value;
  }
  std::string name(int (*query)(ConstEnvHandle, ConstProbHandle, char**, char*, int, int*, int, int), int k) {
    std::array<char, 512> store{};
    char* text = nullptr;
    int surplus = 0;
    EXPECT_EQ(query(env_, lp_, &text, store.data(), static_cast<int>(store.size()), &surplus, k, k), 0);
    return text == nullptr ? "" : text;
  }
};

}  // namespace support
