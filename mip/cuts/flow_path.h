/* Flow path cuts: what switched inflows on a path of rows may bring beyond what the path's end still needs
 * ("Solving mixed integer programming problems using automatic reformulation", 1987; the (l, S) inequalities of lot sizing,
 * "Strong formulations for multi-item capacitated lot sizing", 1984, are those of one item).
 *
 * Rows i = 1..l, each scaled to a x <= d, so that a column (a stock) that leaves row i enters row i + 1 and cancels in their
 * sum; all columns shifted to a lower bound of 0. D(i) is the sum of the sides of rows i to l. A switched inflow of row i
 * is c x > 0 with x = 0 wherever its binary y is 0. For any set S of such inflows, w the columns with negative coefficients,
 *
 *     sum_S c x  <=  sum_S max(0, D(i)) y  +  sum |a| w :
 *
 * where some y of S is 1, the first such row i and what follows it takes in no more than D(i) and what flows out; before it, S
 * brings nothing. S is chosen by violation, the path row by row against the flow, from every row that can end one.
 *
 * Cost: the entries of the rows of all paths. Errors: bad_alloc. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class FlowPaths : public Plugin {
 public:
  const char* name() const override { return "flow path"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  struct Step {
    int row;
    double scale;
    int out, in;  // columns that cancel with the row after it and with the row before it; -1: none
    double need;  // D
    double gain;  // violation that the row brings
  };
  /* A binary that is 0 only where a column is at its lower bound. */
  struct Switch {
    int binary = -1;
    bool is_complement = false;  // y = 1 - binary
    double value = 0;            // of y
  };

  bool find_path(const Worker& worker, int last, double sign);
  bool add_side(const Worker& worker, Step& step);
  bool find_link(const Worker& worker, const Step& step, Step* before) const;
  bool find_row(const Worker& worker, int column, double a, Step* before) const;
  void measure(const Worker& worker, Step& step) const;
  Switch find_switch(const Worker& worker, int j) const;
  double contribution(const Worker& worker, int j, double a, double need, Switch* found) const;
  bool build(const Worker& worker, std::size_t rows, Cut* cut);
  void add(int j, double a);

  std::vector<Step> path_;
  double need_ = 0;
  std::vector<int> seen_;  // by column: number of the last path with it
  int path_number_ = 0;
  std::int64_t work_ = 0;  // entries
  // The cut in the making, by column.
  std::vector<double> value_;
  std::vector<int> listed_;
};

}  // namespace tovik::mip
