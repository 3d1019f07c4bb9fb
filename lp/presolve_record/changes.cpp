/* Changes of the model that a presolve record takes over, so that it need not be made again.
 *
 * A change is taken over when everything that presolve concluded still holds after it: costs and bounds of
 * kept columns as long as nothing was concluded from dual arguments that look at other columns' data, bounds
 * only when they become tighter; right-hand sides of rows that were used for nothing; rows over kept columns.
 * The reduced problem that the user may hold follows. */
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "lp/binding/build_lp.h"
#include "lp/presolve/forward.h"
#include "lp/presolve_record/presolved.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

using presolve::Rule;

bool used(const Presolved& record, std::initializer_list<Rule> rules) {
  return std::any_of(rules.begin(), rules.end(),
                     [&](Rule rule) { return record.reduction.counts.hits[static_cast<size_t>(rule)] > 0; });
}

bool used_dual_arguments(const Presolved& record) {
  return used(record,
              {Rule::dominated_column, Rule::dual_equation, Rule::zero_cost_column, Rule::parallel_columns});
}

/* Place of each of `lines` in the reduced problem; empty when one is not there. */
std::vector<int> places(const std::vector<int>& map, std::span<const int> lines) {
  std::vector<int> result;
  for (const int line : lines) {
    const auto at = std::lower_bound(map.begin(), map.end(), line);
    if (at == map.end() || *at != line) return {};
    result.push_back(static_cast<int>(at - map.begin()));
  }
  return result;
}

/* A line may be listed more than once: after the first time it no longer differs. */
bool take_costs(Presolved& record, const model::Model& model, std::span<const int> columns) {
  const std::vector<int> place = places(record.reduction.column_map, columns);
  if (place.size() != columns.size() || (!columns.empty() && used_dual_arguments(record))) return false;
  const double offset = record.sign * model.objective_offset();
  if (!std::isfinite(offset)) return false;
  for (const int j : columns) {
    if (!std::isfinite(model.objective()[j])) return false;
  }
  LpData &original = record.original, &reduced = record.reduction.lp;
  reduced.offset += offset - original.offset;
  original.offset = offset;
  for (size_t k = 0; k < columns.size(); ++k) {
    const int j = columns[k], at = place[k];
    const double cost = record.sign * model.objective()[j];
    reduced.cost[at] += cost - original.cost[j];
    original.cost[j] = cost;
    if (record.reduced != nullptr) record.reduced->model->set_objective(at, record.sign * reduced.cost[at]);
  }
  if (record.reduced != nullptr) record.reduced->model->set_objective_offset(record.sign * reduced.offset);
  return true;
}

struct Bounds {
  double lower, upper;
};

/* A bound that changes must become tighter, and it must be the one that the reduced column has. */
bool bounds_fit(const Presolved& record, int j, int at, const Bounds& fresh) {
  const LpData &original = record.original, &reduced = record.reduction.lp;
  const bool lower_fits = fresh.lower == original.lower[j] ||
                          (fresh.lower > original.lower[j] && reduced.lower[at] == original.lower[j]);
  const bool upper_fits = fresh.upper == original.upper[j] ||
                          (fresh.upper < original.upper[j] && reduced.upper[at] == original.upper[j]);
  return lower_fits && upper_fits &&
         std::max(fresh.lower, reduced.lower[at]) <= std::min(fresh.upper, reduced.upper[at]);
}

bool take_bounds(Presolved& record, const model::Model& model, std::span<const int> columns) {
  const std::vector<int> place = places(record.reduction.column_map, columns);
  if (place.size() != columns.size() || used_dual_arguments(record)) return false;
  const auto bounds_of = [&](int j) {
    return Bounds{stored_lower(model.lower()[j]), stored_upper(model.upper()[j])};
  };
  for (size_t k = 0; k < columns.size(); ++k) {
    if (!bounds_fit(record, columns[k], place[k], bounds_of(columns[k]))) return false;
  }
  LpData &original = record.original, &reduced = record.reduction.lp;
  for (size_t k = 0; k < columns.size(); ++k) {
    const int j = columns[k], at = place[k];
    const Bounds fresh = bounds_of(j);
    if (fresh.lower != original.lower[j]) reduced.lower[at] = original.lower[j] = fresh.lower;
    if (fresh.upper != original.upper[j]) reduced.upper[at] = original.upper[j] = fresh.upper;
    if (record.reduced == nullptr) continue;
    record.reduced->model->set_lower(at, std::max(reduced.lower[at], -model::kInfinity));
    record.reduced->model->set_upper(at, std::min(reduced.upper[at], model::kInfinity));
  }
  return true;
}

bool same_sides(double lower, double upper, double other_lower, double other_upper) {
  return (lower == -kInf) == (other_lower == -kInf) && (upper == kInf) == (other_upper == kInf) &&
         (lower == upper) == (other_lower == other_upper);
}

