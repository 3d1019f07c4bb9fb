/* Knapsacks of binaries that are made through the public header, for a search that logs nothing. */
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "support/mip_fixture.h"

namespace support {

class KnapsackModels : public MipModels {
 protected:
  void SetUp() override {
    MipModels::SetUp();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPDISPLAY, 0), 0);
  }
  /* Binary knapsack rows with weights that leave a search something to do; maximized. */
  ProbHandle knapsacks(int columns, int rows, unsigned seed) {
    unsigned state = seed * 7919u + 17u;
    const auto next = [&] { return 5 + (state = state * 1103515245u + 12345u) / 65536u % 40u; };
    int status = -1;
    ProbHandle lp = TVKcreateprob(env_, &status, "knapsacks");
    std::vector<double> profit, rhs;
    const std::vector<double> upper(static_cast<std::size_t>(columns), 1.0);
    for (int j = 0; j < columns; ++j) profit.push_back(next());
    const std::string types(static_cast<std::size_t>(columns), 'B'),
        senses(static_cast<std::size_t>(rows), 'L');
    EXPECT_EQ(TVKnewcols(env_, lp, columns, profit.data(), nullptr, upper.data(), types.c_str(), nullptr), 0);
    std::vector<int> begin, index;
    std::vector<double> value;
    for (int i = 0; i < rows; ++i) {
      begin.push_back(static_cast<int>(index.size()));
      double sum = 0;
      for (int j = 0; j < columns; ++j) {
        index.push_back(j);
        value.push_back(next());
        sum += value.back();
      }
      rhs.push_back(std::floor(sum / 3));
    }
    EXPECT_EQ(TVKaddrows(env_, lp, 0, rows, static_cast<int>(index.size()), rhs.data(), senses.c_str(),
                         begin.data(), index.data(), value.data(), nullptr, nullptr),
              0);
    EXPECT_EQ(TVKchgobjsen(env_, lp, -1), 0);
    return lp;
  }
};

}  // namespace support
