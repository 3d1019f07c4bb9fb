/* What an optimization has counted: the sums that must agree, with each other and with the counters that have routines
 * of their own. */
#include "support/solve_fixture.h"
#include "support/statistics.h"

namespace {

using support::assignment;
using support::Lp;
using support::LpMaker;
using Json = nlohmann::json;

class Statistics : public support::WithSolves {
 protected:
  Json of(ProbHandle lp) { return support::statistics(env_, lp); }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }

  static int iterations(const Json& algorithm) {
    return algorithm["phase1_iterations"].get<int>() + algorithm["phase2_iterations"].get<int>();
  }

  void expect_presolve(ProbHandle lp, const Json& presolve) {
    EXPECT_EQ(presolve["before"]["rows"], TVKgetnumrows(env_, lp));
    EXPECT_EQ(presolve["before"]["columns"], TVKgetnumcols(env_, lp));
    EXPECT_EQ(presolve["before"]["nonzeros"], TVKgetnumnz(env_, lp));
    const int substitutions = presolve["substitutions"];
    for (const char* kind : {"rows", "columns"}) {
      const int eliminated = presolve[std::string(kind) + "_eliminated"];
      EXPECT_EQ(presolve["before"][kind].get<int>() - presolve["after"][kind].get<int>(),
                eliminated + substitutions)
          << kind;
    }
    const Json& rules = presolve["reductions"];
    EXPECT_LE(substitutions, rules["doubleton_equation"].get<int>() + rules["free_column"].get<int>());
    int reductions = 0;
    for (const auto& rule : rules) reductions += rule.get<int>();
    if (reductions == 0) {
      EXPECT_EQ(presolve["before"], presolve["after"]);
    }
  }

  /* All that one text must agree with. */
  void expect_sums(ProbHandle lp, const Json& s) {
    const Json &simplex = s["simplex"], &dual = simplex["dual"], &primal = simplex["primal"];
    const int sifting = simplex["sifting"]["iterations"];
    EXPECT_EQ(simplex["iterations"], TVKgetitcnt(env_, lp));
    EXPECT_EQ(s["threads"], 1) << "the caller's";
    EXPECT_EQ(iterations(dual) + iterations(primal) + sifting, TVKgetitcnt(env_, lp));
    EXPECT_EQ(dual["phase1_iterations"].get<int>() + primal["phase1_iterations"].get<int>(),
              TVKgetphase1cnt(env_, lp));
    double all = 0, kinds = 0;
    ASSERT_EQ(TVKgetticks(env_, lp, &all), 0);
    for (const auto& kind : s["ticks"]) kinds += kind.get<double>();
    EXPECT_EQ(all, kinds);
    const Json& made = simplex["factorizations"];
    int reasons = 0;
    for (const char* reason : {"start", "growth", "update", "pivot", "check", "accuracy"})
      reasons += made[reason].get<int>();
    EXPECT_EQ(made["all"], reasons);
    const Json& factor = s["factor"];
    EXPECT_EQ(factor["builds"], made["all"]);
    const int pivots = iterations(dual) + iterations(primal) - primal["bound_flips"].get<int>();
    EXPECT_EQ(factor["updates"].get<int>() + factor["refused_updates"].get<int>(), pivots);
    EXPECT_GE(made["update"].get<int>(), factor["refused_updates"].get<int>() - 1);
    const int sweeps = factor["sparse_sweeps"].get<int>() + factor["plain_sweeps"].get<int>() +
                       factor["switched_sweeps"].get<int>();
    EXPECT_EQ(sweeps % 2, 0);
    // A column, a row of the inverse: no pivot does without them.
    EXPECT_GE(sweeps / 2 + factor["joint_solves"].get<int>(), 2 * pivots);
    for (const auto& [name, density] : simplex["densities"].items()) {
      EXPECT_GE(density.get<double>(), 0) << name;
      EXPECT_LE(density.get<double>(), 1) << name;
    }
    for (const auto& [kind, ticks] : s["ticks"].items()) EXPECT_GE(ticks.get<std::int64_t>(), 0) << kind;
    if (!s["presolve"].is_null()) expect_presolve(lp, s["presolve"]);
  }
};

