/* Mixed-integer rounding of single rows and of sums of few rows: a row is a start where it is tight and has fractional columns;
 * while no cut is found, the continuous column farthest from its bounds is eliminated with another tight row
 * ("Aggregation and mixed integer rounding to solve MIPs", Oper. Res. 49 (2001)). With the bounds that binary columns set it
 * finds flow covers, without them the other roundings; these are two families, each an object of its own. */
#pragma once

#include <utility>
#include <vector>

#include "mip/cuts/rounding.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

class AggregatedRounding : public Plugin {
 public:
  explicit AggregatedRounding(Substitution substitution) : substitution_(substitution) {}
  const char* name() const override {
    return substitution_ == Substitution::bounds ? "rounding" : "flow cover";
  }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  void score_rows(const Worker& worker);
  double distance(const Worker& worker, int j) const;
  bool from_start(Worker& worker, int start, RowSum& sum, Rounding& rounding);
  bool try_both_signs(Worker& worker, const RowSum& sum, Rounding& rounding);
  bool aggregate(const Worker& worker, RowSum& sum);

  const Substitution substitution_;
  std::vector<std::pair<double, int>> starts_;
  std::vector<double> row_score_;  // of this call: by problem row, negative: not to be used
};

}  // namespace tovik::mip
