/* The columns of a search as its callbacks count them: those of the caller's problem, or of the one that is searched.
 * What the search says of a column of the caller that it does not have is what the caller's own model says. */
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
  int searched(int j) const { return scene_.in_user_space ? scene_.spaces.searched_column(j) : j; }
  void go_to_root() const;

  const CallbackScene& scene_;
  // Empty: not yet asked for.
  mutable std::vector<double> lower_, upper_;  // that hold everywhere
  mutable std::vector<char> types_;
};

}  // namespace tovik::mip::run
