/* Small models that were answered wrongly, not at all or too late: right with every method, with and without presolve.
 * Their answers are known from exact arithmetic. */
#include <limits>
#include <ostream>
#include <tuple>

#include "support/file_fixture.h"

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

struct Hard {
  const char* file;
  int status;
  double objective = kNone, tolerance = 0;
};
void PrintTo(const Hard& hard, std::ostream* out) {
  *out << hard.file;
}

class HardModels : public support::WithFiles,
                   public testing::WithParamInterface<std::tuple<Hard, int, int>> {};

TEST_P(HardModels, EndWithTheRightAnswer) {
  const auto& [hard, method, presolve] = GetParam();
  const std::string file = std::string(TOVIK_SOURCE_DIR "/tests/regress/models/hard/") + hard.file;
  ASSERT_EQ(TVKreadcopyprob(env_, lp_, file.c_str(), nullptr), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_LP), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, method), 0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 60), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  EXPECT_EQ(TVKgetstat(env_, lp_), hard.status);
  if (hard.status != TVK_STATUS_OPTIMAL) return;
  double objective = 0;
  ASSERT_EQ(TVKgetobjval(env_, lp_, &objective), 0);
  EXPECT_NEAR(objective, hard.objective, hard.tolerance);
}

INSTANTIATE_TEST_SUITE_P(
    Simplex, HardModels,
    testing::Combine(testing::Values(
                         // right-hand sides of 1e9 to 1e12, missed by 1 and 2
                         Hard{"big_sides_infeasible.lp", TVK_STATUS_INFEASIBLE},
                         Hard{"integer_data_infeasible.mps", TVK_STATUS_INFEASIBLE},
                         // infeasible by less than the tolerance
                         Hard{"hair_infeasible.mps", TVK_STATUS_OPTIMAL, 0, 1e-6},
                         Hard{"near_balance.lp", TVK_STATUS_OPTIMAL, 1200, 1e-3},
                         // a point 3e-7 outside the rows has the value -5138
                         Hard{"ill_conditioned.mps", TVK_STATUS_OPTIMAL, 27.99687, 1e-4},
                         // rays of large or widely spread numbers, almost singular bases
                         Hard{"big_sides_unbounded.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"free_ray.lp", TVK_STATUS_UNBOUNDED},
                         Hard{"near_singular_1.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"near_singular_2.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_1266.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_1307.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_197.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_327.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_408.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_601.mps", TVK_STATUS_UNBOUNDED},
                         Hard{"wide_unbounded_757.mps", TVK_STATUS_UNBOUNDED},
                         // dependent rows whose sides agree but for rounding, which exceeds the tolerance
                         Hard{"dependent_rows.mps.bz2", TVK_STATUS_OPTIMAL, 2.1027993e9, 2e3},
                         // integer data of 1e7 to 2e11, where rounding exceeds the tolerance
                         Hard{"stall_1.mps.bz2", TVK_STATUS_OPTIMAL, 1.716e12, 1e3},
                         Hard{"stall_2.mps", TVK_STATUS_OPTIMAL, -1.1e9, 1},
                         Hard{"stall_3.mps", TVK_STATUS_OPTIMAL, 1.716e12, 1e3},
                         // the relaxation of semi-continuous columns contains zero
                         Hard{"semicontinuous_2.mps", TVK_STATUS_OPTIMAL, 0, 1e-9}),
                     testing::Values(0, 1, 2), testing::Values(0, 1)));

}  // namespace
