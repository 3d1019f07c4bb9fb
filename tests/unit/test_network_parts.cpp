/* Parts of the network simplex by themselves: the scan of a block against a plain one, and the labels of a tree after many
 * exchanges against those of the same tree made anew. */
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "lp/network/block_scan.h"
#include "lp/network/spanning_tree.h"

namespace {

using namespace tovik::lp::network;

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

TEST(NetworkParts, LanesHoldTheFirstOfTheirBestArcs) {
  std::mt19937 random(7);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  constexpr int kNodes = 50, kArcs = 300;
  for (int round = 0; round < 300; ++round) {
    // Few different numbers, so that many gains are equal; in some rounds hardly any is positive.
    std::vector<int> tail(kArcs), head(kArcs);
    std::vector<double> cost(kArcs), potential(kNodes);
    std::vector<signed char> state(kArcs);
    for (double& p : potential) p = below(3) * 0.1;
    for (std::size_t a = 0; a < kArcs; ++a) {
      tail[a] = below(kNodes);
      head[a] = below(kNodes);
      cost[a] = round % 4 == 0 ? (below(40) == 0 ? -1 : 1) : below(5) - 2;
      state[a] = static_cast<signed char>(round % 4 == 0 ? below(2) : below(3) - 1);
    }
    const PricedArcs arcs{tail.data(), head.data(), cost.data(), state.data(), potential.data()};
    const int begin = below(40), end = begin + below(kArcs - begin + 1);
    const double floor = round % 2 == 0 ? 1e-6 : 1.1;
    const LaneBests bests = best_arcs(arcs, begin, end, floor);
    double best = floor;
    int best_arc = kNoArc;
    for (int lane = 0; lane < kLanes; ++lane) {
      double gain = floor;
      int arc = kNoArc;
      for (int a = begin + lane; a < end; a += kLanes)
        if (arcs.gain(a) > gain) gain = arcs.gain(a), arc = a;
      EXPECT_EQ(bests.arc[at(lane)], arc);
      EXPECT_EQ(bests.gain[at(lane)], gain);
      if (gain > best || (arc != kNoArc && gain == best && arc < best_arc)) best = gain, best_arc = arc;
    }
    const int lane = bests.best_lane();
    EXPECT_EQ(lane < 0 ? kNoArc : bests.arc[at(lane)], best_arc);
  }
}

/* Sizes, last nodes and the ring, from parents alone. */
void check_labels(const SpanningTree& tree) {
  const int n = tree.root();
  std::vector<int> size(at(n) + 1, 1), place(at(n) + 1, -1), order;
  for (int v = n, k = 0; k <= n; ++k, v = tree.next(v)) {
    ASSERT_EQ(place[at(v)], -1);
    place[at(v)] = k;
    order.push_back(v);
    EXPECT_EQ(tree.previous(tree.next(v)), v);
  }
  EXPECT_EQ(tree.next(order.back()), n);
  for (std::size_t k = order.size(); k-- > 1;) size[at(tree.parent(order[k]))] += size[at(order[k])];
  for (int v = 0; v <= n; ++v) {
    ASSERT_EQ(tree.size(v), size[at(v)]);
    ASSERT_EQ(tree.last(v), order[at(place[at(v)] + size[at(v)] - 1)]);
    // A subtree is a stretch: whoever stands below v stands behind it.
    if (v == n) continue;
    const int p = tree.parent(v);
    ASSERT_GT(place[at(v)], place[at(p)]);
    ASSERT_LT(place[at(v)] + size[at(v)], place[at(p)] + size[at(p)] + 1);
  }
}

TEST(NetworkParts, TreeKeepsItsLabelsThroughExchanges) {
  std::mt19937 random(11);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (const int n : {1, 2, 5, 30, 200}) {
    SpanningTree tree(n);
    std::vector<int> parents;
    for (int v = 0; v < n; ++v) parents.push_back(v < 3 ? n : below(v + 1) < 3 ? n : below(v));
    tree.set_parents(parents);
    check_labels(tree);
    for (int round = 0; round < 400 && !testing::Test::HasFatalFailure(); ++round) {
      const int top = below(n);
      int inner = top;
      for (int steps = below(tree.size(top)); steps > 0; --steps) inner = tree.next(inner);
      int outer = tree.next(tree.last(top));
      for (int steps = below(n + 1 - tree.size(top)); steps > 0; --steps) outer = tree.next(outer);
      int join = tree.parent(top);
      std::vector<bool> above(at(n) + 1);
      for (int v = outer; v != kNoNode; v = tree.parent(v)) above[at(v)] = true;
      while (!above[at(join)]) join = tree.parent(join);
      std::vector<SpanningTree::Node> path;
      std::vector<int> path_nodes;
      for (int v = inner; v != top; v = tree.parent(v)) {
        path.push_back(tree[v]);
        path_nodes.push_back(tree.parent(v));
      }
      tree.move({top, inner, outer, join, {round, true, round + 1.0, 2.0}});
      check_labels(tree);
      EXPECT_EQ(tree.parent(inner), outer);
      EXPECT_EQ(tree[inner].arc(), round);
      // Arcs on the way between keep what they can carry and hang the other way.
      for (std::size_t k = 0; k < path.size(); ++k) {
        const SpanningTree::Node& turned = tree[path_nodes[k]];
        EXPECT_EQ(turned.points_up(), !path[k].points_up());
        EXPECT_EQ(turned.up, path[k].down);
        EXPECT_EQ(turned.down, path[k].up);
        EXPECT_EQ(turned.arc(), path[k].arc());
      }
    }
  }
}

}  // namespace
