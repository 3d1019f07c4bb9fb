/* What presolve of a mixed-integer problem may do. Each rule can be switched off alone, so that a wrong answer is found
 * by bisection. */
#pragma once

#include <array>
#include <cstdint>

namespace tovik::mip {

enum class PresolveRule : unsigned char {
  propagation,    // bounds of integer columns from all rows and objects
  objects,        // objects that the bounds decide
  rows,           // empty, redundant, singleton and forcing rows
  fixed_columns,  // columns whose bounds meet
  dual_fixing,    // columns that no row keeps from their better bound
  divisors,  // integer rows: whole coefficients without a common divisor, sides rounded to what can be reached
  coefficients,      // of integer columns in rows that hold without them
  implied_integers,  // continuous columns that are whole where the others are
  parallel_rows,
  parallel_columns,  // merged, or the dearer one fixed
  doubletons,        // equations of two columns
  slack_columns,     // columns of one row that become its sides
  free_columns,      // columns that rows leave free, by an equation
  probing,
  dominated_columns,  // those that others make up for at no higher cost
  dominated_rows,     // those that one other row implies, and what pairs of rows say of columns
  cliques,            // packing rows within larger cliques, columns that an equation excludes
  tight_rows,         // that some optimal point meets: equations, by which an integer column leaves
};
inline constexpr std::size_t kPresolveRules = 18;

constexpr std::uint32_t rule_bit(PresolveRule rule) {
  return 1U << static_cast<unsigned>(rule);
}
inline constexpr std::uint32_t kAllPresolveRules = (1U << kPresolveRules) - 1;
/* Those that keep an optimal point only, not every feasible one. */
inline constexpr std::uint32_t kDualPresolveRules =
    rule_bit(PresolveRule::dual_fixing) | rule_bit(PresolveRule::parallel_columns) |
    rule_bit(PresolveRule::implied_integers) | rule_bit(PresolveRule::dominated_columns) |
    rule_bit(PresolveRule::tight_rows);

struct PresolveSettings {
  bool on = true;
  int passes = -1;       // rounds of all rules: -1 automatic, 0 none
  int aggregator = -1;   // rounds of substitutions: -1 automatic, 0 none
  int fill = 10;         // entries that one substitution may add
  int coefficients = 2;  // rows that are tightened: 0 none, 1 of integer columns only, 2 all
  int probing = 0;       // -1 none, 0 automatic, 1-3 ever more
  double probing_seconds = 1e75;
  int restarts = -1;         // presolve again after the root: -1 automatic, 0 no, larger: more readily
  bool primal = true;        // rules that keep every feasible point
  bool dual = true;          // rules that keep an optimal point
  bool linear_only = false;  // every column stays a linear function of the reduced ones
  std::uint32_t rules = kAllPresolveRules;

  /* Every feasible point stays, and every column is a linear function of those that are left. */
  void keep_all_points() {
    dual = false;
    linear_only = true;
  }
  bool allows(PresolveRule rule) const {
    const std::uint32_t bit = rule_bit(rule);
    if ((rules & bit) == 0) return false;
    return (kDualPresolveRules & bit) != 0 ? dual : primal;
  }
};

struct PresolveCounts {
  int rows_eliminated = 0, columns_eliminated = 0;  // without substitutions
  int substitutions = 0;                            // a row and a column each
  int aggregator_rounds = 0;
  int coefficients_modified = 0, bounds_improved = 0, sides_improved = 0;
  int rounds = 0;
  std::int64_t work = 0;  // entries touched
};

}  // namespace tovik::mip
