/* The problem while presolve works on it: minimize c'x + offset, row_lower <= Ax <= row_upper, lower <= x <=
 * upper, with fewer rows and columns as rules remove them. Indices are those of the original problem
 * throughout.
 *
 * Rules read the vectors and views, and change the problem only through the functions here: they keep both
 * orientations of the matrix in step, refresh what depends on a change, and queue the rows and columns that
 * are worth another look. A rule asks `allow` before each reduction, writes its record on the stack first and
 * changes the problem after, so that the stack is whole whenever a run ends. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/presolve/compressed_vectors.h"
#include "lp/presolve/settings.h"
#include "lp/presolve/stack.h"
#include "lp/presolve/status.h"

namespace tovik::lp::presolve {

/* Why a row or column is no longer there. */
enum class RemovalReason : std::uint8_t { kept, redundant, fixed, aggregated, merged, other };

/* Bounds of a row's activity from the bounds of its columns: finite parts and the number of infinite ones. */
struct Activity {
  double min = 0, max = 0;
  int infinite_min = 0, infinite_max = 0;
  double magnitude = 0;  // largest finite contribution: the scale of rounding errors
  double largest = 0;    // entry of the row
  double least() const { return infinite_min > 0 ? -kInf : min; }
  double most() const { return infinite_max > 0 ? kInf : max; }
};

class Workspace : public ProgressSource {
 public:
  CallOrigin origin() const override { return CallOrigin::presolve; }
  /* The original outlives the workspace. protected_columns: empty, or one flag for each column. */
  Workspace(const LpData& original, const Settings& settings, Control& control,
            const std::vector<char>& protected_columns);

  const LpData& original;
  const Settings& settings;
  Control& control;
  Stack stack;
  Counts counts;
  PresolveStatus status;
  Stop stop = Stop::none;

  // Read by rules, changed by the functions below only.
  std::vector<double> cost, lower, upper, row_lower, row_upper;
  double offset() const { return offset_ + offset_error_; }
  bool row_alive(int i) const { return row_alive_[i] != 0; }
  bool column_alive(int j) const { return column_alive_[j] != 0; }
  bool is_protected(int j) const { return !protected_.empty() && protected_[j] != 0; }
  int num_rows() const { return original.num_rows(); }  // of the original: most loops run over these
  int num_columns() const { return original.num_columns(); }
  int rows_left() const { return rows_left_; }
  int columns_left() const { return columns_left_; }
  std::int64_t entries_left() const;  // computed
  View row(int i) { return rows_.view(i); }
  View column(int j) { return columns_.view(j); }
  int row_length(int i) const { return rows_.length(i); }
  int column_length(int j) const { return columns_.length(j); }
  bool equation(int i) const { return row_lower[i] == row_upper[i]; }
  double column_max(int j);    // largest magnitude of an entry: computed
  double entry(int i, int j);  // 0 when there is none; searches the shorter vector
  /* Cached until a bound or an entry of the row changes. */
  const Activity& activity(int i);
  /* Activity bounds without column j, whose entry is a. */
  double least_without(int i, int j, double a) { return rest_without(i, j, a, 1.0); }
  double most_without(int i, int j, double a) { return -rest_without(i, j, a, -1.0); }
  /* Bounds that row i puts on column j through the bounds of its other columns. */
  double implied_lower(int i, int j, double a);
  double implied_upper(int i, int j, double a);

  /* May rule make a reduction now? Counts it when it may. */
  bool allow(Rule rule);
  bool enabled(Rule rule) const { return (settings.allowed() & rule_bit(rule)) != 0; }
  bool done() const { return status.code != StatusCode::reduced || stop != Stop::none || exhausted_; }
  void declare_infeasible(PresolveStatus found);
  void add_work(std::int64_t ticks) { work_ += ticks; }
  std::int64_t work() const { return work_; }

  // Changes. Rows and columns that go are counted as eliminated unless the reason is `aggregated`.
  void change_bounds(int j, double new_lower, double new_upper);
  void change_sides(int i, double new_lower, double new_upper);
  /* Adds to a cost; what cancels to rounding noise becomes zero. */
  void move_cost(int j, double delta);
  void add_offset(double value);
  /* Both finite sides of row i move by delta; what cancels to rounding noise becomes zero. */
  void shift_sides(int i, double delta);
  void remove_row(int i, RemovalReason reason);
  /* Takes the column out without a trace on sides and objective: for columns that are substituted. */
  void remove_column(int j, RemovalReason reason);
  /* Row target += factor * row source, sides too when source is an equation (else only the entries). The
   * entry in column `pivot`, if any, is removed exactly. */
  void add_row_multiple(int target, double factor, int source, int pivot);
  /* The entry of row i in column j becomes `value`; 0 takes it out. Searches both vectors. */
  void set_entry(int i, int j, double value);
  /* All entries of row i times a factor; the sides become what is given. */
  void scale_row(int i, double factor, double new_lower, double new_upper);
  /* Row i is an equation: solved for column s, put in for it in all other rows and the objective; both go. */
  void substitute(int i, int s);
  // For records; valid until the next change.
  ColumnEntries column_entries(int j);
  View row_without(int i, int j);
  RemovalReason row_removal(int i) const { return row_removal_[i]; }
  RemovalReason column_removal(int j) const { return column_removal_[j]; }

  // Queues: each taken list is handed out once; rules may add while it is worked on.
  std::vector<int> take_rows() { return take(changed_rows_, row_queued_); }
  std::vector<int> take_columns() { return take(changed_columns_, column_queued_); }
  bool queued() const { return !changed_rows_.empty() || !changed_columns_.empty(); }
  void queue_row(int i);
  void queue_column(int j);

  /* Progress lines, LP callback and limits; false when presolve must stop. */
  bool may_continue(bool in_aggregator = false);
  Progress progress() const override;
  bool display = true;

  /* The problem that is left, with the original index of each of its rows and columns. */
  LpData extract(std::vector<int>& row_map, std::vector<int>& column_map);

 private:
  double rest_without(int i, int j, double a, double sign);
  void report(bool in_aggregator);
  static std::vector<int> take(std::vector<int>& list, std::vector<char>& flags);
  void touch_row(int i) { activity_fresh_[i] = 0; }

  std::vector<char> row_alive_, column_alive_;
  const std::vector<char>& protected_;
  CompressedVectors rows_, columns_;
  std::vector<char> column_dirty_;  // entries differ from the original's
  std::vector<RemovalReason> row_removal_, column_removal_;
  std::vector<Activity> activity_;
  std::vector<char> activity_fresh_;
  std::vector<int> changed_rows_, changed_columns_;
  std::vector<char> row_queued_, column_queued_;
  std::vector<int> mark_;      // by column: position + 1 in the target row while rows are added
  std::vector<int> row_mark_;  // by row, the same for columns
  std::vector<int> scratch_index_;
  std::vector<double> scratch_value_;
  int rows_left_, columns_left_;
  double offset_ = 0, offset_error_ = 0;
  std::int64_t work_ = 0, reductions_ = 0;
  bool exhausted_ = false;
  double last_report_ = 0;
};

}  // namespace tovik::lp::presolve
