/* A problem as one text, by the query routines: for tests that compare whole models. */
#pragma once

#include <gtest/gtest.h>
#include <tovik.h>

#include <cstdio>
#include <string>
#include <vector>

namespace support {

inline std::string number(double value) {
  if (value == 1e20) return "inf";
  if (value == -1e20) return "-inf";
  char text[32];
  std::snprintf(text, sizeof text, "%.15g", value);
  return text;
}

using NameQuery = int (*)(ConstEnvHandle, ConstProbHandle, char**, char*, int, int*, int, int);

inline std::vector<std::string> names(ConstEnvHandle env, ConstProbHandle lp, NameQuery query, int count) {
  if (count == 0) return {};
  int surplus = 0;
  query(env, lp, nullptr, nullptr, 0, &surplus, 0, count - 1);
  std::vector<char> store(static_cast<std::size_t>(-surplus));
  std::vector<char*> pointers(static_cast<std::size_t>(count));
  EXPECT_EQ(query(env, lp, pointers.data(), store.data(), -surplus, &surplus, 0, count - 1), 0);
  return {pointers.begin(), pointers.end()};
}

/* "min OFFSET", then a line per column "NAME TYPE COST [LOWER,UPPER] ROW:COEFFICIENT ..." and a line per row
 * "NAME SENSE RHS" (with the range for 'R'). The type of a continuous problem's columns is '-'. */
inline std::string describe(ConstEnvHandle env, ConstProbHandle lp) {
  const int columns = TVKgetnumcols(env, lp), rows = TVKgetnumrows(env, lp), entries = TVKgetnumnz(env, lp);
  const std::size_t n = static_cast<std::size_t>(columns), m = static_cast<std::size_t>(rows);
  const std::vector<std::string> column_names = names(env, lp, TVKgetcolname, columns);
  const std::vector<std::string> row_names = names(env, lp, TVKgetrowname, rows);
  std::vector<double> cost(n), lower(n), upper(n), rhs(m), range(m),
      values(static_cast<std::size_t>(entries));
  std::vector<char> types(n, '-'), sense(m);
  std::vector<int> begin(n), index(static_cast<std::size_t>(entries));
  double offset = 0;
  EXPECT_EQ(TVKgetobjoffset(env, lp, &offset), 0);
  if (columns > 0) {
    EXPECT_EQ(TVKgetobj(env, lp, cost.data(), 0, columns - 1), 0);
    EXPECT_EQ(TVKgetlb(env, lp, lower.data(), 0, columns - 1), 0);
    EXPECT_EQ(TVKgetub(env, lp, upper.data(), 0, columns - 1), 0);
    if (TVKgetprobtype(env, lp) == 1) {
      EXPECT_EQ(TVKgetctype(env, lp, types.data(), 0, columns - 1), 0);
    }
    int count = 0, surplus = 0;
    EXPECT_EQ(TVKgetcols(env, lp, &count, begin.data(), index.data(), values.data(), entries, &surplus, 0,
                         columns - 1),
              0);
  }
  bool ranged = false;
  if (rows > 0) {
    EXPECT_EQ(TVKgetrhs(env, lp, rhs.data(), 0, rows - 1), 0);
    EXPECT_EQ(TVKgetsense(env, lp, sense.data(), 0, rows - 1), 0);
    for (const char s : sense) ranged = ranged || s == 'R';
    if (ranged) {
      EXPECT_EQ(TVKgetrngval(env, lp, range.data(), 0, rows - 1), 0);
    }
  }
  std::string text = TVKgetobjsen(env, lp) == 1 ? "min " : "max ";
  text += number(offset) + "\n";
  for (std::size_t j = 0; j < n; ++j) {
    text += column_names[j] + ' ' + types[j] + ' ' + number(cost[j]) + " [" + number(lower[j]) + ',' +
            number(upper[j]) + ']';
    const std::size_t end = static_cast<std::size_t>(j + 1 < n ? begin[j + 1] : entries);
    for (std::size_t k = static_cast<std::size_t>(begin[j]); k < end; ++k) {
      text += ' ' + row_names[static_cast<std::size_t>(index[k])] + ':' + number(values[k]);
    }
    text += '\n';
  }
  for (std::size_t i = 0; i < m; ++i) {
    text += row_names[i] + ' ' + sense[i] + ' ' + number(rhs[i]);
    if (sense[i] == 'R') text += ' ' + number(range[i]);
    text += '\n';
  }
  return text;
}

}  // namespace support
