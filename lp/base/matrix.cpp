#include "lp/base/lp_data.h"

namespace tovik::lp {

Matrix transpose(const Matrix& matrix) {
  Matrix result;
  result.rows = matrix.columns;
  result.columns = matrix.rows;
  const int entries = matrix.start[matrix.columns];
  result.start.assign(static_cast<std::size_t>(matrix.rows) + 1, 0);
  result.index.resize(entries);
  result.value.resize(entries);
  for (int k = 0; k < entries; ++k) ++result.start[matrix.index[k] + 1];
  for (int i = 0; i < matrix.rows; ++i) result.start[i + 1] += result.start[i];
  // start[i] serves as the fill position of row i; afterwards it holds the end of row i, the start of row i
  // + 1.
  for (int j = 0; j < matrix.columns; ++j) {
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const int place = result.start[matrix.index[k]]++;
      result.index[place] = j;
      result.value[place] = matrix.value[k];
    }
  }
  for (int i = matrix.rows; i > 0; --i) result.start[i] = result.start[i - 1];
  result.start[0] = 0;
  return result;
}

}  // namespace tovik::lp
