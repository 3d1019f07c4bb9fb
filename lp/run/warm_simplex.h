/* The simplex engine that lives with a problem between optimizations: it keeps scaled model, basis, factor
 * and norms, and follows the changes that the problem's journal names, so that the next optimization goes on
 * where the last one ended and looks at nothing that has not changed. */
#pragma once

#include <memory>
#include <vector>

#include "env/problem.h"
#include "lp/base/basis.h"
#include "lp/simplex/relaxation.h"

namespace tovik::lp::run {

class WarmSimplex : public Derived {
 public:
  WarmSimplex(LpData lp, const simplex::Options& options, Control& control, simplex::Observer* observer)
      : solver(std::move(lp), options, control, observer) {}
  bool follows_structure() const override { return start_installed; }
  simplex::Relaxation solver;
  bool start_installed = false;  // problem.start holds the basis that the engine stands on
  bool norms_current = true;     // no rows or columns have come or gone since the last optimization
};

/* While an engine is on its way from one state to another a failure must not leave it in between: without a
 * commit() it takes the engine away, and the next call makes a new one from the model. */
class EngineGuard {
 public:
  explicit EngineGuard(Problem& problem) : problem_(problem) {}
  ~EngineGuard() {
    if (!committed_) problem_.simplex.reset();
  }
  EngineGuard(const EngineGuard&) = delete;
  EngineGuard& operator=(const EngineGuard&) = delete;
  void commit() { committed_ = true; }

 private:
  Problem& problem_;
  bool committed_ = false;
};

/* What an engine works with in one call. */
struct EngineSetup {
  const simplex::Options& options;
  Control& control;
  simplex::Observer* observer = nullptr;
};

/* The engine of a problem, made or brought up to date with the model: the only door to it, so no engine ever
 * holds data that are not numbers (1225 or 1233; no more is looked at than has changed, and the engine stays
 * as it was). Its basis is not looked at: see install_start() and install_basis(). */
Status warm_simplex(Environment& env, Problem& problem, const EngineSetup& setup, WarmSimplex** engine);
/* As TVK_PARAM_ADVIND says: the starting basis, or the slack basis. */
void install_start(Environment& env, Problem& problem, WarmSimplex& warm);
/* The starting basis, which the problem must hold, where the engine does not stand on it. */
void install_basis(Problem& problem, WarmSimplex& warm);

/* The starting basis as engines see it: a row's status is that of its activity. */
Basis starting_basis(const Problem& problem);
/* The starting basis is from now on another one than the engine stands on. */
void release_engine(Problem& problem);

/* The engine if there is one that is up to date with a solved problem, else null. */
WarmSimplex* synchronized_simplex(Problem& problem);

/* Whether the starting basis is primal feasible, where the engine can tell by looking at the changes. 1225 or
 * 1233 as warm_simplex(). */
enum class PrimalFeasibility { unknown, feasible, infeasible };
Status start_feasibility(Environment& env, Problem& problem, PrimalFeasibility* start);

}  // namespace tovik::lp::run
