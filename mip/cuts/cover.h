/* Lifted cover cuts of the problem's rows (knapsack_row, knapsack_cover). */
#pragma once

#include "mip/cuts/knapsack_cover.h"
#include "mip/cuts/knapsack_row.h"
#include "mip/pool/cut.h"
#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class CoverCuts : public Plugin {
 public:
  explicit CoverCuts(const Global& global) : row_(global) {}
  const char* name() const override { return "cover"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  void write(Cut* cut) const;

  KnapsackRow row_;
  KnapsackCover cover_;  // of the row's items
};

}  // namespace tovik::mip
