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
};

TEST_F(PresolveOnOff, AnswersAgreeAndAreProven) {
  int of_status[3] = {0, 0, 0}, failures = 0;
  for (unsigned seed = 1; seed <= kModels && failures < 10; ++seed) {
    support::StructuredLps lps(seed);
    const support::DenseLp dense = lps.make(false);
    const support::Lp lp = to_public(lps.chance(0.5) ? lps.disguised(dense) : dense, lps.chance(0.3));
    draw_settings(lps);
    std::string complaints[2];
    const bool primal = lps.chance(0.5);
    const support::Outcome without = solve(lp, false, !primal, complaints[0]);
    const support::Outcome with = solve(lp, true, primal, complaints[1]);
    if (with.status >= 1 && with.status <= 3) ++of_status[with.status - 1];
    if (with.status != without.status) complaints[1] += "another verdict than without presolve\n";
    if (with.status == TVK_STATUS_OPTIMAL &&
        std::fabs(with.objective - without.objective) > 1e-6 * (1 + std::fabs(without.objective)))
      complaints[1] += "another objective\n";
    if (complaints[0].empty() && complaints[1].empty()) continue;
    ++failures;
    ADD_FAILURE() << "seed " << seed << ", without presolve: " << without.status << ' ' << without.objective
                  << '\n'
                  << complaints[0] << "with presolve, " << (primal ? "primal: " : "dual: ") << with.status
                  << ' ' << with.objective << '\n'
                  << complaints[1] << support::describe(lp);
  }
  for (const int count : of_status) EXPECT_GT(count, static_cast<int>(kModels) / 50);
}

}  // namespace
