#include "cli/check/report.h"

#include <nlohmann/json.hpp>

#include "cli/text.h"

namespace tovik::cli {

namespace {

std::string group_text(const Group& group) {
  std::string text = format("%-9s", severity_name(group.kind->severity)) + group.kind->title +
                     format(" (%ld): ", group.count) + group.kind->advice + "\n";
  for (const Finding& finding : group.worst) text += "           " + finding.text + "\n";
  const long rest = group.count - static_cast<long>(group.worst.size());
  return rest > 0 ? text + format("           and %ld more\n", rest) : text;
}

}  // namespace

std::string lint_text(const LintReport& report, bool notes) {
  std::string text = report.file + ": " + report.problem_type + ", " + counted(report.rows, "row") + ", " +
                     counted(report.columns, "column") + ", " + counted(report.nonzeros, "nonzero") + "\n";
  for (const Group& group : report.findings->groups()) {
    if (notes || group.kind->severity != Severity::note) text += group_text(group);
  }
  text += counted(report.findings->count(Severity::error), "error") + ", " +
          counted(report.findings->count(Severity::warning), "warning");
  if (notes) text += ", " + counted(report.findings->count(Severity::note), "note");
  return text + "\n";
}

std::string lint_json(const LintReport& report) {
  using Json = nlohmann::ordered_json;
  const bool read = report.findings.has_value();
  Json object;
  object["file"] = report.file;
  object["rows"] = read ? Json(report.rows) : Json(nullptr);
  object["cols"] = read ? Json(report.columns) : Json(nullptr);
  object["nonzeros"] = read ? Json(report.nonzeros) : Json(nullptr);
  object["problem_type"] = read ? Json(report.problem_type) : Json(nullptr);
  for (const auto& [key, severity] :
       {std::pair("errors", Severity::error), {"warnings", Severity::warning}, {"notes", Severity::note}})
    object[key] = read ? Json(report.findings->count(severity)) : Json(nullptr);
  Json findings = Json::array();
  for (const Group& group : read ? report.findings->groups() : std::vector<Group>()) {
    Json items = Json::array();
    for (const Finding& finding : group.worst) items.push_back(finding.text);
    findings.push_back({{"severity", severity_name(group.kind->severity)},
                        {"kind", group.kind->id},
                        {"title", group.kind->title},
                        {"advice", group.kind->advice},
                        {"count", group.count},
                        {"items", std::move(items)}});
  }
  object["findings"] = std::move(findings);
  object["error"] = report.error.empty() ? Json(nullptr) : Json(report.error);
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tovik::cli
