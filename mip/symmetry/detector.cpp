#include "mip/symmetry/detector.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <utility>

#include "mip/symmetry/coloured_graph.h"
#include "mip/symmetry/partition.h"
#include "mip/symmetry/union_find.h"

namespace tovik::mip {
namespace {

constexpr int kDeadEnds = 6;  // of one attempt

class Detector {
 public:
  Detector(const Problem& problem, std::int64_t tick_limit)
      : graph_(problem),
        partition_(graph_),
        orbits_(graph_.vertices),
        image_(static_cast<std::size_t>(graph_.vertices)),
        mark_(image_.size(), -1),
        tick_limit_(tick_limit) {
    std::iota(image_.begin(), image_.end(), 0);
    ticks_ = static_cast<std::int64_t>(graph_.neighbour.size()) + graph_.vertices;
  }

  Symmetries run() {
    if (go_to_first_leaf()) {
      for (std::size_t k = levels_.size(); k-- > 0 && !is_over();) explore(k);
    }
    found_.ticks = ticks();
    found_.is_complete = !gave_up_ && !is_over();
    return std::move(found_);
  }

 private:
  /* A vertex that the first path has individualized, and what stood before. */
  struct Level {
    int cell, vertex;
    std::size_t splits, trace;
  };

  std::int64_t ticks() const { return ticks_ + partition_.ticks(); }
  bool is_over() const { return ticks() >= tick_limit_; }

  /* The first cell of several columns; -1: none. Behind it there is none before it. */
  int next_target(int from) const {
    while (from < graph_.vertices && graph_.is_column(partition_.order()[from])) {
      if (partition_.length(from) > 1) return from;
      from += partition_.length(from);
    }
    return -1;
  }

  bool go_to_first_leaf() {
    partition_.refine();
    int target = 0;
    while ((target = next_target(target)) >= 0) {
      if (is_over()) return false;
      const int v = partition_.order()[target];
      levels_.push_back({target, v, partition_.splits().size(), partition_.trace_position()});
      partition_.individualize(v);
      partition_.refine();
    }
    trace_end_ = partition_.trace_position();
    leaf_.assign(partition_.order().begin(), partition_.order().end());
    return true;
  }

  /* All members of the level's cell that may be images of the vertex of the first path. */
  void explore(std::size_t k) {
    const Level& level = levels_[k];
    partition_.backtrack(level.splits);
    if (!graph_.is_integer_column(level.vertex)) return;
    const std::span<const int> cell = partition_.cell(level.cell);
    std::vector<int> members(cell.begin(), cell.end());
    std::sort(members.begin(), members.end());
    std::vector<int> failed;
    for (const int w : members) {
      if (is_over()) return;
      const int orbit = orbits_.find(w);
      if (orbit == orbits_.find(level.vertex)) continue;
      const auto is_same = [&](int f) { return orbits_.find(f) == orbit; };
      if (std::any_of(failed.begin(), failed.end(), is_same)) continue;
      if (!maps_to(k, w)) failed.push_back(w);
      partition_.backtrack(level.splits);
    }
  }

  /* Goes one level down with this vertex. False where that differs from the first path. */
  bool step(std::size_t k, int w) {
    partition_.follow_trace(levels_[k].trace);
    partition_.individualize(w);
    const std::size_t end = k + 1 < levels_.size() ? levels_[k + 1].trace : trace_end_;
    return partition_.refine() && partition_.trace_position() == end;
  }

  /* The choices at a level below the first, in the order in which they are tried. */
  struct Choice {
    std::size_t level, splits;
    std::vector<int> vertices;
    std::size_t next = 0;
  };
  Choice choice_at(std::size_t k) const {
    const Level& level = levels_[k];
    Choice choice{k, partition_.splits().size(), {}};
    const std::span<const int> cell = partition_.cell(level.cell);
    choice.vertices.assign(cell.begin(), cell.end());
    std::sort(choice.vertices.begin(), choice.vertices.end());
    // What stays where it is makes a generator that moves little.
    const auto same = std::find(choice.vertices.begin(), choice.vertices.end(), level.vertex);
    if (same != choice.vertices.end()) std::rotate(choice.vertices.begin(), same, same + 1);
    return choice;
  }

