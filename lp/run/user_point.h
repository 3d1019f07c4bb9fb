/* A primal-dual point that did not come from an engine, completed and judged on the data that it is meant
 * for.
 */
#pragma once

#include "lp/base/answer.h"
#include "lp/base/lp_data.h"
#include "lp/simplex/types.h"

namespace tovik::lp::run {

/* x, y and statuses of the point, with the nonbasic columns put exactly on their bounds and activities, reduced costs, objective
 * and violations computed anew with compensated sums. */
Answer complete_point(const LpData& lp, Answer point);

/* That of the slack basis: rows basic, columns at a bound, multipliers 0. */
Answer slack_point(const LpData& lp);

/* Whether the answer is an optimal basic solution within the tolerances: as many basics as rows, nonbasics
 * where their statuses say, bounds and signs kept. Does not look at the basis matrix. */
bool is_final(const LpData& lp, const Answer& answer, const simplex::Options& options);

}  // namespace tovik::lp::run
