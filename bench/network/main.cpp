/* The network simplex and a peer's on generated families of minimum-cost flow problems: the table that bench/README.md
 * describes. Instances are made, and each run is done, by a process of its own: so this one stays small, and what a run
 * touches at most is its own. */
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "bench/network/families.h"
#include "bench/network/own_run.h"

namespace {

using namespace bench;
using tovik::lp::network::FlowPricing;
namespace fs = std::filesystem;

constexpr double kShift = 0.01;       // seconds, of the geometric means
constexpr double kMemoryCounts = 30;  // megabytes; below it is the program and its libraries

/* Seconds and memory of one program on one instance: the least of its runs. */
struct Figures {
  RunRecord best;
  bool right = true;
};

struct Line {
  std::string family;
  int nodes = 0, arcs = 0;
  Figures own, peer;
};

void make_in_child(const Recipe& recipe, const std::string& path) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    write_instance(recipe.make(), path);
    _exit(0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
    std::fprintf(stderr, "cannot make %s\n", recipe.family.c_str());
    std::exit(2);
  }
}

RunRecord run(const std::string& command) {
  RunRecord record;
  std::string text;
  char buffer[256];
  std::FILE* pipe = popen(command.c_str(), "r");
  while (pipe != nullptr && std::fgets(buffer, sizeof buffer, pipe) != nullptr) text += buffer;
  if (pipe == nullptr || pclose(pipe) != 0 || !parse(text, record)) record.optimal = false;
  return record;
}

void take(Figures& figures, const RunRecord& record, bool first) {
  figures.right = figures.right && record.optimal && (first || record.objective == figures.best.objective);
  if (first) {
    figures.best = record;
  } else {
    figures.best.seconds = std::min(figures.best.seconds, record.seconds);
    figures.best.megabytes = std::min(figures.best.megabytes, record.megabytes);
  }
}

struct Settings {
  std::string own, peer;  // commands; peer may be empty
  int repeat = 3;
  double enough = 20;  // seconds of an instance after which it is not repeated
};

Line measure(const Recipe& recipe, const std::string& path, const Settings& settings) {
  Line line;
  line.family = recipe.family;
  const InstanceHeader header = InstanceReader(path).header();
  line.nodes = header.nodes;
  line.arcs = header.arcs;
  double spent = 0;
  for (int round = 0; round < settings.repeat && (round < 1 || spent < settings.enough); ++round) {
    for (const bool own : {round % 2 == 0, round % 2 != 0}) {
      if (!own && settings.peer.empty()) continue;
      const RunRecord record = run((own ? settings.own : settings.peer) + " '" + path + "'");
      take(own ? line.own : line.peer, record, round == 0);
      spent += record.seconds;
    }
  }
  if (!settings.peer.empty() && line.own.best.objective != line.peer.best.objective) line.own.right = false;
  return line;
}

void print_head() {
  std::printf("%-30s %7s %8s %8s %9s %9s %6s %8s %8s %6s\n", "family", "nodes", "arcs", "pivots", "own s",
              "peer s", "ratio", "own MB", "peer MB", "ratio");
}

void print(const Line& line, bool with_peer) {
  const RunRecord &own = line.own.best, &peer = line.peer.best;
  std::printf("%-30s %7d %8d %8lld %9.4f ", line.family.c_str(), line.nodes, line.arcs, own.pivots,
              own.seconds);
  if (with_peer) {
    std::printf("%9.4f %6.2f %8.1f %8.1f %6.2f", peer.seconds, own.seconds / peer.seconds, own.megabytes,
                peer.megabytes, own.megabytes / peer.megabytes);
  } else {
    std::printf("%9s %6s %8.1f", "", "", own.megabytes);
  }
  std::printf("%s\n", line.own.right && line.peer.right ? "" : "  WRONG");
  std::fflush(stdout);
}

