#include "cli/verify/report.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/text.h"

namespace tovik::cli {

namespace {

using Json = nlohmann::ordered_json;

Json number(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

std::string line(const Measure& measure) {
  std::string text = format("%-12s%.2g", measure.label.c_str(), measure.largest);
  if (!measure.worst.empty()) text += " (" + measure.worst + ")";
  if (measure.items > 1 && measure.largest > 0) text += format(", sum %.2g", measure.sum.value());
  if (measure.holds()) return text + "\n";
  if (measure.items > 1) text += ", " + counted(measure.violated, "violation");
  return text + (measure.counts ? ": FAILED" : ": does not hold") +
         (measure.tolerance > 0 ? format(", tolerance %.2g\n", measure.tolerance) : "\n");
}

std::string objective_lines(const Verdict& verdict, const Claim& claim, const Measure* stated) {
  std::string text = format("Objective   %.15g", verdict.objective);
  if (stated == nullptr) return text + ", the file states none\n";
  if (!claim.objective) return text + ": FAILED\n";
  if (stated->holds()) return text + ", as the file states\n";
  return text + format(", the file states %.15g: FAILED\n", *claim.objective);
}

std::string verdict_line(const VerifyReport& report) {
  const Verdict& verdict = *report.verdict;
  std::string text = "Verdict     ";
  if (!verdict.holds) {
    text += "FAILED:";
    for (const Measure& measure : verdict.measures) {
      if (!measure.holds() && measure.counts) text += " " + measure.key;
    }
    return text + "\n";
  }
  text += "the solution holds";
  if (verdict.optimal) text += format("; its duals prove it optimal (bound %.15g)", *verdict.dual_bound);
  if (!verdict.optimal && verdict.dual_bound) text += "; its duals do not prove it optimal";
  return text + "\n";
}

}  // namespace

std::string verify_text(const VerifyReport& report) {
  std::string text = report.solution_file +
                     format(": solution %d of %d", report.pick, report.claim.solutions) + " for " +
                     report.model_file + " (" + report.problem_type + ")\n\n";
  const Measure* stated = nullptr;
  for (const Measure& measure : report.verdict->measures) {
    if (measure.key == "objective") stated = &measure;
  }
  text += objective_lines(*report.verdict, report.claim, stated);
  for (const Measure& measure : report.verdict->measures) {
    if (&measure != stated) text += line(measure);
  }
  text += format("Tolerances  feasibility %.2g, integrality %.2g, optimality %.2g\n",
                 report.tolerances.feasibility, report.tolerances.integrality, report.tolerances.optimality);
  return text + verdict_line(report);
}

std::string verify_json(const VerifyReport& report) {
  Json object;
  object["model"] = report.model_file;
  object["solution"] = report.solution_file;
  object["pick"] = report.pick;
  object["solutions"] = report.claim.solutions == 0 ? Json(nullptr) : Json(report.claim.solutions);
  object["problem_type"] = report.problem_type.empty() ? Json(nullptr) : Json(report.problem_type);
  object["holds"] = report.verdict ? Json(report.verdict->holds) : Json(nullptr);
  object["optimal"] =
      report.verdict && report.verdict->dual_bound ? Json(report.verdict->optimal) : Json(nullptr);
  object["objective"] = report.verdict ? number(report.verdict->objective) : Json(nullptr);
  object["stated_objective"] = report.claim.objective ? number(*report.claim.objective) : Json(nullptr);
  object["stated_status"] = report.claim.status == 0 ? Json(nullptr) : Json(report.claim.status);
  object["dual_bound"] =
      report.verdict && report.verdict->dual_bound ? number(*report.verdict->dual_bound) : Json(nullptr);
  object["tolerances"] = {{"feasibility", report.tolerances.feasibility},
                          {"integrality", report.tolerances.integrality},
                          {"optimality", report.tolerances.optimality}};
  Json checks = Json::object();
  if (report.verdict) {
    for (const Measure& measure : report.verdict->measures) {
      checks[measure.key] = {{"holds", measure.holds()},
                             {"largest", number(measure.largest)},
                             {"worst", measure.worst.empty() ? Json(nullptr) : Json(measure.worst)},
                             {"sum", number(measure.sum.value())},
                             {"violated", measure.violated},
                             {"tolerance", measure.tolerance}};
    }
  }
  object["checks"] = std::move(checks);
  object["error"] = report.error.empty() ? Json(nullptr) : Json(report.error);
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tovik::cli
