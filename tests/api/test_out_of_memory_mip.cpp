/* Memory runs out at one allocation after another of a mixed-integer search: the call says 1001 and changes nothing, or ends at
 * the memory limit with the solution that it has; said again it reaches the optimum. */
#include "support/failing_memory.h"

#include <cmath>
#include <vector>

#include "support/knapsack_models.h"

namespace {

class MipOutOfMemory : public support::KnapsackModels {};

TEST_F(MipOutOfMemory, TheIncumbentStays) {
  ProbHandle lp = knapsacks(18, 4, 3);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const double optimum = objective(lp);
  TVKfreeprob(env_, &lp);
  int with_solution = 0, without = 0, refused = 0;
  bool reached = true;
  for (long at = 2; reached; at = at * 23 / 20 + 1) {
    SCOPED_TRACE(testing::Message() << "allocation " << at);
    lp = knapsacks(18, 4, 3);
    support::allocations_until_failure = at;
    const int code = TVKmipopt(env_, lp);
    reached = support::allocations_until_failure < 0;
    support::allocations_until_failure = -1;
    errors();
    const int status = TVKgetstat(env_, lp);
    if (code != 0) {
      ASSERT_EQ(code, TVK_ERROR_OUT_OF_MEMORY);
      EXPECT_EQ(status, TVK_STATUS_NONE);
      ++refused;
    } else if (status == TVK_STATUS_MIP_MEMORY_LIMIT) {
      const std::vector<double> values = x(lp);
      for (const double v : values) EXPECT_EQ(v, std::round(v));
      EXPECT_LE(objective(lp), optimum + 1e-6);
      double bound = 0;
      EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
      EXPECT_GE(bound, optimum - 1e-6);
      ++with_solution;
    } else if (status == TVK_STATUS_MIP_MEMORY_LIMIT_NO_SOLUTION) {
      ++without;
    } else {
      EXPECT_EQ(status, TVK_STATUS_MIP_OPTIMAL);
    }
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp), optimum, 1e-6);
    TVKfreeprob(env_, &lp);
  }
  EXPECT_GT(with_solution, 0);
  EXPECT_GT(without, 0);
  EXPECT_GT(refused, 0);
}

}  // namespace
