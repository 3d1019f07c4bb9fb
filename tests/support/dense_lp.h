/* A small LP as a table, easy to build, to change and to print. */
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "lp/base/lp_data.h"

namespace support {

struct DenseLp {
  DenseLp(int rows, int columns)
      : a(static_cast<size_t>(rows), std::vector<double>(static_cast<size_t>(columns))),
        cost(static_cast<size_t>(columns)),
        lower(static_cast<size_t>(columns)),
        upper(static_cast<size_t>(columns), tovik::lp::kInf),
        row_lower(static_cast<size_t>(rows)),
        row_upper(static_cast<size_t>(rows)) {}

  std::vector<std::vector<double>> a;  // by row
  std::vector<double> cost, lower, upper, row_lower, row_upper;
  double offset = 0;

  int rows() const { return static_cast<int>(a.size()); }
  int columns() const { return static_cast<int>(cost.size()); }

  tovik::lp::LpData data() const {
    tovik::lp::LpData lp;
    lp.matrix.rows = rows();
    lp.matrix.columns = columns();
    for (int j = 0; j < columns(); ++j) {
      for (int i = 0; i < rows(); ++i) {
        if (a[i][j] == 0) continue;
        lp.matrix.index.push_back(i);
        lp.matrix.value.push_back(a[i][j]);
      }
      lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    }
    lp.cost = cost, lp.lower = lower, lp.upper = upper;
    lp.row_lower = row_lower, lp.row_upper = row_upper;
    lp.offset = offset;
    return lp;
  }
};

inline std::string describe(const tovik::lp::LpData& lp) {
  std::ostringstream out;
  out.precision(17);
  out << "offset " << lp.offset << '\n';
  for (int i = 0; i < lp.num_rows(); ++i)
    out << "row " << i << " [" << lp.row_lower[i] << ", " << lp.row_upper[i] << "]\n";
  for (int j = 0; j < lp.num_columns(); ++j) {
    out << "column " << j << " cost " << lp.cost[j] << " [" << lp.lower[j] << ", " << lp.upper[j] << "]";
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      out << "  " << lp.matrix.index[k] << ": " << lp.matrix.value[k];
    out << '\n';
  }
  return out.str();
}

}  // namespace support
