/* Options and counters of the simplex engine. Tolerances live in the scaled space of the engine
 * unless said otherwise. */
#pragma once

#include <array>
#include <cstddef>
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

/* Why a basis was factored. */
enum class FactorReason {
  start,     // there was no factor of it
  growth,    // updates have made the factor longer than pays, or their limit is reached
  update,    // the factor refused an update
  pivot,     // the pivot is small, or its values by row and by column differ
  check,     // a claim or the values are to be looked at with a fresh factor
  accuracy,  // once more, with larger pivots: the fresh factor was inaccurate
  count
};
inline constexpr std::size_t kFactorReasons = static_cast<std::size_t>(FactorReason::count);

/* Of one algorithm. */
struct AlgorithmCounters {
  std::int64_t phase1 = 0, phase2 = 0;  // iterations
  std::int64_t bound_flips = 0;         // dual: within iterations; primal: iterations that change no basis
  std::int64_t perturbations = 0;       // dual: of costs; primal: of bounds
  std::int64_t restores = 0;            // times that perturbations and shifts were taken back
  std::int64_t weight_resets = 0;       // pricing weights begun anew
};

/* Of one optimization; of a search since begin_count(). */
struct Counters {
  std::int64_t iterations = 0;  // of all algorithms, those on sifting's working problems too
  AlgorithmCounters dual, primal;
  std::int64_t sifting_rounds = 0, sifting_iterations = 0;
  std::int64_t factorizations = 0;
  std::array<std::int64_t, kFactorReasons> factorizations_by_reason{};  // sums up to the one before
  std::int64_t singular_bases = 0;                                      // found by factorizations
  std::int64_t columns_replaced = 0;                                    // by logicals, in such bases
  std::int64_t shifts = 0;                                              // of single costs and bounds
  std::int64_t rows_scanned = 0;                                        // by the choice of the leaving row
  std::int64_t rows_rejected = 0;  // chosen by a weight that proved far too small

  std::int64_t phase1_iterations() const { return dual.phase1 + primal.phase1; }
};

}  // namespace tovik::lp::simplex
