/* Dual steepest-edge weights against the rows of an inverse that elimination on the table gives; devex weights
 * and the choice of a rule. */
#include "lp/simplex/dual_weights.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/simplex/dual.h"
#include "lp/simplex/dual_devex.h"
#include "lp/simplex/dual_steepest_edge.h"
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
    weights.push_back(std::max(norm, DualSteepestEdge::kFloor));
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
    for (SparseVector* v : {&rho_, &column_, &tau_}) v->resize(table.core.m());
  }

  /* A column that may enter at p with a pivot of some size; -1 when there is none. */
  int load(int p, Random& random) {
    Core& core = table_.core;
    rho_.clear();
    rho_.set_unit(p);
    rho_.want_pack = true;
    core.btran(rho_, density_);
    rho_.want_pack = false;
    for (int k = 0, q = random.below(core.total()); k < core.total(); ++k, q = (q + 1) % core.total()) {
      if (!core.basis.nonbasic(q)) continue;
      core.model.load_column(q, column_);
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
  void update_weights(const DualRule& rule, int p, bool full, DualWeights& weights) const {
    SparseVector column = column_;
    if (full) column.count = -1;
    rule.update({p, column, tau_}, weights);
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

TEST(DualSteepestEdge, UpdatedAreRecomputedOverAnyPivots) {
  Random random(321);
  int pivots_made = 0;
  for (int round = 0; round < 60; ++round) {
    TRACE_RANDOM(random, round);
    TableCore table(support::scattered_lp(random, random.pick(2, 25), random.pick(2, 40)));
    Core& core = table.core;
    table.random_basis(random);
    Pivots pivots(table);
    const DualRule& rule = dual_rule(Pricing::steepest_edge);
    DualWeights weights;
    SparseVector work;
    work.resize(core.m());
    rule.start(core, false, weights, work);
    expect_close(weights.view(), weights_by_elimination(table), 1e-8);
    for (int step = 0; step < 30; ++step) {
      const int p = random.below(core.m());
      const int q = pivots.load(p, random);
      if (q < 0) continue;
      EXPECT_TRUE(rule.accept(p, pivots.rho(), weights)) << "step " << step;
      pivots.update_weights(rule, p, random.chance(0.3), weights);
      ++pivots_made;
      if (!pivots.exchange(p, q)) {
        weights.save(core);
        core.refactor();
        weights.restore(core);
      }
      expect_close(weights.view(), weights_by_elimination(table), 1e-6);
    }
    if (HasFailure()) break;
  }
  EXPECT_GT(pivots_made, 500);
}

/* A factorization permutes positions: each variable keeps its weight. */
TEST(DualWeights, WeightsGoWithTheirVariables) {
  Random random(322);
  for (int round = 0; round < 100; ++round) {
    TRACE_RANDOM(random, round);
    TableCore table(support::scattered_lp(random, random.pick(2, 25), random.pick(2, 40)));
    Core& core = table.core;
    table.random_basis(random);
    std::vector<double> of_variable(static_cast<size_t>(core.total())), weights;
    for (double& w : of_variable) w = random.uniform(1, 100);
    for (const int j : core.basis.head()) weights.push_back(of_variable[j]);
    DualWeights kept;
    kept.set(weights);
    kept.save(core);
    std::vector<int> head = core.basis.head();
    std::shuffle(head.begin(), head.end(), random.engine());
    for (int p = 0; p < core.m(); ++p) core.basis.set_basic(p, head[static_cast<size_t>(p)]);
    core.refactor();
    kept.restore(core);
    for (int p = 0; p < core.m(); ++p) EXPECT_EQ(kept.view()[p], of_variable[core.basis.head(p)]);
  }
}

/* The values with the list of their nonzeros, or without it. */
SparseVector vector_of(const std::vector<double>& values, bool full) {
  SparseVector v;
  v.resize(static_cast<int>(values.size()));
  for (int i = 0; i < v.dimension(); ++i) {
    v.array[i] = values[i];
    if (values[i] != 0) v.index[v.count++] = i;
  }
  if (full) v.count = -1;
  return v;
}

/* A weight far too small made its row look good: the choice may not stand, the weight is right from then on.
 */
TEST(DualSteepestEdge, MisleadingWeightsAreFoundOut) {
  const DualRule& rule = dual_rule(Pricing::automatic);
  const auto rho = [](double norm2) { return vector_of({0, std::sqrt(norm2), 0}, false); };
  DualWeights weights;
  weights.set({1, 1, 1});
  EXPECT_FALSE(rule.accept(0, rho(4.1), weights));
  EXPECT_TRUE(rule.accept(0, rho(4.1), weights));
  EXPECT_TRUE(rule.accept(1, rho(3.9), weights));
  EXPECT_TRUE(rule.accept(2, rho(0.01), weights));  // a weight too large misled nobody
  expect_close(weights.view(), {4.1, 3.9, 0.01}, 1e-15);
  EXPECT_TRUE(rule.accept(2, rho(0), weights));
  EXPECT_EQ(weights.view()[2], DualSteepestEdge::kFloor);
}

/* w_i = max(w_i, (alpha_i / alpha_p)^2 w_p), w_p = max(1, w_p / alpha_p^2), with a list and without. */
TEST(DualDevex, WeightsGrowWithTheRatioOfEntries) {
  const DualRule& rule = dual_rule(Pricing::devex);
  const SparseVector unused;
  for (const bool full : {false, true}) {
    DualWeights weights;
    weights.set({1, 8, 2, 50, 1});
    const SparseVector column = vector_of({3, 0.5, 0, -4, 0}, full);
    rule.update({1, column, unused}, weights);
    EXPECT_EQ(weights.view(), (std::vector<double>{288, 32, 2, 512, 1}));
    rule.update({0, vector_of({100, 0, 0, 1, 0}, full), unused}, weights);
    EXPECT_EQ(weights.view(), (std::vector<double>{1, 32, 2, 512, 1}));
  }
}

TEST(DualDevex, StartsAnewWhenAWeightHasGrownTooFar) {
  const SparseVector unused;
  const SparseVector column = vector_of({1, 0.01, 0}, false);
  DualWeights weights;
  weights.set({3, 0.9e-4 * DualDevex::kReset, 7});
  dual_rule(Pricing::devex).update({1, column, unused}, weights);
  EXPECT_GT(weights.view()[1], 1);  // not yet
  weights.set({3, 1.1e-4 * DualDevex::kReset, 7});
  dual_rule(Pricing::devex).update({1, column, unused}, weights);
  EXPECT_EQ(weights.view(), (std::vector<double>{1, 1, 1}));
}

/* What each pricing starts from on a basis with structurals, and what it makes of weights carried along. */
TEST(DualRule, StartsAsThePricingAsks) {
  Random random(323);
  TableCore table(support::scattered_lp(random, 20, 40));
  Core& core = table.core;
  table.random_basis(random);
  SparseVector work;
  work.resize(core.m());
  const std::vector<double> ones(static_cast<size_t>(core.m()), 1.0),
      carried(static_cast<size_t>(core.m()), 2.0);
  const std::vector<double> norms = weights_by_elimination(table);
  ASSERT_NE(*std::max_element(norms.begin(), norms.end()), 1.0);
  for (const Pricing pricing : {Pricing::automatic, Pricing::steepest_edge, Pricing::steepest_edge_unit,
                                Pricing::devex, Pricing::dantzig}) {
    SCOPED_TRACE(static_cast<int>(pricing));
    const DualRule& rule = dual_rule(pricing);
    const bool edge = pricing != Pricing::devex && pricing != Pricing::dantzig;
    EXPECT_EQ(rule.needs_tau(), edge);
    DualWeights weights;
    rule.start(core, true, weights, work);  // none of this size are at hand
    expect_close(weights.view(), pricing == Pricing::steepest_edge ? norms : ones, 1e-8);
    weights.set(carried);
    rule.start(core, true, weights, work);
    EXPECT_EQ(weights.view(), edge ? carried : ones);
    weights.set(carried);
    rule.start(core, false, weights, work);
    expect_close(weights.view(), pricing == Pricing::steepest_edge ? norms : ones, 1e-8);
  }
}

/* A change of the pricing between two solves: edge norms are no devex weights, nor the other way round. */
TEST(DualRule, WeightsOfAnotherKindBeginAnew) {
  int changed = 0;
  for (int round = 0; round < 60; ++round) {
    Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    TableCore table(support::scattered_lp(random, 12, 24));
    Core& core = table.core;
    table.random_basis(random);
    core.options.dual_pricing = round % 2 == 0 ? Pricing::devex : Pricing::dantzig;
    Dual dual(core);
    Dual::Settings settings;
    dual.solve(settings, kUnlimited);
    if (!core.has_factor()) continue;
    const std::vector<double> before = dual.norms().view();
    core.options.dual_pricing = Pricing::steepest_edge;
    settings.keep_norms = true;
    dual.solve(settings, 0);
    const std::vector<double> norms = weights_by_elimination(table);
    expect_close(dual.norms().view(), norms, 1e-6);
    changed += before != dual.norms().view();
    dual.solve(settings, 0);  // of the same kind they are kept
    expect_close(dual.norms().view(), norms, 1e-6);
  }
  EXPECT_GT(changed, 30);
}

}  // namespace
}  // namespace tovik::lp::simplex
