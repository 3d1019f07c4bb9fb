/* Lifted cover cuts: of the items of a knapsack row, sum a_j x_j <= b over binaries, a set whose weights exceed b cannot be
 * taken whole. The set is chosen by the relaxation's values; its members at 1 are lifted down, all others up, one after
 * the other and exactly ("Lifted cover inequalities for 0-1 integer programs: computation", INFORMS J. Computing 10 (1998)).
 * A row's other columns stand at their best bounds, or at bounds that a binary column sets; negative weights are
 * complemented. */
#pragma once

#include <span>
#include <vector>

#include "lp/base/sum.h"
#include "mip/pool/cut.h"
#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class CoverCuts : public Plugin {
 public:
  explicit CoverCuts(const Global& global) : value_(static_cast<std::size_t>(global.problem.num_columns())) {}
  const char* name() const override { return "cover"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  struct Item {
    int column;
    double weight;  // > 0
    double value;   // at the relaxation's optimum, of the literal
    bool complemented;
    int lifted = 0;  // coefficient in the cut
  };
  bool read_row(const Worker& worker, const RelaxationRow& row, double sign, std::span<const double> x);
  bool relax_column(const Worker& worker, int j, double a, std::span<const double> x,
                    lp::CompensatedSum& capacity);
  bool choose_cover();
  bool lift();
  void lift_item(Item& item, bool down);
  int best_value(double capacity) const;
  void write(Cut* cut) const;

  std::vector<Item> items_;
  std::vector<std::size_t> cover_;  // positions of items
  double capacity_ = 0, margin_ = 0;
  // Lifting: the least weight with which a value of at least w can be had, and where it stands.
  std::vector<double> least_weight_;
  double room_ = 0;
  int side_ = 0;
  std::int64_t work_ = 0;
  std::vector<double> value_;  // by column, clean between rows
  std::vector<int> listed_;
};

}  // namespace tovik::mip
