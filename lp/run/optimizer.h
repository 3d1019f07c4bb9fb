/* An optimizer of one LP as a run sees it, whatever its algorithm.
 *
 * - Gets: the LP in minimization form when it is made; a starting basis, or none; at each call the environment with
 *   its parameters, what the caller asks for beyond them, a control, and an observer of simplex iterations.
 * - Leaves: outcome, answer and counters, in the space of its LP. It writes no problem: the run does.
 * - Stays: it may be kept with the LP that it was made from, goes on from its last basis, and is told of changes of
 *   the LP by synchronize().
 * - Order: make_optimizer(); after changes synchronize(); set_start() or forget_start() unless it is to go on from where
 *   it stands; optimize() or evaluate_start(); answer().
 * - Errors: failure(); bad_alloc passes through, and the object is to be thrown away then.
 *
 * Another algorithm is a file with a class of this interface, a value of Method and its branch in make_optimizer(). */
#pragma once

#include <memory>

#include "env/environment.h"
#include "env/error.h"
#include "env/journal.h"
#include "env/problem.h"
#include "lp/base/answer.h"
#include "lp/base/basis.h"
#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/run/start_counts.h"
#include "lp/simplex/observer.h"
#include "lp/simplex/statistics.h"
#include "lp/simplex/types.h"

namespace tovik::lp::run {

/* What a call asks for. */
struct Algorithm {
  Method method;
  bool sift = false;  // begin by sifting, whatever TVK_PARAM_LPMETHOD says
  /* Not null: begin with the interior point method, and count here what it does; `method` says which crossover then
   * makes a vertex of its point. */
  BarrierCounts* barrier = nullptr;
  /* Not null: `method` begins at the basis of the network in the LP, and what the network simplex does is counted here. */
  NetworkCounts* network = nullptr;
  bool concurrent = false;  // several at once, `method` among them
  bool dual_form = false;   // the simplex works on the LP's dual
};

/* Whose run it is. */
struct RunContext {
  const Environment& env;
  const Problem& problem;  // states the sense of objective limits
  const Algorithm& algorithm;
  Control& control;
  simplex::Observer* observer;  // null: nobody looks on
};

class Optimizer : public Derived {
 public:
  /* False where it was made under parameters that are fixed for its life and are others now. */
  virtual bool fits(const Environment& env) const = 0;
  /* Brings it up to date with lp, of which `changes` names what has changed. False: only a new one can. */
  virtual bool synchronize(const LpData& lp, const Journal& changes) = 0;

  /* A start that is the basis where it stands changes nothing: factor, values and weights stay. */
  virtual void set_start(const Basis& start) = 0;
  virtual void forget_start() = 0;

  virtual Outcome optimize(const RunContext& context) = 0;
  virtual Status failure() const { return {}; }  // of the last call; an error that is no outcome
  /* The answer at the start, without a step. */
  virtual void evaluate_start() = 0;
  virtual const Answer& answer() const = 0;
  virtual Answer release_answer() = 0;                 // the object is then to be thrown away
  virtual simplex::Statistics statistics() const = 0;  // of the last call
};

std::unique_ptr<Optimizer> make_optimizer(LpData lp, const RunContext& context);

/* The parameters and what the call asks for beyond them. */
simplex::Options options_of(const Environment& env, const Algorithm& algorithm);

}  // namespace tovik::lp::run
