/* The first tree of the network simplex. */
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <queue>
#include <ranges>
#include <unordered_map>
#include <utility>
#include <vector>

#include "lp/network/flow_simplex.h"

namespace tovik::lp::network {
namespace {

/* Which nodes hang together. */
class Components {
 public:
  explicit Components(int nodes) : leader_(static_cast<std::size_t>(nodes)) {
    std::iota(leader_.begin(), leader_.end(), 0);
  }
  /* False where they do already. */
  bool join(int u, int v) {
    u = leader(u);
    v = leader(v);
    if (u == v) return false;
    leader_[static_cast<std::size_t>(u)] = v;
    return true;
  }

 private:
  int leader(int v) {
    while (leader_[static_cast<std::size_t>(v)] != v) {
      int& up = leader_[static_cast<std::size_t>(v)];
      up = leader_[static_cast<std::size_t>(up)];
      v = up;
    }
    return v;
  }
  std::vector<int> leader_;
};

/* A forest of arcs as lists by node, and a walk over it that meets parents before children. */
class Forest {
 public:
  Forest(const WorkingArcs& arcs, const std::vector<int>& members, int nodes)
      : start_(static_cast<std::size_t>(nodes) + 1), arc_(2 * members.size()) {
    for (const int a : members) {
      ++start_[static_cast<std::size_t>(arcs.tail(a))];
      ++start_[static_cast<std::size_t>(arcs.head(a))];
    }
    std::partial_sum(start_.begin(), start_.end(), start_.begin());
    for (const int a : members)
      for (const int v : {arcs.tail(a), arcs.head(a)})
        arc_[static_cast<std::size_t>(--start_[static_cast<std::size_t>(v)])] = a;
  }
  std::span<const int> arcs_of(int v) const {
    const auto k = static_cast<std::size_t>(v);
    return std::span(arc_).subspan(static_cast<std::size_t>(start_[k]),
                                   static_cast<std::size_t>(start_[k + 1] - start_[k]));
  }

 private:
  std::vector<int> start_, arc_;
};

/* What an arc out of each node may cost so that of many arcs about kEnough are left, were costs spread evenly. */
std::vector<double> cost_ceilings(const WorkingArcs& arcs, int nodes) {
  constexpr double kEnough = 8;
  struct Costs {
    double least = kInf, sum = 0, count = 0;
  };
  std::vector<Costs> leaving(static_cast<std::size_t>(nodes));
  for (int a = 0; a < arcs.count(); ++a) {
    Costs& costs = leaving[static_cast<std::size_t>(arcs.tail(a))];
    costs.least = std::min(costs.least, arcs.cost(a));
    costs.sum += arcs.cost(a);
    costs.count += 1;
  }
  std::vector<double> ceilings(static_cast<std::size_t>(nodes), kInf);
  for (std::size_t v = 0; v < ceilings.size(); ++v) {
    const Costs& costs = leaving[v];
    if (costs.count > 2 * kEnough)
      ceilings[v] = costs.least + (costs.sum / costs.count - costs.least) * 2 * kEnough / costs.count;
  }
  return ceilings;
}

/* Arcs with room and below their ceilings as lists by head. */
class ArcsByHead {
 public:
  ArcsByHead(const WorkingArcs& arcs, int nodes) : start_(static_cast<std::size_t>(nodes) + 1) {
    const std::vector<double> ceilings = cost_ceilings(arcs, nodes);
    std::vector<int> kept;
    for (int a = 0; a < arcs.count(); ++a) {
      if (arcs.state(a) == 0 || arcs.cost(a) > ceilings[static_cast<std::size_t>(arcs.tail(a))]) continue;
      kept.push_back(a);
      ++start_[static_cast<std::size_t>(arcs.head(a))];
    }
    std::partial_sum(start_.begin(), start_.end(), start_.begin());
    arc_.resize(kept.size());
    for (const int a : kept | std::views::reverse)
      arc_[static_cast<std::size_t>(--start_[static_cast<std::size_t>(arcs.head(a))])] = a;
  }
  std::span<const int> arcs_of(int v) const {
    const auto k = static_cast<std::size_t>(v);
    return std::span(arc_).subspan(static_cast<std::size_t>(start_[k]),
                                   static_cast<std::size_t>(start_[k + 1] - start_[k]));
  }

 private:
  std::vector<int> start_, arc_;
};

/* Shortest paths to the nodes with a demand: the length from each node, and the arc that its path begins with. Costs below
 * zero count as zero. */
class ShortestPaths {
 public:
  ShortestPaths(const WorkingArcs& arcs, std::span<const double> excess)
      : arcs_(arcs), length_(excess.size(), kInf), arc_(excess.size(), kArtificial) {
    for (std::size_t v = 0; v < excess.size(); ++v)
      if (excess[v] < 0) length_[v] = 0;
    // Where arcs lead to such nodes alone one look at each is enough.
    if (!take_last_steps()) search();
    std::vector<bool> listed(excess.size());
    for (const int v : order_) listed[static_cast<std::size_t>(v)] = true;
    for (std::size_t v = 0; v < excess.size(); ++v)
      if (!listed[v]) order_.push_back(static_cast<int>(v));
  }
  std::vector<int>& first_arcs() { return arc_; }
  /* All nodes, each behind the one that its first arc leads to. */
  std::vector<int>& order() { return order_; }

