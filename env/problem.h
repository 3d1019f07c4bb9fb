/* The problem record: one model, what solving derived from it, and the rule by which changes discard derived
 * data. */
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "env/access_state.h"
#include "env/environment.h"
#include "env/journal.h"
#include "env/read_report.h"
#include "env/registry.h"
#include "env/solution.h"
#include "env/solution_filter.h"
#include "env/solution_pool.h"

namespace tovik {

namespace model {
class Model;
}

struct Problem;
enum class Change;

/* Derived data that a subsystem hangs on a problem (live factor, presolved copy, ...); freed through this
 * interface. */
struct Derived {
  virtual ~Derived() = default;
  /* Can be synchronized after rows or columns were added or deleted, by the problem's journal. */
  virtual bool follows_structure() const { return false; }
  /* Applies a change of values of these rows or columns that was just made in the model, or the rows just
   * added at its end (no indices). False when it cannot. */
  virtual bool apply_change(const Problem&, Change, std::span<const int> /*indices*/) { return false; }
};

/* The starting information for the next optimization. Statuses: 0 at lower, 1 basic, 2 at upper, 3 free
 * (superbasic). Row statuses describe the row's slack; both vectors are empty when there is no starting
 * basis. Whoever adds or deletes rows or columns keeps the statuses in step with the model. */
struct Start {
  std::vector<int> column_status;
  std::vector<int> row_status;
  std::vector<double> primal, row_primal, dual, row_dual;  // optional starting values; empty when absent
  int change_level = 0;  // 2 objective, 3 added columns, 1 other changes; a larger one replaces a smaller
  const void* live_engine = nullptr;  // stands on these statuses and may update them in place; null: none
  bool balanced = true;  // as many basics as rows; else only optimizers may start from the statuses
  bool has_statuses() const { return !column_status.empty() || !row_status.empty(); }
  bool has_basis() const { return has_statuses() && balanced; }
  bool has_values() const {
    return !primal.empty() || !row_primal.empty() || !dual.empty() || !row_dual.empty();
  }
};

/* Stored pricing norms by basis position, with the basis head that they belong to (column j, or -i-1 for row
 * i). */
struct Norms {
  std::vector<double> dual, column, row;
  std::vector<int> head;
};

struct Problem {
  explicit Problem(Environment& environment);
  ~Problem();
  Problem(const Problem&) = delete;
  Problem& operator=(const Problem&) = delete;

  Environment* env;
  std::string name;
  int status = TVK_STATUS_NONE;  // of the solution
  int type = TVK_PROBTYPE_LP;
  AccessState use;  // by routines that are running
  std::unique_ptr<model::Model> model;
  std::unique_ptr<Solution> solution;  // null until the first optimization
  std::unique_ptr<SolutionPool> pool;  // of the last mixed-integer search; null: none
  SolutionFilters filters;             // that members of the pool pass
  Start start;
  Norms norms;
  std::unique_ptr<Derived> simplex;  // live basis and factor between optimizations
  Journal journal;                   // of changes that the simplex engine has yet to follow
  std::unique_ptr<Derived> presolve;
  bool presolve_up_to_date = false;     // it applied the change that is just being made
  std::vector<int> protected_columns;   // that presolve must keep: ascending, each once
  std::unique_ptr<Derived> statistics;  // counters of the last optimization
  ReadReport read_report;               // of the file that the model was read from
  std::unique_ptr<Derived> mip;
  std::unique_ptr<Problem> working;  // nested problem solved in this one's place
  std::unique_ptr<Problem> derived;  // second nested problem
  LiveHandle live;                   // last: a handle is live while the record is whole

  std::size_t rows() const;  // of the model
  std::size_t columns() const;
  bool mixed_integer() const {
    return type == TVK_PROBTYPE_MILP || type == TVK_PROBTYPE_MIQP || type == TVK_PROBTYPE_MIQCP;
  }
  /* Cannot be modified: 1023. */
  bool fixed() const {
    return type == TVK_PROBTYPE_FIXED_MILP || type == TVK_PROBTYPE_FIXED_MIQP ||
           type == TVK_PROBTYPE_FIXED_MIQCP;
  }
};

/* Brings the solution up to date: one that the working problem holds in this problem's place is carried
 * back. */
void update_solution(Problem& problem) noexcept;

/* What a change of the model does to the derived data; the table stands in change.cpp. */
enum class Change {
  names,
  objective_sense,
  objective,
  bounds,
  ranges,
  rhs,
  matrix,
  senses,
  add_columns,
  delete_columns,
  rows,
  column_types,
  sets,
  branching_order,
  starts,
  whole_problem,
  quadratic,
  problem_type,
  norms,
  unscaling
};

/* Discards the derived data that `change` makes invalid. Never fails. Who names the rows or columns concerned
 * spares the live engine the comparison with the whole model, and a new start after adding or deleting
 * some. */
void invalidate(Problem& problem, Change change) noexcept;
void invalidate(Problem& problem, Change change, std::initializer_list<Edit> edits) noexcept;

}  // namespace tovik
