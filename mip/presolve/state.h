/* A mixed-integer problem while presolve works on it: the workspace of presolve for LPs, the integrality of its columns, its
 * objects, and the records of what was done.
 *
 * - Indices are those of the original problem throughout. Rules read everything here and change the problem by the functions
 *   here and those of the workspace, a record first.
 * - Held columns are protected or belong to an object that is not decided: they stay, and only integer ones get other bounds.
 * - Bounds of integer columns are whole; those of continuous columns are what the user or a row that has left said, never
 *   what remaining rows imply. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/base/control.h"
#include "lp/presolve/workspace.h"
#include "mip/domain/problem.h"
#include "mip/presolve/postsolve.h"
#include "mip/presolve/settings.h"

namespace tovik::mip {

/* What proves that there is no solution. */
struct PresolveFinding {
  enum class Kind {
    none,
    column_bounds_cross,
    no_whole_value,    // of an integer column
    row_out_of_reach,  // of its columns' bounds
    empty_row,
    rows_inconsistent,  // row and other_row
    no_whole_solution,  // of an equation of integer columns
    propagation         // of several rows and objects
  };
  Kind kind = Kind::none;
  int row = -1, other_row = -1, column = -1;
  double lower = 0, upper = 0;  // sides of an empty row
};

class PresolveState {
 public:
  PresolveState(const Problem& problem, const PresolveSettings& the_settings, const Tolerances& tolerance,
                lp::Control& stop_control);

  lp::presolve::Workspace& ws() { return workspace_; }
  const PresolveSettings& settings() const { return settings_; }
  const Tolerances& tolerances() const { return tolerances_; }

  bool is_integer(int j) const { return is_integer_[j] != 0; }
  bool is_binary(int j) const {
    return is_integer(j) && workspace_.lower[j] == 0 && workspace_.upper[j] == 1;
  }
  bool is_held(int j) const { return is_held_[j] != 0; }
  bool is_fixed(int j) const;
  void make_integer(int j) { is_integer_[j] = 1; }

  /* False when presolve is over: infeasible, stopped, or out of budget. Polls now and then. */
  bool goes_on();
  bool allows(PresolveRule rule) { return settings_.allows(rule) && goes_on(); }
  bool is_infeasible() const { return finding_.kind != PresolveFinding::Kind::none; }
  const PresolveFinding& finding() const { return finding_; }
  bool was_stopped() const { return workspace_.stop != lp::Stop::none; }
  void set_infeasible(PresolveFinding::Kind kind, int row, int column);
  void set_infeasible(const PresolveFinding& finding) { finding_ = finding; }
  /* Work counts from here: for one rule, and in all. */
  std::int64_t budget_left() const { return budget_ - workspace_.work(); }
  std::int64_t size() const { return size_; }  // entries, rows and columns at the beginning

  /* New bounds where they are tighter; those of an integer column are whole. False when they were not taken: no column
   * value is left but for the tolerances. */
  bool tighten(int j, double lower, double upper);
  void fix(int j, double value);
  /* Column s of the equation i goes, with the row. */
  void substitute(int i, int s);
  /* gone = constant + factor * kept, without a row that says so. */
  void replace(int gone, int kept, double factor, double constant);
  void remove_row(int i) { workspace_.remove_row(i, lp::presolve::RemovalReason::redundant); }

  Postsolve postsolve;
  PresolveCounts counts;
  int next_dominated = 0;  // column at which the search for dominated ones goes on
  // Objects that are not decided, in original columns.
  std::vector<SemiColumn> semi_columns;
  std::vector<OrderedSet> sets;
  std::vector<Indicator> indicators;
  /* After objects have left. */
  void count_held();

  /* What is left, as a problem, with the original index of each row and column. */
  Problem extract(std::vector<int>& row_map, std::vector<int>& column_map);

 private:
  const Problem& problem_;
  const PresolveSettings settings_;
  const Tolerances tolerances_;
  lp::presolve::Settings lp_settings_;
  std::vector<char> protected_;  // none: what is held is the rules' business
  lp::presolve::Workspace workspace_;
  std::vector<char> is_integer_, is_held_;
  PresolveFinding finding_;
  std::int64_t size_, budget_, next_poll_ = 0;
};

}  // namespace tovik::mip