 private:
  using Reached = std::pair<double, int>;

  bool take_last_steps() {
    std::vector<double> length = length_;
    order_.reserve(length.size());
    for (std::size_t v = 0; v < length.size(); ++v)
      if (length[v] == 0) order_.push_back(static_cast<int>(v));
    for (int a = 0; a < arcs_.count(); ++a) {
      if (arcs_.state(a) == 0) continue;
      if (length_[static_cast<std::size_t>(arcs_.head(a))] != 0) return false;
      relax(a, 0, length);
    }
    return true;
  }

  /* Dijkstra's algorithm. */
  void search() {
    std::ranges::fill(arc_, kArtificial);
    order_.clear();
    const ArcsByHead into(arcs_, static_cast<int>(length_.size()));
    std::priority_queue<Reached, std::vector<Reached>, std::greater<>> queue;
    for (std::size_t v = 0; v < length_.size(); ++v)
      if (length_[v] == 0) queue.emplace(0, static_cast<int>(v));
    while (!queue.empty()) {
      const auto [length, v] = queue.top();
      queue.pop();
      if (length > length_[static_cast<std::size_t>(v)]) continue;
      order_.push_back(v);
      for (const int a : into.arcs_of(v))
        if (relax(a, length, length_)) {
          const int u = arcs_.tail(a);
          queue.emplace(length_[static_cast<std::size_t>(u)], u);
        }
    }
  }

  bool relax(int a, double from_head, std::vector<double>& length) {
    const auto u = static_cast<std::size_t>(arcs_.tail(a));
    const double by_here = from_head + std::max(arcs_.cost(a), 0.0);
    if (by_here >= length[u]) return false;
    length[u] = by_here;
    arc_[u] = a;
    return true;
  }

