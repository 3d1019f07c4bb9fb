/* The data of a model as arrays, through the public queries. Infinite ends are infinities here. */
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "cli/library.h"

namespace tovik::cli {

struct Limits {
  std::vector<double> lower, upper;
};
/* What the rows' senses, right-hand sides and ranges allow their activities to be; and the columns'
 * bounds. */
Limits row_limits(const Model& model);
Limits column_bounds(const Model& model);
/* By how much a value misses such limits; NaN for a value that is no finite number. */
double outside(double value, double lower, double upper);

/* The entries of a row or column. */
struct Slice {
  std::span<const int> index;
  std::span<const double> value;
  int size() const { return static_cast<int>(index.size()); }
};

/* Sparse vectors one behind the other. */
struct Vectors {
  std::vector<int> begin = {0};  // one more than there are vectors
  std::vector<int> index;
  std::vector<double> value;
  int count() const { return static_cast<int>(begin.size()) - 1; }
  Slice operator[](int k) const {
    const auto first = static_cast<std::size_t>(begin[static_cast<std::size_t>(k)]);
    const auto size = static_cast<std::size_t>(begin[static_cast<std::size_t>(k) + 1]) - first;
    return {std::span(index).subspan(first, size), std::span(value).subspan(first, size)};
  }
};
/* The matrix by columns begin..end, or by rows. */
Vectors matrix_columns(const Model& model, int begin, int end);
Vectors matrix_rows(const Model& model);
/* The symmetric matrix of the quadratic objective x'Qx / 2; no vectors when there is none. */
Vectors quadratic_objective(const Model& model);

/* Visits the columns with a block of them in memory at a time: visit(j, entries). */
template <class Visit>
void for_each_column(const Model& model, Visit visit) {
  constexpr int kColumnsAtOnce = 4096;
  const int columns = model.columns();
  for (int first = 0; first < columns; first += kColumnsAtOnce) {
    const Vectors block = matrix_columns(model, first, std::min(columns, first + kColumnsAtOnce) - 1);
    for (int k = 0; k < block.count(); ++k) visit(first + k, block[k]);
  }
}

/* Types of the columns; 'C' for all in a continuous model. */
std::vector<char> column_types(const Model& model);

/* Constraints beside the matrix. */
struct ExtraRow {
  std::string name;
  std::vector<int> index;
  std::vector<double> value;
  double lower = 0, upper = 0;
};
struct IndicatorRow : ExtraRow {
  int column = 0;
  bool complemented = false;
};
struct QuadraticRow : ExtraRow {
  std::vector<int> first, second;  // columns of the products
  std::vector<double> product;
};
struct OrderedSet {
  std::string name;
  char type = '1';
  std::vector<int> index;
  std::vector<double> weight;
};
std::vector<ExtraRow> lazy_constraints(const Model& model);
std::vector<ExtraRow> user_cuts(const Model& model);
std::vector<IndicatorRow> indicators(const Model& model);
std::vector<QuadraticRow> quadratic_rows(const Model& model);
std::vector<OrderedSet> ordered_sets(const Model& model);

}  // namespace tovik::cli
