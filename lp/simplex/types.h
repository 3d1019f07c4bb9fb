/* Options and counters of the simplex engine. Tolerances live in the scaled space of the engine
 * unless said otherwise. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/basis_status.h"
#include "lp/base/outcome.h"

namespace tovik::lp::simplex {

enum class Sifting { never, when_it_pays, always };  // as a start where there is no basis

enum class Pricing { automatic, devex, steepest_edge, steepest_edge_unit, dantzig };

inline constexpr double kInnerShare = 0.1;  // the engine works to a tenth of the user's tolerances

struct Options {
  double primal_tolerance = 1e-6;  // on bounds of rows and columns, user's space
  double dual_tolerance = 1e-6;    // on reduced costs, user's space
  double markowitz = 0.01;         // least threshold of the factor
  int refactor_limit = 0;          // updates between factorizations; 0 = by work
  int singular_limit = 10;
  std::int64_t iteration_limit = 2100000000;
  /* Of the minimization form: the primal stops when the objective falls below, the dual when its own rises
   * above. */
  double objective_lower = -1e75;
  double objective_upper = 1e75;
  Pricing dual_pricing = Pricing::automatic;
  Pricing primal_pricing = Pricing::automatic;
  int price_candidates = 0;     // partial pricing block; 0 = automatic
  bool perturb_always = false;  // from the first iteration
  int perturb_after = 0;        // degenerate iterations before perturbing; 0 = automatic
  double perturb_magnitude = 1e-6;
  Sifting sifting = Sifting::never;
  int scaling = 0;  // -1 none, 0 geometric with equilibration, 1 more passes
  std::uint64_t seed = 1;
};

struct Counters {
  std::int64_t iterations = 0;
  std::int64_t phase1_iterations = 0;
  std::int64_t factorizations = 0;
  std::int64_t shifts = 0;
  std::int64_t rows_scanned = 0;  // by the choice of the leaving row
};

}  // namespace tovik::lp::simplex
