/* Structured LPs through the public routines, with and without presolve: each answer carries its proof,
 * verdicts and objectives agree, and a basis that presolve brought back needs no iteration. */
#include "support/environment_fixture.h"
#include "support/random_lp.h"
#include "support/structured_lps.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kModels = 200;
#else
constexpr unsigned kModels = 2000;
#endif

support::Lp to_public(const support::DenseLp& dense, bool maximize) {
  support::Lp lp;
  lp.columns = dense.columns();
  lp.rows = dense.rows();
  lp.sense = maximize ? TVK_MAX : TVK_MIN;
  const auto limited = [](double v) { return std::clamp(v, -TVK_INFBOUND, TVK_INFBOUND); };
  for (int j = 0; j < lp.columns; ++j) {
    lp.obj.push_back(lp.sense * dense.cost[j]);
    lp.lb.push_back(limited(dense.lower[j]));
    lp.ub.push_back(limited(dense.upper[j]));
    lp.beg.push_back(static_cast<int>(lp.ind.size()));
    for (int i = 0; i < lp.rows; ++i) {
      if (dense.a[i][j] == 0) continue;
      lp.ind.push_back(i);
      lp.val.push_back(dense.a[i][j]);
    }
    lp.cnt.push_back(static_cast<int>(lp.ind.size()) - lp.beg.back());
  }
  for (int i = 0; i < lp.rows; ++i) {
    const double low = dense.row_lower[i], high = dense.row_upper[i];
    const bool below = std::isfinite(low), above = std::isfinite(high);
    lp.senses += low == high ? 'E' : below && above ? 'R' : above ? 'L' : 'G';
    lp.rhs.push_back(below ? low : above ? high : -1e3);
    lp.range.push_back(below && above ? high - low : 0);
  }
  return lp;
}

class PresolveOnOff : public support::WithEnvironment {
 protected:
  support::Outcome solve(const support::Lp& lp, bool presolve, bool primal, std::string& wrong) {
    int code = 0;
    EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
    ProbHandle prob = TVKcreateprob(env_, &code, "structured");
    EXPECT_EQ(lp.copy(env_, prob), 0);
    code = primal ? TVKprimopt(env_, prob) : TVKdualopt(env_, prob);
    const support::Outcome outcome = support::outcome_of(env_, prob, lp, code);
    wrong = support::check_answer(env_, prob, lp, outcome);
    if (presolve && outcome.status == TVK_STATUS_OPTIMAL) {
      EXPECT_EQ(TVKprimopt(env_, prob), 0);
      if (TVKgetitcnt(env_, prob) != 0) wrong += "the basis needs iterations\n";
    }
    EXPECT_EQ(TVKfreeprob(env_, &prob), 0);
    return outcome;
  }
  void draw_settings(support::StructuredLps& lps) {
    ASSERT_EQ(TVKsetdefaults(env_), 0);
    const auto set = [&](int number, int value) {
      EXPECT_EQ(lps.chance(0.2) ? TVKsetintparam(env_, number, value) : 0, 0);
    };
    set(TVK_PARAM_REDUCE, lps.pick(0, 3));
    set(TVK_PARAM_PREPASS, lps.pick(0, 3));
    set(TVK_PARAM_PRELINEAR, lps.pick(0, 1));
    set(TVK_PARAM_AGGIND, lps.pick(0, 3));
    set(TVK_PARAM_AGGFILL, lps.pick(0, 20));
    set(TVK_PARAM_DEPIND, lps.pick(0, 3));
    set(TVK_PARAM_PREDUAL, lps.pick(-1, 1));
  }
  /* In the problem and in the model: mostly of rows and columns that presolve kept. */
  void change(ProbHandle prob, support::Lp& lp, support::StructuredLps& lps) {
    std::vector<int> column_fate(lp.obj.size()), row_fate(lp.rhs.size());
    const bool known =
        TVKgetprestat(env_, prob, nullptr, column_fate.data(), row_fate.data(), nullptr, nullptr) == 0;
    errors();
    const auto choose = [&](const std::vector<int>& fate) {
      int k = 0;
      for (int tries = 0; tries < 20; ++tries) {
        k = lps.pick(0, static_cast<int>(fate.size()) - 1);
        if (!known || fate[k] >= 0) break;
      }
      return k;
    };
    const int i = choose(row_fate), j = choose(column_fate);
    switch (lps.pick(0, 3)) {
      case 0:
        lp.obj[j] += lps.pick(-3, 3);
        EXPECT_EQ(TVKchgobj(env_, prob, 1, &j, &lp.obj[j]), 0);
        break;
      case 1: {
        const bool upper = lps.chance(0.5);
        double& bound = upper ? lp.ub[j] : lp.lb[j];
        bound = std::isinf(upper ? lp.high(j) : lp.low(j)) ? (upper ? 1 : -1) * lps.pick(0, 9)
                                                           : bound + lps.pick(-1, 2) * (upper ? -0.5 : 0.5);
        EXPECT_EQ(TVKchgbds(env_, prob, 1, &j, upper ? "U" : "L", &bound), 0);
        break;
      }
      case 2:
        lp.rhs[i] += lps.pick(-2, 2);
        EXPECT_EQ(TVKchgrhs(env_, prob, 1, &i, &lp.rhs[i]), 0);
        break;
      default: {
        const int begin = 0, columns[] = {j, (j + 1) % lp.columns};
        const double values[] = {1.0, static_cast<double>(lps.pick(1, 3))}, rhs = lps.pick(0, 20);
        const int count = known && column_fate[columns[1]] >= 0 ? 2 : 1;
        EXPECT_EQ(TVKaddrows(env_, prob, 0, 1, count, &rhs, "L", &begin, columns, values, nullptr, nullptr),
                  0);
        lp = support::read_back(env_, prob);
        break;
      }
    }
  }
};