  const WorkingArcs& arcs_;
  std::vector<double> length_;
  std::vector<int> arc_, order_;
};

/* The second halves of free arcs that the basis takes, by arc of the problem. */
std::unordered_map<int, int> second_halves(const FlowBasis& start, const WorkingArcs& arcs) {
  std::unordered_map<int, int> second;
  for (int a = 0; arcs.has_other_bounds() && a < arcs.count(); ++a) {
    const int origin = arcs.origin(a);
    if (arcs.is_reversed(a) && arcs.is_free(a) &&
        start.arcs[static_cast<std::size_t>(origin)] == BasisStatus::basic)
      second.emplace(origin, a);
  }
  return second;
}

/* Supplies less what flows when every working arc stands at zero or, where its state says so, at its capacity. */
std::vector<double> excesses(const FlowProblem& problem, const WorkingArcs& arcs) {
  std::vector<double> excess(problem.supply.begin(), problem.supply.end());
  const auto carry = [&](int tail, int head, double flow) {
    excess[static_cast<std::size_t>(tail)] -= flow;
    excess[static_cast<std::size_t>(head)] += flow;
  };
  for (int a = 0; a < arcs.count(); ++a) {
    if (arcs.state(a) >= 0 && !arcs.has_other_bounds()) continue;
    const auto k = static_cast<std::size_t>(arcs.origin(a));
    const double flow = arcs.original_flow(a, arcs.state(a) < 0 ? arcs.capacity(a) : 0.0);
    if (flow != 0) carry(problem.tail[k], problem.head[k], flow);
  }
  return excess;
}

/* Arcs that the basis takes and that close no cycle; the states of the others. */
std::vector<int> choose_members(const FlowBasis& start, WorkingArcs& arcs, int nodes) {
  Components components(nodes);
  std::vector<int> members;
  for (int a = 0; a < arcs.count(); ++a) {
    const BasisStatus status = start.arcs[static_cast<std::size_t>(arcs.origin(a))];
    const bool second_of_free = arcs.is_reversed(a) && arcs.is_free(a);
    if (status == BasisStatus::basic && !second_of_free && components.join(arcs.tail(a), arcs.head(a))) {
      members.push_back(a);
      arcs.set_state(a, 0);
    } else {
      const bool at_capacity =
          status == BasisStatus::upper && !arcs.is_reversed(a) && arcs.capacity(a) < kInf;
      arcs.set_nonbasic(a, at_capacity);
    }
  }
  return members;
}

}  // namespace

/* Nodes without a parent arc send their excess to the root, or get it from there. */
void FlowSimplex::hang_on_root(int v, double excess) {
  if (excess >= 0) {
    tree_.set_parent_arc(v, {kArtificial, true, kInf, excess});
  } else {
    tree_.set_parent_arc(v, {kArtificial, false, -excess, kInf});
  }
}

/* The trees that the basis makes, each hung on the root. So a basis near the optimum keeps nearly all of its arcs. */
void FlowSimplex::start_from(const FlowBasis& start) {
  const int n = problem_.num_nodes();
  const Forest forest(arcs_, choose_members(start, arcs_, n), n);
  std::vector<double> excess = excesses(problem_, arcs_);
  StartTree draft(n);
  const auto grow_from = [&](int top) {
    if (draft.parent[static_cast<std::size_t>(top)] != kNoNode) return;
    draft.parent[static_cast<std::size_t>(top)] = n;
    draft.order.push_back(top);
    for (std::size_t k = draft.order.size() - 1; k < draft.order.size(); ++k) {
      const int v = draft.order[k];
      for (const int a : forest.arcs_of(v)) {
        const int w = arcs_.tail(a) == v ? arcs_.head(a) : arcs_.tail(a);
        if (draft.parent[static_cast<std::size_t>(w)] != kNoNode) continue;
        draft.parent[static_cast<std::size_t>(w)] = v;
        draft.arc[static_cast<std::size_t>(w)] = a;
        draft.order.push_back(w);
      }
    }
  };
  for (int v = 0; v < n; ++v)
    if (start.nodes[static_cast<std::size_t>(v)] == BasisStatus::basic) grow_from(v);
  for (int v = 0; v < n; ++v) grow_from(v);

  plant(draft, std::move(excess), second_halves(start, arcs_));
}

/* Every node that can send to one with a demand is hung on its shortest path there, and its supply follows it as far as
 * capacities allow. Where a cost is negative it counts as zero: this is a start and need not be optimal. */
void FlowSimplex::start_from_shortest_paths() {
  const int n = problem_.num_nodes();
  std::vector<double> excess = excesses(problem_, arcs_);
  StartTree draft(n);
  ShortestPaths paths(arcs_, excess);
  draft.arc = std::move(paths.first_arcs());
  draft.order = std::move(paths.order());
  for (int v = 0; v < n; ++v) {
    const int a = draft.arc[static_cast<std::size_t>(v)];
    draft.parent[static_cast<std::size_t>(v)] = a == kArtificial ? n : arcs_.head(a);
  }
  for (const int a : draft.arc)
    if (a != kArtificial) arcs_.set_state(a, 0);
  work_ += 4 * static_cast<std::uint64_t>(arcs_.count()) + 20 * static_cast<std::uint64_t>(n);
  plant(draft, std::move(excess), {});
}

/* The flows that the tree must carry, from its leaves up. It is cut where an arc would have to carry more than it can or
 * could not take more towards the root. A free arc carries flow the other way by its second half. */
void FlowSimplex::plant(StartTree& draft, std::vector<double> excess,
                        const std::unordered_map<int, int>& halves) {
  const int n = problem_.num_nodes();
  std::vector<int>&parent = draft.parent, &arc = draft.arc;
  const std::vector<int>& order = draft.order;
  for (std::size_t k = order.size(); k-- > 0;) {
    const int v = order[k];
    int a = arc[static_cast<std::size_t>(v)];
    double& own = excess[static_cast<std::size_t>(v)];
    if (a == kArtificial) {
      hang_on_root(v, own);
      continue;
    }
    double& above = excess[static_cast<std::size_t>(parent[static_cast<std::size_t>(v)])];
    bool points_up = arcs_.tail(a) == v;
    double wanted = points_up ? own : -own;
    if (const auto second = halves.find(arcs_.origin(a));
        second != halves.end() && (wanted < 0 || (wanted == 0 && !points_up))) {
      arcs_.set_nonbasic(a, false);
      a = second->second;
      arcs_.set_state(a, 0);
      points_up = !points_up;
      wanted = -wanted;
    }
    const double capacity = arcs_.capacity(a);
    const double flow = std::clamp(wanted, 0.0, std::max(capacity, 0.0));
    const double up = points_up ? capacity - flow : flow;
    if (flow == wanted && up > snap_) {
      tree_.set_parent_arc(v, {a, points_up, up, points_up ? flow : capacity - flow});
      above += own;
      continue;
    }
    // At the bound that it exceeds, or at the one from which nothing more goes up.
    const bool at_capacity = flow == wanted ? points_up : flow > 0;
    arcs_.set_nonbasic(a, at_capacity);
    const double kept = at_capacity ? capacity : 0.0;
    own -= points_up ? kept : -kept;
    above += points_up ? kept : -kept;
    parent[static_cast<std::size_t>(v)] = n;
    hang_on_root(v, own);
  }
  tree_.set_parents(parent);
}

}  // namespace tovik::lp::network
