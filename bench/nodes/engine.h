/* What the benchmark asks of an LP engine: the calls of a branch and bound.
 *
 * An engine is made from the plain data of a model, which outlives it, and is used in this order:
 * solve_root(), then any number of changes, each followed by resolve() before primal() or branch() is asked.
 * All objectives are those of the minimization. Presolve is off everywhere and nothing is taken back
 * silently: what a change costs the engine is what the clock sees. */
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "bench/nodes/model.h"

namespace bench {

struct BoundChange {
  int column;
  double lower, upper;
};

/* Rows a'x <= upper, compressed. */
struct Rows {
  std::vector<int> start{0}, index;
  std::vector<double> value, upper;
  int count() const { return static_cast<int>(upper.size()); }
};

enum class State { optimal, infeasible, limit, failed };

struct Solve {
  State state = State::failed;
  double objective = 0;  // where optimal
  std::int64_t pivots = 0;
};

/* A column with the fractional value at which it is branched on. */
struct BranchPoint {
  int column;
  double value;
};

/* What the probes of a list of branch points took. A probe that ends before its limit takes fewer pivots than
 * it may; an engine that does not tell leaves pivots at -1. */
struct Branches {
  std::vector<double> down, up;  // objectives reached; infinite where infeasible
  std::int64_t pivots = 0;
};

class Engine {
 public:
  virtual ~Engine() = default;
  virtual Solve solve_root() = 0;  // from the slack basis, by the dual
  virtual void change_bounds(std::span<const BoundChange> changes) = 0;
  virtual void add_rows(const Rows& rows) = 0;
  virtual void delete_rows(std::span<const int> rows) = 0;  // ascending; later rows move down
  virtual Solve resolve() = 0;                              // by the dual from where the engine stands
  virtual std::span<const double> primal() = 0;             // columns, after an optimal solve
  /* At most `limit` dual pivots each way from the present optimum, which is left as it was. */
  virtual Branches branch(std::span<const BranchPoint> points, std::int64_t limit) = 0;
  /* Basic variables of the last solve: column j, or columns + i for the slack of row i. Empty where not
   * told. */
  virtual std::vector<int> basic_variables() { return {}; }
};

using MakeEngine = std::function<std::unique_ptr<Engine>(const Model&)>;

/* An engine by name; without `make` it is not at hand. */
struct Contestant {
  const char* name = "";
  MakeEngine make;
  explicit operator bool() const { return static_cast<bool>(make); }
};

Contestant node_engine();        // the simplex engine itself
Contestant exported_routines();  // through include/tovik.h
Contestant clp();                // the distribution's library, where it is installed

}  // namespace bench
