/* The column that carries the objective's constant through an MPS file, turned back. */
#include "fileio/mps/constant.h"

#include <algorithm>

#include "fileio/mps/names.h"

namespace tovik::fileio::mps {
namespace {

bool is_used(const FileModel& model, int column) {
  const auto in_terms = [column](const SparseTerms& terms) {
    return std::ranges::find(terms.index, column) != terms.index.end();
  };
  const auto in_row = [&](const NamedRow& row) { return in_terms(row.terms); };
  const auto in_products = [column](const std::vector<QuadraticTerm>& terms) {
    return std::ranges::any_of(terms, [column](const QuadraticTerm& term) { return term.other == column; });
  };
  return in_products(model.quadratic_objective) ||
         std::ranges::any_of(
             model.quadratic_rows,
             [&](const QuadraticRow& row) { return in_row(row.linear) || in_products(row.quadratic); }) ||
         std::ranges::any_of(
             model.indicators,
             [&](const IndicatorRow& row) { return row.column == column || in_row(row.row); }) ||
         std::ranges::any_of(model.sets,
                             [&](const SpecialOrderedSet& set) { return in_terms(set.members); }) ||
         std::ranges::any_of(model.user_cuts, in_row) || std::ranges::any_of(model.lazy_constraints, in_row);
}

bool is_constant_name(std::string_view name) {
  return name.starts_with(kConstantColumn) &&
         name.find_first_not_of('_', kConstantColumn.size()) == std::string_view::npos;
}

}  // namespace

void fold_constant_column(FileModel& model) {
  if (model.objective.empty()) return;
  const std::size_t last = model.objective.size() - 1;
  const int column = static_cast<int>(last);
  if (!is_constant_name(model.columns.name(column)) || model.start[last] != model.start[last + 1]) return;
  if (model.lower[last] != 1 || model.upper[last] != 1) return;
  if ((!model.types.empty() && model.types[last] != 'C') || is_used(model, column)) return;
  model.objective_offset += model.objective[last];
  model.objective.pop_back();
  model.lower.pop_back();
  model.upper.pop_back();
  if (!model.types.empty()) model.types.pop_back();
  model.start.pop_back();
  model.columns.remove_last();
}

}  // namespace tovik::fileio::mps