TEST_F(Statistics, SumsAgreeForEveryShapeAndMethod) {
  LpMaker maker(11);
  int presolved = 0, reduced = 0, flipped = 0, both = 0;
  for (int k = 0; k < 400; ++k) {
    const Lp model = maker.draw(k % 4 == 0 ? 40 : 12);
    set(TVK_PARAM_PREIND, k % 3 == 0 ? 0 : 1);
    SCOPED_TRACE(support::describe(model));
    ProbHandle lp = load(model);
    ASSERT_EQ(run(lp, k % 5 == 0 ? 1 : 2), 0);
    const Json s = of(lp);
    EXPECT_EQ(s["presolve"].is_null(), k % 3 == 0);
    expect_sums(lp, s);
    presolved += !s["presolve"].is_null();
    reduced += !s["presolve"].is_null() && s["presolve"]["before"] != s["presolve"]["after"];
    flipped += s["simplex"]["dual"]["bound_flips"] > 0 || s["simplex"]["primal"]["bound_flips"] > 0;
    both += iterations(s["simplex"]["dual"]) > 0 && iterations(s["simplex"]["primal"]) > 0;
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
    if (HasFailure()) return;
  }
  EXPECT_GT(presolved, 200);
  EXPECT_GT(reduced, 100);
  EXPECT_GT(flipped, 10);
  EXPECT_GT(both, 0) << "dual and primal in one optimization";
}

TEST_F(Statistics, BelongToOneOptimization) {
  set(TVK_PARAM_PREIND, 0);
  ProbHandle lp = load(assignment(12, 1));
  ASSERT_EQ(run(lp, 2), 0);
  const Json first = of(lp);
  expect_sums(lp, first);
  EXPECT_GT(first["simplex"]["iterations"], 10);
  EXPECT_GT(first["ticks"]["factor_solves"], 0);
  EXPECT_GT(first["ticks"]["factor_updates"], 0);
  EXPECT_GT(first["ticks"]["simplex"], 0);
  EXPECT_GT(first["factor"]["basis_nonzeros"], 0);
  ASSERT_EQ(run(lp, 2), 0);
  const Json again = of(lp);
  expect_sums(lp, again);
  EXPECT_EQ(again["simplex"]["iterations"], 0) << "the optimum has not moved";
  EXPECT_EQ(again["simplex"]["factorizations"]["all"], 0);
  EXPECT_EQ(again["ticks"]["factor_builds"], 0);
  const int column = 5;
  const double cost = -50;
  ASSERT_EQ(TVKchgobj(env_, lp, 1, &column, &cost), 0);
  EXPECT_EQ(of(lp), again) << "a change of the model leaves what was counted before";
  ASSERT_EQ(run(lp, 1), 0);
  const Json moved = of(lp);
  expect_sums(lp, moved);
  EXPECT_GT(moved["simplex"]["iterations"], 0);
  EXPECT_LT(moved["simplex"]["iterations"], first["simplex"]["iterations"]);
}

TEST_F(Statistics, ReasonsOfFactorizations) {
  set(TVK_PARAM_PREIND, 0);
  set(TVK_PARAM_REINV, 5);
  ProbHandle lp = load(assignment(12, 1));
  for (const int method : {1, 2}) {
    set(TVK_PARAM_ADVIND, 0);
    ASSERT_EQ(run(lp, method), 0);
    const Json s = of(lp);
    expect_sums(lp, s);
    const int updates = s["factor"]["updates"], growth = s["simplex"]["factorizations"]["growth"];
    EXPECT_LE(growth, updates / 5);
    EXPECT_GE(5 * s["simplex"]["factorizations"]["all"].get<int>(), updates)
        << "no factor took more than five";
    EXPECT_GT(growth, 0);
  }
}

