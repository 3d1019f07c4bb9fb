/* Gomory's mixed-integer cuts, and what other roundings of the same rows give: each fractional basic integer column names the
 * combination of rows that is its tableau row ("Gomory cuts revisited", Oper. Res. Letters 19 (1996)). The tableau only
 * chooses multipliers; the combination is summed from the rows. */
#pragma once

#include <vector>

#include "mip/cuts/rounding.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

class GomoryCuts : public Plugin {
 public:
  const char* name() const override { return "Gomory"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  static std::vector<int> candidates(const Worker& worker);  // positions in the basis, best first
  bool one_row(Worker& worker, int position, RowSum& sum, Rounding& rounding);
};

}  // namespace tovik::mip
