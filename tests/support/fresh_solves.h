/* Judging a solve that went on from an earlier one: by the proof that its answer carries, by a fresh solve of
 * the same model, and by the basis that it left, which must be final at once. */
#pragma once

#include <string>
#include <vector>

#include "support/environment_fixture.h"
#include "support/random_lp.h"

namespace support {

class WithFreshSolves : public WithEnvironment {
 protected:
  int optimize(ProbHandle lp, int method) {
    if (method == 0) return TVKlpopt(env_, lp);
    return method == 1 ? TVKprimopt(env_, lp) : TVKdualopt(env_, lp);
  }

  /* The model of `lp` in a problem of its own, with the basis of `lp` where it holds one. */
  Outcome resolve(const Lp& model, ProbHandle lp, int method, bool with_basis) {
    int code = 0;
    ProbHandle fresh = TVKcreateprob(env_, &code, "fresh");
    EXPECT_EQ(model.copy(env_, fresh), 0);
    if (with_basis) {
      std::vector<int> columns(model.obj.size() + 1), rows(model.rhs.size() + 1);
      EXPECT_EQ(TVKgetbase(env_, lp, columns.data(), rows.data()), 0);
      EXPECT_EQ(TVKcopybase(env_, fresh, columns.data(), rows.data()), 0);
    }
    code = optimize(fresh, method);
    const Outcome outcome = outcome_of(env_, fresh, model, code);
    EXPECT_EQ(TVKfreeprob(env_, &fresh), 0);
    return outcome;
  }

  /* What is wrong with the present answer of `lp`. */
  std::string judge(ProbHandle lp, const Outcome& warm, const Lp& model, int method) {
    std::string wrong = check_answer(env_, lp, model, warm);
    const Outcome cold = resolve(model, lp, 2, false);
    const double size = 1 + std::fabs(warm.objective);
    if (cold.status != warm.status) {
      wrong += "fresh solve has status " + std::to_string(cold.status) + '\n';
    } else if (cold.status == TVK_STATUS_OPTIMAL &&
               std::fabs(cold.objective - warm.objective) > 1e-5 * size) {
      wrong += "fresh solve has objective " + std::to_string(cold.objective) + '\n';
    }
    if (warm.status != TVK_STATUS_OPTIMAL || model.columns + model.rows == 0) return wrong;
    const Outcome again = resolve(model, lp, method, true);
    if (again.status != warm.status || again.iterations != 0)
      wrong += "the basis is not final: " + std::to_string(again.iterations) + " iterations, status " +
               std::to_string(again.status) + '\n';
    return wrong;
  }
};

}  // namespace support