/* Two columns with the same entries. */
TEST_F(Statistics, SingularBasesAreCounted) {
  set(TVK_PARAM_PREIND, 0);
  const Lp model = [] {
    Lp lp;
    lp.columns = lp.rows = 2;
    lp.obj = {1, 2};
    lp.rhs = {4, 4};
    lp.range = {0, 0};
    lp.senses = "GG";
    lp.lb = {0, 0};
    lp.ub = {9, 9};
    lp.beg = {0, 2};
    lp.cnt = {2, 2};
    lp.ind = {0, 1, 0, 1};
    lp.val = {1, 1, 1, 1};
    return lp;
  }();
  ProbHandle lp = load(model);
  const int basic[] = {1, 1}, logical[] = {0, 0};
  ASSERT_EQ(TVKcopybase(env_, lp, basic, logical), 0);
  ASSERT_EQ(run(lp, 2), 0);
  EXPECT_EQ(objective(lp), 4);
  const Json s = of(lp);
  expect_sums(lp, s);
  EXPECT_EQ(s["simplex"]["factorizations"]["singular_bases"], 1);
  EXPECT_EQ(s["simplex"]["factorizations"]["columns_replaced"], 1);
}

TEST_F(Statistics, SiftingIsCountedApart) {
  ProbHandle lp = load(assignment(20, 1));
  ASSERT_EQ(TVKsiftopt(env_, lp), 0);
  const Json s = of(lp);
  expect_sums(lp, s);
  EXPECT_GT(s["simplex"]["sifting"]["rounds"], 0);
  EXPECT_GT(s["simplex"]["sifting"]["iterations"], 0);
  EXPECT_GT(s["ticks"]["sifting"], 0);
}

/* Many more rows than columns: the dual of what presolve leaves is solved, by the other method. */
TEST_F(Statistics, DualFormIsTold) {
  set(TVK_PARAM_PREDUAL, 1);
  ProbHandle lp = load(assignment(8, 1));
  ASSERT_EQ(run(lp, 2), 0);
  const Json s = of(lp);
  expect_sums(lp, s);
  EXPECT_TRUE(s["presolve"]["dual_form"].get<bool>());
  EXPECT_GT(iterations(s["simplex"]["primal"]), 0);
  EXPECT_GT(s["ticks"]["presolve"], 0);
}

/* With a record of presolve that stays, the optimizer of the reduced problem stays too; its counts begin anew. */
TEST_F(Statistics, BelongToOneOptimizationThroughPresolve) {
  LpMaker maker(23);
  int again = 0;
  for (int k = 0; k < 60; ++k) {
    const Lp model = maker.draw(30);
    ProbHandle lp = load(model);
    if (model.columns > 0 && TVKpresolve(env_, lp, 0) == 0) {
      ASSERT_EQ(run(lp, 2), 0);
      const Json first = of(lp);
      expect_sums(lp, first);
      const int column = maker.below(model.columns);
      const double cost = model.obj[static_cast<std::size_t>(column)] + 1;
      ASSERT_EQ(TVKchgobj(env_, lp, 1, &column, &cost), 0);
      ASSERT_EQ(run(lp, 2), 0);
      const Json second = of(lp);
      expect_sums(lp, second);
      again += second["simplex"]["iterations"] < first["simplex"]["iterations"];
    }
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
    if (HasFailure()) return;
  }
  EXPECT_GT(again, 10);
}

TEST_F(Statistics, ErrorsAreThoseOfTexts) {
  ProbHandle lp = load(assignment(3, 1));
  int surplus = 7;
  char one[2] = "x";
  EXPECT_EQ(TVKgetstatistics(env_, lp, nullptr, 0, &surplus), 1217);
  EXPECT_EQ(surplus, 0);
  ASSERT_EQ(run(lp, 0), 0);
  EXPECT_EQ(TVKgetstatistics(env_, lp, nullptr, 10, &surplus), 1004);
  EXPECT_EQ(TVKgetstatistics(env_, lp, one, 1, nullptr), 1004);
  EXPECT_EQ(TVKgetstatistics(env_, lp, one, 1, &surplus), 1207);
  EXPECT_LT(surplus, -100);
  EXPECT_EQ(TVKgetstatistics(nullptr, lp, one, 1, &surplus), 1002);
  EXPECT_EQ(TVKgetstatistics(env_, nullptr, one, 1, &surplus), 1009);
}

}  // namespace
