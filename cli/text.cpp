#include "cli/text.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <numeric>
#include <vector>

#include "tovik.h"

namespace tovik::cli {

std::string format(const char* pattern, ...) {
  std::array<char, 512> buffer{};
  va_list arguments;
  va_start(arguments, pattern);
  std::vsnprintf(buffer.data(), buffer.size(), pattern, arguments);
  va_end(arguments);
  return buffer.data();
}

std::size_t edit_distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before(b.size() + 1), row(b.size() + 1), next(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    next[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = a[i - 1] == b[j - 1];
      next[j] = std::min({next[j - 1] + 1, row[j] + 1, row[j - 1] + (same ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        next[j] = std::min(next[j], before[j - 2] + 1);
    }
    before.swap(row);
    row.swap(next);
  }
  return row[b.size()];
}

std::string type_name(int type) {
  switch (type) {
    case TVK_PROBTYPE_LP:
      return "LP";
    case TVK_PROBTYPE_MILP:
      return "MILP";
    case TVK_PROBTYPE_FIXED_MILP:
      return "fixed MILP";
    case TVK_PROBTYPE_QP:
      return "QP";
    case TVK_PROBTYPE_MIQP:
      return "MIQP";
    case TVK_PROBTYPE_FIXED_MIQP:
      return "fixed MIQP";
    case TVK_PROBTYPE_QCP:
      return "QCP";
    case TVK_PROBTYPE_MIQCP:
      return "MIQCP";
    case TVK_PROBTYPE_FIXED_MIQCP:
      return "fixed MIQCP";
    default:
      return "type " + std::to_string(type);
  }
}

std::string counted(long count, const char* word) {
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

}  // namespace tovik::cli
