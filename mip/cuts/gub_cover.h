/* Generalized upper bound cover cuts: of the items of a knapsack row that cliques divide into groups, at most one of each group is
 * taken. Where from each of k groups one item that weighs at least the group's threshold is more than the row can take,
 * the items of these groups that reach their thresholds add up to k - 1 at most; items of other groups are lifted up group by group
 * ("Sequence independent lifting in mixed integer programming" and "Lifted cover inequalities ... computation", INFORMS J.
 * Computing 10 (1998), section 5). Groups are chosen anew for each row, by the relaxation's values. */
#pragma once

#include <span>
#include <vector>

#include "mip/cuts/knapsack_row.h"
#include "mip/pool/cut.h"
#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class GubCoverCuts : public Plugin {
 public:
  explicit GubCoverCuts(const Global& global)
      : row_(global), item_of_(2 * static_cast<std::size_t>(global.problem.num_columns()), -1) {}
  const char* name() const override { return "GUB cover"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  /* Items in a group, the heaviest first. Those up to `taken` reach the threshold, which is the weight of the last of them. */
  struct Group {
    std::vector<int> items;
    int taken = 0;
    double value = 0;  // of those, at the relaxation's optimum
  };
  bool make_groups(const Worker& worker);
  double threshold(const Group& group) const { return row_.items()[group.items[group.taken - 1]].weight; }
  bool choose_cover();
  void lift();
  bool write(Cut* cut) const;

  KnapsackRow row_;
  std::vector<int> item_of_;  // by literal, -1 outside make_groups()
  std::vector<Group> groups_;
  std::vector<int> cover_;   // positions of groups
  std::vector<int> lifted_;  // coefficients by item
  double margin_ = 0;
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
