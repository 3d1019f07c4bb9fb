/* Scripts as a branch and bound would make them, decided by the values of our own engine at each step.
 * All choices are deterministic. A recording stops where its time is up; what was recorded till then is
 * played in full. */
#pragma once

#include "bench/nodes/script.h"

namespace bench {

/* The most fractional integer column (least index on ties) is fixed at the nearest integer, until nothing is
 * fractional, a re-solve ends without an optimum, or 200 steps are made. */
Script record_dive(const Contestant& contestant, const Model& model, double seconds);

/* At the root optimum one bound of an integer column moves past its value, in every other step back:
 * up to 100 fractional columns, other ones where there are fewer. */
Script record_single_changes(const Contestant& contestant, const Model& model);

/* Ten rounds: cuts are added and, after the re-solve, those with slack in the optima of all contestants
 * go. */
Script record_cut_rounds(const std::vector<Contestant>& contestants, const Model& model, double seconds);

/* Up to 50 fractional columns of the root optimum with their values. */
std::vector<BranchPoint> branch_points(const Model& model, std::span<const double> x);

}  // namespace bench
