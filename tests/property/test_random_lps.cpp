/* Small random LPs: dual and primal simplex tell the same, and each answer carries its proof. */
#include "support/environment_fixture.h"
#include "support/random_lp.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kModels = 2000;
#else
constexpr unsigned kModels = 20000;
#endif

class RandomLps : public support::WithEnvironment {
 protected:
  /* Half of the models meet other settings than the default. */
  void draw_settings(support::LpMaker& maker) {
    ASSERT_EQ(TVKsetdefaults(env_), 0);
    if (maker.chance(50)) return;
    const auto set = [&](int number, int value) { ASSERT_EQ(TVKsetintparam(env_, number, value), 0); };
    set(TVK_PARAM_SCAIND, maker.below(3) - 1);
    set(TVK_PARAM_PERIND, maker.below(2));
    set(TVK_PARAM_REINV, maker.below(3));
    set(TVK_PARAM_DPRIIND, maker.below(6));
    set(TVK_PARAM_PPRIIND, maker.below(6) - 1);
  }
};

/* With bad scaling the tolerances may let a model pass for feasible that is not: the proofs decide then. Both
 * unbounded and infeasible are right for a model that is neither primal nor dual feasible. */
bool compatible(const support::Lp& lp, const support::Outcome& a, const support::Outcome& b) {
  if (lp.badly_scaled && a.status != b.status) return true;
  if (a.status != b.status) return false;
  double size = 1;
  for (int j = 0; j < lp.columns; ++j) size += std::fabs(lp.obj[j] * a.x[j]) + std::fabs(lp.obj[j] * b.x[j]);
  for (int i = 0; i < lp.rows; ++i) size += std::fabs(a.pi[i]) + std::fabs(b.pi[i]);
  for (int j = 0; j < lp.columns; ++j) size += std::fabs(a.x[j]) + std::fabs(b.x[j]) + std::fabs(a.dj[j]);
  return a.status != TVK_STATUS_OPTIMAL || std::fabs(a.objective - b.objective) <= 5e-6 * size;
}

TEST_F(RandomLps, AnswersAreProvenAndAgree) {
  int of_status[3] = {0, 0, 0}, failures = 0;
  for (unsigned seed = 1; seed <= kModels && failures < 10; ++seed) {
    support::LpMaker maker(seed);
    draw_settings(maker);
    const support::Lp lp = maker.draw(seed % 10 == 0 ? 16 : 6);
    if (lp.badly_scaled) {  // scaling is what copes with these
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SCAIND, maker.below(2)), 0);
    }
    support::Outcome outcomes[2];
    std::string faults;
    for (const bool primal : {false, true}) {
      int code = 0;
      ProbHandle prob = TVKcreateprob(env_, &code, "random");
      ASSERT_EQ(lp.copy(env_, prob), 0) << "seed " << seed;
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, primal == (seed % 2 == 0)), 0);
      code = primal ? TVKprimopt(env_, prob) : TVKdualopt(env_, prob);
      outcomes[primal] = support::outcome_of(env_, prob, lp, code);
      const std::string wrong = support::check_answer(env_, prob, lp, outcomes[primal]);
      if (!wrong.empty()) faults += (primal ? "primal:\n" : "dual:\n") + wrong;
      ASSERT_EQ(TVKfreeprob(env_, &prob), 0);
    }
    const auto& [dual, primal] = outcomes;
    if (!compatible(lp, dual, primal)) faults += "dual and primal differ\n";
    if (dual.status >= 1 && dual.status <= 3) ++of_status[dual.status - 1];
    if (faults.empty()) continue;
    ++failures;
    ADD_FAILURE() << "seed " << seed << " dual " << dual.status << ' ' << dual.objective << " primal "
                  << primal.status << ' ' << primal.objective << '\n'
                  << faults << support::describe(lp);
  }
  for (const int count : of_status) EXPECT_GT(count, static_cast<int>(kModels) / 50);
}

}  // namespace
