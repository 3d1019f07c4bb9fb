/* Random networks: edits against a plain reference, files that bring back the same data, and linear problems
 * whose optimum is that of shortest augmenting paths. */
#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>

#include "support/network_data.h"
#include "support/network_fixture.h"

namespace {

using support::NetworkArrays;

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  int whole(int low, int high) { return low + below(high - low + 1); }
  bool chance(int percent) { return below(100) < percent; }
  double any_number() {
    if (chance(50)) return whole(-9, 9);
    const double mantissa = static_cast<double>(random_()) / 7.0 - 3e8;
    return std::ldexp(mantissa, whole(-60, 20));
  }
  double any_bound() { return chance(20) ? (chance(50) ? 1e20 : -1e20) : any_number(); }
  std::string name() {
    std::string text;
    for (int k = below(6); k > 0; --k) text += "ab \\\n\r@cn\xe9"[below(10)];
    return text;
  }

 private:
  std::mt19937 random_;
};

/* The reference: plain vectors, everything done the slow way. */
struct Reference : NetworkArrays {
  template <class T>
  static void drop(std::vector<T>& values, const std::vector<char>& gone) {
    if (values.empty()) return;
    std::size_t kept = 0;
    for (std::size_t k = 0; k < gone.size(); ++k)
      if (gone[k] == 0) values[kept++] = values[k];
    values.resize(kept);
  }
  void drop_arcs(const std::vector<char>& gone) {
    for (auto* ends : {&tail, &head}) drop(*ends, gone);
    for (auto* values : {&cost, &lower, &upper}) drop(*values, gone);
    drop(arc_names, gone);
  }
  void drop_nodes(const std::vector<char>& gone) {
    std::vector<char> dead(tail.size());
    std::vector<int> number(gone.size());
    for (std::size_t i = 0, kept = 0; i < gone.size(); ++i)
      number[i] = static_cast<int>(gone[i] ? 0 : kept++);
    for (std::size_t a = 0; a < tail.size(); ++a) {
      dead[a] = gone[static_cast<std::size_t>(tail[a])] || gone[static_cast<std::size_t>(head[a])];
      tail[a] = number[static_cast<std::size_t>(tail[a])];
      head[a] = number[static_cast<std::size_t>(head[a])];
    }
    drop_arcs(dead);
    drop(supply, gone);
    drop(node_names, gone);
  }
  std::vector<int> arcs_of(int node) const {
    std::vector<int> arcs;
    for (int a = 0; a < this->arcs(); ++a) {
      const auto k = static_cast<std::size_t>(a);
      if (tail[k] == node || head[k] == node) arcs.push_back(a);
    }
    return arcs;
  }
};

/* min cost[a]*flow over whole-numbered data with upper[a] finite or cost[a] >= 0: nothing when no flow is
 * feasible. Arcs of negative cost start full; then shortest paths (Bellman-Ford) carry excess to deficits. */
