#include "bench/nodes/report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <nlohmann/json.hpp>
#include <string_view>

namespace bench {

namespace {

using Json = nlohmann::ordered_json;

/* The targets. */
constexpr double kRootRateShare = 1.5;  // of the root's time a pivot
constexpr double kResolveUs = 30;       // on top of the pivots
constexpr double kDiveRatio = 0.35;     // to the peer
constexpr std::array<std::string_view, 7> kResolveModels{"gesa2",  "gesa3", "cap6000", "p2756",
                                                         "mod011", "vpm2",  "misc06"};
constexpr double kShiftUs = 1000;  // of the means

double per(double sum, std::int64_t count) {
  return count == 0 ? 0 : sum / static_cast<double>(count);
}

const char* verdict(bool met) {
  return met ? "met" : "MISSED";
}

const Experiment* find(const Result& result, std::string_view name) {
  for (const Experiment& experiment : result.experiments) {
    if (experiment.name == name && experiment.solves > 0) return &experiment;
  }
  return nullptr;
}

void print_row(const Experiment& e) {
  std::printf("  %-9s %6lld %9.2f%s %10.1f", e.name.c_str(), static_cast<long long>(e.solves),
              per(static_cast<double>(e.ours.pivots), e.solves), e.ours.counted ? " " : "*",
              per(e.ours.us, e.solves));
  if (e.theirs) {
    std::printf(" %10.2f %10.1f %7.2f", per(static_cast<double>(e.theirs->pivots), e.solves),
                per(e.theirs->us, e.solves), e.ours.us / e.theirs->us);
  } else {
    std::printf(" %10s %10s %7s", "", "", "");
  }
  if (e.allowed_us)
    std::printf(" %10.1f %s", *e.allowed_us, verdict(per(e.ours.us, e.solves) <= *e.allowed_us));
  std::printf("\n");
}

double shifted_mean(const std::vector<double>& values) {
  double sum = 0;
  for (const double v : values) sum += std::log(v + kShiftUs);
  return std::exp(sum / static_cast<double>(values.size())) - kShiftUs;
}

/* Ratio of shifted geometric means of the whole experiment's times; 0 without a common model. */
double ratio_to_peer(const std::vector<Result>& results, std::string_view name, std::size_t& models) {
  std::vector<double> ours, theirs;
  for (const Result& result : results) {
    const Experiment* const e = find(result, name);
    if (e == nullptr || !e->theirs) continue;
    ours.push_back(e->ours.us);
    theirs.push_back(e->theirs->us);
  }
  models = ours.size();
  return ours.empty() ? 0 : shifted_mean(ours) / shifted_mean(theirs);
}

void print_resolve_target(const std::vector<Result>& results) {
  std::printf("\nA re-solve: at most %.1f times its pivots at the root's rate plus %.0f us\n", kRootRateShare,
              kResolveUs);
  for (const Result& result : results) {
    const bool listed =
        std::find(kResolveModels.begin(), kResolveModels.end(), result.model) != kResolveModels.end();
    const Experiment* const e = find(result, "single");
    if (!listed || e == nullptr) continue;
    const double us = per(e->ours.us, e->solves);
    std::printf("  %-10s %10.1f us, allowed %8.1f: %s\n", result.model.c_str(), us, *e->allowed_us,
                verdict(us <= *e->allowed_us));
  }
}

void print_probe_target(const std::vector<Result>& results) {
  std::printf("\nA probe of k pivots: at most k root iterations plus one FTRAN and one BTRAN\n");
  for (const std::int64_t limit : kProbeLimits) {
    std::vector<double> logs;
    std::size_t met = 0;
    for (const Result& result : results) {
      const Experiment* const e = find(result, "probe " + std::to_string(limit));
      if (e == nullptr) continue;
      const double share = per(e->ours.us, e->solves) / *e->allowed_us;
      logs.push_back(std::log(share));
      met += share <= 1;
    }
    if (logs.empty()) continue;
    double sum = 0;
    for (const double v : logs) sum += v;
    std::printf("  k = %2d: %5.2f of what is allowed (geometric mean), %zu of %zu models: %s\n",
                static_cast<int>(limit), std::exp(sum / static_cast<double>(logs.size())), met, logs.size(),
                verdict(met == logs.size()));
  }
}

void print_ratios(const std::vector<Result>& results) {
  std::size_t models = 0;
  const double dives = ratio_to_peer(results, "dive", models);
  if (models == 0) return;
  std::printf("\nTo clp (shifted geometric means of a model's total, shift 1 ms)\n");
  std::printf("  dives      %5.2f on %zu models, allowed %.2f: %s\n", dives, models, kDiveRatio,
              verdict(dives <= kDiveRatio));
  for (const char* name : {"single", "probe 1", "probe 10", "probe 50", "cuts"}) {
    const double ratio = ratio_to_peer(results, name, models);
    if (models > 0) std::printf("  %-10s %5.2f on %zu models\n", name, ratio, models);
  }
}

Json effort(const Effort& e) {
  return {{"us", e.us}, {"pivots", e.pivots}, {"counted", e.counted}};
}

}  // namespace

double allowed_resolve_us(const Result& result, const Experiment& experiment) {
  const double pivots = per(static_cast<double>(experiment.ours.pivots), experiment.solves);
  return kRootRateShare * pivots * result.root_rate() + kResolveUs;
}

double allowed_probe_us(const Result& result, const Experiment& experiment) {
  const double pivots = per(static_cast<double>(experiment.ours.pivots), experiment.solves);
  return pivots * result.root_rate() + result.basis_solves.ftran_us + result.basis_solves.btran_us;
}

void print_table(const Result& result, const char* ours) {
  std::printf("\n%s: %d rows, %d columns; root %lld pivots, %.2f us each", result.model.c_str(), result.rows,
              result.columns, static_cast<long long>(result.root.pivots), result.root_rate());
  if (result.their_root)
    std::printf(" (clp %lld, %.2f us)", static_cast<long long>(result.their_root->pivots),
                per(result.their_root->us, result.their_root->pivots));
  std::printf("; FTRAN %.2f us, BTRAN %.2f us\n", result.basis_solves.ftran_us, result.basis_solves.btran_us);
  std::printf("  %-9s %6s %9s  %10s %10s %10s %7s %10s\n", ours, "solves", "pivots", "us", "clp pivots",
              "clp us", "ratio", "allowed");
  for (const Experiment& experiment : result.experiments) {
    if (experiment.solves > 0) print_row(experiment);
  }
  for (const std::string& error : result.errors) std::printf("  ERROR %s\n", error.c_str());
  std::fflush(stdout);
}

void print_summary(const std::vector<Result>& results) {
  print_resolve_target(results);
  print_probe_target(results);
  print_ratios(results);
  std::size_t errors = 0;
  for (const Result& result : results) errors += result.errors.size();
  std::printf("\n%zu models, %zu errors\n", results.size(), errors);
}

Json as_json(const std::vector<Result>& results) {
  Json document = Json::array();
  for (const Result& result : results) {
    Json entry{{"model", result.model},
               {"rows", result.rows},
               {"columns", result.columns},
               {"root", effort(result.root)},
               {"ftran_us", result.basis_solves.ftran_us},
               {"btran_us", result.basis_solves.btran_us}};
    if (result.their_root) entry["clp_root"] = effort(*result.their_root);
    for (const Experiment& e : result.experiments) {
      Json line{{"solves", e.solves}, {"ours", effort(e.ours)}};
      if (e.theirs) line["clp"] = effort(*e.theirs);
      if (e.allowed_us) line["allowed_us"] = *e.allowed_us;
      entry["experiments"][e.name] = std::move(line);
    }
    entry["errors"] = result.errors;
    document.push_back(std::move(entry));
  }
  return document;
}

}  // namespace bench
