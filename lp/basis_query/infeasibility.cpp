#include "lp/basis_query/infeasibility.h"

#include <cmath>

#include "lp/base/sum.h"
#include "lp/verify/bounds.h"

namespace tovik::lp::run {
namespace {

verify::Limits row_limits(const model::Model& model, int i) {
  return verify::row_limits(model.sense()[i], model.rhs()[i], model.range()[i]);
}

/* Positive above the upper limit, negative below the lower one. */
double violation(double value, verify::Limits limits) {
  if (limits.upper < model::kInfinity && value > limits.upper) return value - limits.upper;
  if (limits.lower > -model::kInfinity && value < limits.lower) return value - limits.lower;
  return std::isnan(value) ? value : 0.0;
}

}  // namespace

double row_activity(const model::Model& model, int i, const double* x) {
  const model::RowView row = model.row(i);
  CompensatedSum sum;
  double plain = 0;
  for (int k = 0; k < row.count; ++k) {
    sum.add_product(row.value[k], x[row.index[k]]);
    plain += row.value[k] * x[row.index[k]];
  }
  return std::isfinite(plain) ? sum.value() : plain;  // corrections of an infinite sum are no numbers
}

double row_violation(const model::Model& model, int i, const double* x) {
  return violation(row_activity(model, i, x), row_limits(model, i));
}

double column_violation(const model::Model& model, int j, double value) {
  const double from_bounds = violation(value, {model.lower()[j], model.upper()[j]});
  const char type = model.column_types().empty() ? 'C' : model.column_types()[j];
  const bool may_be_zero = type == 'S' || type == 'N';
  return may_be_zero && std::fabs(value) < std::fabs(from_bounds) ? value : from_bounds;
}

}  // namespace tovik::lp::run
