#include "cli/solve/report.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr int kSchema =
    1;  // of the JSON object; a key that is added leaves it, one that changes its meaning does not

/* What the two dimensions of a model are called. */
struct Words {
  const char *row, *rows, *column, *bounds;
};
Words words_of(const Outcome& outcome) {
  if (outcome.network) return {"node", "nodes", "arc", "bounds"};
  return {"row", "rows", "column", "bounds"};
}

/* "rows 1.2e-09 (R17)": an amount and the name of its place. */
std::string worst(const char* what, const LargestViolation& largest) {
  std::string text = format("%s %.2g", what, largest.amount);
  return largest.index < 0 ? text : text + " (" + largest.name + ")";
}

/* The point at which a limit came. */
std::string so_far_line(const Words& words, const Violations& violations) {
  return "Violated    " + worst(words.rows, violations.row) + ", " + worst(words.bounds, violations.bound) +
         " at the last point\n";
}

std::string checked_line(const Words& words, const Violations& violations) {
  std::string line =
      "Checked     " + worst(words.rows, violations.row) + ", " + worst(words.bounds, violations.bound);
  if (violations.has_integers) line += ", " + worst("integers", violations.integrality);
  if (violations.has_duals) {
    line += violations.dual_row.amount > violations.dual_column.amount
                ? ", " + worst("duals", violations.dual_row)
                : ", " + worst("duals", violations.dual_column);
  }
  if (violations.failed)
    line += format("; objective %.2g\n            FAILED: more than the tolerances allow",
                   violations.objective_difference);
  return line + "\n";
}

constexpr std::size_t kFewParts = 10;  // of a proof or a ray, unless all values are to be printed

/* "<= 4" for a side and its limit. */
std::string side_text(const ProofPart& part) {
  return (part.side == '=' ? std::string("= ") : std::string(1, part.side) + "= ") +
         format("%.12g", part.limit);
}

/* The first few of a list, a line each, and how many more there are. */
template <class Part, class Text>
std::string few(const std::vector<Part>& parts, const char* what, Text text_of) {
  std::string lines;
  for (std::size_t k = 0; k < std::min(parts.size(), kFewParts); ++k)
    lines += "            " + std::string(what) + " " + text_of(parts[k]) + "\n";
  if (parts.size() > kFewParts)
    lines += format("            and %zu %ss more (all with --json)\n", parts.size() - kFewParts, what);
  return lines;
}

std::string proof_text(const Proof& proof) {
  const auto part = [](const ProofPart& p) { return p.name + " " + side_text(p); };
  return "Proof       " + counted(static_cast<long>(proof.rows.size()), "row") + " and " +
         counted(static_cast<long>(proof.bounds.size()), "bound") + " contradict each other:\n" +
         few(proof.rows, "row", part) + few(proof.bounds, "bound", part);
}

std::string ray_text(const std::vector<Movement>& ray) {
  return "Ray         " + counted(static_cast<long>(ray.size()), "column") +
         " can move without end, the objective improving:\n" +
         few(ray, "column", [](const Movement& m) { return m.name + format(" by %+.6g", m.rate); });
}

std::string work_line(const Outcome& outcome) {
  std::string line = format("Work        %.2f s", outcome.solve_seconds.value_or(0));
  if (outcome.nodes) line += ", " + counted(*outcome.nodes, "node");
  if (outcome.pool_solutions) line += ", " + counted(*outcome.pool_solutions, "solution");
  if (outcome.simplex_iterations) line += ", " + counted(*outcome.simplex_iterations, "iteration");
  if (outcome.barrier_iterations.value_or(0) > 0)
    line += ", " + counted(*outcome.barrier_iterations, "barrier iteration");
  if (outcome.ticks) line += format(", %.0f ticks", *outcome.ticks);
  if (!outcome.method.empty()) line += ", " + outcome.method;
  if (outcome.threads) line += ", " + counted(*outcome.threads, "thread");
  return line + format(", %.0f MB\n", outcome.peak_memory_mb);
}

using Json = nlohmann::ordered_json;

Json number(const std::optional<double>& value) {
  return value && std::isfinite(*value) ? Json(*value) : Json(nullptr);
}
Json number(const std::optional<int>& value) {
  return value ? Json(*value) : Json(nullptr);
}
Json text(const std::string& value) {
  return value.empty() ? Json(nullptr) : Json(value);
}

Json parts_json(const std::vector<ProofPart>& parts) {
  Json all = Json::array();
  for (const ProofPart& part : parts) {
    const std::string sense = part.side == '=' ? "=" : std::string(1, part.side) + "=";
    all.push_back(
        {{"name", part.name}, {"sense", sense}, {"limit", part.limit}, {"multiplier", part.weight}});
  }
  return all;
}

Json proof_json(const Proof& proof) {
  return {{"gap", proof.gap}, {"rows", parts_json(proof.rows)}, {"bounds", parts_json(proof.bounds)}};
}

Json ray_json(const std::vector<Movement>& ray) {
  Json all = Json::array();
  for (const Movement& movement : ray) all.push_back({{"name", movement.name}, {"rate", movement.rate}});
  return all;
}

Json values_json(const std::vector<Value>& values, const char* value_key, const char* dual_key) {
  Json all = Json::array();
  for (const Value& value : values)
    all.push_back({{"name", value.name}, {value_key, value.value}, {dual_key, number(value.dual)}});
  return all;
}

std::string model_kind(const Outcome& outcome) {
  return outcome.network ? "network" : type_name(outcome.problem_type.value_or(-1));
}

}  // namespace

