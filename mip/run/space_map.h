/* The two spaces in which callbacks may speak: the caller's problem, and the one that is searched.
 *
 * - The searched problem has the caller's columns first, in their order, and behind them the slacks of indicator
 *   constraints, which the caller does not see.
 * - Points, linear forms and single columns are carried from one to the other. Sizes are checked by nobody: a vector has as
 *   many entries as its space has columns. */
#pragma once

#include <span>
#include <vector>

namespace tovik::mip::run {

/* sum of values[k] x[columns[k]] + constant */
struct LinearForm {
  std::vector<int> columns;
  std::vector<double> values;
  double constant = 0;
};

class SpaceMap {
 public:
  SpaceMap(int user_columns, int searched_columns) : user_(user_columns), searched_(searched_columns) {}

  int user_columns() const { return user_; }
  int searched_columns() const { return searched_; }
  bool is_identity() const { return user_ == searched_; }
  /* -1: not there. */
  int searched_column(int user) const { return user; }
  int user_column(int searched) const { return searched < user_ ? searched : -1; }

  std::vector<double> user_point(std::span<const double> searched) const;
  /* Columns that the caller does not see are left at 0. */
  std::vector<double> searched_point(std::span<const double> user) const;
  /* A form in the caller's columns as one in those that are searched. */
  LinearForm crush(LinearForm user) const { return user; }

 private:
  int user_, searched_;
};

}  // namespace tovik::mip::run
