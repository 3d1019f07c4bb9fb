/* Mixed-integer rounding of single rows and of sums of few rows: a row is a start where it is tight and has fractional columns;
 * while no cut is found, the continuous column farthest from its bounds is eliminated with another tight row (Marchand and
 * Wolsey, Oper. Res. 49 (2001)). */
#pragma once

#include "mip/cuts/rounding.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

class AggregatedRounding : public Plugin {
 public:
  const char* name() const override { return "rounding"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  bool from_start(Worker& worker, int start, RowSum& sum, Rounding& rounding);
  bool try_both_signs(Worker& worker, const RowSum& sum, Rounding& rounding);
  bool aggregate(const Worker& worker, RowSum& sum);

  std::vector<double> row_score_;  // of this call: by problem row, negative: not to be used
  std::vector<double> slack_;
};

}  // namespace tovik::mip
