/* Where to branch when the relaxation's solution is no solution.
 *
 * Columns: reliability branching ("Branching rules revisited", Oper. Res. Letters 33 (2005)): pseudo-costs where there is
 * enough history, strong branching by bounded dual simplex runs where there is not, the best product of the two gains.
 * Objects are branched on as they are: semi-continuous columns into 0 and the interval, sets into their two ends, indicators
 * by their switch, or a fixed slack. Each child is a list of bound changes. */
#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "mip/branching/branch.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

struct Fraction {
  int column;
  double value;
};

/* What the point lacks. */
struct Shortfall {
  std::vector<Fraction> fractions;                  // integer columns, ascending
  std::vector<int> semi_columns, sets, indicators;  // objects that do not hold
  int count() const {
    return static_cast<int>(fractions.size() + semi_columns.size() + sets.size() + indicators.size());
  }
};

Shortfall find_shortfall(const Worker& worker, std::span<const double> x);

struct Child {
  std::vector<NodeChange> changes;
  BranchRecord record;
  double bound = -kInf;  // known from strong branching
};

struct Branching {
  enum class Kind { branched, tightened, infeasible, stopped };
  Kind kind = Kind::branched;
  std::array<Child, 2> children;
  int first = 0;  // the child to go on with
  int set = -1;   // an ordered set was branched on
};

class BranchingRule {
 public:
  explicit BranchingRule(const Global& global) : global_(global) {}

  /* x: the relaxation's solution, of which shortfall is not empty. node_objective: its value. Bounds that strong branching
   * proves are put on the domain's trail (tightened). Pseudo-costs seen go into `seen`. */
  Branching choose(Worker& worker, std::span<const double> x, const Shortfall& shortfall,
                   double node_objective, PseudoCosts& seen);
  void set_root_values(std::span<const double> x) { root_values_.assign(x.begin(), x.end()); }
  std::span<const double> root_values() const { return root_values_; }
  /* On an integer column whose range is not a point, at its value; -1 as column: there is none. */
  static Branching split(const Worker& worker, int column, double value);
  std::int64_t strong_iterations() const { return strong_iterations_; }

 private:
  struct Scored {
    Fraction fraction;
    double score;
  };
  /* Of a candidate, down and up: gain of the bound, and the bound itself where it is known. */
  struct Prospect {
    std::array<double, 2> gains{}, bounds{-kInf, -kInf};
  };
  void keep_highest_priority(std::vector<Fraction>& fractions) const;
  std::vector<Scored> score(const std::vector<Fraction>& fractions, const PseudoCosts& costs) const;
  bool is_reliable(const Fraction& f, const PseudoCosts& seen) const;
  std::optional<Branching> probe(Worker& worker, const Fraction& f, Direction d, double node_objective,
                                 PseudoCosts& seen, Prospect* prospect);
  Branching on_columns(Worker& worker, const std::vector<Fraction>& fractions, double node_objective,
                       PseudoCosts& seen);
  double start_iterations() const;
  int first_child(const Fraction& f) const;
  static bool is_degenerate(const Worker& worker);

  std::vector<double> root_values_;
  const Global& global_;
  std::int64_t strong_iterations_ = 0;
};

/* A branching on an object that does not hold. */
Branching branch_on_object(const Worker& worker, std::span<const double> x, const Shortfall& shortfall);

}  // namespace tovik::mip