std::optional<std::int64_t> optimum(const NetworkArrays& net) {
  struct Edge {
    int to;
    std::int64_t room, cost;
  };
  constexpr std::int64_t kLarge = 1000000;
  const std::size_t n = net.supply.size() + 2;
  const int source = net.nodes(), sink = net.nodes() + 1;
  std::vector<Edge> edges;  // edge e ^ 1 is the reverse of e
  std::vector<std::vector<int>> out(n);
  const auto add_edge = [&](int from, int to, std::int64_t room, std::int64_t used, std::int64_t cost) {
    out[static_cast<std::size_t>(from)].push_back(static_cast<int>(edges.size()));
    edges.push_back({to, room - used, cost});
    out[static_cast<std::size_t>(to)].push_back(static_cast<int>(edges.size()));
    edges.push_back({from, used, -cost});
  };
  std::vector<std::int64_t> excess;
  for (const double s : net.supply) excess.push_back(static_cast<std::int64_t>(s));
  std::int64_t value = 0, total = 0;
  for (std::size_t a = 0; a < net.tail.size(); ++a) {
    const auto low = static_cast<std::int64_t>(net.lower[a]), cost = static_cast<std::int64_t>(net.cost[a]);
    const std::int64_t room = net.upper[a] == 1e20 ? kLarge : static_cast<std::int64_t>(net.upper[a]) - low;
    if (room < 0) return {};
    const std::int64_t used = cost < 0 ? room : 0;
    value += cost * (low + used);
    excess[static_cast<std::size_t>(net.tail[a])] -= low + used;
    excess[static_cast<std::size_t>(net.head[a])] += low + used;
    if (net.tail[a] != net.head[a]) add_edge(net.tail[a], net.head[a], room, used, cost);
  }
  std::int64_t wanted = 0;
  for (int i = 0; i < source; ++i) {
    const std::int64_t e = excess[static_cast<std::size_t>(i)];
    total += e;
    if (e > 0) add_edge(source, i, e, 0, 0), wanted += e;
    if (e < 0) add_edge(i, sink, -e, 0, 0);
  }
  if (total != 0) return {};
  while (wanted > 0) {
    constexpr std::int64_t kFar = std::int64_t{1} << 60;
    std::vector<std::int64_t> distance(n, kFar);
    std::vector<int> by(n, -1);
    distance[static_cast<std::size_t>(source)] = 0;
    for (bool changed = true; changed;) {
      changed = false;
      for (std::size_t v = 0; v < n; ++v) {
        for (const int e : out[v]) {
          const Edge& edge = edges[static_cast<std::size_t>(e)];
          const auto to = static_cast<std::size_t>(edge.to);
          if (distance[v] == kFar || edge.room == 0 || distance[v] + edge.cost >= distance[to]) continue;
          distance[to] = distance[v] + edge.cost;
          by[to] = e;
          changed = true;
        }
      }
    }
    if (by[static_cast<std::size_t>(sink)] < 0) return {};
    std::int64_t step = wanted;
    const auto along_path = [&](auto&& visit) {
      for (int v = sink; v != source;) {
        const int e = by[static_cast<std::size_t>(v)];
        visit(static_cast<std::size_t>(e));
        v = edges[static_cast<std::size_t>(e ^ 1)].to;
      }
    };
    along_path([&](std::size_t e) { step = std::min(step, edges[e].room); });
    along_path([&](std::size_t e) {
      edges[e].room -= step;
      edges[e ^ 1].room += step;
      value += step * edges[e].cost;
    });
    wanted -= step;
  }
  return value;
}

class Networks : public support::WithNetwork {
 protected:
  static void add_random_arc(Maker& maker, NetworkArrays& net) {
    net.add_arc(maker.below(net.nodes()), maker.below(net.nodes()), maker.any_number(), maker.any_bound(),
                maker.any_bound());
  }

  /* One edit of both; the name is for the trace. */
  std::string edit(Maker& maker, Reference& reference) {
    const int nodes = reference.nodes(), arcs = reference.arcs(), what = maker.below(10);
    if (what == 0 || nodes == 0) return add_nodes(maker, reference);
    if (what <= 3 || arcs == 0) return add_arcs(maker, reference);
    const int arc = maker.below(arcs), node = maker.below(nodes), other = maker.below(nodes);
    const auto a = static_cast<std::size_t>(arc), i = static_cast<std::size_t>(node);
    switch (what) {
      case 4: {
        reference.tail[a] = node;
        reference.head[a] = other;
        EXPECT_EQ(TVKNETchgarcends(env_, net_, 1, &arc, &node, &other), 0);
        return " ends";
      }
      case 5: {
        reference.supply[i] = maker.any_number();
        EXPECT_EQ(TVKNETchgsupply(env_, net_, 1, &node, &reference.supply[i]), 0);
        reference.cost[a] = maker.any_number();
        EXPECT_EQ(TVKNETchgobj(env_, net_, 1, &arc, &reference.cost[a]), 0);
        reference.sense = -reference.sense;
        EXPECT_EQ(TVKNETchgobjsen(env_, net_, reference.sense), 0);
        return " values";
      }
      case 6: {
        std::string text = maker.name();
        char* name = text.data();
        auto& names = reference.arc_names;
        for (int k = 0; names.size() < static_cast<std::size_t>(arcs); ++k)
          names.push_back("a" + std::to_string(k + 1));
        names[a] = text;
        EXPECT_EQ(TVKNETchgarcname(env_, net_, 1, &arc, &name), 0);
        return " name";
      }
      case 7: {
        const int last = std::min(arcs - 1, arc + maker.below(3));
        std::vector<char> gone(static_cast<std::size_t>(arcs));
        std::fill(gone.begin() + arc, gone.begin() + last + 1, 1);
        reference.drop_arcs(gone);
        EXPECT_EQ(TVKNETdelarcs(env_, net_, arc, last), 0);
        return " delete arcs";
      }
      case 8: {
        std::vector<char> gone(static_cast<std::size_t>(nodes));
        gone[i] = 1;
        reference.drop_nodes(gone);
        EXPECT_EQ(TVKNETdelnodes(env_, net_, node, node), 0);
        return " delete node";
      }
      default:
        return delete_marked(maker, reference);
    }
  }

