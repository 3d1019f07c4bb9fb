/* What all workers of a search share and none of them writes: it changes between their steps only. */
#pragma once

#include <cmath>
#include <vector>

#include "mip/pool/cliques.h"
#include "mip/pool/pseudo_costs.h"
#include "mip/pool/variable_bounds.h"
#include "mip/worker/settings.h"

namespace tovik::mip {

/* How many rows a column's move down or up can violate; objects count on both sides. */
struct Locks {
  int down = 0, up = 0;
};

struct Global {
  Global(const Problem& the_problem, const Settings& the_settings);

  const Problem& problem;
  Settings settings;
  std::vector<char>
      is_discrete;  // columns whose bounds the relaxation must follow: integer ones, and those of objects
  std::vector<int> integer_columns;  // ascending
  std::vector<Locks> locks;
  std::vector<char>
      row_is_integral;  // integer columns with whole coefficients only, and whole sides: so is its slack
  CliqueTable cliques;
  VariableBounds variable_bounds;
  double objective_step = 0;  // every objective value is a multiple of it, the offset apart; 0: unknown
  PseudoCosts pseudo_costs;
  std::vector<double> incumbent;  // empty: none, or none that this problem's space has
  // Those before it, the latest first, as far as this problem's space has them.
  std::vector<std::vector<double>> earlier_incumbents;
  double incumbent_value = kInf;
  double cutoff = kInf;  // only solutions below are of interest

  bool has_incumbent() const { return incumbent_value < kInf; }
  bool has_incumbent_point() const { return !incumbent.empty(); }
};

}  // namespace tovik::mip
