/* What is known of one model after the program is through with it, and the exit status that follows. */
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tovik::cli {

/* The exit status of the program. With several models the largest. */
enum class ExitStatus {
  solved = 0,
  infeasible = 1,
  usage = 2,
  limit_with_solution = 3,
  limit_without_solution = 4,
  unbounded = 5,
  infeasible_or_unbounded = 6,
  bad_input = 7,
  out_of_memory = 8,
  numerical_failure = 9,
  interrupted = 130
};

/* The largest of some violations and where it is. */
struct LargestViolation {
  double amount = 0;
  int index = -1;    // row or column; -1 when nothing is violated
  std::string name;  // of that row or column, once it was asked for
  void update(double violation, int where) {
    if (violation > amount || violation != violation) {
      amount = violation;
      index = where;
    }
  }
};

/* Violations on the original model, unscaled and absolute. */
struct Violations {
  LargestViolation row, bound, integrality, dual_column, dual_row;
  bool has_integers = false;
  bool has_duals = false;
  double objective_difference = 0;  // of the stated objective from c'x, relative
  bool failed = false;              // more than the tolerances allow for numbers of this size
  double primal() const { return row.amount > bound.amount ? row.amount : bound.amount; }
  double dual() const { return dual_row.amount > dual_column.amount ? dual_row.amount : dual_column.amount; }
};

/* A row or a bound of a proof of infeasibility: "name >= limit", and the multiplier that it has there. */
struct ProofPart {
  std::string name;
  char side;  // '<', '>', '='
  double limit, weight;
};
/* Rows and bounds that no point satisfies together; empty where there is none. */
struct Proof {
  double gap = 0;
  std::vector<ProofPart> rows, bounds;
  bool empty() const { return rows.empty() && bounds.empty(); }
};
/* A column of a direction along which the objective improves for ever. */
struct Movement {
  std::string name;
  double rate;
};

struct Value {
  std::string name;
  double value;
  std::optional<double> dual;  // reduced cost of a column, dual value of a row
};

struct Outcome {
  std::string file;
  bool complete = false;  // no error before the answer was known
  bool network = false;   // rows are nodes, columns are arcs
  std::optional<int> rows, columns, nonzeros, problem_type;
  std::optional<int> status;
  std::string status_text;
  bool feasible = false;  // the values are a feasible solution
  std::optional<double> objective, best_bound, gap;
  std::optional<Violations> violations;  // of the values, where there are any
  std::optional<int> simplex_iterations, barrier_iterations, nodes;
  std::optional<int> pool_solutions;  // where somebody asks for them
  std::optional<double> ticks;        // deterministic work
  std::optional<int> threads;         // that ran
  Proof proof;                        // of an infeasible model
  std::vector<Movement> ray;          // of an unbounded one
  bool so_far = false;  // a limit came before feasibility: the violations are those of the last point
  std::vector<Value> column_values, row_values;  // where they are asked for
  std::string method;
  std::optional<double> read_seconds, presolve_seconds, solve_seconds;
  double peak_memory_mb = 0;
  std::string statistics;             // JSON; empty where nobody asked or nothing was optimized
  bool has_values = false;            // the library holds values, feasible or not
  std::vector<std::string> warnings;  // of the reader of the file
  std::vector<std::string> written;   // files, in order
  std::string error;                  // text of the first error, empty without one
  ExitStatus exit_status = ExitStatus::solved;
};

/* The exit status for a solution status of the library; `feasible`: values are known that satisfy the
 * model. */
ExitStatus exit_status_of(int status, bool feasible);
bool is_optimal(int status);

/* The exit status for an error code, while reading a model or while solving it. */
ExitStatus exit_status_of_read_error(int code);
ExitStatus exit_status_of_solve_error(int code);
/* ... or while writing a file. */
ExitStatus exit_status_of_write_error(int code);

/* What --exit-zero makes of it: every answer about the model is 0. */
ExitStatus with_exit_zero(ExitStatus status);

/* Largest resident size of this process in megabytes. */
double peak_memory_mb();

}  // namespace tovik::cli
