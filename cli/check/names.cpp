/* Names that come twice. */
#include <algorithm>

#include "cli/check/lint_model.h"

namespace tovik::cli {

namespace {

constexpr Kind kTwice = {"duplicate-names", Severity::warning, "names that come twice",
                         "rename one: look-ups and files find the first only"};
void family(const char* word, std::vector<std::string> names, Findings& findings) {
  std::ranges::sort(names);
  for (std::size_t k = 1; k < names.size(); ++k) {
    if (names[k] == names[k - 1]) findings.add(kTwice, 0, [&] { return word + (" " + names[k]); });
  }
}

}  // namespace

void lint_names(const LintModel& m, Findings& findings) {
  const auto named = [&](auto query, const auto& all) {
    int surplus = 0;
    if (query(m.model.environment().handle(), m.model.handle(), nullptr, nullptr, 0, &surplus, 0, 0) ==
        TVK_ERROR_ARRAY_TOO_SHORT)
      return all();
    return std::vector<std::string>();
  };
  if (m.rows > 0) family("row", named(TVKgetrowname, [&] { return m.model.row_names(); }), findings);
  if (m.columns > 0) family("column", named(TVKgetcolname, [&] { return m.model.column_names(); }), findings);
}

}  // namespace tovik::cli
