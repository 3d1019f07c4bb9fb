/* `tovik verify MODEL SOLUTION`: what a solution file claims, recomputed from the two files alone.
 *
 * Each measure is the largest and the summed violation of one kind of condition, with the worst item by name.
 * Violations are absolute, in the model's units, from compensated sums; they hold up to the tolerance plus
 * what the fifteen digits of a file cannot tell (kDigits of the magnitudes that were added up). A number that
 * is not finite never holds.
 *
 * - Errors: LibraryError, bad_alloc. */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/library.h"
#include "cli/sum.h"

namespace tovik::cli {

inline constexpr double kDigits = 5e-15;  // relative error of a number that was written with fifteen digits

/* One solution of a file, as TVKreadsolution hands it over. */
struct Claim {
  int solutions = 0;  // in the file
  int unknown = 0;    // names and indices that the model does not have
  int status = 0;     // solution status, 0: none
  std::optional<double> objective;
  std::vector<double> x, pi, slack, dj;  // those but x empty unless complete
  std::vector<int> column_status, row_status;
};
/* `which` counts from 0. With `zeros` columns without a value are 0. */
Claim read_claim(const Model& model, const std::string& file, int which, bool zeros);
/* Columns that the file gives no value. */
std::vector<int> columns_without_value(const Claim& claim);

struct Tolerances {
  double feasibility, integrality, optimality;
};

struct Measure {
  std::string key;    // of the JSON object
  std::string label;  // of the text
  double tolerance = 0;
  double largest = 0;
  std::string worst;  // name of the item; empty when nothing is violated
  Sum sum;
  long items = 0;      // looked at
  long violated = 0;   // beyond what is allowed
  bool counts = true;  // decides whether the solution holds

  /* `slack` is allowed on top of the tolerance. */
  template <class NameOf>
  void update(double violation, double slack, NameOf name_of) {
    ++items;
    sum.add(violation);
    if (!(violation <= tolerance + slack) || !std::isfinite(slack)) ++violated;
    if (violation <= largest || std::isnan(largest)) return;
    largest = violation;
    worst = name_of();
  }
  bool holds() const { return violated == 0; }
};

struct Verdict {
  double objective = 0;              // recomputed
  std::vector<Measure> measures;     // those that the model and the file have something for
  std::optional<double> dual_bound;  // that the duals prove, up to the dual infeasibility
  bool optimal = false;              // and the solution reaches it
  bool holds = true;
};
Verdict verify(const Model& model, const Claim& claim, const Tolerances& tolerances);

}  // namespace tovik::cli
