#include "lp/binding/build_lp.h"

#include <algorithm>
#include <cmath>

#include "include/tovik.h"
#include "model/routines/check.h"

namespace tovik::lp::run {

namespace {
double finite(double value) {
  return std::clamp(value, -model::kInfinity, model::kInfinity);
}
}  // namespace

verify::Limits row_bounds(char sense, double rhs, double range) {
  if (sense == 'E') return {finite(rhs), finite(rhs)};
  const verify::Limits limits = verify::row_limits(sense, rhs, range);
  return {stored_lower(limits.lower), stored_upper(limits.upper)};
}

/* Bounds and right-hand sides may be infinite. */
Status check_finite(Environment& env, const model::Model& model, bool with_matrix) {
  const auto check = [&](auto values) {
    return model::check_numbers(env, static_cast<int>(values.size()), values.data());
  };
  if (Status s = check(model.objective()); !s.ok()) return s;
  if (Status s = check(model.range()); !s.ok()) return s;
  for (const auto values : {model.rhs(), model.lower(), model.upper()}) {
    const auto nan = std::find_if(values.begin(), values.end(), [](double v) { return std::isnan(v); });
    if (nan != values.end()) return fail(env, TVK_ERROR_NOT_A_NUMBER, static_cast<int>(nan - values.begin()));
  }
  for (int j = 0; with_matrix && j < model.num_columns(); ++j) {
    const model::ColumnView column = model.column(j);
    if (Status s = model::check_numbers(env, column.count, column.value); !s.ok()) return s;
  }
  return {};
}

LpData build_lp(const model::Model& model) {
  LpData lp;
  const int columns = model.num_columns();
  const int rows = model.num_rows();
  const double sign = model.objective_sense();
  lp.offset = sign * model.objective_offset();
  const auto objective = model.objective();
  const auto lower = model.lower();
  const auto upper = model.upper();
  lp.matrix.rows = rows;
  lp.matrix.columns = columns;
  lp.cost.resize(static_cast<size_t>(columns));
  lp.lower.resize(static_cast<size_t>(columns));
  lp.upper.resize(static_cast<size_t>(columns));
  lp.matrix.start.reserve(static_cast<size_t>(columns) + 1);
  lp.matrix.index.reserve(static_cast<size_t>(model.num_nonzeros()));
  lp.matrix.value.reserve(static_cast<size_t>(model.num_nonzeros()));
  for (int j = 0; j < columns; ++j) {
    lp.cost[j] = sign * objective[j];
    lp.lower[j] = stored_lower(lower[j]);
    lp.upper[j] = stored_upper(upper[j]);
    const model::ColumnView column = model.column(j);
    lp.matrix.index.insert(lp.matrix.index.end(), column.index, column.index + column.count);
    lp.matrix.value.insert(lp.matrix.value.end(), column.value, column.value + column.count);
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
  }
  lp.row_lower.resize(static_cast<size_t>(rows));
  lp.row_upper.resize(static_cast<size_t>(rows));
  const auto rhs = model.rhs();
  const auto sense = model.sense();
  const auto range = model.range();
  for (int i = 0; i < rows; ++i) {
    const verify::Limits b = row_bounds(sense[i], rhs[i], range[i]);
    lp.row_lower[i] = b.lower;
    lp.row_upper[i] = b.upper;
  }
  return lp;
}

}  // namespace tovik::lp::run
