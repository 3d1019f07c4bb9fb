/* What presolve left with a problem: the data it started from, the reduced problem and the way back. Hangs on
 * the problem until it is freed, the model changes, or the optimizer that made it ends. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "lp/presolve/presolve.h"

namespace tovik::lp::dispatch {

struct Presolved : Derived {
  LpData original;  // minimization form
  presolve::Reduction reduction;
  double seconds = 0;
  bool reduced_problem() const { return reduction.lp.num_columns() > 0 || reduction.lp.num_rows() > 0; }
};

/* What the parameters allow. */
presolve::Settings presolve_settings(const Environment& env);

/* Runs presolve on a problem whose data were checked; whatever it found is in the record. */
std::unique_ptr<Presolved> make_presolved(Environment& env, Problem& problem);

}  // namespace tovik::lp::dispatch
