/* From a start that the caller gives, whole or in part, to a point that may be a solution.
 *
 * - check: the point as it is; it must have a value for every column, and hold.
 * - solve_fixed: what is discrete must be given and is fixed; the continuous columns are found anew.
 * - solve_mip: what is given of the discrete columns is fixed, a small search completes it.
 * - repair: as solve_mip; where that finds nothing, what stands in the way is freed: the rows that an LP with the least sum of
 *   violations violates tell which fixings these are, and each further try frees the neighbours of what is free.
 * - automatic: check where it is whole, else solve_mip; repairs only when asked to (HeuristicSettings::repair_tries).
 *
 * Values of integer columns that are no integers count as not given; so do those of continuous columns, but for check. Works on
 * the problem that it is given, with a domain of its own; its searches have limits (nodes, iterations). The point is to be
 * judged by whoever takes it. Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/base/control.h"
#include "mip/domain/domain.h"
#include "mip/worker/settings.h"
#include "mip/worker/sub_search.h"

namespace tovik::mip {

enum class StartEffort { automatic, check, solve_fixed, solve_mip, repair };

class StartCompletion {
 public:
  StartCompletion(const Problem& problem, const Settings& settings, SubSearch& sub_search,
                  lp::Control& control)
      : problem_(problem), settings_(settings), sub_search_(sub_search), control_(control) {}

  /* start: by column, NaN: not given; slacks of indicators never are. Only points whose objective is below the cutoff are
   * looked for. Empty: none found. */
  std::vector<double> run(std::vector<double> start, StartEffort effort, double cutoff);
  std::int64_t iterations() const { return iterations_; }  // of the simplex, in all searches

 private:
  enum class Rule { all_or_nothing, leave_out_what_fails };

  bool is_given(int j) const { return start_[j] == start_[j]; }
  void drop_unusable_values();
  bool is_whole() const;
  bool decides_all() const;
  std::vector<double> as_it_is() const;
  bool holds(std::span<const double> x) const;
  bool fix(Domain& domain, int j) const;
  bool fix_given(Domain& domain, const std::vector<char>& kept, Rule rule) const;
  std::vector<double> search(const Domain& domain, double cutoff);
  std::vector<double> complete(double cutoff);
  std::vector<double> repair(double cutoff);
  std::vector<int> violated_rows(const std::vector<char>& kept);
  bool free_columns(const std::vector<char>& of_rows, std::vector<char>& kept) const;
  std::vector<char> rows_of_free_columns(const std::vector<char>& kept) const;

  const Problem& problem_;
  const Settings& settings_;
  SubSearch& sub_search_;
  lp::Control& control_;
  std::vector<double> start_;     // NaN: not given
  std::vector<char> is_decided_;  // by column: discrete, or of an object, so that its value is a decision
  std::vector<int> semi_of_;      // by column: its semi-continuous interval, -1: none
  std::int64_t iterations_ = 0;
};

}  // namespace tovik::mip