  std::string add_nodes(Maker& maker, Reference& reference) {
    const int count = 1 + maker.below(3);
    std::vector<double> supply;
    for (int k = 0; k < count; ++k) supply.push_back(maker.any_number());
    reference.supply.insert(reference.supply.end(), supply.begin(), supply.end());
    EXPECT_EQ(TVKNETaddnodes(env_, net_, count, supply.data(), nullptr), 0);
    return " add nodes";
  }

  std::string add_arcs(Maker& maker, Reference& reference) {
    NetworkArrays more;
    more.supply = reference.supply;
    for (int k = 1 + maker.below(4); k > 0; --k) add_random_arc(maker, more);
    const auto append = [](auto& to, const auto& from) { to.insert(to.end(), from.begin(), from.end()); };
    append(reference.tail, more.tail);
    append(reference.head, more.head);
    append(reference.cost, more.cost);
    append(reference.lower, more.lower);
    append(reference.upper, more.upper);
    if (!reference.arc_names.empty() || (reference.arcs() == more.arcs() && maker.chance(50))) {
      for (int k = 0; k < more.arcs(); ++k) more.arc_names.push_back(maker.name());
      append(reference.arc_names, more.arc_names);
    }
    support::NamePointers names(more.arc_names);
    EXPECT_EQ(TVKNETaddarcs(env_, net_, more.arcs(), more.tail.data(), more.head.data(), more.cost.data(),
                            more.lower.data(), more.upper.data(), names.get()),
              0);
    return " add arcs";
  }

  std::string delete_marked(Maker& maker, Reference& reference) {
    const bool of_nodes = maker.chance(50);
    const int count = of_nodes ? reference.nodes() : reference.arcs();
    std::vector<char> gone(static_cast<std::size_t>(count));
    std::vector<int> marks(gone.size()), expected(gone.size());
    for (std::size_t k = 0, kept = 0; k < gone.size(); ++k) {
      gone[k] = maker.chance(20);
      marks[k] = gone[k] != 0 ? 1 : maker.chance(50) ? 0 : 7;
      expected[k] = gone[k] != 0 ? -1 : static_cast<int>(kept++);
    }
    EXPECT_EQ((of_nodes ? TVKNETdelsetnodes : TVKNETdelsetarcs)(env_, net_, marks.data()), 0);
    EXPECT_EQ(marks, expected);
    if (of_nodes) {
      reference.drop_nodes(gone);
    } else {
      reference.drop_arcs(gone);
    }
    return " delete marked";
  }

  std::vector<int> arcs_of(int node, int arcs) {
    int count = 0, begin = 0, surplus = 0;
    std::vector<int> found(static_cast<std::size_t>(arcs) + 1);
    EXPECT_EQ(TVKNETgetnodearcs(env_, net_, &count, &begin, found.data(), arcs + 1, &surplus, node, node), 0);
    found.resize(static_cast<std::size_t>(count));
    return found;
  }
};