  /* Looks for an automorphism that keeps the vertices before level k and maps the level's to w. */
  bool maps_to(std::size_t k, int w) {
    if (!step(k, w)) return false;
    if (try_map(k, k + 1)) return true;
    int dead_ends = 0;
    std::vector<Choice> path;
    if (k + 1 < levels_.size()) path.push_back(choice_at(k + 1));
    while (!path.empty() && !is_over()) {
      Choice& choice = path.back();
      partition_.backtrack(choice.splits);
      if (choice.next == choice.vertices.size()) {
        path.pop_back();
        continue;
      }
      const std::size_t level = choice.level;
      const bool same = step(level, choice.vertices[choice.next++]);
      if (same && try_map(k, level + 1)) return true;
      if (same && level + 1 < levels_.size()) {
        path.push_back(choice_at(level + 1));
      } else if (++dead_ends >= kDeadEnds) {
        gave_up_ = true;
        return false;
      }
    }
    return false;
  }

  /* The map from the first path's partition at level `now` to the present one, what level k has not split left alone. True when it
   * is an automorphism; then it is kept. */
  bool try_map(std::size_t k, std::size_t now) {
    const bool possible = read_map(k, now);
    const bool found = possible && is_automorphism();
    if (found) keep();
    for (const int v : moved_) image_[v] = v;
    moved_.clear();
    return found;
  }

  bool read_map(std::size_t k, std::size_t now) {
    const std::span<const Partition::Split> splits = partition_.splits().subspan(levels_[k].splits);
    const std::span<const int> order = partition_.order();
    const bool is_leaf = now == levels_.size();
    const auto map = [&](int c) {
      const int end = c + partition_.length(c);
      const auto stays = [&](int v) { return partition_.cell_of(v) == c; };
      ticks_ += end - c;
      const bool is_single = end - c == 1;
      if (!is_single && std::all_of(leaf_.begin() + c, leaf_.begin() + end, stays)) return true;
      // Rows that no column tells apart are copies of each other.
      if (!is_single && !is_leaf) return false;
      for (int p = c; p < end; ++p) {
        if (leaf_[p] == order[p]) continue;
        if (image_[leaf_[p]] == leaf_[p]) moved_.push_back(leaf_[p]);
        image_[leaf_[p]] = order[p];
      }
      return true;
    };
    for (const Partition::Split& split : splits) {
      if (!map(split.from) || !map(split.at)) return false;
    }
    return true;
  }

  /* Every vertex that moves has the colour of its image, and its edges are those of its image. What does not move has edges to such
   * vertices among these. */
  bool is_automorphism() {
    for (const int v : moved_) {
      const int w = image_[v];
      if (graph_.colour[v] != graph_.colour[w] || graph_.degree(v) != graph_.degree(w)) return false;
      ticks_ += 2 * graph_.degree(v);
      for (int e = graph_.start[w]; e < graph_.start[w + 1]; ++e)
        mark_[graph_.neighbour[e]] = graph_.edge_colour[e];
      bool same = true;
      for (int e = graph_.start[v]; e < graph_.start[v + 1]; ++e)
        same = same && mark_[image_[graph_.neighbour[e]]] == graph_.edge_colour[e];
      for (int e = graph_.start[w]; e < graph_.start[w + 1]; ++e) mark_[graph_.neighbour[e]] = -1;
      if (!same) return false;
    }
    return is_permutation();
  }

  bool is_permutation() {
    bool each_once = true;
    for (const int v : moved_) each_once = each_once && std::exchange(mark_[image_[v]], 0) < 0;
    for (const int v : moved_) each_once = each_once && mark_[v] == 0;
    for (const int v : moved_) mark_[image_[v]] = -1;
    return each_once;
  }

  void keep() {
    Generator generator;
    std::sort(moved_.begin(), moved_.end());
    bool any_integer = false;
    for (const int v : moved_) {
      orbits_.join(v, image_[v]);
      if (!graph_.is_column(v)) continue;
      generator.columns.push_back(v);
      generator.images.push_back(image_[v]);
      any_integer = any_integer || graph_.is_integer_column(v);
    }
    if (any_integer) found_.generators.push_back(std::move(generator));
  }

  const ColouredGraph graph_;
  Partition partition_;
  UnionFind orbits_;
  std::vector<Level> levels_;
  std::size_t trace_end_ = 0;
  std::vector<int> leaf_;   // the order at the end of the first path
  std::vector<int> image_;  // by vertex, itself but for moved_
  std::vector<int> moved_;
  std::vector<int> mark_;  // by vertex; -1: none
  Symmetries found_;
  std::int64_t ticks_ = 0, tick_limit_;
  bool gave_up_ = false;
};

}  // namespace

Symmetries find_symmetries(const Problem& problem, std::int64_t tick_limit) {
  return Detector(problem, tick_limit).run();
}

}  // namespace tovik::mip
