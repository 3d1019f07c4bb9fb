/* What a branch and bound asks of an LP engine, measured side by side with CLP: dives, single re-solves,
 * strong branching and cut rounds. See bench/README.md for what is measured and how to read it. */
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>

#include "bench/nodes/record.h"
#include "bench/nodes/report.h"

namespace {

using namespace bench;

struct Settings {
  std::string folder = TOVIK_SOURCE_DIR "/../shared/models/mip/miplib3";
  std::string filter, json;
  double limit = 20;
  bool exported = false, alone = false;
};

/* Runs every experiment on one model. The time limit is spread over the recordings. */
class Bench {
 public:
  Bench(const Model& model, const Contestant& ours, const Contestant& peer)
      : model_(model), ours_(ours), peer_(peer) {}

  Result run(double limit) {
    result_.model = model_.name;
    result_.rows = model_.lp.num_rows();
    result_.columns = model_.lp.num_columns();
    const std::unique_ptr<Engine> engine = ours_.make(model_);
    if (engine->solve_root().state != State::optimal) {
      result_.errors.emplace_back("the root has no optimum");
      return result_;
    }
    const std::span<const double> x = engine->primal();
    points_ = branch_points(model_, x);
    result_.basis_solves = time_basis_solves(model_, engine->basic_variables());
    play_script(record_dive(ours_, model_, limit / 4));
    play_script(record_single_changes(ours_, model_));
    if (!points_.empty()) probe();
    std::vector<Contestant> all{ours_};
    if (peer_) all.push_back(peer_);
    play_script(record_cut_rounds(all, model_, limit / 4));
    set_allowances();
    return result_;
  }

 private:
  void play_script(const Script& script) {
    if (script.steps.empty()) return;
    Experiment experiment{.name = script.name,
                          .solves = static_cast<std::int64_t>(script.steps.size()),
                          .ours = {},
                          .theirs = {},
                          .allowed_us = {}};
    const Played played = play_best(script, ours_, model_);
    experiment.ours = {played.total_us(), played.pivots()};
    keep_root(result_.root, played);
    if (peer_) {
      const Played theirs = play_best(script, peer_, model_);
      experiment.theirs = Effort{theirs.total_us(), theirs.pivots()};
      if (!result_.their_root) result_.their_root.emplace();
      keep_root(*result_.their_root, theirs);
      for (std::string& text : differences(script, played, theirs)) result_.errors.push_back(std::move(text));
    }
    result_.experiments.push_back(std::move(experiment));
  }

  void probe() {
    const std::vector<Probes> ours = probe_all(ours_, model_, points_);
    std::vector<Probes> theirs;
    if (peer_) theirs = probe_all(peer_, model_, points_);
    const BranchOptima optima = solve_branches(ours_, model_, points_);
    for (std::size_t l = 0; l < kProbeLimits.size(); ++l) {
      Experiment experiment{.name = "probe " + std::to_string(kProbeLimits[l]),
                            .solves = ours[l].count(),
                            .ours = effort(ours[l]),
                            .theirs = {},
                            .allowed_us = {}};
      if (!experiment.ours.counted) experiment.ours.pivots = optima.pivots_within(kProbeLimits[l]);
      if (peer_) experiment.theirs = effort(theirs[l]);
      result_.experiments.push_back(std::move(experiment));
    }
    const BranchOptima& judge = peer_ ? solve_branches(peer_, model_, points_) : optima;
    for (std::string& text : wrong_bounds(ours, judge, points_)) result_.errors.push_back(std::move(text));
  }

  static Effort effort(const Probes& probes) {
    return {probes.us, probes.branches.pivots, probes.branches.pivots >= 0};
  }

  static void keep_root(Effort& root, const Played& played) {
    if (root.us == 0 || played.root_us < root.us) root = {played.root_us, played.root_pivots};
  }

  /* Last, when the root's rate is known as well as it will be. */
  void set_allowances() {
    for (Experiment& e : result_.experiments) {
      if (e.name == "single") e.allowed_us = allowed_resolve_us(result_, e);
      if (e.name.starts_with("probe")) e.allowed_us = allowed_probe_us(result_, e);
    }
  }

  const Model& model_;
  const Contestant& ours_;
  const Contestant& peer_;
  std::vector<BranchPoint> points_;
  Result result_;
};

std::vector<std::string> find_models(const Settings& settings) {
  namespace fs = std::filesystem;
  const std::regex wanted(settings.filter);
  std::vector<std::string> files;
  if (fs::is_regular_file(settings.folder)) files.push_back(settings.folder);
  if (fs::is_directory(settings.folder)) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(settings.folder)) {
      if (entry.is_regular_file() && std::regex_search(entry.path().string(), wanted))
        files.push_back(entry.path().string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

int run(const Settings& settings) {
  const Contestant ours = settings.exported ? exported_routines() : node_engine();
  const Contestant peer = settings.alone ? Contestant{} : clp();
  if (!settings.alone && !peer) std::printf("clp's library is not installed: our figures alone\n");
  std::vector<Result> results;
  for (const std::string& file : find_models(settings)) {
    Model model;
    if (!read_model(file, model)) {
      std::printf("\n%s: not a mixed-integer linear model\n", file.c_str());
      continue;
    }
    results.push_back(Bench(model, ours, peer).run(settings.limit));
    print_table(results.back(), ours.name);
  }
  if (results.empty()) {
    std::printf("nothing to run\n");
    return 1;
  }
  print_summary(results);
  if (!settings.json.empty()) std::ofstream(settings.json) << as_json(results).dump(1) << '\n';
  return std::any_of(results.begin(), results.end(), [](const Result& r) { return !r.errors.empty(); }) ? 1
                                                                                                        : 0;
}

}  // namespace

int main(int count, char** arguments) {
  Settings settings;
  CLI::App app("Dives, re-solves, strong branching and cut rounds beside CLP");
  app.add_option("folder", settings.folder, "folder of models, or one model")->capture_default_str();
  app.add_option("--filter", settings.filter, "only models whose path matches")->type_name("REGEX");
  app.add_option("--limit", settings.limit, "seconds a model, for the recordings; plays are as long as these")
      ->type_name("SECONDS")
      ->capture_default_str();
  app.add_option("--json", settings.json, "write everything measured")->type_name("FILE");
  app.add_flag("--public", settings.exported, "through the exported routines, not the engine itself");
  app.add_flag("--alone", settings.alone, "without clp");
  CLI11_PARSE(app, count, arguments);
  return run(settings);
}
