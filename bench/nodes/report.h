/* What was measured on a model, as tables, targets and JSON. Times are processor time in microseconds. */
#pragma once

#include <algorithm>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "bench/nodes/branching.h"

namespace bench {

/* One engine's part in one experiment. */
struct Effort {
  double us = 0;
  std::int64_t pivots = 0;
  bool counted = true;  // otherwise pivots are those of full re-solves, up to the limit
};

struct Experiment {
  std::string name;
  std::int64_t solves = 0;
  Effort ours;
  std::optional<Effort> theirs;
  std::optional<double> allowed_us;  // a solve, where there is a target
};

struct Result {
  std::string model;
  int rows = 0, columns = 0;
  Effort root;
  std::optional<Effort> their_root;
  BasisSolves basis_solves;
  std::vector<Experiment> experiments;
  std::vector<std::string> errors;
  double root_rate() const { return root.us / static_cast<double>(std::max<std::int64_t>(root.pivots, 1)); }
};

/* What a re-solve, or a probe, may cost on average: see the README. */
double allowed_resolve_us(const Result& result, const Experiment& experiment);
double allowed_probe_us(const Result& result, const Experiment& experiment);

void print_table(const Result& result, const char* ours);
void print_summary(const std::vector<Result>& results);
nlohmann::ordered_json as_json(const std::vector<Result>& results);

}  // namespace bench
