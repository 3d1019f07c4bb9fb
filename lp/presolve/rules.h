/* The rules of presolve and what holds for each: a table that does not compile when a rule has no line.
 *
 * Changes of the model after presolve. Each line says after which changes the conclusions of its rule still
 * hold: another cost or a tighter bound of a column that was kept, another side of a row that was kept (of
 * the same type) whose side no operation used, rows added over columns that were kept. After any other
 * change, such as added columns and other entries, none holds. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tovik::lp::presolve {

/* The number is the bit in Settings::rules. */
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

/* What the rule's argument rests on; Settings::primal and dual switch rules off by it. */
enum class Argument {
  none,         // nothing is decided: never switched off
  aggregation,  // a column is solved for: the aggregator has a switch of its own
  primal,       // keeps every feasible point
  dual          // keeps an optimal point
};

enum class ModelChange : std::uint8_t { cost = 1, bound = 2, side = 4, row = 8 };

class ChangeSet {
 public:
  template <class... Changes>
  constexpr explicit ChangeSet(Changes... changes) : bits_((0u | ... | static_cast<unsigned>(changes))) {}
  constexpr bool has(ModelChange change) const { return (bits_ & static_cast<unsigned>(change)) != 0; }

 private:
  unsigned bits_;
};

inline constexpr ChangeSet kHoldsAlways(ModelChange::cost, ModelChange::bound, ModelChange::side,
                                        ModelChange::row);
/* Sides of rows that stay went into it, without a record of which. */
inline constexpr ChangeSet kHoldsButForSides(ModelChange::cost, ModelChange::bound, ModelChange::row);
/* It looked at costs, bounds or sides of what stays. */
inline constexpr ChangeSet kHoldsNever;

struct RuleTraits {
  constexpr RuleTraits(Rule own_rule, const char* own_name, Argument own_argument, ChangeSet holds)
      : rule(own_rule), name(own_name), argument(own_argument), holds_after(holds) {}
  Rule rule;
  const char* name;
  Argument argument;
  ChangeSet holds_after;
};

inline constexpr std::array<RuleTraits, kRules> kRuleTable{{
    {Rule::empty_row, "empty_row", Argument::none, kHoldsAlways},
    {Rule::redundant_row, "redundant_row", Argument::primal, kHoldsAlways},
    {Rule::singleton_row, "singleton_row", Argument::primal, kHoldsAlways},
    {Rule::forcing_row, "forcing_row", Argument::primal, kHoldsAlways},
    {Rule::empty_column, "empty_column", Argument::dual, kHoldsAlways},
    {Rule::fixed_column, "fixed_column", Argument::none, kHoldsAlways},
    {Rule::dual_fixing, "dual_fixing", Argument::dual, kHoldsAlways},
    {Rule::dominated_column, "dominated_column", Argument::dual, kHoldsNever},
    {Rule::doubleton_equation, "doubleton_equation", Argument::aggregation, kHoldsAlways},
    {Rule::free_column, "free_column", Argument::aggregation, kHoldsButForSides},
    {Rule::slack_column, "slack_column", Argument::primal, kHoldsAlways},
    {Rule::parallel_rows, "parallel_rows", Argument::primal, kHoldsAlways},
    {Rule::parallel_columns, "parallel_columns", Argument::dual, kHoldsNever},
    {Rule::zero_cost_column, "zero_cost_column", Argument::dual, kHoldsAlways},
    {Rule::sparsify, "sparsify", Argument::primal, kHoldsAlways},
    {Rule::dependent_rows, "dependent_rows", Argument::primal, kHoldsButForSides},
    {Rule::dual_equation, "dual_equation", Argument::dual, kHoldsNever},
}};

constexpr bool in_order(const std::array<RuleTraits, kRules>& table) {
  for (size_t k = 0; k < table.size(); ++k) {
    if (table[k].rule != static_cast<Rule>(k)) return false;
  }
  return true;
}
static_assert(in_order(kRuleTable), "a line for each rule, in the order of the enumeration");

constexpr std::uint32_t rule_bit(Rule rule) {
  return std::uint32_t{1} << static_cast<int>(rule);
}

constexpr std::uint32_t rules_that_rest_on(Argument argument) {
  std::uint32_t rules = 0;
  for (const RuleTraits& traits : kRuleTable) {
    if (traits.argument == argument) rules |= rule_bit(traits.rule);
  }
  return rules;
}

inline constexpr std::uint32_t kPrimalRules = rules_that_rest_on(Argument::primal);
inline constexpr std::uint32_t kDualRules = rules_that_rest_on(Argument::dual);
inline constexpr std::uint32_t kAllRules = (std::uint32_t{1} << kRules) - 1;
/* Sparsify is left out: after an optimal basis with basic logicals of the equations that were used, the undo
 * ends at a basis that needs pivots. */
inline constexpr std::uint32_t kDefaultRules = kAllRules & ~rule_bit(Rule::sparsify);

}  // namespace tovik::lp::presolve
