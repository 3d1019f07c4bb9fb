/* Names that an LP file cannot hold (writing one changes them), and names that come twice. */
#include <algorithm>
#include <string_view>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr Kind kTwice = {"duplicate-names", Severity::warning, "names that come twice",
                         "rename one: look-ups and files find the first only"};
constexpr Kind kNotInLp = {
    "names-not-in-lp", Severity::note, "names that an LP file cannot hold",
    "written there they are changed: no blanks or operators, no digit, point or e in front"};

bool fits_lp(std::string_view name) {
  constexpr std::string_view kOperators = "+-*/^<>=:[]|\\";
  const auto bad = [&](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= ' ' || byte == 127 || byte == 255 || kOperators.find(c) != std::string_view::npos;
  };
  if (name.empty() || std::ranges::any_of(name, bad)) return false;
  constexpr std::string_view kNotFirst = "0123456789.eE";
  return kNotFirst.find(name.front()) == std::string_view::npos;
}

void family(const char* word, std::vector<std::string> names, Findings& findings) {
  const auto unfit = [](const std::string& name) { return !fits_lp(name); };
  if (const auto count = std::ranges::count_if(names, unfit); count > 0) {
    findings.add(kNotInLp, 0, [&] {
      return format("%ld of %zu ", static_cast<long>(count), names.size()) + word + "s, the first is " +
             *std::ranges::find_if(names, unfit);
    });
  }
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
