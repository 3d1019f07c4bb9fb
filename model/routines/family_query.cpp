#include "model/routines/family_query.h"

#include "model/routines/surplus.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

/* The values begin .. end of a range that is known to be valid, unless only the size is asked for. */
template <class T>
void put_values(const Range& range, const SparseOutput& out, std::span<const T> values, T* to) {
  if (to == nullptr || range.begin > range.end || is_size_query(out.space, out.surplus)) return;
  std::copy_n(values.data() + range.begin, range.end - range.begin + 1, to);
}

bool is_outcome(const Status& status) {
  return status.ok() || status.code() == TVK_ERROR_ARRAY_TOO_SHORT;
}

Status get_terms(Environment& env, const RowPool& rows, int which, const TermsOutput& out) {
  int begin = 0;
  const SparseOutput vectors{out.entries, &begin, out.index, out.value, out.space, out.surplus};
  return get_vectors(env, {"", which, which}, rows.size(), vectors, [&](int k) { return rows.row(k); });
}

Status get_products(std::span<const QuadraticTerm> terms, const ProductsOutput& out) {
  const auto needed = static_cast<std::int64_t>(terms.size());
  if (is_size_query(out.space, out.surplus)) return report_size(needed, out.surplus);
  if (out.entries == nullptr || out.column == nullptr || out.other == nullptr || out.value == nullptr ||
      out.surplus == nullptr)
    return TVK_ERROR_NULL_POINTER;
  const auto fitting = std::min<std::int64_t>(needed, std::max(out.space, 0));
  for (std::int64_t k = 0; k < fitting; ++k) {
    const QuadraticTerm& term = terms[static_cast<std::size_t>(k)];
    out.column[k] = term.column;
    out.other[k] = term.other;
    out.value[k] = term.value;
  }
  *out.entries = static_cast<int>(fitting);
  return report_surplus(needed, out.space, out.surplus);
}

template <class T>
void put(T* to, T value) {
  if (to != nullptr) *to = value;
}

}  // namespace

Status get_sets(Environment& env, const Problem& problem, const Range& range, const SparseOutput& out,
                char* type) {
  const Sets& sets = problem.model->families().sets;
  if (sets.empty() && range.begin <= range.end) return TVK_ERROR_NO_SOS;
  const Status status = get_vectors(env, range, sets.size(), out, [&](int k) { return sets.members(k); });
  if (is_outcome(status)) put_values(range, out, sets.type(), type);
  return status;
}

Status get_pool_rows(Environment& env, const RowPool& pool, const Range& range, const PoolOutput& out) {
  const Status status = get_vectors(env, range, pool.size(), out.rows, [&](int k) { return pool.row(k); });
  if (is_outcome(status)) {
    put_values(range, out.rows, pool.rhs(), out.rhs);
    put_values(range, out.rows, pool.sense(), out.sense);
  }
  return status;
}

Status get_starts(Environment& env, const Problem& problem, const Range& range, const SparseOutput& out,
                  int* effort) {
  if (!is_mixed_integer(problem.type)) return TVK_ERROR_NOT_MIP;
  const MipStarts& starts = problem.model->families().starts;
  if (starts.empty() && range.begin <= range.end) return TVK_ERROR_NO_MIP_START;
  const Status status = get_vectors(env, range, starts.size(), out, [&](int k) { return starts.values(k); });
  if (is_outcome(status)) put_values(range, out, starts.effort(), effort);
  return status;
}

Status get_order(const Problem& problem, const OrderOutput& out) {
  if (!is_mixed_integer(problem.type)) return TVK_ERROR_NOT_MIP;
  const PriorityOrder& order = problem.model->families().order;
  if (order.empty()) return TVK_ERROR_NO_ORDER;
  if (is_size_query(out.space, out.surplus)) return report_size(order.size(), out.surplus);
  if (out.count == nullptr || out.columns == nullptr || out.surplus == nullptr) return TVK_ERROR_NULL_POINTER;
  const int fitting = std::min(order.size(), std::max(out.space, 0));
  for (int k = 0; k < fitting; ++k) {
    const OrderEntry& entry = order.entries()[static_cast<std::size_t>(k)];
    out.columns[k] = entry.column;
    if (out.priority != nullptr) out.priority[k] = entry.priority;
    if (out.direction != nullptr) out.direction[k] = entry.direction;
  }
  *out.count = fitting;
  return report_surplus(order.size(), out.space, out.surplus);
}

Status get_indicator(Environment& env, const Problem& problem, int which, const IndicatorOutput& out) {
  const Indicators& indicators = problem.model->families().indicators;
  if (which < 0 || which >= indicators.size()) return TVK_ERROR_INDEX_RANGE;
  const Status status = get_terms(env, indicators.rows(), which, out.terms);
  if (!is_outcome(status)) return status;
  const auto k = static_cast<std::size_t>(which);
  put(out.column, indicators.column()[k]);
  put(out.complemented, indicators.complemented(which) ? 1 : 0);
  put(out.rhs, indicators.rows().rhs()[k]);
  put(out.sense, indicators.rows().sense()[k]);
  return status;
}

Status get_quadratic(Environment& env, const Problem& problem, const Range& range, const SparseOutput& out) {
  if (!is_quadratic(problem.type)) return TVK_ERROR_NOT_QP;
  const Model& model = *problem.model;
  const QuadraticObjective& objective = model.families().quadratic_objective;
  return get_vectors(env, range, model.num_columns(), out, [&](int j) { return objective.column(j); });
}

Status get_quadratic_coefficient(const Problem& problem, int i, int j, double* value) {
  const int columns = problem.model->num_columns();
  if (i < 0 || i >= columns || j < 0 || j >= columns) return TVK_ERROR_INDEX_RANGE;
  if (value == nullptr) return TVK_ERROR_NULL_POINTER;
  *value = problem.model->families().quadratic_objective.coefficient(i, j);
  return {};
}

Status get_quadratic_row(Environment& env, const Problem& problem, int which, const QuadraticRowOutput& out) {
  const QuadraticRows& rows = problem.model->families().quadratic_rows;
  if (which < 0 || which >= rows.size()) return TVK_ERROR_INDEX_RANGE;
  const Status linear = get_terms(env, rows.linear(), which, out.linear);
  const Status products = get_products(rows.terms(which), out.products);
  if (!is_outcome(linear)) return linear;
  if (!is_outcome(products)) return products;
  const auto k = static_cast<std::size_t>(which);
  put(out.rhs, rows.linear().rhs()[k]);
  put(out.sense, rows.linear().sense()[k]);
  const bool too_short = !linear.ok() && !linear.is_reported();  // of a filled array, which is reported
  return too_short || products.ok() ? linear : products;
}

}  // namespace tovik::model
