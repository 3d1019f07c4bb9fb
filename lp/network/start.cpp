/* The first tree of the network simplex. */
#include <algorithm>
#include <numeric>
#include <unordered_map>
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
      ++start_[static_cast<std::size_t>(arcs[a].tail)];
      ++start_[static_cast<std::size_t>(arcs[a].head)];
    }
    std::partial_sum(start_.begin(), start_.end(), start_.begin());
    for (const int a : members)
      for (const int v : {arcs[a].tail, arcs[a].head})
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

/* The second halves of free arcs that the basis takes, by arc of the problem. */
std::unordered_map<int, int> second_halves(const FlowBasis& start, const WorkingArcs& arcs) {
  std::unordered_map<int, int> second;
  for (int a = 0; a < arcs.count(); ++a) {
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
    if (status == BasisStatus::basic && !second_of_free && components.join(arcs[a].tail, arcs[a].head)) {
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

void FlowSimplex::start_from_artificial_arcs() {
  const std::vector<double> excess = excesses(problem_, arcs_);
  for (int v = 0; v < problem_.num_nodes(); ++v) hang_on_root(v, excess[static_cast<std::size_t>(v)]);
}

/* The trees that the basis makes, each hung on the root; cut where an arc would have to carry more than it can or
 * could not take more towards the root. So a basis near the optimum keeps nearly all of its arcs. */
void FlowSimplex::start_from(const FlowBasis& start) {
  const int n = problem_.num_nodes();
  const Forest forest(arcs_, choose_members(start, arcs_, n), n);
  std::vector<double> excess = excesses(problem_, arcs_);
  std::vector<int> parent(static_cast<std::size_t>(n), kNoNode),
      arc(static_cast<std::size_t>(n), kArtificial);
  std::vector<int> order;
  order.reserve(static_cast<std::size_t>(n));
  const auto grow_from = [&](int top) {
    if (parent[static_cast<std::size_t>(top)] != kNoNode) return;
    parent[static_cast<std::size_t>(top)] = n;
    order.push_back(top);
    for (std::size_t k = order.size() - 1; k < order.size(); ++k) {
      const int v = order[k];
      for (const int a : forest.arcs_of(v)) {
        const int w = arcs_[a].tail == v ? arcs_[a].head : arcs_[a].tail;
        if (parent[static_cast<std::size_t>(w)] != kNoNode) continue;
        parent[static_cast<std::size_t>(w)] = v;
        arc[static_cast<std::size_t>(w)] = a;
        order.push_back(w);
      }
    }
  };
  for (int v = 0; v < n; ++v)
    if (start.nodes[static_cast<std::size_t>(v)] == BasisStatus::basic) grow_from(v);
  for (int v = 0; v < n; ++v) grow_from(v);

  // A free arc carries flow the other way by its second half.
  const std::unordered_map<int, int> halves = second_halves(start, arcs_);
  for (std::size_t k = order.size(); k-- > 0;) {
    const int v = order[k];
    int a = arc[static_cast<std::size_t>(v)];
    double& own = excess[static_cast<std::size_t>(v)];
    if (a == kArtificial) {
      hang_on_root(v, own);
      continue;
    }
    double& above = excess[static_cast<std::size_t>(parent[static_cast<std::size_t>(v)])];
    bool points_up = arcs_[a].tail == v;
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
