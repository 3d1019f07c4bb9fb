/* Mixed-integer rounding of one inequality at a point.
 * Columns are seen as distances from their nearer bounds, the inequality is divided by the coefficient of a
 * fractional integer column, and the deepest cut over several such divisors is kept. Valid for every integer
 * point of the model.
 * Paper: "Aggregation and mixed integer rounding to solve MIPs", Operations Research 49 (2001). */
#pragma once

#include <span>

#include "bench/nodes/inequality.h"

namespace bench {

struct Cut {
  Inequality row;
  double depth = 0;  // violation over the norm; 0: no cut
};

/* A row side with slack s >= 0 that the inequality holds with coefficient -weight. */
struct LooseSlack {
  int row;
  double sign;
  double weight;
};

class Rounding {
 public:
  /* Both outlive the object. */
  Rounding(const Model& model, std::span<const double> x)
      : model_(model), x_(x), combination_(model.lp.num_columns()) {}

  /* The deepest cut of `row` replaces `best` where it is deeper. */
  void deepen(const Inequality& row, std::span<const LooseSlack> slacks, Cut& best);

 private:
  /* A column as distance y >= 0 from one of its bounds: x = bound + sign y. */
  struct Shift {
    double bound, sign, y;
  };

  bool shift_columns(const Inequality& row);
  std::vector<double> divisors(const Inequality& row) const;
  Cut round(const Inequality& row, std::span<const LooseSlack> slacks, double divisor);
  bool tidy(Inequality& cut) const;
  double depth(const Inequality& cut) const;

  const Model& model_;
  std::span<const double> x_;
  Combination combination_;
  std::vector<Shift> shifts_;  // by entry of the row at work
  double right_ = 0;           // of that row, shifted
};

}  // namespace bench
