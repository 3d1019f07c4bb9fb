#include "env/status_table.h"

#include <algorithm>
#include <iterator>

#include "include/tovik.h"

namespace tovik {
namespace {

struct StatusText {
  int status;
  const char* text;
  const char* short_text;
};

constexpr StatusText kStatuses[] = {
    {TVK_STATUS_OPTIMAL, "optimal", "optimal"},
    {TVK_STATUS_UNBOUNDED, "unbounded", "unbounded"},
    {TVK_STATUS_INFEASIBLE, "infeasible", "infeasible"},
    {TVK_STATUS_OBJECTIVE_LIMIT, "objective limit exceeded", "obj limit exceeded"},
    {TVK_STATUS_RELAXED_SUM_OPTIMAL, "optimal relaxed sum of infeasibilities", "opt sum of infeas"},
    {TVK_STATUS_RELAXED_SUM_FEASIBLE, "feasible relaxed sum of infeasibilities", "feas sum of infeas"},
    {TVK_STATUS_RELAXED_NUMBER_OPTIMAL, "optimal relaxed number of infeasibilities", "opt num of infeas"},
    {TVK_STATUS_RELAXED_NUMBER_FEASIBLE, "feasible relaxed number of infeasibilities", "feas num of infeas"},
    {TVK_STATUS_RELAXED_SQUARES_OPTIMAL, "optimal relaxed sum of squared infeasibilities",
     "opt sum of sqrinf"},
    {TVK_STATUS_RELAXED_SQUARES_FEASIBLE, "feasible relaxed sum of squared infeasibilities",
     "feas sum of sqrinf"},
    {TVK_STATUS_RELAXATION_ABORTED, "feasopt aborted", "feasopt aborted"},
    {TVK_STATUS_PRIMAL_OBJECTIVE_LIMIT, "primal objective limit exceeded", "prim olim exceeded"},
    {TVK_STATUS_DUAL_OBJECTIVE_LIMIT, "dual objective limit exceeded", "dual olim exceeded"},
    {TVK_STATUS_UNBOUNDED_OR_INFEASIBLE, "unbounded or infeasible", "unbd or infeasible"},
    {TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE, "optimal with unscaled infeasibilities", "opt/unscaled inf."},
    {TVK_STATUS_OPTIMAL_FACE_UNBOUNDED, "optimal face unbounded", "opt face unbounded"},
    {TVK_STATUS_NON_OPTIMAL, "non-optimal", "non-optimal"},
    {TVK_STATUS_ITERATION_LIMIT, "iteration limit exceeded", "iter lim exceeded"},
    {TVK_STATUS_TIME_LIMIT, "time limit exceeded", "time lim exceeded"},
    {TVK_STATUS_TICK_LIMIT, "deterministic time limit exceeded", "det. time lim exc."},
    {TVK_STATUS_USER_ABORT, "user aborted", "user aborted"},
    {TVK_STATUS_CONFLICT_FEASIBLE, "conflict feasible", "conflict feasible"},
    {TVK_STATUS_CONFLICT_MINIMAL, "minimal conflict", "minimal conflict"},
    {TVK_STATUS_CONFLICT_NON_MINIMAL, "non-minimal conflict", "non-min conflict"},
    {TVK_STATUS_CONFLICT_TIME_LIMIT, "conflict time limit exceeded", "conf timelim exc."},
    {TVK_STATUS_CONFLICT_TICK_LIMIT, "deterministic conflict time limit exceeded", "det conf timelim"},
    {TVK_STATUS_CONFLICT_ITERATION_LIMIT, "conflict iteration limit exceeded", "conf iterlim exc."},
    {TVK_STATUS_CONFLICT_NODE_LIMIT, "conflict node limit exceeded", "conf nodelim exc."},
    {TVK_STATUS_CONFLICT_OBJECTIVE_LIMIT, "conflict objective limit exceeded", "conf objlim exc."},
    {TVK_STATUS_CONFLICT_MEMORY_LIMIT, "conflict memory limit exceeded", "conf memlim exc."},
    {TVK_STATUS_CONFLICT_USER_ABORT, "conflict user abort", "conf user abort"},
    {TVK_STATUS_FEASIBLE, "feasible solution", "feasible solution"},
    {TVK_STATUS_MIP_OPTIMAL, "integer optimal solution", "int optimal sol."},
    {TVK_STATUS_MIP_OPTIMAL_TOLERANCE, "integer optimal, tolerance", "int optimal (tol)"},
    {TVK_STATUS_MIP_INFEASIBLE, "integer infeasible", "integer infeasible"},
    {TVK_STATUS_MIP_SOLUTION_LIMIT, "solution limit exceeded", "sol limit exceeded"},
    {TVK_STATUS_MIP_NODE_LIMIT, "node limit exceeded", "node lim exc, feas"},
    {TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION, "node limit exceeded, no integer solution", "node lim, no sol"},
    {TVK_STATUS_MIP_TIME_LIMIT, "time limit exceeded", "time lim exc, feas"},
    {TVK_STATUS_MIP_TIME_LIMIT_NO_SOLUTION, "time limit exceeded, no integer solution", "time lim, no sol"},
    {TVK_STATUS_MIP_TICK_LIMIT, "deterministic time limit exceeded", "dettime lim, feas"},
    {TVK_STATUS_MIP_TICK_LIMIT_NO_SOLUTION, "deterministic time limit exceeded, no integer solution",
     "dettime lim, no sol"},
    {TVK_STATUS_MIP_ERROR, "error termination", "error, feasible"},
    {TVK_STATUS_MIP_ERROR_NO_SOLUTION, "error termination, no integer solution", "error, no solution"},
    {TVK_STATUS_MIP_MEMORY_LIMIT, "memory limit exceeded", "memory lim, feas"},
    {TVK_STATUS_MIP_MEMORY_LIMIT_NO_SOLUTION, "memory limit exceeded, no integer solution",
     "memory lim, no sol"},
    {TVK_STATUS_MIP_USER_ABORT, "aborted", "aborted, feasible"},
    {TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION, "aborted, no integer solution", "aborted, no sol"},
    {TVK_STATUS_MIP_OPTIMAL_UNSCALED_INFEASIBLE, "integer optimal with unscaled infeasibilities",
     "opt, unscaled inf"},
    {TVK_STATUS_MIP_ERROR_TREE, "error termination", "error, feas, tree"},
    {TVK_STATUS_MIP_ERROR_NO_SOLUTION_NO_TREE, "error termination, no integer solution, no tree",
     "error, no sol,tree"},
    {TVK_STATUS_MIP_UNBOUNDED, "integer unbounded", "integer unbounded"},
    {TVK_STATUS_MIP_INFEASIBLE_OR_UNBOUNDED, "integer infeasible or unbounded", "int inf or unbound"},
    {TVK_STATUS_MIP_RELAXED_SUM_OPTIMAL, "optimal relaxed sum of infeasibilities", "opt sum of infeas"},
    {TVK_STATUS_MIP_RELAXED_SUM_FEASIBLE, "feasible relaxed sum of infeasibilities", "feas sum of infeas"},
    {TVK_STATUS_MIP_RELAXED_NUMBER_OPTIMAL, "optimal relaxed number of infeasibilities", "opt num of infeas"},
    {TVK_STATUS_MIP_RELAXED_NUMBER_FEASIBLE, "feasible relaxed number of infeasibilities",
     "feas num of infeas"},
    {TVK_STATUS_MIP_RELAXED_SQUARES_OPTIMAL, "optimal relaxed sum of squared infeasibilities",
     "opt sum of sqrinf"},
    {TVK_STATUS_MIP_RELAXED_SQUARES_FEASIBLE, "feasible relaxed sum of squared infeasibilities",
     "feas sum of sqrinf"},
    {TVK_STATUS_MIP_FEASIBLE, "integer feasible solution", "integer feasible"},
    {TVK_STATUS_POPULATE_SOLUTION_LIMIT, "populate solution limit exceeded", "populate sol limit exceeded"},
    {TVK_STATUS_ALL_SOLUTIONS_FOUND, "all reachable solutions enumerated, integer optimal", "enum completed"},
    {TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE, "all reachable solutions enumerated, pool tolerance",
     "enum (tol) completed"},
    {TVK_STATUS_MIP_ITERATION_LIMIT, "iteration limit exceeded", "iter lim exc, feas"},
    {TVK_STATUS_MIP_ITERATION_LIMIT_NO_SOLUTION, "iteration limit exceeded, no integer solution",
     "iter limit, no sol"},
};
static_assert(std::size(kStatuses) == 65);

const StatusText* find(int status) {
  const auto* found = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                   [&](const StatusText& row) { return row.status == status; });
  return found == std::end(kStatuses) ? nullptr : found;
}

}  // namespace

const char* status_text(int status) {
  const StatusText* row = find(status);
  return row != nullptr ? row->text : nullptr;
}

const char* short_status_text(int status) {
  const StatusText* row = find(status);
  return row != nullptr ? row->short_text : "Unknown stat value";
}

}  // namespace tovik
