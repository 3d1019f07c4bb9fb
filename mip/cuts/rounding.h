/* Complemented mixed-integer rounding ("Aggregation and mixed integer rounding to solve MIPs", Oper. Res. 49 (2001)).
 *
 * From sum_j a_j x_j + sum_i h_i t_i <= side, x within its bounds, t >= 0: columns are shifted to a bound, so that all
 * variables are >= 0; the inequality is divided by some delta; then with f0 = frac(side / delta), f = frac(a / delta)
 *
 *     sum_int (floor(a/delta) + max(0, f - f0) / (1 - f0)) x + sum_cont min(0, a) / (delta (1 - f0)) x <= floor(side / delta).
 *
 * On the binaries of the shifted inequality a cover is looked for, too (knapsack_cover); the other variables that help to
 * satisfy it are its s.
 *
 * With delta 1 and a tableau row it is Gomory's mixed-integer cut. Slacks of integral rows count as integers. A column may be
 * shifted to a bound that a binary column sets (x = slope z + constant -+ t); its share then falls to the binary. On rows
 * of flows with switched capacities that gives flow covers.
 *
 * An object serves one call of a separator; its work space is made once. */
#pragma once

#include <span>
#include <vector>

#include "mip/cuts/knapsack_cover.h"
#include "mip/cuts/row_sum.h"
#include "mip/pool/cut.h"

namespace tovik::mip {

enum class Substitution { bounds, variable_bounds };

class Rounding {
 public:
  explicit Rounding(const Worker& worker, Substitution substitution = Substitution::bounds);

  /* Of the combination, taken as <= (sign 1) or as >= (sign -1): the rounded cut that is most violated at x, and the cover where it
   * cuts deeper. False: none is violated enough. With variable bounds: false where none was of use, too. */
  bool separate(const RowSum& sum, double sign, std::span<const double> x, CutClass kind,
                std::vector<Cut>* cuts);

  /* Entries touched by covers so far. */
  std::int64_t work() const { return cover_.work(); }

 private:
  enum class At : unsigned char { lower, upper, variable_lower, variable_upper, slack };
  /* A term of the shifted inequality: the variable is >= 0. */
  struct Term {
    double coefficient;
    double value;  // at x
    double range;  // upper bound of the shifted variable
    int column;    // of a slack its position in the sum
    At at;
    bool is_integer;
    const VariableBound* bound = nullptr;  // of At::variable_...
  };
  bool shift(const RowSum& sum, double sign, std::span<const double> x);
  bool shift_continuous(int j, double a, std::span<const double> x, lp::CompensatedSum& side);
  bool shift_integer(int j, double a, std::span<const double> x, lp::CompensatedSum& side);
  void complement(Term& term);
  void find_active_terms();
  double efficacy(double delta) const;
  double best_delta(double* efficacy);
  static bool is_item(const Term& t) { return t.is_integer && t.at != At::slack && t.range == 1; }
  void round_by(double delta);
  bool find_cover(double efficacy_to_beat);
  double take_cover();
  bool make(const RowSum& sum, std::span<const double> x, CutClass kind, std::vector<Cut>* cuts);
  bool build(const RowSum& sum, Cut* cut);
  void add(int j, double a, double factor);
  void order_listed();

  const Worker& worker_;
  const bool with_variable_bounds_;
  std::vector<Term> terms_;
  std::vector<std::size_t> active_;  // terms on integers that do not stand at 0
  double continuous_activity_ = 0,
         continuous_norm_ = 0;  // of negative continuous terms that do not stand at 0
  double side_ = 0, largest_ = 0;
  double largest_term_ = 0;  // that went into a sum of the cut in the making
  bool used_variable_bound_ = false;
  KnapsackCover cover_;
  std::vector<double> cut_values_;  // of the shifted cut, by term
  double cut_side_ = 0;
  // Work space by column, clean between calls.
  std::vector<lp::CompensatedSum> value_;
  std::vector<char> is_listed_;
  std::vector<int> listed_;
};

/* Makes a cut safe to add: drops small coefficients against their columns' bounds; on integer columns looks for whole
 * coefficients and rounds the side down; tightens coefficients of integer columns that are larger than what the cut can
 * be missed by; widens the side by what rounding may have taken; refuses what is numerically poor, too dense or no longer
 * violated at x. */
bool finish_cut(const Worker& worker, std::span<const double> x, Cut* cut);

}  // namespace tovik::mip