TEST_F(PresolveOnOff, AnswersAgreeAndAreProven) {
  int of_status[3] = {0, 0, 0}, failures = 0;
  for (unsigned seed = 1; seed <= kModels && failures < 10; ++seed) {
    support::StructuredLps lps(seed);
    const support::DenseLp dense = lps.make(false);
    const support::Lp lp = to_public(lps.chance(0.5) ? lps.disguised(dense) : dense, lps.chance(0.3));
    draw_settings(lps);
    std::string faults[2];
    const bool primal = lps.chance(0.5);
    const support::Outcome without = solve(lp, false, !primal, faults[0]);
    const support::Outcome with = solve(lp, true, primal, faults[1]);
    if (with.status >= 1 && with.status <= 3) ++of_status[with.status - 1];
    if (with.status != without.status) faults[1] += "another verdict than without presolve\n";
    if (with.status == TVK_STATUS_OPTIMAL &&
        std::fabs(with.objective - without.objective) > 1e-6 * (1 + std::fabs(without.objective)))
      faults[1] += "another objective\n";
    if (faults[0].empty() && faults[1].empty()) continue;
    ++failures;
    ADD_FAILURE() << "seed " << seed << ", without presolve: " << without.status << ' ' << without.objective
                  << '\n'
                  << faults[0] << "with presolve, " << (primal ? "primal: " : "dual: ") << with.status << ' '
                  << with.objective << '\n'
                  << faults[1] << support::describe(lp);
  }
  for (const int count : of_status) EXPECT_GT(count, static_cast<int>(kModels) / 50);
}

/* What TVKpresolve left serves after changes that it can follow, and must be forgotten after the others. */
TEST_F(PresolveOnOff, ChangesAfterPresolveAreFollowedOrForgotten) {
  int followed = 0, failures = 0;
  for (unsigned seed = 1; seed <= kModels && failures < 10; ++seed) {
    support::StructuredLps lps(seed);
    support::Lp lp = to_public(lps.make(false), lps.chance(0.3));
    draw_settings(lps);
    ASSERT_EQ(lps.chance(0.5) ? TVKsetintparam(env_, TVK_PARAM_REDUCE, 1) : 0, 0);
    int code = 0;
    ProbHandle prob = TVKcreateprob(env_, &code, "changing");
    ASSERT_EQ(lp.copy(env_, prob), 0);
    std::string faults;
    if (TVKpresolve(env_, prob, 0) == 0) {
      for (int k = lps.pick(1, 3); k > 0; --k) change(prob, lp, lps);
      int fate = 0;
      ASSERT_EQ(TVKgetprestat(env_, prob, &fate, nullptr, nullptr, nullptr, nullptr), 0);
      followed += fate != 0;
      code = lps.chance(0.5) ? TVKprimopt(env_, prob) : TVKdualopt(env_, prob);
      const support::Outcome with = support::outcome_of(env_, prob, lp, code);
      faults = support::check_answer(env_, prob, lp, with);
      std::string plain;
      const support::Outcome without = solve(lp, false, false, plain);
      if (with.status != without.status) faults += "another verdict than without presolve\n";
    }
    errors();
    ASSERT_EQ(TVKfreeprob(env_, &prob), 0);
    failures += !faults.empty();
    EXPECT_EQ(faults, "") << "seed " << seed << '\n' << support::describe(lp);
  }
  EXPECT_GT(followed, static_cast<int>(kModels) / 20);
}

}  // namespace