TEST_F(Networks, EditsAreThoseOfAPlainReference) {
  for (unsigned seed = 1; seed <= 400 && !HasFailure(); ++seed) {
    Maker maker(seed);
    Reference reference;
    ASSERT_EQ(support::copy(env_, net_, reference), 0);
    std::string trace = "seed " + std::to_string(seed) + ":";
    for (int step = 0; step < 60 && !HasFailure(); ++step) {
      trace += edit(maker, reference);
      SCOPED_TRACE(trace);
      if (maker.chance(40)) {
        EXPECT_EQ(support::read_back(env_, net_), NetworkArrays(reference));
      }
      if (maker.chance(40) && reference.nodes() > 0) {
        const int node = maker.below(reference.nodes());
        EXPECT_EQ(arcs_of(node, reference.arcs()), reference.arcs_of(node));
      }
    }
    EXPECT_EQ(support::read_back(env_, net_), NetworkArrays(reference)) << trace;
  }
}

TEST_F(Networks, FilesBringBackTheSameData) {
  for (unsigned seed = 1; seed <= 100 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Maker maker(seed);
    NetworkArrays net;
    net.sense = maker.chance(50) ? 1 : -1;
    for (int k = 1 + maker.below(8); k > 0; --k) net.supply.push_back(maker.any_number());
    for (int k = maker.below(20); k > 0; --k) add_random_arc(maker, net);
    if (maker.chance(50))
      for (int k = net.nodes(); k > 0; --k) net.node_names.push_back(maker.name());
    if (maker.chance(50))
      for (int k = net.arcs(); k > 0; --k) net.arc_names.push_back(maker.name());
    ASSERT_EQ(support::copy(env_, net_, net), 0);
    ASSERT_EQ(TVKNETwriteprob(env_, net_, path("n.net").c_str(), nullptr), 0);
    ASSERT_EQ(support::copy(env_, net_, NetworkArrays()), 0);
    ASSERT_EQ(TVKNETreadcopyprob(env_, net_, path("n.net").c_str()), 0) << errors() << content("n.net");
    EXPECT_EQ(support::read_back(env_, net_), net) << content("n.net");
  }
}

TEST_F(Networks, LinearProblemsHaveTheOptimumOfShortestPaths) {
  int optimal = 0, infeasible = 0;
  for (unsigned seed = 1; seed <= 500 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Maker maker(seed);
    NetworkArrays net;
    const int nodes = 2 + maker.below(8);
    net.supply.assign(static_cast<std::size_t>(nodes), 0);
    for (int k = maker.below(4); k > 0; --k) {
      const double units = maker.whole(1, 9);
      net.supply[static_cast<std::size_t>(maker.below(nodes))] += units;
      net.supply[static_cast<std::size_t>(maker.below(nodes))] -= units;
    }
    if (maker.chance(3)) net.supply[0] += 1;
    for (int k = nodes + maker.below(4 * nodes); k > 0; --k) {
      const double low = maker.chance(20) ? maker.whole(-4, 2) : 0, cost = maker.whole(-3, 9);
      const bool endless = cost >= 0 && maker.chance(40);
      net.add_arc(maker.below(nodes), maker.below(nodes), cost, low,
                  endless ? 1e20 : low + maker.whole(maker.chance(2) ? -1 : 0, 8));
    }
    const std::optional<std::int64_t> expected = optimum(net);
    net.sense = maker.chance(30) ? -1 : 1;
    if (net.sense < 0)
      for (double& cost : net.cost) cost = -cost;
    ASSERT_EQ(support::copy(env_, net_, net), 0);
    ASSERT_EQ(TVKcopynettolp(env_, lp_, net_), 0);
    ASSERT_EQ(TVKlpopt(env_, lp_), 0) << errors();
    ++(expected ? optimal : infeasible);
    if (expected) {
      double value = 0;
      ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL) << support::describe(net);
      ASSERT_EQ(TVKgetobjval(env_, lp_, &value), 0);
      EXPECT_NEAR(value, static_cast<double>(net.sense * *expected), 1e-6) << support::describe(net);
    } else {
      EXPECT_NE(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL) << support::describe(net);
    }
  }
  EXPECT_GT(optimal, 150);
  EXPECT_GT(infeasible, 50);
}

}  // namespace
