/* Strong branching at the root: probes of a limited number of pivots, and the solves with the basis to which
 * they are compared. */
#pragma once

#include <array>
#include <string>
#include <vector>

#include "bench/nodes/engine.h"

namespace bench {

inline constexpr std::array<std::int64_t, 3> kProbeLimits{1, 10, 50};

/* Probes of all points, both directions, with one limit. */
struct Probes {
  Branches branches;
  double us = 0;
  std::int64_t count() const { return static_cast<std::int64_t>(branches.down.size() + branches.up.size()); }
};

/* One entry a limit; the fastest of several runs. Every run starts at the root optimum of a new engine. */
std::vector<Probes> probe_all(const Contestant& contestant, const Model& model,
                              std::span<const BranchPoint> points);

/* A branch solved to the end: infinite where infeasible, NaN where there is no answer. */
struct BranchOptimum {
  double objective = 0;
  std::int64_t pivots = 0;
};
struct BranchOptima {
  std::vector<BranchOptimum> down, up;
  std::int64_t pivots_within(std::int64_t limit) const;  // summed, each cut off at the limit
};
BranchOptima solve_branches(const Contestant& contestant, const Model& model,
                            std::span<const BranchPoint> points);

/* Probes that claim more than the branch has: one text each. */
std::vector<std::string> wrong_bounds(std::span<const Probes> probes, const BranchOptima& optima,
                                      std::span<const BranchPoint> points);

/* Mean microseconds of one solve with the factor of the basis. */
struct BasisSolves {
  double ftran_us = 0;  // of nonbasic columns
  double btran_us = 0;  // of unit vectors
};
BasisSolves time_basis_solves(const Model& model, std::vector<int> basic_variables);

}  // namespace bench
