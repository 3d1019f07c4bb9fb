/* One worker of a search: a thread, a dive or a sub-problem. Holds a view of what all share, its own domain and
 * relaxation, and what it has found. Whoever holds a Worker& writes nothing but the worker.
 *
 * The relaxation follows the domain's bounds of discrete columns only: bounds that rows imply for continuous columns
 * would make its vertices degenerate and its reduced costs useless; they serve propagation. */
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "lp/simplex/engine_random.h"
#include "lp/simplex/relaxation.h"
#include "mip/pool/cut.h"
#include "mip/propagate/objective.h"
#include "mip/propagate/propagator.h"
#include "mip/worker/global.h"
#include "mip/worker/sub_search.h"

namespace tovik::mip {

/* A point that may be a solution: integer columns need not be whole yet. */
struct Candidate {
  std::vector<double> x;
  const char* found_by = "";  // empty: the relaxation of a node
};

struct GlobalBound {
  int column;
  Side side;
  double value;
};

/* What a worker has found for all. */
struct Out {
  std::vector<Candidate> candidates;
  std::vector<Cut> cuts;
  std::vector<GlobalBound> bounds;
  std::int64_t work = 0;  // entries that plugins have touched
};

/* values x <= side: what duals and cutoff tell of all better solutions. */
struct BoundProof {
  std::vector<int> columns;
  std::vector<double> values;
  double side;
  int position;  // of the trail when it was made
};

/* A row of the relaxation. */
struct RelaxationRow {
  std::span<const int> columns;
  std::span<const double> values;
  double lower, upper;
  bool is_integral;  // its activity is whole wherever the integer columns are
};

/* A cut as one row more. */
void append_row(const Cut& cut, lp::simplex::RowBlock& rows);

struct Worker {
  Worker(const Global& shared, std::unique_ptr<lp::simplex::Relaxation> engine, lp::Control& stop_control);

  const Global& global;
  lp::Control& control;
  Domain domain;
  Propagator propagator;
  ObjectivePropagator objective;
  std::unique_ptr<lp::simplex::Relaxation> relaxation;
  lp::simplex::EngineRandom random;
  Out out;
  std::vector<Cut> cut_rows;        // of the relaxation, behind the problem's rows
  std::int64_t iterations = 0;      // of the simplex, of all solves and sub-searches
  std::vector<BoundProof> proofs;   // of bounds on the trail
  SubSearch* sub_search = nullptr;  // null: this worker has none

  int num_rows() const { return global.problem.num_rows() + static_cast<int>(cut_rows.size()); }
  RelaxationRow row(int i) const;

  /* Asked for in every loop that may be long; it reads the clock. */
  bool must_stop() const {
    return control.poll() != lp::Stop::none || control.poll_clock() != lp::Stop::none;
  }
  /* Rows, objects and the cutoff. False when the domain holds nothing better than the cutoff. */
  bool propagate();
  void backtrack(int position);
  /* For the reason of bounds by reduced costs, after safe_bound(): its index among the proofs; -1: it would take too much. */
  int keep_proof();
  /* Gives the domain's bounds of discrete columns to the relaxation. */
  void flush();
  /* flush() and resolve(). */
  lp::Outcome solve(const lp::simplex::Limits& limits,
                    lp::simplex::Detail detail = lp::simplex::Detail::primal);

  /* A bound on the objective of the relaxation within the domain that holds whatever rounding did: from the present
   * duals, with the domain's bounds ("Safe bounds in linear and mixed-integer linear programming", 2004), less what rounding
   * may have added to the reduced costs, or from compensated sums where that is much.
   * -kInf where a column without bound has a reduced cost. Leaves the reduced costs that belong to it: the objective is at
   * least the bound plus d_j times the distance of x_j from the bound that d_j's sign names. Cost: one pass over the
   * entries. */
  double safe_bound();
  std::span<const double> safe_reduced_costs() const { return safe_reduced_costs_; }
  /* The bound without what columns add to it: the objective is at least this plus the sum of d_j x_j. */
  double safe_constant() const { return safe_constant_; }
  /* After infeasible: the proof stands on the relaxation's data. */
  bool is_proven_infeasible();

 private:
  std::vector<lp::simplex::BoundChange> changes_;
  std::vector<double> safe_reduced_costs_, used_duals_;
  double safe_constant_ = 0;
  std::size_t proof_entries_ = 0;
};

}  // namespace tovik::mip
