/* A linear combination of rows of the relaxation, with the slacks of the rows as terms:
 *
 *     sum_j a_j x_j + sum_i h_i t_i = side,   t_i >= 0 the distance of row i from the side that it stands nearer to.
 *
 * It holds exactly for every point of the rows, whatever the multipliers are: an error in them makes another equation, not a
 * wrong one. Sums are compensated. Rows of equations have no slack term. What a cancellation leaves of a coefficient or of the
 * side but for rounding of the data is 0: scaled up it would forbid points that hold the rows as well as any can. */
#pragma once

#include <cmath>
#include <span>
#include <vector>

#include "lp/base/sum.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class RowSum {
 public:
  struct SlackTerm {
    int row;
    double coefficient;  // of t
    bool at_upper;       // t = upper - activity, else activity - lower
    double value;        // of t at the point that add() was given
  };

  explicit RowSum(int columns)
      : values_(static_cast<std::size_t>(columns)), sizes_(values_.size()), is_listed_(values_.size()) {}

  void clear();
  /* False, and nothing has happened, for a row without any finite side. x: the point whose nearer side counts. */
  bool add(const Worker& worker, int row, double multiplier, std::span<const double> x);

  std::span<const int> columns() const { return columns_; }
  double coefficient(int j) const { return cleaned(values_[j].value(), sizes_[j]); }
  std::span<const SlackTerm> slacks() const { return slacks_; }
  double side() const { return cleaned(side_.value(), side_size_); }
  bool has_row(int row) const;
  int rank() const { return rank_; }  // largest of the cuts among the rows; 0: none
  std::int64_t entries() const { return entries_; }

 private:
  static double cleaned(double sum, double size) {
    constexpr double kNoise = 1e-11;  // of the largest term
    return std::fabs(sum) <= kNoise * size ? 0 : sum;
  }

  std::vector<lp::CompensatedSum> values_;
  std::vector<double> sizes_;  // largest term of each
  std::vector<char> is_listed_;
  std::vector<int> columns_;
  std::vector<SlackTerm> slacks_;
  std::vector<int> rows_;
  lp::CompensatedSum side_;
  double side_size_ = 0;
  int rank_ = 0;
  std::int64_t entries_ = 0;
};

/* Distance of a row's activity from its nearer finite side, and which that is. */
struct Slack {
  double value;
  bool at_upper;
  bool exists;  // a finite side
};
Slack slack_of(const RelaxationRow& row, std::span<const double> x);

}  // namespace tovik::mip
