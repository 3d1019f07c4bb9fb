/* What callers of the interior point method say, are told while it runs, and get. Nothing here is in the method's scaled
 * space: objectives, points and infeasibilities are those of the LP that was handed over. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/cholesky/cholesky.h"

namespace tovik::lp::barrier {

/* Which method runs. Both share the linear algebra. */
enum class Algorithm {
  automatic,                // predictor-corrector; where it cannot go on, the embedding
  embedding_from_estimate,  // homogeneous self-dual embedding, begun at the estimated point
  embedding_from_constant,  // the same, begun at the vector of ones
  predictor_corrector
};

/* How the first point is made: estimates are of least squares, the mean is that of the estimated entries. */
enum class Start {
  estimate_zero_dual = 1,
  mean_zero_dual = 2,
  estimate = 3,  // the dual is estimated, too
  mean = 4
};

/* Which columns stay in the system that is factored; the others are eliminated into A D^-1 A'. */
enum class System { automatic, normal, augmented };

struct Options {
  double tolerance = 1e-8;         // relative: complementarity and residuals
  double primal_tolerance = 1e-6;  // absolute: aimed at beyond the relative ones, where iterations reach it
  double dual_tolerance = 1e-6;
  bool absolute =
      true;  // false: the point is no answer yet, so none beyond the relative tolerance is aimed at
  std::int64_t iteration_limit = 2100000000;
  Algorithm algorithm = Algorithm::automatic;
  Start start = Start::estimate_zero_dual;
  int correctors = -1;            // largest number of centrality corrections an iteration; -1: by their cost
  int dense_column = 0;           // columns with more entries are not eliminated; 0: chosen
  double growth = 1e12;           // of the point: beyond it an optimal face is called unbounded
  double objective_range = 1e20;  // an objective beyond it ends the run
  System system = System::automatic;
  cholesky::Options factorization;
};

enum class Ending {
  optimal,
  infeasible,               // farkas is a proof
  unbounded,                // ray is a proof, and there is a point
  infeasible_or_unbounded,  // ray is a proof that there is no optimum
  primal_objective_limit,   // beyond Options::objective_range
  dual_objective_limit,
  unbounded_face,
  no_progress,  // the best point is not good enough to be called optimal, and none better is found
  iteration_limit,
  time_limit,
  tick_limit,
  user_abort,
  out_of_memory,
  file_not_opened,  // the factor's temporary one
  file_not_read,
  file_not_written
};

/* One line of the log. Infeasibilities are the largest of any row or column. */
struct Iteration {
  std::int64_t number = 0;
  double primal_objective = 0, dual_objective = 0;
  double primal_infeasibility = 0, upper_infeasibility = 0, dual_infeasibility = 0;
  double complementarity = 0;  // mean of the products
  double ratio = 0;            // embedding: of its two homogenizing variables
  bool has_ratio = false;
};

/* What the method is made of for this LP, once it is known. */
struct Setup {
  int dense_limit = 0, dense_columns = 0;
  std::int64_t lower_entries = 0;  // of the matrix that is factored
  cholesky::Counts counts;
  bool augmented = false;  // every column but slacks stays in the system
  int correctors = 0;
};

/* Told of each step; for logs. */
class Observer {
 public:
  virtual ~Observer() = default;
  virtual void dense_columns(int limit, int found) = 0;  // before the ordering
  virtual void setup(const Setup& setup) = 0;
  virtual void out_of_core(const cholesky::Storage& storage) = 0;  // where the factor does not fit
  virtual void iteration(const Iteration& now) = 0;
  /* `pairs`: whose products lay too far from the target. */
  virtual void corrections(std::int64_t iteration, int count, std::int64_t pairs) = 0;
};

struct Result {
  Ending ending = Ending::no_progress;
  bool has_point = false;         // x, y are set: the best iterate, within its column bounds
  std::vector<double> x, y;       // columns; rows
  Iteration at;                   // of that point
  double worst_residual = 0;      // its largest relative residual or gap
  double gap_without_offset = 0;  // of an optimal point: relative to the objective without its constant part
  std::vector<double> farkas;     // by row: maximum over the box of y'Ax below what the rows demand
  double farkas_gap = 0;
  std::vector<double> ray;  // by column
  std::int64_t iterations = 0;
  double factor_seconds = 0, solve_seconds = 0;
  std::int64_t factorizations = 0, solves = 0;
  Setup setup;
};

}  // namespace tovik::lp::barrier
