// The tree of open nodes against plain lists, and what an open node takes.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "mip/search/tree.h"
#include "support/counted_memory.h"
#include "support/random.h"

namespace {

using namespace tovik::mip;
using tovik::lp::BasisStatus;

/* What the tree should hold. */
struct Known {
  std::int64_t id;
  double bound, estimate, first_bound;
  int parent, depth, changes;
  std::shared_ptr<const StoredBasis> basis;  // a copy
  bool is_open = true;
};

/* NODEFILEIND 0 to 3. */
class TreeAgainstLists : public testing::TestWithParam<int> {
 protected:
  int add(int parent) {
    const int count = random_.below(4);
    NewNode node{static_cast<double>(random_.below(20)),
                 static_cast<double>(random_.below(20)),
                 0,
                 parent,
                 {},
                 {},
                 nullptr};
    for (int k = 0; k < count; ++k)
      node.changes.push_back({k, Side::upper, static_cast<double>(10 * count + k)});
    node.relaxation = node.bound / 7;
    node.branch = {count, Direction::up, node.estimate / 3};
    node.basis = draw_basis();
    const Known known{tree_.nodes_made(),
                      node.bound,
                      node.estimate,
                      node.bound,
                      parent,
                      parent < 0 ? 0 : nodes_.at(parent).depth + 1,
                      count,
                      node.basis == nullptr ? nullptr : std::make_shared<const StoredBasis>(*node.basis)};
    const int slot = tree_.add(std::move(node));
    EXPECT_EQ(nodes_.count(slot), 0u);
    nodes_[slot] = known;
    return slot;
  }
  /* Of some nodes that of the one before, as siblings share theirs. */
  std::shared_ptr<const StoredBasis> draw_basis() {
    if (random_.chance(0.3)) return last_basis_;
    last_basis_ = nullptr;
    if (random_.chance(0.2)) return nullptr;
    auto basis = std::make_shared<StoredBasis>();
    const int columns = random_.pick(0, 900), rows = random_.pick(0, 900);
    for (int j = 0; j < columns; ++j)
      basis->basis.columns.push_back(static_cast<BasisStatus>(random_.below(4)));
    for (int i = 0; i < rows; ++i) basis->basis.rows.push_back(static_cast<BasisStatus>(random_.below(4)));
    if (random_.chance(0.7)) {
      for (const auto* statuses : {&basis->basis.columns, &basis->basis.rows}) {
        for (const BasisStatus status : *statuses)
          basis->basis.dual_weights.push_back(status == BasisStatus::basic ? random_.uniform(0, 5) : 1);
      }
    }
    if (random_.chance(0.8)) {
      if (cut_rows_ == nullptr || random_.chance(0.1))
        cut_rows_ = std::make_shared<const std::vector<std::int64_t>>(3, random_.below(100));
      basis->cut_rows = cut_rows_;
    }
    return last_basis_ = basis;
  }
  /* Takes the node as a search does. */
  void take(int slot) {
    ASSERT_EQ(tree_.fetch(slot), NodeStore::State::done);
    tree_.take(slot);
    Known& known = nodes_.at(slot);
    known.is_open = false;
    const Node node = tree_[slot];
    EXPECT_EQ(node.relaxation, known.first_bound / 7);
    EXPECT_EQ(node.branch.column, known.changes);
    EXPECT_EQ(node.branch.direction, Direction::up);
    EXPECT_EQ(node.branch.distance, known.estimate / 3);
    ASSERT_EQ(node.basis == nullptr, known.basis == nullptr);
    if (node.basis == nullptr) return;
    EXPECT_EQ(node.basis->basis.columns, known.basis->basis.columns);
    EXPECT_EQ(node.basis->basis.rows, known.basis->basis.rows);
    EXPECT_EQ(node.basis->basis.dual_weights, known.basis->basis.dual_weights);
    EXPECT_EQ(node.basis->cut_rows, known.basis->cut_rows);  // the very list
  }
  void park() {
    NodeFileSettings settings{GetParam() != 0, GetParam() % 2 == 1, GetParam() >= 2, 0.05,
                              testing::TempDir()};
    ASSERT_EQ(tree_.park(settings), NodeStore::State::done);
    most_parked_ = std::max(most_parked_, tree_.parked_bytes());
    if (GetParam() == 2) {
      EXPECT_EQ(tree_.stored_bytes(), tree_.parked_bytes());
    } else if (tree_.parked_bytes() > 100000) {
      EXPECT_LT(tree_.stored_bytes(), tree_.parked_bytes());
    }
  }
  /* The ids below a node that live. */
  int children(int slot) const {
    return static_cast<int>(
        std::count_if(nodes_.begin(), nodes_.end(), [&](const auto& n) { return n.second.parent == slot; }));
  }
  void close(int slot) {
    tree_.close(slot);
    nodes_.at(slot).is_open = false;
    while (slot >= 0 && !nodes_.at(slot).is_open && children(slot) == 0) {
      const int parent = nodes_.at(slot).parent;
      nodes_.erase(slot);
      slot = parent;
    }
  }
  template <class Key>
  int best(Key key) const {
    int found = -1;
    for (const auto& [slot, n] : nodes_) {
      if (!n.is_open) continue;
      const auto before = [&](const Known& a, const Known& b) {
        return key(a) != key(b) ? key(a) < key(b) : a.id > b.id;
      };
      if (found < 0 || before(n, nodes_.at(found))) found = slot;
    }
    return found;
  }
  int open() const {
    return static_cast<int>(
        std::count_if(nodes_.begin(), nodes_.end(), [](const auto& n) { return n.second.is_open; }));
  }
  void compare() {
    ASSERT_EQ(tree_.open(), open());
    ASSERT_EQ(tree_.empty(), open() == 0);
    ASSERT_EQ(tree_.best_bound_node(), best([](const Known& n) { return n.bound; }));
    ASSERT_EQ(tree_.best_estimate_node(), best([](const Known& n) { return n.estimate; }));
    for (const auto& [slot, n] : nodes_) {
      const Node node = tree_[slot];
      ASSERT_EQ(node.id, n.id);
      ASSERT_EQ(node.parent, n.parent);
      ASSERT_EQ(node.depth, n.depth);
      ASSERT_EQ(node.is_open, n.is_open);
      ASSERT_EQ(tree_.is_open(slot, n.id), n.is_open);
      ASSERT_EQ(static_cast<int>(node.changes.size()), n.changes);
      for (int k = 0; k < n.changes; ++k)
        ASSERT_EQ(node.changes[static_cast<std::size_t>(k)].value, 10 * n.changes + k);
      if (n.is_open) {
        ASSERT_EQ(node.bound, n.bound);
      }
    }
  }
  int any_open() {
    int skip = random_.below(open());
    for (const auto& [slot, n] : nodes_) {
      if (n.is_open && skip-- == 0) return slot;
    }
    return -1;
  }

