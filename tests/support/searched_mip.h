/* What branch and cut says of a problem, as enumeration says it. */
#pragma once

#include <gtest/gtest.h>

#include "mip/domain/point.h"
#include "mip/search/presolved_search.h"
#include "tests/support/quiet_control.h"
#include "tests/support/random_mip.h"

namespace support {

/* To the end; the solution must be one. */
inline MipTruth searched(const tovik::mip::Problem& problem, tovik::mip::Settings settings) {
  using tovik::mip::Conclusion;
  settings.relative_gap = settings.absolute_gap = 0;
  QuietControl control;
  tovik::mip::SilentObserver observer;
  tovik::mip::PresolvedSearch search(problem, settings, control, observer);
  const Conclusion end = search.run();
  MipTruth truth;
  truth.unbounded = end == Conclusion::unbounded;
  truth.feasible = truth.unbounded || end == Conclusion::optimal;
  EXPECT_TRUE(truth.feasible || end == Conclusion::infeasible) << static_cast<int>(end);
  if (end != Conclusion::optimal) return truth;
  const tovik::mip::Solution& found = search.incumbent();
  truth.objective = found.objective;
  const tovik::mip::PointViolation v = tovik::mip::measure(problem, found.x);
  EXPECT_EQ(v.integrality, 0);
  EXPECT_LE(v.primal(), 1e-6);
  EXPECT_LE(v.object, 1e-6);
  return truth;
}

inline void expect_same(const MipTruth& truth, const MipTruth& said) {
  EXPECT_EQ(said.unbounded, truth.unbounded);
  if (truth.unbounded || said.unbounded) return;
  ASSERT_EQ(said.feasible, truth.feasible);
  if (!truth.feasible) return;
  EXPECT_NEAR(said.objective, truth.objective, 1e-5 * (1 + std::fabs(truth.objective)));
}

}  // namespace support
