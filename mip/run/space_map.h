/* The two spaces in which callbacks may speak: the caller's problem, and the one that is searched.
 *
 * - The problem that the search was given has the caller's columns first, in their order, and behind them the slacks of
 *   indicator constraints, which the caller does not see. Presolve, and each restart, makes another one of it.
 * - Points, linear forms, bounds and single columns are carried from one to the other. A form, or a bound that is to hold, may
 *   be stated only where presolve keeps all points (PresolveSettings::keep_all_points): every column then is a linear function
 *   of those that are searched, and a column that is searched is the caller's of the same name.
 * - Sizes are checked by nobody: a vector has as many entries as its space has columns. */
#pragma once

#include <span>
#include <vector>

#include "mip/search/presolved_search.h"

namespace tovik::mip::run {

class SpaceMap {
 public:
  using Box = Postsolve::Box;

  /* given_columns: of the problem that the search was given. */
  SpaceMap(int user_columns, int given_columns, const PresolvedSearch& search)
      : user_(user_columns), given_(given_columns), search_(search) {}

  int user_columns() const { return user_; }
  int searched_columns() const;
  bool is_identity() const { return user_ == given_ && !search_.is_presolved(); }
  /* The one that is left of it, alone or with others that were merged into it; -1: not there. */
  int searched_column(int user) const;
  int user_column(int searched) const;

  std::vector<double> user_point(std::span<const double> searched) const;
  /* Columns that the caller does not see are left at 0. */
  std::vector<double> searched_point(std::span<const double> user) const;
  /* What bounds of the searched columns say of the caller's. */
  std::vector<Box> user_bounds(std::vector<Box> searched) const;
  /* A form in the caller's columns as one in those that are searched. */
  LinearForm crush(LinearForm user) const;

 private:
  int user_, given_;
  const PresolvedSearch& search_;
  // Made when first asked for, and anew after a restart.
  mutable std::vector<int> place_;  // by column of the caller
  mutable std::size_t stages_placed_ = 0;
};

}  // namespace tovik::mip::run
