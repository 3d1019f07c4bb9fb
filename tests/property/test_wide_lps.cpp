/* Random LPs of widely spread numbers: each ends with an answer that carries its proof, by every method, with and
 * without presolve. TOVIK_MODELS asks for more of them. */
#include <cstdlib>

#include "support/environment_fixture.h"
#include "support/wide_lp.h"

namespace {

unsigned number_of_models() {
  if (const char* wish = std::getenv("TOVIK_MODELS"); wish != nullptr)
    return static_cast<unsigned>(std::atoi(wish));
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return 300;
#else
  return 3000;
#endif
}

class WideLps : public support::WithEnvironment {
 protected:
  support::Outcome solve(const support::Lp& lp, bool primal, bool presolve, std::string& faults) {
    int code = 0;
    ProbHandle prob = TVKcreateprob(env_, &code, "wide");
    EXPECT_EQ(lp.copy(env_, prob), 0);
    EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
    code = primal ? TVKprimopt(env_, prob) : TVKdualopt(env_, prob);
    const support::Outcome outcome = support::outcome_of(env_, prob, lp, code);
    const std::string wrong = support::check_wide_answer(env_, prob, lp, outcome);
    if (!wrong.empty())
      faults += std::string(primal ? "primal" : "dual") + (presolve ? ", presolve:\n" : ":\n") + wrong;
    EXPECT_EQ(TVKfreeprob(env_, &prob), 0);
    return outcome;
  }
};

TEST_F(WideLps, EndWithAnAnswerThatIsProven) {
  int of_status[4] = {0, 0, 0, 0}, failures = 0;
  for (unsigned seed = 1; seed <= number_of_models() && failures < 10; ++seed) {
    support::WideLpMaker maker(seed);
    bool feasible = false;
    const support::Lp lp = maker.draw(seed % 20 == 0 ? 40 : seed % 5 == 0 ? 20 : 8, feasible);
    std::string faults;
    for (const bool primal : {false, true}) {
      for (const bool presolve : {false, true}) {
        const support::Outcome outcome = solve(lp, primal, presolve, faults);
        if (outcome.status >= 1 && outcome.status <= 3) ++of_status[outcome.status];
      }
    }
    if (faults.empty()) continue;
    ++failures;
    ADD_FAILURE() << "seed " << seed << '\n' << faults << support::describe(lp);
  }
  for (const int status : {1, 2, 3}) EXPECT_GT(of_status[status], static_cast<int>(number_of_models()) / 10);
}

}  // namespace
