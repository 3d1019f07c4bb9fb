/* What presolve may do, and what it counts. Each rule can be switched off alone, and a run can be stopped
 * after the k-th reduction, so that a wrong answer is found by bisection. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tovik::lp::presolve {

/* One entry per rule; the number is the bit in Settings::rules. */
enum class Rule {
  empty_row,
  redundant_row,
  singleton_row,
  forcing_row,
  empty_column,
  fixed_column,
  dual_fixing,
  dominated_column,
  doubleton_equation,
  free_column,
  slack_column,
  parallel_rows,
  parallel_columns,
  zero_cost_column,
  sparsify,
  dependent_rows,
  dual_equation,
  count
};
inline constexpr int kRules = static_cast<int>(Rule::count);
constexpr std::uint32_t rule_bit(Rule rule) {
  return std::uint32_t{1} << static_cast<int>(rule);
}
inline constexpr std::uint32_t kAllRules = (std::uint32_t{1} << kRules) - 1;
/* Sparsify is left out: after an optimal basis with basic logicals of the equations that were used, the way
 * back ends at a basis that needs pivots. */
inline constexpr std::uint32_t kDefaultRules = kAllRules & ~rule_bit(Rule::sparsify);

/* The others keep every feasible point. Empty rows and fixed columns go whatever is allowed, and the
 * aggregator has a switch of its own. */
inline constexpr std::uint32_t kDualRules =
    rule_bit(Rule::empty_column) | rule_bit(Rule::dual_fixing) | rule_bit(Rule::dominated_column) |
    rule_bit(Rule::parallel_columns) | rule_bit(Rule::zero_cost_column) | rule_bit(Rule::dual_equation);
inline constexpr std::uint32_t kPrimalRules =
    kAllRules & ~(kDualRules | rule_bit(Rule::empty_row) | rule_bit(Rule::fixed_column) |
                  rule_bit(Rule::doubleton_equation) | rule_bit(Rule::free_column));

struct Settings {
  int passes = -1;           // rounds of the outer loop: -1 automatic, 0 none
  bool primal = true;        // reductions that keep every feasible point
  bool dual = true;          // reductions that keep an optimal point only
  bool linear_only = false;  // every original column stays a linear function of the reduced ones
  int aggregator = -1;       // substitution rounds: -1 automatic, 0 none
  int fill = 10;             // entries that one substitution may add
  int dependency = -1;       // -1 automatic, 0 off, 1 begin, 2 end, 3 both
  double feasibility = 1e-6;
  double optimality = 1e-6;
  std::uint32_t rules = kDefaultRules;
  std::int64_t limit = INT64_MAX;  // reductions to make
  std::uint32_t allowed() const { return rules & ~((primal ? 0 : kPrimalRules) | (dual ? 0 : kDualRules)); }
};

struct Counts {
  int rows_eliminated = 0, columns_eliminated = 0;  // without the aggregator's
  int coefficients_modified = 0;
  int substitutions = 0;  // of the aggregator: a row and a column each
  int bounds_improved = 0;
  int aggregator_rounds = 0;
  std::array<std::int64_t, kRules> hits{};
};

}  // namespace tovik::lp::presolve