bool take_sides(Presolved& record, const model::Model& model, std::span<const int> rows) {
  const std::vector<int> place = places(record.reduction.row_map, rows);
  if (place.size() != rows.size() || used_dual_arguments(record) ||
      used(record, {Rule::free_column, Rule::dependent_rows}))
    return false;
  LpData &original = record.original, &reduced = record.reduction.lp;
  const std::vector<char> plain = presolve::plain_rows(record.reduction);
  const auto sides_of = [&](int i) { return row_bounds(model.sense()[i], model.rhs()[i], model.range()[i]); };
  for (size_t k = 0; k < rows.size(); ++k) {
    const int i = rows[k], at = place[k];
    const RowBounds fresh = sides_of(i);
    if (!plain[i] || !same_sides(fresh.lower, fresh.upper, original.row_lower[i], original.row_upper[i]) ||
        !same_sides(fresh.lower, fresh.upper, reduced.row_lower[at], reduced.row_upper[at]) ||
        std::isnan(model.rhs()[i]))
      return false;
  }
  for (size_t k = 0; k < rows.size(); ++k) {
    const int i = rows[k], at = place[k];
    const RowBounds fresh = sides_of(i);
    const bool low = fresh.lower > -kInf;
    const double shift = low ? fresh.lower - original.row_lower[i] : fresh.upper - original.row_upper[i];
    reduced.row_lower[at] += shift;
    reduced.row_upper[at] += shift;
    original.row_lower[i] = fresh.lower;
    original.row_upper[i] = fresh.upper;
    if (record.reduced != nullptr)
      record.reduced->model->set_rhs(at, low ? reduced.row_lower[at] : reduced.row_upper[at]);
  }
  return true;
}

/* Rows to come, each by places of columns. */
struct RowList {
  std::vector<int> begin, place;
  std::vector<double> value;
};

/* The rows that the model has beyond those of the record, in the reduced problem. False when one is ranged or
 * uses a column that is not there. */
bool find_new_rows(const Presolved& record, const model::Model& model, RowList& list) {
  for (int i = record.original.num_rows(); i < model.num_rows(); ++i) {
    const model::RowView row = model.row(i);
    const std::vector<int> place =
        places(record.reduction.column_map, {row.index, static_cast<size_t>(row.count)});
    if (model.sense()[i] == 'R' || place.size() != static_cast<size_t>(row.count)) return false;
    list.begin.push_back(static_cast<int>(list.place.size()));
    list.place.insert(list.place.end(), place.begin(), place.end());
    list.value.insert(list.value.end(), row.value, row.value + row.count);
  }
  list.begin.push_back(static_cast<int>(list.place.size()));
  return true;
}

/* lp with rows added at its end; column_of: from places to columns, empty for the same. */
LpData with_rows(const LpData& lp, const RowList& list, const std::vector<int>& column_of,
                 const std::vector<RowBounds>& sides) {
  Matrix rows = transpose(lp.matrix);
  for (size_t k = 0; k + 1 < list.begin.size(); ++k) {
    for (int at = list.begin[k]; at < list.begin[k + 1]; ++at) {
      rows.index.push_back(column_of.empty() ? list.place[at] : column_of[list.place[at]]);
      rows.value.push_back(list.value[at]);
    }
    rows.start.push_back(static_cast<int>(rows.index.size()));
    ++rows.columns;
  }
  LpData longer = lp;
  longer.matrix = transpose(rows);
  for (const RowBounds& side : sides) {
    longer.row_lower.push_back(side.lower);
    longer.row_upper.push_back(side.upper);
  }
  return longer;
}

void add_to_user_problem(Problem& reduced, const model::Model& model, int first, const RowList& list) {
  model::NewRows rows;
  rows.count = static_cast<int>(list.begin.size()) - 1;
  rows.rhs = model.rhs().data() + first;
  rows.sense = model.sense().data() + first;
  std::vector<const char*> names;
  for (int i = first; !model.row_names().empty() && i < model.num_rows(); ++i)
    names.push_back(model.row_names().name(i));
  rows.names = names.empty() ? nullptr : names.data();
  rows.begin = list.begin.data();
  rows.index = list.place.data();
  rows.value = list.value.data();
  rows.entries = static_cast<int>(list.place.size());
  reduced.model->add_rows({}, rows);
}

bool take_rows(Presolved& record, const model::Model& model) {
  RowList list;
  if (used_dual_arguments(record) || !find_new_rows(record, model, list)) return false;
  presolve::Reduction& reduction = record.reduction;
  const int first = record.original.num_rows();
  std::vector<RowBounds> sides;
  for (int i = first; i < model.num_rows(); ++i)
    sides.push_back(row_bounds(model.sense()[i], model.rhs()[i], 0));
  LpData original = with_rows(record.original, list, reduction.column_map, sides);
  LpData reduced = with_rows(reduction.lp, list, {}, sides);
  std::vector<int> row_map = reduction.row_map;
  for (int i = first; i < model.num_rows(); ++i) row_map.push_back(i);
  std::vector<presolve::Fate> fate = reduction.row_fate;
  fate.resize(original.row_lower.size(), presolve::Fate::kept);
  if (record.reduced != nullptr) add_to_user_problem(*record.reduced, model, first, list);
  record.original = std::move(original);
  reduction.lp = std::move(reduced);
  reduction.row_map = std::move(row_map);
  reduction.row_fate = std::move(fate);
  return true;
}

}  // namespace

bool Presolved::take_over(const Problem& problem, Change change, std::span<const int> lines) {
  switch (change) {
    case Change::objective:
      return take_costs(*this, *problem.model, lines);
    case Change::bounds:
      return take_bounds(*this, *problem.model, lines);
    case Change::rhs:
      return take_sides(*this, *problem.model, lines);
    case Change::rows:
      return take_rows(*this, *problem.model);
    default:
      return false;
  }
}

}  // namespace tovik::lp::run
