/* The columns of a search as its callbacks count them: those of the caller's problem, or of the one that is searched. Of a
 * column that is not searched bounds are what those of the others and the caller's own say, the priority is the caller's. */
#pragma once

#include "lp/verify/bounds.h"
#include "mip/pool/pseudo_costs.h"
#include "mip/run/search_callback.h"

namespace tovik::mip::run {

class SearchColumns {
 public:
  explicit SearchColumns(const CallbackScene& scene) : scene_(scene) {}

  /* As they are stored, +-1e20 for infinite ones. */
  lp::verify::Limits node_bounds(int j) const;
  lp::verify::Limits global_bounds(int j) const;
  bool is_integer(int j) const;
  char type(int j) const;
  Priority priority(int j) const;
  double pseudo_cost(int j, Direction direction) const;  // 0 for a column that is not branched on

 private:
  using Box = SpaceMap::Box;
  int searched(int j) const { return scene_.in_user_space ? scene_.spaces.searched_column(j) : j; }
  std::vector<Box> boxes_of_node() const;
  std::vector<Box> boxes_of_root() const;
  lp::verify::Limits shown(const std::vector<Box>& boxes, int j) const;
  std::vector<Box> in_space(std::vector<Box> searched) const;

  const CallbackScene& scene_;
  // Empty: not yet asked for.
  mutable std::vector<Box> node_boxes_, root_boxes_;
  mutable std::vector<char> types_;
};

}  // namespace tovik::mip::run
