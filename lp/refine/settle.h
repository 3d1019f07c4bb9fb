/* What is true of an LP whose engine could not tell: the last resort behind every claim.
 *
 * 1. From the engine's point and basis, LP iterative refinement (optimum.h).
 * 2. Where that finds no optimum: the elastic form. It ends with a proof that no point is feasible, or with a feasible
 *    point (within the tolerance: the sides that it misses give way by as much).
 * 3. The recession form. It ends with a ray, or with multipliers that are feasible for the dual.
 * 4. From that point and those multipliers, between which an optimum must lie: refinement again.
 * 5. Where double precision fails in all of these, or a proof carries noise that more digits would show to be none or to
 *    be the whole proof, and the LP is small: a simplex in quadruple precision, then in octuple.
 * 6. Where a proof of infeasibility leaves room for points within the tolerance: all this for the LP that has them.
 *
 * Every claim is verified on the LP's own data with twice the digits. Cost: a few solves of LPs of that size, up to
 * twice the columns and two more a row; for engines that failed, so that others pay nothing. */
#pragma once

#include <cstdint>

#include "lp/base/answer.h"
#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/simplex/types.h"

namespace tovik::lp::refine {

struct Settled {
  Outcome outcome = Outcome::numerical_failure;
  std::int64_t iterations = 0;
};

/* lp: minimization form, user's space; bounds that cross by no more than the tolerance are taken for one. options:
 * tolerances and the iterations that are left. answer: the engine's. Where the outcome is optimal, infeasible or
 * unbounded it becomes the settled one, with values rounded to doubles from ones that keep the tolerances; else it
 * stays as it is but for its outcome, which is a limit's or numerical_failure. */
Settled settle(const LpData& lp, const simplex::Options& options, Control& control, Answer& answer);

/* An optimum that keeps the tolerances, refined from its basis until it is as good as exact: in ill-conditioned LPs a
 * violation of a share of the tolerance can be worth any amount. Where the outcome is not optimal neither it nor the
 * answer says anything of the LP. */
Settled sharpen(const LpData& lp, const simplex::Options& options, Control& control, Answer& answer);

/* Multipliers for an LP that is known to be infeasible, which leave no noise in columns without a bound. Where the
 * outcome is not infeasible the answer stays as it is. */
Settled prove_infeasible(const LpData& lp, const simplex::Options& options, Control& control, Answer& answer);

}  // namespace tovik::lp::refine
