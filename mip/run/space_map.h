/* The two spaces in which callbacks may speak: the caller's problem, and the one that is searched.
 *
 * - Before presolve the search's problem has the caller's columns first, in their order, and behind them the slacks of
 *   indicator constraints, which the caller does not see. Presolve, and each restart, makes another one of it.
 * - Where there is presolve no single column is the same in both spaces: its bounds may speak of a merged one.
 * - Points, linear forms and single columns are carried from one to the other. Sizes are checked by nobody: a vector has as
 *   many entries as its space has columns. */
#pragma once

#include <span>
#include <vector>

#include "mip/search/presolved_search.h"

namespace tovik::mip::run {

class SpaceMap {
 public:
  /* given_columns: of the problem that the search was given. */
  SpaceMap(int user_columns, int given_columns, const PresolvedSearch& search)
      : user_(user_columns), given_(given_columns), search_(search) {}

  int user_columns() const { return user_; }
  int searched_columns() const;
  bool is_identity() const { return user_ == given_ && !search_.is_presolved(); }
  /* -1: not there. */
  int searched_column(int user) const { return search_.is_presolved() ? -1 : user; }
  /* The one that is left of it, or that it was merged into. */
  int user_column(int searched) const;

  std::vector<double> user_point(std::span<const double> searched) const;
  /* Columns that the caller does not see are left at 0. */
  std::vector<double> searched_point(std::span<const double> user) const;
  /* A form in the caller's columns as one in those that are searched. */
  LinearForm crush(LinearForm user) const { return user; }  // callbacks that state them switch presolve off

 private:
  int user_, given_;
  const PresolvedSearch& search_;
};

}  // namespace tovik::mip::run
