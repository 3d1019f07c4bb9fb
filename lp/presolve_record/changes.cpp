/* Changes of the model that are applied to a presolve record, so that it need not be made again: what
 * lp/presolve/model_change can apply, in the words of the model. The reduced problem that the user may hold
 * and the optimizer that solved it follow. */
#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/binding/build_lp.h"
#include "lp/presolve/model_change.h"
#include "lp/presolve_record/presolved.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

using presolve::NewCost;
using presolve::NewRange;
using presolve::reduced_index;

/* For the optimizer that is kept with the record. All of them were kept by presolve. */
void record_values(Presolved& record, Edit::Dimension dimension, std::span<const int> changed) {
  if (record.optimizer == nullptr) return;
  const presolve::Reduction& reduction = record.reduction;
  const bool rows = dimension == Edit::Dimension::rows;
  std::vector<int> reduced;
  for (const int k : changed)
    reduced.push_back(reduced_index(rows ? reduction.row_map : reduction.column_map, k));
  record.optimizer_changes.record(Edit::values(dimension, reduced));
}

bool apply_costs(Presolved& record, const model::Model& model, std::span<const int> columns) {
  const double offset = record.sign * model.objective_offset();
  std::vector<NewCost> costs;
  for (const int j : columns) costs.push_back({j, record.sign * model.objective()[j]});
  if (!std::isfinite(offset) ||
      !std::all_of(costs.begin(), costs.end(), [](const NewCost& c) { return std::isfinite(c.cost); }) ||
      !presolve::change_costs(record.reduction, record.original, costs, offset))
    return false;
  record_values(record, Edit::Dimension::columns, columns);
  if (record.reduced == nullptr) return true;
  const LpData& reduced = record.reduction.lp;
  for (const int j : columns) {
    const int at = reduced_index(record.reduction.column_map, j);
    record.reduced->model->set_objective(at, record.sign * reduced.cost[at]);
  }
  record.reduced->model->set_objective_offset(record.sign * reduced.offset);
  return true;
}

bool apply_bounds(Presolved& record, const model::Model& model, std::span<const int> columns) {
  std::vector<NewRange> bounds;
  for (const int j : columns) {
    if (std::isnan(model.lower()[j]) || std::isnan(model.upper()[j])) return false;
    bounds.push_back({j, stored_lower(model.lower()[j]), stored_upper(model.upper()[j])});
  }
  if (!presolve::change_bounds(record.reduction, record.original, bounds)) return false;
  record_values(record, Edit::Dimension::columns, columns);
  if (record.reduced == nullptr) return true;
  const LpData& reduced = record.reduction.lp;
  for (const int j : columns) {
    const int at = reduced_index(record.reduction.column_map, j);
    record.reduced->model->set_lower(at, std::max(reduced.lower[at], -model::kInfinity));
    record.reduced->model->set_upper(at, std::min(reduced.upper[at], model::kInfinity));
  }
  return true;
}

bool apply_sides(Presolved& record, const model::Model& model, std::span<const int> rows) {
  std::vector<NewRange> sides;
  for (const int i : rows) {
    if (std::isnan(model.rhs()[i])) return false;
    const verify::Limits fresh = row_bounds(model.sense()[i], model.rhs()[i], model.range()[i]);
    sides.push_back({i, fresh.lower, fresh.upper});
  }
  if (!presolve::change_sides(record.reduction, record.original, sides)) return false;
  record_values(record, Edit::Dimension::rows, rows);
  if (record.reduced == nullptr) return true;
  const LpData& reduced = record.reduction.lp;
  for (const NewRange& fresh : sides) {
    const int at = reduced_index(record.reduction.row_map, fresh.index);
    record.reduced->model->set_rhs(at, fresh.lower > -kInf ? reduced.row_lower[at] : reduced.row_upper[at]);
  }
  return true;
}

/* The rows that the model has beyond those of the record. False when one is ranged or holds what is no number. */
bool find_new_rows(const Presolved& record, const model::Model& model, presolve::NewRows& added) {
  for (int i = record.original.num_rows(); i < model.num_rows(); ++i) {
    if (model.sense()[i] == 'R') return false;
    const model::RowView row = model.row(i);
    const auto finite = [](double value) { return std::isfinite(value); };
    if (std::isnan(model.rhs()[i]) || !std::all_of(row.value, row.value + row.count, finite)) return false;
    Matrix& rows = added.rows;
    rows.index.insert(rows.index.end(), row.index, row.index + row.count);
    rows.value.insert(rows.value.end(), row.value, row.value + row.count);
    rows.start.push_back(static_cast<int>(rows.index.size()));
    ++rows.columns;
    const verify::Limits sides = row_bounds(model.sense()[i], model.rhs()[i], 0);
    added.lower.push_back(sides.lower);
    added.upper.push_back(sides.upper);
  }
  added.rows.rows = record.original.num_columns();
  return true;
}

void add_to_user_problem(const Presolved& record, const model::Model& model, const Matrix& added) {
  const int first = model.num_rows() - added.columns;
  std::vector<int> index;
  for (const int j : added.index) index.push_back(reduced_index(record.reduction.column_map, j));
  model::NewRows rows;
  rows.count = added.columns;
  rows.rhs = model.rhs().data() + first;
  rows.sense = model.sense().data() + first;
  std::vector<const char*> names;
  for (int i = first; !model.row_names().empty() && i < model.num_rows(); ++i)
    names.push_back(model.row_names().name(i));
  rows.names = names.empty() ? nullptr : names.data();
  rows.begin = added.start.data();
  rows.index = index.data();
  rows.value = added.value.data();
  rows.entries = static_cast<int>(index.size());
  record.reduced->model->add_rows({}, rows);
}

bool take_rows(Presolved& record, const model::Model& model) {
  presolve::NewRows added;
  if (!find_new_rows(record, model, added) || !presolve::add_rows(record.reduction, record.original, added))
    return false;
  record.optimizer_changes.record(Edit::added(Edit::Dimension::rows, added.rows.columns));
  if (record.reduced != nullptr) add_to_user_problem(record, model, added.rows);
  return true;
}

}  // namespace

bool Presolved::apply_change(const Problem& problem, Change change, std::span<const int> indices) {
  switch (change) {
    case Change::objective:
      return apply_costs(*this, *problem.model, indices);
    case Change::bounds:
      return apply_bounds(*this, *problem.model, indices);
    case Change::rhs:
      return apply_sides(*this, *problem.model, indices);
    case Change::rows:
      return take_rows(*this, *problem.model);
    default:
      return false;
  }
}

}  // namespace tovik::lp::run
