/* What presolve left with a problem: the data it started from, the reduced problem and the stack for
 * postsolve. Belongs to the problem until it is freed, the model changes, or the optimizer that made it
 * ends. */
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "env/environment.h"
#include "env/journal.h"
#include "env/problem.h"
#include "lp/presolve/presolve.h"
#include "lp/verify/certificates.h"

namespace tovik::lp::run {

enum class Conclusion {
  reduced,     // the reduced problem stands for the original
  infeasible,  // proven on the original's data
  unbounded,
  undecided,  // infeasible or unbounded
  stopped     // by a limit or the user; the reduced problem stands for the original nevertheless
};

struct Presolved : Derived {
  LpData original;  // minimization form
  double sign = 1;  // -1: the user maximizes
  presolve::Reduction reduction;
  Conclusion conclusion = Conclusion::reduced;
  verify::FarkasProof proof;  // when infeasible
  double seconds = 0;
  std::unique_ptr<Problem> reduced;  // the reduced problem as users see it, made when asked for
  /* The optimizer that solved the reduced problem last, kept for the next run, and the changes of the reduced
   * problem that it has yet to follow. */
  std::unique_ptr<Derived> optimizer;
  Journal optimizer_changes;
  bool apply_change(const Problem& problem, Change change, std::span<const int> indices) override;
  bool all_removed() const { return reduction.lp.num_columns() == 0 && reduction.lp.num_rows() == 0; }
};

/* What the parameters allow. */
presolve::Settings presolve_settings(const Environment& env);

/* Runs presolve on a problem whose data were checked, and writes its lines while the presolve display is
 * on. */
std::unique_ptr<Presolved> make_presolved(Environment& env, Problem& problem);

/* 0, or the code of what presolve found out or was stopped by. */
int outcome_code(const Presolved& presolved);

/* Checks the data, runs presolve and leaves its record with the problem; without one when it comes to a
 * conclusion or is stopped (outcome_code()), or memory is short. */
Status run_presolve(Environment& env, Problem& problem);

/* The record that TVKpresolve left with the problem, or null. */
Presolved* kept_record(const Problem& problem);

/* Multipliers by row of the original, tried on its data. Those that carry noise are no proof, nor are those that a point
 * within the tolerance evades where bounds cross, which are one for every engine: it may find a better one, or that point. */
bool proves_infeasible(const LpData& original, std::vector<double> multipliers, double tolerance,
                       verify::FarkasProof& proof);

}  // namespace tovik::lp::run