/* Shifted geometric means of seconds and their ratio; of memory the geometric mean of the ratios that count. */
class Mean {
 public:
  void add(const Line& line) {
    ++count_;
    own_ += std::log(line.own.best.seconds + kShift);
    peer_ += std::log(line.peer.best.seconds + kShift);
    worst_ = std::max(worst_, (line.own.best.seconds + kShift) / (line.peer.best.seconds + kShift));
    if (line.peer.best.megabytes < kMemoryCounts) return;
    ++large_;
    memory_ += std::log(line.own.best.megabytes / line.peer.best.megabytes);
  }
  void print(const std::string& name) const {
    const double own = std::exp(own_ / count_), peer = std::exp(peer_ / count_);
    std::printf("%-30s %9d %9.4f %9.4f %6.2f %6.2f", name.c_str(), count_, own - kShift, peer - kShift,
                own / peer, worst_);
    if (large_ > 0) std::printf(" %7.2f", std::exp(memory_ / large_));
    std::printf("\n");
  }

 private:
  int count_ = 0, large_ = 0;
  double own_ = 0, peer_ = 0, memory_ = 0, worst_ = 0;
};

void print_means(const std::vector<Line>& lines) {
  std::vector<std::string> order;
  std::map<std::string, Mean> means;
  Mean all;
  for (const Line& line : lines) {
    if (!means.contains(line.family)) order.push_back(line.family);
    means[line.family].add(line);
    all.add(line);
  }
  std::printf("\n%-30s %9s %9s %9s %6s %6s %7s\n", "means, shifted by 0.01 s", "instances", "own s", "peer s",
              "ratio", "worst", "memory");
  for (const std::string& family : order) means[family].print(family);
  all.print("all");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Network simplex against a peer on generated families");
  std::string filter = ".*", run_one, write_to;
  std::int64_t least = 0, most = 2500000;
  Settings settings;
  bool alone = false, list = false;
  FlowPricing pricing = FlowPricing::block;
  app.add_option("--filter", filter, "regular expression for families");
  app.add_option("--min-arcs", least);
  app.add_option("--max-arcs", most);
  app.add_option("--repeat", settings.repeat, "runs of each program; the shortest counts");
  app.add_option("--enough", settings.enough, "processor seconds after which an instance is not repeated");
  app.add_flag("--alone", alone, "without the peer");
  app.add_flag("--list", list, "names and sizes only");
  app.add_option("--write", write_to, "folder that keeps the instances; nothing is solved");
  app.add_option("--run", run_one, "solve this file once and print one line");
  app.add_option("--pricing", pricing)
      ->transform(
          CLI::CheckedTransformer(std::map<std::string, FlowPricing>{{"block", FlowPricing::block},
                                                                     {"list", FlowPricing::candidate_list},
                                                                     {"sorted", FlowPricing::sorted_list}}));
  CLI11_PARSE(app, argc, argv);
  if (!run_one.empty()) {
    print(run_own(run_one, pricing));
    return 0;
  }
  const fs::path self = fs::read_symlink("/proc/self/exe"), peer = self.parent_path() / "bench_network_peer";
  settings.own = "'" + self.string() + "' --pricing " + std::to_string(static_cast<int>(pricing)) + " --run";
  if (!alone && fs::exists(peer)) settings.peer = "'" + peer.string() + "'";
  if (!alone && settings.peer.empty()) std::printf("bench_network_peer is not built: no comparison\n");

  const fs::path folder = write_to.empty() ? fs::temp_directory_path() : fs::path(write_to);
  std::vector<Line> lines;
  if (!list && write_to.empty()) print_head();
  for (const Recipe& recipe : all_recipes()) {
    if (recipe.arcs < least || recipe.arcs > most || !std::regex_search(recipe.family, std::regex(filter)))
      continue;
    std::string name = recipe.family + " " + std::to_string(recipe.arcs);
    std::ranges::replace(name, ' ', '_');
    std::erase(name, ',');
    if (list) {
      std::printf("%-30s %8d nodes %9lld arcs\n", recipe.family.c_str(), recipe.nodes,
                  static_cast<long long>(recipe.arcs));
      continue;
    }
    if (write_to.empty()) name += "." + std::to_string(getpid());
    const std::string path = (folder / (name + ".flow")).string();
    make_in_child(recipe, path);
    if (!write_to.empty()) continue;
    lines.push_back(measure(recipe, path, settings));
    fs::remove(path);
    print(lines.back(), !settings.peer.empty());
  }
  if (lines.empty()) return 0;
  if (!settings.peer.empty()) print_means(lines);
  const bool right =
      std::ranges::all_of(lines, [](const Line& line) { return line.own.right && line.peer.right; });
  return right ? 0 : 1;
}
