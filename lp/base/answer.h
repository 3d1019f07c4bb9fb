/* What a solve tells, in the user's space of the minimization form. */
#pragma once

#include <vector>

#include "lp/base/basis_status.h"
#include "lp/base/outcome.h"

namespace tovik::lp {

enum class Method { dual, primal };

/* Largest violations of a point in the user's space, and where. */
struct Violation {
  double row = 0, column = 0, dual = 0;
  int worst_row = -1, worst_column = -1, worst_dual = -1;  // worst_dual: variable, n + i for a row's dual
  double primal() const { return row > column ? row : column; }
};

struct Answer {
  Outcome outcome = Outcome::numerical_failure;
  bool has_values = false;  // x, activity, y, d, statuses are set
  bool primal_feasible = false, dual_feasible = false;
  bool unscaled_infeasible = false;  // optimal in scaled space, beyond the tolerance in the user's
  Method method = Method::dual;      // of the last run that moved
  double objective = 0;
  std::vector<double> x, activity, y, d;
  std::vector<BasisStatus> column_status, row_status;  // of a row: the status of its activity
  std::vector<double> ray;                             // unbounded: columns
  std::vector<double> farkas;  // infeasible: y by row with max over the box of y'Ax < min of y'(row bounds)
  double farkas_gap = 0;       // by which the certificate holds
  double farkas_margin = 0;    // by how much all sides and bounds may give way before it does not
  bool farkas_clean = true;    // it leaves no noise in columns without a bound
  Violation violation;         // as last measured at all entries

  /* Takes back what the last solve claimed; values and statuses stay where they are. */
  void withdraw() {
    outcome = Outcome::numerical_failure;
    has_values = primal_feasible = dual_feasible = unscaled_infeasible = false;
    ray.clear();
    farkas.clear();
    farkas_gap = farkas_margin = 0;
    farkas_clean = true;
  }
};

}  // namespace tovik::lp
