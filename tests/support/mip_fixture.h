/* Mixed-integer models that are solved through the public header, with what is printed about them. */
#pragma once

#include <unistd.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/environment_fixture.h"
#include "support/read_text.h"

namespace support {

class MipModels : public WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &log_text_, keep_text), 0);
  }
  ProbHandle read(const std::string& model) { return read_text(env_, model); }
  static std::string temporary(const std::string& name) {
    return testing::TempDir() + "mip_" + std::to_string(getpid()) + "_" + name;
  }
  int solve(ProbHandle lp) {
    EXPECT_EQ(TVKmipopt(env_, lp), 0) << errors();
    return TVKgetstat(env_, lp);
  }
  double objective(ProbHandle lp) {
    double value = NAN;
    EXPECT_EQ(TVKgetobjval(env_, lp, &value), 0);
    return value;
  }
  std::vector<double> x(ProbHandle lp) { return columns(lp, TVKgetx); }
  std::vector<double> columns(ProbHandle lp, int (*get)(ConstEnvHandle, ConstProbHandle, double*, int, int)) {
    std::vector<double> values(static_cast<std::size_t>(TVKgetnumcols(env_, lp)));
    EXPECT_EQ(get(env_, lp, values.data(), 0, static_cast<int>(values.size()) - 1), 0);
    return values;
  }
  std::vector<double> rows(ProbHandle lp, int (*get)(ConstEnvHandle, ConstProbHandle, double*, int, int)) {
    std::vector<double> values(static_cast<std::size_t>(TVKgetnumrows(env_, lp)));
    EXPECT_EQ(get(env_, lp, values.data(), 0, static_cast<int>(values.size()) - 1), 0);
    return values;
  }

  std::string log_text_;
};

}  // namespace support
