/* Plain data of one LP as the engines see it: minimize c'x + offset, row_lower <= A x <= row_upper, lower <=
 * x <= upper. Infinite bounds are +-kInf. The matrix is column-wise; a row-wise copy is made where it is
 * needed. */
#pragma once

#include <limits>
#include <vector>

namespace tovik::lp {

inline constexpr double kInf = std::numeric_limits<double>::infinity();

struct Matrix {  // compressed columns (or rows)
  int rows = 0, columns = 0;
  std::vector<int> start{0};  // columns + 1
  std::vector<int> index;
  std::vector<double> value;
};

/* Row-wise copy (the transpose as compressed columns). */
Matrix transpose(const Matrix& matrix);

struct LpData {
  Matrix matrix;
  std::vector<double> cost, lower, upper;    // columns
  std::vector<double> row_lower, row_upper;  // rows
  double offset = 0;
  int num_rows() const { return matrix.rows; }
  int num_columns() const { return matrix.columns; }
};

}  // namespace tovik::lp
