/* Refinement of solves with an ill-conditioned basis: judged by residuals with twice the digits. */
#include "lp/simplex/basis_refinement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/scattered_lps.h"

namespace tovik::lp::simplex {
namespace {

using support::DenseLp;
using support::Random;
using support::TableCore;

/* Basic columns that differ from one another by little. */
DenseLp nearly_parallel(Random& random, int size) {
  DenseLp lp(size, size);
  for (int i = 0; i < size; ++i) {
    const double base = 1 + random.uniform(0, 1);
    for (int j = 0; j < size; ++j) lp.a[i][j] = base + std::exp2(-20) * random.uniform(0, 1);
    lp.row_lower[i] = lp.row_upper[i] = random.pick(1, 1000);
  }
  return lp;
}

void make_structurals_basic(Core& core) {
  std::vector<BasisStatus> status(static_cast<size_t>(core.total()), BasisStatus::lower);
  std::fill_n(status.begin(), core.n(), BasisStatus::basic);
  core.set_basis(status);
  ASSERT_EQ(core.refactor(), FactorState::good);
}

/* Largest entry of B'y - unit vector. */
double unit_residual(const Core& core, const DenseLp& lp, const verify::Multipliers& y, int unit) {
  double largest = 0;
  for (int p = 0; p < core.m(); ++p) {
    CompensatedSum sum;
    for (int i = 0; i < core.m(); ++i) {
      const double a = lp.a[i][core.basis.head(p)];
      sum.add_product(a, y.high[i]);
      if (!y.low.empty()) sum.add_product(a, y.low[i]);
    }
    sum.add(p == unit ? -1.0 : 0.0);
    largest = std::max(largest, std::fabs(sum.value()));
  }
  return largest;
}

TEST(BasisRefinement, MultipliersGainTheDigitsThatTheBasisCosts) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    Random random(seed);
    TableCore table(nearly_parallel(random, 12));
    Core& core = table.core;
    make_structurals_basic(core);
    SparseVector row;
    row.resize(core.m());
    row.set_unit(0);
    core.factor.btran(row, 1.0);
    const verify::Multipliers refined = refine_multipliers(core, row.array);
    ASSERT_FALSE(refined.low.empty());
    double largest = 0;
    for (const double v : refined.high) largest = std::max(largest, std::fabs(v));
    EXPECT_GT(unit_residual(core, table.lp, {row.array, {}, 0}, 0), 1e-18 * largest);
    EXPECT_LT(unit_residual(core, table.lp, refined, 0), 1e-24 * largest);
    EXPECT_LT(refined.error, 1e-15 * largest);
  }
}

TEST(BasisRefinement, WhatIsNoSolutionComesBackAsItIs) {
  Random random(1);
  TableCore table(nearly_parallel(random, 5));
  make_structurals_basic(table.core);
  const std::vector<double> y{0.3, 0.1, -0.7, 0.2, 0.9};
  const verify::Multipliers same = refine_multipliers(table.core, y);
  EXPECT_EQ(same.high, y);
  EXPECT_TRUE(same.low.empty());
}

TEST(BasisRefinement, CorrectionsTakeWhatValuesLeave) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    Random random(seed);
    TableCore table(nearly_parallel(random, 12));
    Core& core = table.core;
    make_structurals_basic(core);
    core.compute_primal();
    const auto left = [&] {
      std::vector<double> rows;
      for (int i = 0; i < core.m(); ++i) {
        CompensatedSum sum;
        sum.add(core.basis.value(core.n() + i));
        for (int p = 0; p < core.m(); ++p)
          sum.add_product(table.lp.a[i][core.basis.head(p)], core.values.x(p));
        rows.push_back(sum.value());
      }
      return rows;
    };
    const auto size = [](const std::vector<double>& v) {
      double largest = 0;
      for (const double entry : v) largest = std::max(largest, std::fabs(entry));
      return largest;
    };
    const double values = size(core.values.x());
    for (int p = 0; p < core.m(); ++p) core.values.add_x(p, 1e-6 * values * random.uniform(0, 1));
    ASSERT_GT(size(left()), 1e-8 * values);
    for (int k = 0; k < 3; ++k) correct_values(core, left());
    EXPECT_LT(size(left()), 1e-14 * values);
  }
}

}  // namespace
}  // namespace tovik::lp::simplex
