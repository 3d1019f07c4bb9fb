/* Mixed-integer problems of the inner library as models of the public header. */
#pragma once

#include <tovik.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mip/domain/problem.h"

namespace support {

/* Columns are called x1, x2, .. Indicators are left out: their slacks are columns like others. */
inline ProbHandle load_mip(EnvHandle env, const tovik::mip::Problem& problem) {
  const tovik::lp::LpData& lp = problem.lp;
  const auto stored = [](double bound) { return std::isinf(bound) ? std::copysign(1e20, bound) : bound; };
  int status = -1;
  ProbHandle handle = TVKcreateprob(env, &status, "loaded");
  const int columns = lp.num_columns(), rows = lp.num_rows();
  std::vector<double> lower, upper, rhs, range, value;
  std::vector<int> begin, index;
  std::string types, senses;
  std::vector<std::string> names;
  for (int j = 0; j < columns; ++j) {
    lower.push_back(stored(lp.lower[j]));
    upper.push_back(stored(lp.upper[j]));
    types.push_back(problem.is_integer[j] != 0 ? 'I' : 'C');
    names.push_back("x" + std::to_string(j + 1));
  }
  for (const tovik::mip::SemiColumn& s : problem.semi_columns) {
    // Of its hull, too, what is closer.
    lower[s.column] = stored(s.lower > 0 ? s.lower : std::max(s.lower, lp.lower[s.column]));
    upper[s.column] = stored(s.upper < 0 ? s.upper : std::min(s.upper, lp.upper[s.column]));
    types[s.column] = types[s.column] == 'I' ? 'N' : 'S';
  }
  std::vector<char*> name;
  for (std::string& n : names) name.push_back(n.data());
  EXPECT_EQ(TVKnewcols(env, handle, columns, lp.cost.data(), lower.data(), upper.data(), types.c_str(),
                       name.data()),
            0);
  std::vector<std::vector<std::pair<int, double>>> terms(static_cast<std::size_t>(rows));
  for (int j = 0; j < columns; ++j) {
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      terms[lp.matrix.index[k]].emplace_back(j, lp.matrix.value[k]);
  }
  for (int i = 0; i < rows; ++i) {
    const double low = lp.row_lower[i], high = lp.row_upper[i];
    const bool free_below = std::isinf(low), free_above = std::isinf(high);
    // A row without sides is one with a far one.
    senses.push_back(low == high ? 'E' : free_below ? 'L' : free_above ? 'G' : 'R');
    rhs.push_back(free_below && free_above ? 1e15 : free_below ? high : low);
    range.push_back(senses.back() == 'R' ? high - low : 0);
    begin.push_back(static_cast<int>(index.size()));
    for (const auto& [j, v] : terms[i]) {
      index.push_back(j);
      value.push_back(v);
    }
  }
  if (rows > 0) {
    EXPECT_EQ(TVKnewrows(env, handle, rows, rhs.data(), senses.c_str(), range.data(), nullptr), 0);
    std::vector<int> row_of;
    for (int i = 0; i < rows; ++i) row_of.insert(row_of.end(), terms[i].size(), i);
    if (!index.empty()) {
      EXPECT_EQ(TVKchgcoeflist(env, handle, static_cast<int>(index.size()), row_of.data(), index.data(),
                               value.data()),
                0);
    }
  }
  for (const tovik::mip::OrderedSet& set : problem.sets) {
    std::vector<double> weights;
    for (std::size_t k = 0; k < set.columns.size(); ++k) weights.push_back(static_cast<double>(k + 1));
    const int first = 0;
    EXPECT_EQ(TVKaddsos(env, handle, 1, static_cast<int>(set.columns.size()), set.type == 1 ? "1" : "2",
                        &first, set.columns.data(), weights.data(), nullptr),
              0);
  }
  EXPECT_EQ(TVKchgobjoffset(env, handle, lp.offset), 0);
  return handle;
}

}  // namespace support
