/* Changes of the quadratic objective and of quadratic constraints. */
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "model/routines/changes.h"
#include "model/routines/family_changes.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

/* Two halves of a matrix that differ by rounding only are symmetric. */
constexpr double kSymmetric = 1e-10;

/* Entries of the caller's matrix as terms of the function x'Qx / 2; the halves of Q are averaged. */
std::vector<QuadraticTerm> terms_of(const QuadraticMatrix& matrix, int columns) {
  std::vector<QuadraticTerm> terms;
  for (int j = 0; j < columns; ++j) {
    for (int p = matrix.begin[j]; p < matrix.begin[j] + matrix.count[j]; ++p)
      terms.push_back({matrix.index[p], j, matrix.value[p] / 2});
  }
  normalize(terms);
  return terms;
}

bool is_symmetric(const QuadraticMatrix& matrix, int columns) {
  struct Entry {
    int low, high;
    double difference, size;
  };
  std::vector<Entry> entries;
  for (int j = 0; j < columns; ++j) {
    for (int p = matrix.begin[j]; p < matrix.begin[j] + matrix.count[j]; ++p) {
      const int i = matrix.index[p];
      const double value = matrix.value[p];
      if (i != j)
        entries.push_back({std::min(i, j), std::max(i, j), i < j ? value : -value, std::fabs(value)});
    }
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.low != b.low ? a.low < b.low : a.high < b.high; });
  for (std::size_t k = 0; k < entries.size();) {
    const Entry& first = entries[k];
    double difference = 0, size = 0;
    for (; k < entries.size() && entries[k].low == first.low && entries[k].high == first.high; ++k) {
      difference += entries[k].difference;
      size = std::max(size, entries[k].size);
    }
    if (std::fabs(difference) > kSymmetric * size) return false;
  }
  return true;
}

Status check_matrix_of(Environment& env, const Problem& problem, const QuadraticMatrix& m) {
  const int columns = problem.model->num_columns();
  const IndexRule rule{'c', columns};
  const CountedMatrix matrix{columns, m.begin, m.count, m.index, m.value};
  if (!checking(env)) return check_safe(env, rule, matrix);
  if (Status s = check_matrix(env, rule, matrix); !s.ok()) return s;
  return is_symmetric(m, columns) ? Status() : fail(env, TVK_ERROR_Q_NOT_SYMMETRIC, "objective");
}

void replace_objective(Problem& problem, QuadraticObjective&& objective) {
  std::swap(problem.model->change_families().quadratic_objective, objective);
  problem.type = quadratic_type(problem.type);
  invalidate(problem, Change::quadratic);
}

std::string item_name(const NameTable& names, char letter, int k) {
  return names.empty() ? letter + std::to_string(k + 1) : names.name(k);
}

/* A product that stands twice with its columns in the same order. */
Status check_products(Environment& env, const Problem& problem, const QuadraticRowArguments& a) {
  if (Status s = check_numbers(env, a.terms, a.product); !s.ok()) return s;
  std::vector<std::pair<int, int>> pairs;
  for (int k = 0; k < a.terms; ++k) pairs.emplace_back(a.column[k], a.other[k]);
  std::sort(pairs.begin(), pairs.end());
  const auto twice = std::adjacent_find(pairs.begin(), pairs.end());
  if (twice == pairs.end()) return {};
  const Model& model = *problem.model;
  const std::string row =
      a.name != nullptr ? a.name : item_name(NameTable('q'), 'q', model.families().quadratic_rows.size());
  return fail(env, TVK_ERROR_DUPLICATE_PAIR, row.c_str(),
              item_name(model.column_names(), 'x', twice->first).c_str(),
              item_name(model.column_names(), 'x', twice->second).c_str());
}

Status check_row(Environment& env, const Problem& problem, const QuadraticRowArguments& a,
                 const PackedMatrix& linear) {
  const IndexRule rule{'c', problem.model->num_columns()};
  if (checking(env)) {
    if (Status s = check_numbers(env, 1, &a.rhs); !s.ok()) return s;
  }
  if (Status s = check_columns_matrix(env, problem, linear); !s.ok()) return s;
  if (Status s = check_safe_indices(env, rule, a.terms, a.column); !s.ok()) return s;
  if (Status s = check_safe_indices(env, rule, a.terms, a.other); !s.ok()) return s;
  return checking(env) ? check_products(env, problem, a) : Status();
}

}  // namespace

Status copy_quadratic(Environment& env, Problem& problem, const QuadraticMatrix& m) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (m.begin == nullptr || m.count == nullptr || m.index == nullptr || m.value == nullptr)
    return TVK_ERROR_NULL_POINTER;
  if (Status s = check_matrix_of(env, problem, m); !s.ok()) return s;
  replace_objective(problem, QuadraticObjective(terms_of(m, problem.model->num_columns())));
  return {};
}

Status copy_separable(Environment& env, Problem& problem, const double* diagonal) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (diagonal == nullptr) return TVK_ERROR_NULL_POINTER;
  const int columns = problem.model->num_columns();
  if (checking(env)) {
    if (Status s = check_numbers(env, columns, diagonal); !s.ok()) return s;
  }
  std::vector<QuadraticTerm> terms;
  for (int j = 0; j < columns; ++j) {
    if (diagonal[j] != 0) terms.push_back({j, j, diagonal[j] / 2});
  }
  replace_objective(problem, QuadraticObjective(terms));
  return {};
}

Status change_quadratic(Environment& env, Problem& problem, int i, int j, double value) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Model& model = *problem.model;
  const int columns = model.num_columns();
  if (i < 0 || i >= columns || j < 0 || j >= columns) return TVK_ERROR_INDEX_RANGE;
  if (checking(env)) {
    if (Status s = check_numbers(env, 1, &value); !s.ok()) return s;
  }
  model.change_families().quadratic_objective.set(i, j, value);
  if (value != 0) problem.type = quadratic_type(problem.type);
  invalidate(problem, Change::quadratic);
  return {};
}

Status add_quadratic_row(Environment& env, Problem& problem, const QuadraticRowArguments& a) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  const int begin = 0;
  const PackedMatrix linear{1, a.entries, &begin, a.index, a.value};
  if (Status s = check_arrays(linear); !s.ok()) return s;
  if (Status s = check_count({a.terms}); !s.ok()) return s;
  if (a.terms > 0 && (a.column == nullptr || a.other == nullptr || a.product == nullptr))
    return TVK_ERROR_NULL_POINTER;
  if (a.sense != 'L' && a.sense != 'G') return TVK_ERROR_CUT_SENSE;
  if (Status s = check_row(env, problem, a, linear); !s.ok()) return s;
  std::vector<QuadraticTerm> terms;
  for (int k = 0; k < a.terms; ++k) terms.push_back({a.column[k], a.other[k], a.product[k]});
  const PoolRow row{vector_of(linear, 0), static_cast<char>(a.sense), a.rhs, a.name};
  problem.model->change_families().quadratic_rows.add({row, terms});
  problem.type = quadratically_constrained_type(problem.type);
  invalidate(problem, Change::quadratic);
  return {};
}

Status delete_quadratic_rows(Environment& env, Problem& problem, int begin, int end) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  QuadraticRows& rows = problem.model->change_families().quadratic_rows;
  const Status range = check_range(env, "TVKdelqconstrs", begin, end, rows.size());
  if (!range.ok() || begin > end) return range;
  delete_range(rows, begin, end);
  invalidate(problem, Change::quadratic);
  return {};
}

}  // namespace tovik::model