  support::Random random_{20};
  std::shared_ptr<const StoredBasis> last_basis_;
  std::shared_ptr<const std::vector<std::int64_t>> cut_rows_;
  std::int64_t most_parked_ = 0;
  Tree tree_;
  std::map<int, Known> nodes_;  // by slot
};

TEST_P(TreeAgainstLists, HoldsTheSameAfterAnyStep) {
  for (int step = 0; step < 3000; ++step) {
    SCOPED_TRACE(step);
    if (open() == 0) add(-1);
    ASSERT_NO_FATAL_FAILURE(park());
    const int slot = any_open();
    Known& node = nodes_.at(slot);
    switch (random_.below(8)) {
      case 0:
        close(slot);
        break;
      case 1: {
        node.bound += random_.below(5);
        tree_.raise_bound(slot, node.bound);
        break;
      }
      case 2: {  // what was taken comes back with a better bound
        ASSERT_NO_FATAL_FAILURE(take(slot));
        compare();
        node.bound += random_.below(5);
        tree_.raise_bound(slot, node.bound);
        tree_.put_back(slot);
        node.is_open = true;
        break;
      }
      case 3: {
        if (step % 20 != 0) break;
        const double cutoff = 12 + random_.below(10);
        std::vector<int> worse;
        for (const auto& [s, n] : nodes_) {
          if (n.is_open && n.bound >= cutoff) worse.push_back(s);
        }
        ASSERT_EQ(tree_.prune(cutoff), static_cast<std::int64_t>(worse.size()));
        for (const int s : worse) nodes_.at(s).is_open = false;
        for (int s : worse) {
          while (s >= 0 && nodes_.count(s) > 0 && !nodes_.at(s).is_open && children(s) == 0) {
            const int parent = nodes_.at(s).parent;
            nodes_.erase(s);
            s = parent;
          }
        }
        break;
      }
      default: {  // branched on
        ASSERT_NO_FATAL_FAILURE(take(slot));
        const int count = 1 + random_.below(2);
        for (int k = 0; k < count; ++k) add(slot);
        close(slot);
      }
    }
    ASSERT_NO_FATAL_FAILURE(compare());
  }
  if (GetParam() == 0) {
    EXPECT_EQ(most_parked_, 0);
  } else {
    EXPECT_GT(most_parked_, 500000);
  }
  tree_.prune(-1);
  EXPECT_EQ(tree_.parked_bytes(), 0);
  EXPECT_EQ(tree_.stored_bytes(), 0);
}

INSTANTIATE_TEST_SUITE_P(NodeFiles, TreeAgainstLists, testing::Range(0, 4));

/* Plunges to a fixed depth from the open node that is least deep: paths are long and share most of their changes. */
TEST(TreeMemory, TenMillionOpenNodesWithAHundredChangesAPathFitIntoTwoGigabytes) {
  constexpr int kDepth = 190;
  constexpr std::int64_t kOpen = 200000;
  support::Random random(3);
  const std::size_t before = support::live_bytes;
  Tree tree;
  tree.add({0, 0, 0, -1, {}, {}, nullptr});
  std::int64_t changes = 0;  // of all paths to open nodes
  while (tree.open() < kOpen) {
    int slot = tree.best_estimate_node();
    while (tree[slot].depth < kDepth) {
      tree.take(slot);
      const double bound = tree[slot].bound + random.uniform(0, 1);
      const int depth = tree[slot].depth;
      changes += depth + 2;
      const int left = slot;
      for (const Side side : {Side::upper, Side::lower}) {
        slot = tree.add(
            {bound, depth + 1.0, bound, left, {depth, Direction::up, 0.5}, {{depth, side, 1}}, nullptr});
      }
      tree.close(left);
    }
    changes -= tree[slot].depth;
    tree.close(slot);
  }
  EXPECT_GE(changes, 100 * kOpen);
  const auto used = static_cast<double>(support::live_bytes - before);
  EXPECT_LT(used / kOpen, 2e9 / 1e7);
  EXPECT_NEAR(tree.bytes(), used, 0.1 * used);
  RecordProperty("bytes_an_open_node", static_cast<int>(used / kOpen));
}

}  // namespace