std::string size_line(const Outcome& outcome) {
  const Words words = words_of(outcome);
  std::string line = outcome.file + ": " + model_kind(outcome) + ", " +
                     counted(outcome.rows.value_or(0), words.row) + ", " +
                     counted(outcome.columns.value_or(0), words.column);
  if (!outcome.network) line += ", " + counted(outcome.nonzeros.value_or(0), "nonzero");
  return line + format(", read in %.2f s\n", outcome.read_seconds.value_or(0));
}

std::string closing_block(const Outcome& outcome) {
  const Words words = words_of(outcome);
  std::string block =
      format("\nStatus      %s (%d)\n", outcome.status_text.c_str(), outcome.status.value_or(0));
  if (outcome.objective) block += format("Objective   %.12g\n", *outcome.objective);
  if (outcome.best_bound && outcome.nodes) {
    block += format("Bound       %.12g", *outcome.best_bound);
    block += outcome.gap ? format(", gap %.2g %%\n", 100 * *outcome.gap) : std::string("\n");
  }
  if (outcome.best_bound && outcome.so_far)
    block += format("Bound       %.12g so far\n", *outcome.best_bound);
  if (outcome.so_far) block += so_far_line(words, *outcome.violations);
  if (outcome.violations && !outcome.so_far) block += checked_line(words, *outcome.violations);
  if (!outcome.proof.empty()) block += proof_text(outcome.proof);
  if (!outcome.ray.empty()) block += ray_text(outcome.ray);
  if (outcome.exit_status == ExitStatus::infeasible_or_unbounded)
    block += "Advice      --set PREIND=0 tells which of the two\n";
  if (outcome.network && outcome.exit_status == ExitStatus::infeasible)
    block += "Advice      --method dual tells which nodes and arcs contradict each other\n";
  block += work_line(outcome);
  for (const std::string& file : outcome.written) block += "Written     " + file + "\n";
  return block;
}

std::string value_table(const Outcome& outcome) {
  const bool duals = outcome.violations && outcome.violations->has_duals;
  const auto section = [duals](const char* head, const char* value_head, const char* dual_head,
                               const std::vector<Value>& values) {
    if (values.empty()) return std::string();
    std::string lines =
        format("\n%-24s %20s", head, value_head) + (duals ? format(" %20s", dual_head) : "") + "\n";
    for (const Value& item : values) {
      lines += item.name + std::string(item.name.size() < 24 ? 24 - item.name.size() : 0, ' ') +
               format(" %20.12g", item.value);
      lines += (duals ? format(" %20.12g", item.dual.value_or(0)) : "") + "\n";
    }
    return lines;
  };
  if (outcome.network)
    return section("Arc", "flow", "reduced cost", outcome.column_values) +
           section("Node", "net supply", "potential", outcome.row_values);
  return section("Column", "value", "reduced cost", outcome.column_values) +
         section("Row", "value", "dual value", outcome.row_values);
}

std::string statistics_block(const Outcome& outcome) {
  return "\n" + Json::parse(outcome.statistics).dump(2) + "\n";
}

std::string json_line(const Outcome& outcome, JsonParts with) {
  const auto& found = outcome.violations;
  Json object;
  object["schema"] = kSchema;
  object["file"] = outcome.file;
  object["rows"] = number(outcome.rows);
  object["cols"] = number(outcome.columns);
  object["nonzeros"] = number(outcome.nonzeros);
  object["problem_type"] =
      outcome.network || outcome.problem_type ? Json(model_kind(outcome)) : Json(nullptr);
  object["status"] = number(outcome.status);
  object["status_text"] = text(outcome.status_text);
  object["objective"] = number(outcome.objective);
  object["best_bound"] = number(outcome.best_bound);
  object["gap"] = number(outcome.gap);
  object["primal_infeasibility"] = number(found ? std::optional(found->primal()) : std::nullopt);
  object["dual_infeasibility"] =
      number(found && found->has_duals ? std::optional(found->dual()) : std::nullopt);
  object["integrality"] =
      number(found && found->has_integers ? std::optional(found->integrality.amount) : std::nullopt);
  object["simplex_iterations"] = number(outcome.simplex_iterations);
  object["barrier_iterations"] = number(outcome.barrier_iterations);
  object["nodes"] = number(outcome.nodes);
  if (outcome.pool_solutions) object["pool_solutions"] = *outcome.pool_solutions;
  object["ticks"] = number(outcome.ticks);
  object["threads"] = number(outcome.threads);
  object["method"] = text(outcome.method);
  object["read_seconds"] = number(outcome.read_seconds);
  object["presolve_seconds"] = number(outcome.presolve_seconds);
  object["solve_seconds"] = number(outcome.solve_seconds);
  object["peak_memory_mb"] = number(std::optional(outcome.peak_memory_mb));
  object["warnings"] = outcome.warnings;
  if (!outcome.proof.empty()) object["proof"] = proof_json(outcome.proof);
  if (!outcome.ray.empty()) object["ray"] = ray_json(outcome.ray);
  if (with.values && !outcome.column_values.empty())
    object["column_values"] = values_json(outcome.column_values, "value", "reduced_cost");
  if (with.values && !outcome.row_values.empty())
    object["row_values"] = values_json(outcome.row_values, "activity", "dual_value");
  object["error"] = text(outcome.error);
  if (with.statistics)
    object["statistics"] = outcome.statistics.empty() ? Json(nullptr) : Json::parse(outcome.statistics);
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tovik::cli
