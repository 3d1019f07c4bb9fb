#include "cli/check/lint_model.h"

#include <algorithm>
#include <cmath>

#include "cli/text.h"

namespace tovik::cli {

namespace {

Vectors transposed(const Vectors& rows, int columns) {
  Vectors result;
  result.begin.assign(static_cast<std::size_t>(columns) + 1, 0);
  for (const int j : rows.index) ++result.begin[static_cast<std::size_t>(j) + 1];
  for (std::size_t j = 1; j < result.begin.size(); ++j) result.begin[j] += result.begin[j - 1];
  result.index.resize(rows.index.size());
  result.value.resize(rows.value.size());
  std::vector<int> next(result.begin);
  for (int i = 0; i < rows.count(); ++i) {
    const Slice entries = rows[i];
    for (std::size_t e = 0; e < entries.index.size(); ++e) {
      const auto at = static_cast<std::size_t>(next[static_cast<std::size_t>(entries.index[e])]++);
      result.index[at] = i;
      result.value[at] = entries.value[e];
    }
  }
  return result;
}

}  // namespace

std::vector<char> mentioned_elsewhere(const LintModel& m) {
  std::vector<char> mentioned(static_cast<std::size_t>(m.columns));
  const auto all = [&](const std::vector<int>& columns) {
    for (const int j : columns) mentioned[static_cast<std::size_t>(j)] = 1;
  };
  for (const ExtraRow& row : lazy_constraints(m.model)) all(row.index);
  for (const OrderedSet& set : ordered_sets(m.model)) all(set.index);
  for (const IndicatorRow& row : indicators(m.model)) all(row.index), all({row.column});
  for (const QuadraticRow& row : quadratic_rows(m.model)) all(row.index), all(row.first), all(row.second);
  const Vectors objective = quadratic_objective(m.model);
  for (int j = 0; j < objective.count(); ++j) {
    if (objective[j].size() > 0) all({j});
  }
  return mentioned;
}

std::string limits_text(double lower, double upper) {
  if (lower == upper) return format("= %.10g", lower);
  if (std::isinf(lower)) return format("<= %.10g", upper);
  return std::isinf(upper) ? format(">= %.10g", lower) : format("in [%.10g, %.10g]", lower, upper);
}

LintModel::LintModel(const Model& source)
    : model(source),
      rows(source.rows()),
      columns(source.columns()),
      direction(TVKgetobjsen(source.environment().handle(), source.handle()) < 0 ? -1.0 : 1.0),
      by_row(matrix_rows(source)),
      by_column(transposed(by_row, source.columns())),
      cost(source.all<double>(TVKgetobj, source.columns())),
      type(column_types(source)),
      row(row_limits(source)),
      bound(column_bounds(source)) {}

double LintModel::lower(int j) const {
  const auto at = static_cast<std::size_t>(j);
  if (type[at] == 'S' || type[at] == 'N') return std::min(0.0, bound.lower[at]);
  return type[at] == 'B' ? std::max(0.0, bound.lower[at]) : bound.lower[at];
}

double LintModel::upper(int j) const {
  const auto at = static_cast<std::size_t>(j);
  if (type[at] == 'S' || type[at] == 'N') return std::max(0.0, bound.upper[at]);
  return type[at] == 'B' ? std::min(1.0, bound.upper[at]) : bound.upper[at];
}

void ActivityBounds::add(double coefficient, double lower, double upper) {
  const double at_least = coefficient > 0 ? lower : upper, at_most = coefficient > 0 ? upper : lower;
  if (std::isinf(at_least)) {
    ++infinite_below_;
  } else {
    below_.add(coefficient, at_least);
  }
  if (std::isinf(at_most)) {
    ++infinite_above_;
  } else {
    above_.add(coefficient, at_most);
  }
}

double ActivityBounds::largest_without(double coefficient, double lower, double upper) const {
  const double at_most = coefficient > 0 ? upper : lower;
  const bool infinite = std::isinf(at_most);
  if (infinite_above_ > (infinite ? 1 : 0)) return kInfinite;
  if (infinite) return above_.value();
  Sum rest = above_;
  rest.add(-coefficient, at_most);
  return rest.value();
}

}  // namespace tovik::cli
