/* Market splits in LP format: equations that hardly any binary point meets, so that a search is long.
 * With slacks what is missing costs: every binary point is a solution, the relaxation is worth 0, the best one more. Columns
 * come in the order s1 .. sm t1 .. tm x1 .. xn. Without slacks the objective is x1 and there is hardly a solution. */
#pragma once

#include <sstream>
#include <string>

namespace support {

struct MarketSplit {
  int equations = 2, columns = 14;
  unsigned seed = 12345, below = 100;  // of the coefficients
  bool slacks = true;
  bool maximize = false;  // what is missing, negated
  int constant = 0;       // of the objective
};

inline std::string market_split_objective(const MarketSplit& split) {
  std::ostringstream out;
  if (split.constant != 0) out << split.constant << " ";
  const char* const sign = split.maximize ? " - " : " + ";
  if (!split.slacks) out << sign << "x1";
  for (const char slack : {'s', 't'}) {
    for (int i = 1; split.slacks && i <= split.equations; ++i) out << sign << slack << i;
  }
  return out.str();
}

inline std::string market_split(const MarketSplit& split) {
  std::ostringstream out;
  out << (split.maximize ? "maximize" : "minimize") << "\n obj:" << market_split_objective(split)
      << "\nsubject to\n";
  unsigned state = split.seed;
  for (int i = 1; i <= split.equations; ++i) {
    unsigned sum = 0;
    out << " r" << i << ":";
    for (int j = 1; j <= split.columns; ++j) {
      state = state * 1103515245u + 12345u;
      const unsigned a = state / 65536u % split.below;
      sum += a;
      out << " + " << a << " x" << j;
    }
    if (split.slacks) out << " + s" << i << " - t" << i;
    out << " = " << sum / 2 << "\n";
  }
  out << "binary\n";
  for (int j = 1; j <= split.columns; ++j) out << " x" << j;
  out << "\nend\n";
  return out.str();
}

}  // namespace support
