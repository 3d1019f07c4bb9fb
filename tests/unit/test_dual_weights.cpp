/* Dual steepest-edge weights against the rows of an inverse that elimination on the table gives. */
#include "lp/simplex/dual_weights.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/scattered_lps.h"

namespace tovik::lp::simplex {
namespace {

using support::Random;
using support::TableCore;

std::vector<double> weights_by_elimination(const TableCore& table) {
  std::vector<double> weights;
  for (const std::vector<double>& row : table.basis_inverse()) {
    double norm = 0;
    for (const double v : row) norm += v * v;
    weights.push_back(std::max(norm, DualNorms::kFloor));
  }
  return weights;
}

void expect_close(const std::vector<double>& found, const std::vector<double>& wanted, double relative) {
  ASSERT_EQ(found.size(), wanted.size());
  for (size_t p = 0; p < found.size(); ++p)
    EXPECT_NEAR(found[p], wanted[p], relative * wanted[p]) << "position " << p;
}

/* The vectors of a dual iteration: row p of the inverse, an entering column, the row's product with the
 * inverse. */
class Pivots {
 public:
  explicit Pivots(TableCore& table) : table_(table) {
    for (SparseVector* v : {&rho_, &column_, &tau_}) v->resize(table.core.m);
  }

  /* A column that may enter at p with a pivot of some size; -1 when there is none. */
  int load(int p, Random& random) {
    Core& core = table_.core;
    rho_.clear();
    rho_.set_unit(p);
    rho_.want_pack = true;
    core.btran(rho_, density_);
    rho_.want_pack = false;
    for (int k = 0, q = random.below(core.total); k < core.total; ++k, q = (q + 1) % core.total) {
      if (!core.nonbasic[q]) continue;
      core.load_column(q, column_);
      column_.want_pack = true;
      core.ftran(column_, density_);
      column_.want_pack = false;
      if (std::fabs(column_.array[p]) < 0.3) continue;
      tau_.copy(rho_);
      core.ftran(tau_, density_);
      return q;
    }
    return -1;
  }
  /* `full`: the column has given up its list. */
  void update_weights(int p, bool full, DualNorms& norms) const {
    SparseVector column = column_;
    if (full) column.count = -1;
    norms.update(p, column, column.array[p], tau_);
  }
  /* False: the factor must be made anew. */
  bool exchange(int p, int q) {
    table_.core.change_basis(q, p, 0);
    return table_.core.factor.update(column_, rho_, p) && !table_.core.factor.wants_rebuild();
  }
  const SparseVector& rho() const { return rho_; }

 private:
  TableCore& table_;
  SparseVector rho_, column_, tau_;
  Density density_;
};

TEST(DualNorms, UpdatedAreRecomputedOverAnyPivots) {
  Random random(321);
  int pivots_made = 0;
  for (int round = 0; round < 60; ++round) {
    TRACE_RANDOM(random, round);
    TableCore table(support::scattered_lp(random, random.pick(2, 25), random.pick(2, 40)));
    Core& core = table.core;
    table.random_basis(random);
    Pivots pivots(table);
    DualNorms norms;
    SparseVector work;
    work.resize(core.m);
    norms.compute(core, work);
    expect_close(norms.view(), weights_by_elimination(table), 1e-8);
    for (int step = 0; step < 30; ++step) {
      const int p = random.below(core.m);
      const int q = pivots.load(p, random);
      if (q < 0) continue;
      EXPECT_TRUE(norms.exact(p, std::max(DualNorms::kFloor, pivots.rho().norm2()))) << "step " << step;
      pivots.update_weights(p, random.chance(0.3), norms);
      ++pivots_made;
      if (!pivots.exchange(p, q)) {
        norms.save(core);
        core.refactor();
        norms.restore(core);
      }
      expect_close(norms.view(), weights_by_elimination(table), 1e-6);
    }
    if (HasFailure()) break;
  }
  EXPECT_GT(pivots_made, 500);
}

/* A factorization permutes positions: each variable keeps its weight. */
TEST(DualNorms, WeightsGoWithTheirVariables) {
  Random random(322);
  for (int round = 0; round < 100; ++round) {
    TRACE_RANDOM(random, round);
    TableCore table(support::scattered_lp(random, random.pick(2, 25), random.pick(2, 40)));
    Core& core = table.core;
    table.random_basis(random);
    std::vector<double> of_variable(static_cast<size_t>(core.total)), weights;
    for (double& w : of_variable) w = random.uniform(1, 100);
    for (const int j : core.head) weights.push_back(of_variable[j]);
    DualNorms norms;
    norms.set(weights);
    norms.save(core);
    std::shuffle(core.head.begin(), core.head.end(), random.engine());
    core.refactor();
    norms.restore(core);
    for (int p = 0; p < core.m; ++p) EXPECT_EQ(norms.view()[p], of_variable[core.head[p]]);
  }
}

/* A weight far too small made its row look good: the choice may not stand, the weight is right from then on.
 */
TEST(DualNorms, MisleadingWeightsAreFoundOut) {
  DualNorms norms;
  norms.set({1, 1, 1});
  EXPECT_FALSE(norms.exact(0, 4.1));
  EXPECT_TRUE(norms.exact(0, 4.1));
  EXPECT_TRUE(norms.exact(1, 3.9));
  EXPECT_TRUE(norms.exact(2, 0.01));  // a weight too large misled nobody
  EXPECT_EQ(norms.view(), (std::vector<double>{4.1, 3.9, 0.01}));
}

}  // namespace
}  // namespace tovik::lp::simplex
