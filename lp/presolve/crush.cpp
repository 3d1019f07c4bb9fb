#include "lp/presolve/crush.h"

#include <utility>

#include "lp/presolve/operations.h"

namespace tovik::lp::presolve {
namespace {

template <class T>
std::vector<T> gather(const std::vector<T>& values, const std::vector<int>& map) {
  std::vector<T> result;
  result.reserve(map.size());
  for (const int k : map) result.push_back(values[k]);
  return result;
}

}  // namespace

std::vector<double> crush_point(const Reduction& reduction, std::vector<double> x) {
  crush_point_all(reduction.stack, x);
  return gather(x, reduction.column_map);
}

std::vector<double> crush_duals(const Reduction& reduction, std::vector<double> y) {
  crush_duals_all(reduction.stack, y);
  return gather(y, reduction.row_map);
}

bool crush_form(const Reduction& reduction, LinearForm& form) {
  if (!crush_form_all(reduction.stack, form)) return false;
  form.coefficients = gather(form.coefficients, reduction.column_map);
  return true;
}

void uncrush_form(const Reduction& reduction, LinearForm& form) {
  const std::vector<double> reduced = std::move(form.coefficients);
  form.coefficients.assign(reduction.column_removal.size(), 0.0);
  for (size_t k = 0; k < reduced.size(); ++k) form.coefficients[reduction.column_map[k]] = reduced[k];
  uncrush_form_all(reduction.stack, form);
}

Basis crush_basis(const Reduction& reduction, Basis basis) {
  crush_basis_all(reduction.stack, basis);
  return {gather(basis.columns, reduction.column_map), gather(basis.rows, reduction.row_map), {}};
}

}  // namespace tovik::lp::presolve
