/* The simplex core: its parts agree after a singular basis, also where it may not be repaired any more. */
#include "lp/simplex/core.h"

#include <gtest/gtest.h>

#include "support/scattered_lps.h"

namespace tovik::lp::simplex {
namespace {

using support::Random;
using support::TableCore;

TEST(Core, FactorBasisAndStatusesAgreeAfterASingularBasis) {
  int singular = 0, repaired = 0;
  for (int round = 0; round < 400; ++round) {
    Random random(static_cast<unsigned>(round));
    const int m = random.pick(2, 10);
    TableCore table(support::scattered_lp(random, m, 2 * m));
    Core& core = table.core;
    core.options.singular_limit = round % 2;
    std::vector<BasisStatus> status(static_cast<size_t>(core.total()), BasisStatus::lower);
    for (int k = 0; k < m; ++k) status[static_cast<size_t>(random.below(core.n()))] = BasisStatus::basic;
    core.set_basis(status);
    const FactorState state = core.refactor();
    singular += state == FactorState::singular;
    repaired += state == FactorState::repaired;
    ASSERT_TRUE(core.has_factor());
    int basics = 0;
    for (int j = 0; j < core.total(); ++j) basics += !core.basis.nonbasic(j);
    EXPECT_EQ(basics, m);
    SparseVector column;
    column.resize(m);
    for (int p = 0; p < m; ++p) {
      const int j = core.basis.head(p);
      EXPECT_FALSE(core.basis.nonbasic(j));
      EXPECT_EQ(core.basis.position(j), p);
      core.model.load_column(j, column);
      core.factor.ftran(column, 1.0);
      for (int i = 0; i < m; ++i) EXPECT_NEAR(column.array[static_cast<size_t>(i)], i == p, 1e-8);
    }
  }
  EXPECT_GT(singular, 20);
  EXPECT_GT(repaired, 20);
}

}  // namespace
}  // namespace tovik::lp::simplex
