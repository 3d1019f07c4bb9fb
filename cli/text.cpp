#include "cli/text.h"

#include <array>
#include <cstdarg>
#include <cstdio>

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
