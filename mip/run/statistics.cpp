#include "mip/run/statistics.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "mip/run/cut_names.h"

namespace tovik::mip::run {
namespace {

using lp::run::JsonWriter;

constexpr const char* kPhaseNames[kPhases] = {"presolve",   "root_lp",   "cuts",
                                              "heuristics", "branching", "tree"};

/* Of an incumbent from the last one, relative; between none and 1. */
double distance(double objective, double last) {
  if (objective == last) return 0;
  if (objective * last < 0) return 1;
  return std::fabs(objective - last) / std::max(std::fabs(objective), std::fabs(last));
}

class SearchDescription : public lp::run::FurtherStatistics {
 public:
  SearchDescription(SearchStatistics counts, const Progress& progress, double sense)
      : counts_(std::move(counts)), progress_(progress), sense_(sense) {}

  std::int64_t ticks() const override {
    std::int64_t sum = 0;
    for (const Spent& spent : counts_.phases) sum += spent.ticks;
    return sum;
  }
  void write(JsonWriter& out) const override {
    out.object("mip", [&] {
      write_tree(out);
      write_root(out);
      out.object("phases", [&] {
        for (std::size_t k = 0; k < kPhases; ++k) {
          out.object(kPhaseNames[k], [&] {
            out.ratio("seconds", counts_.phases[k].seconds);
            out.count("ticks", counts_.phases[k].ticks);
          });
        }
      });
      write_plugins(out, "separators", "cuts", counts_.separators);
      write_plugins(out, "heuristics", "points", counts_.heuristics);
      out.object("cuts", [&] {
        for (std::size_t k = 0; k < kCutClasses; ++k) {
          if (counts_.cuts[k] > 0) out.count(kCutNames[k], counts_.cuts[k]);
        }
      });
      out.object("symmetry", [&] {
        out.count("generators", counts_.symmetry.generators);
        out.count("orbitopes", counts_.symmetry.orbitopes);
        out.count("moved", counts_.symmetry.moved);
        out.count("fixings", counts_.symmetry.fixings);
        out.count("ticks", counts_.symmetry.ticks);
        out.count("detection_ticks", counts_.symmetry.found_in);
      });
      write_incumbents(out);
    });
  }

 private:
  double last() const { return counts_.incumbents.empty() ? kInf : counts_.incumbents.back().objective; }

  void write_tree(JsonWriter& out) const {
    const double in_tree = counts_.seconds - counts_.root_seconds;
    out.ratio("seconds", counts_.seconds);
    out.count("nodes", progress_.nodes);
    out.count("nodes_left", progress_.left);
    if (progress_.nodes > 1 && counts_.root_seconds >= 0 && in_tree > 0) {
      out.ratio("nodes_per_second", static_cast<double>(progress_.nodes - 1) / in_tree);
    } else {
      out.null("nodes_per_second");
    }
    out.count("largest_depth", counts_.largest_depth);
    out.count("tree_cut_rounds", counts_.tree_cut_rounds);
    out.object("conflicts", [&] {
      out.count("learned", counts_.conflicts);
      out.count("bounds", counts_.conflict_bounds);
      out.count("propagations", counts_.clause_moves);
    });
    out.count("solutions", progress_.solutions);
    out.number("best_bound", sense_ * progress_.best_bound);
    out.object("iterations", [&] {
      out.count("all", progress_.iterations);
      out.count("strong_branching", counts_.strong_iterations);
      out.count("heuristics", counts_.heuristic_iterations);
      out.count("solution_check", counts_.judge_iterations);
    });
  }
  void write_root(JsonWriter& out) const {
    const double before = counts_.root_bound_before_cuts, after = counts_.root_bound_after_cuts;
    const double gap = last() - before;
    out.object("root", [&] {
      if (counts_.root_seconds >= 0) {
        out.ratio("seconds", counts_.root_seconds);
      } else {
        out.null("seconds");
      }
      out.number("bound_before_cuts", sense_ * before);
      out.number("bound_after_cuts", sense_ * after);
      out.count("cut_rounds", counts_.cut_rounds);
      if (gap > 0 && !std::isinf(gap)) {
        out.ratio("gap_closed", std::clamp((after - before) / gap, 0.0, 1.0));
      } else {
        out.null("gap_closed");
      }
    });
  }
  static void write_plugins(JsonWriter& out, const char* name, const char* found_name,
                            const std::vector<PluginCounts>& plugins) {
    out.object(name, [&] {
      for (const PluginCounts& plugin : plugins) {
        out.object(plugin.name, [&] {
          out.count("calls", plugin.calls);
          out.count("successes", plugin.successes);
          out.count(found_name, plugin.found);
          out.ratio("seconds", plugin.seconds);
        });
      }
    });
  }
  void write_incumbents(JsonWriter& out) const {
    double integral = 0, since = 0, height = 1;
    for (const IncumbentRecord& found : counts_.incumbents) {
      integral += height * (found.seconds - since);
      since = found.seconds;
      height = distance(found.objective, last());
    }
    out.ratio("primal_integral", integral + height * std::max(0.0, counts_.seconds - since));
    out.array("incumbents", [&] {
      for (const IncumbentRecord& found : counts_.incumbents) {
        out.element([&] {
          out.ratio("seconds", found.seconds);
          out.count("nodes", found.nodes);
          out.number("objective", sense_ * found.objective);
          out.word("found_by", found.found_by);
        });
      }
    });
  }

  SearchStatistics counts_;
  Progress progress_;
  double sense_;
};

}  // namespace

std::shared_ptr<const lp::run::FurtherStatistics> describe_search(PresolvedSearch& search,
                                                                  double objective_sense) {
  return std::make_shared<const SearchDescription>(search.statistics(), search.progress(), objective_sense);
}

}  // namespace tovik::mip::run
