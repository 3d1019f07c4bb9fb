/* Lifted cover cuts of the problem's rows. Columns that are not binary stand at their best bounds, or at bounds that a binary
 * column sets; negative weights are complemented. */
#pragma once

#include <span>
#include <vector>

#include "lp/base/sum.h"
#include "mip/cuts/knapsack_cover.h"
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
    bool complemented;
  };
  bool read_row(const Worker& worker, const RelaxationRow& row, double sign, std::span<const double> x);
  bool relax_column(const Worker& worker, int j, double a, std::span<const double> x,
                    lp::CompensatedSum& capacity);
  void write(Cut* cut) const;

  std::vector<Item> items_;
  KnapsackCover cover_;  // of the items
  double capacity_ = 0;
  std::vector<double> value_;  // by column, clean between rows
  std::vector<int> listed_;
};

}  // namespace tovik::mip
