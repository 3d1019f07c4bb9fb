#include "bench/network/families.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_set>
#include <utility>

namespace bench {
namespace {

/* SplitMix64 (Steele, Lea, Flood 2014): the same numbers with every standard library. */
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }
  int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
  int between(int low, int high) { return low + below(high - low + 1); }
  bool chance(int percent) { return below(100) < percent; }

 private:
  std::uint64_t state_;
};

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

void sort_by_tail(Instance& instance) {
  std::ranges::stable_sort(instance.arcs, {}, &Arc::tail);
}

/* `total` cut into random parts of at least one. */
std::vector<std::int64_t> parts(Random& random, std::int64_t total, int count) {
  std::vector<std::int64_t> part(at(count), 1);
  total -= count;
  const std::int64_t fair = std::max<std::int64_t>(total / count, 0);
  for (int k = 0; k + 1 < count; ++k) {
    const auto taken = static_cast<std::int64_t>(random.next() % static_cast<std::uint64_t>(fair + 1));
    part[at(k)] += taken;
    part[at(random.below(count))] += fair - taken;
    total -= fair;
  }
  part[at(count - 1)] += std::max<std::int64_t>(total, 0);
  return part;
}

/* "NETGEN: A program for generating large scale capacitated assignment, transportation, and minimum cost flow network
 * problems", Management Science 20 (1974). */
struct NetgenPlan {
  int nodes, sources, sinks;
  std::int64_t arcs, supply;
  int high_cost_percent = 30, capacitated_percent = 100;  // of skeleton arcs; of all arcs
  int most_cost = 10000, most_capacity = 1000;
};

class Netgen {
 public:
  Netgen(const NetgenPlan& plan, std::uint64_t seed) : plan_(plan), random_(seed) {}

  Instance make() {
    instance_.supply.assign(at(plan_.nodes), 0);
    instance_.arcs.reserve(static_cast<std::size_t>(plan_.arcs) + at(plan_.nodes));
    const std::vector<std::int64_t> supplies = parts(random_, plan_.supply, plan_.sources);
    for (int s = 0; s < plan_.sources; ++s) instance_.supply[at(s)] = supplies[at(s)];
    lay_skeleton();
    fill_up();
    sort_by_tail(instance_);
    return std::move(instance_);
  }

 private:
  bool is_sink(int v) const { return v >= plan_.nodes - plan_.sinks; }

  /* Sources start chains that share the nodes in between; each chain ends at some sinks, and each sink at a chain. */
  void lay_skeleton() {
    const int between = plan_.nodes - plan_.sources - plan_.sinks;
    std::vector<int> end(at(plan_.sources));
    std::iota(end.begin(), end.end(), 0);
    std::vector<int> order(at(between));
    std::iota(order.begin(), order.end(), plan_.sources);
    for (int k = between; k > 1; --k) std::swap(order[at(k - 1)], order[at(random_.below(k))]);
    for (int k = 0; k < between; ++k) {
      const int chain = k < between * 6 / 10 ? k % plan_.sources : random_.below(plan_.sources);
      add_skeleton_arc(std::exchange(end[at(chain)], order[at(k)]), order[at(k)], chain);
    }
    std::vector<std::vector<int>> sinks(at(plan_.sources));
    const int rounds = std::max(plan_.sources, plan_.sinks);
    const int shift = random_.below(plan_.sinks);
    for (int k = 0; k < rounds; ++k)
      sinks[at(k % plan_.sources)].push_back(plan_.nodes - plan_.sinks + (k + shift) % plan_.sinks);
    for (int chain = 0; chain < plan_.sources; ++chain) {
      const std::int64_t all = instance_.supply[at(chain)];
      const int count = static_cast<int>(sinks[at(chain)].size());
      const std::vector<std::int64_t> share =
          all >= count ? parts(random_, all, count) : std::vector<std::int64_t>(at(count), 0);
      for (int k = 0; k < count; ++k) {
        instance_.supply[at(sinks[at(chain)][at(k)])] -= all >= count ? share[at(k)] : k < all ? 1 : 0;
        add_skeleton_arc(end[at(chain)], sinks[at(chain)][at(k)], chain);
      }
    }
  }

  void add_skeleton_arc(int tail, int head, int chain) {
    const bool dear = random_.chance(plan_.high_cost_percent);
    const int cost = dear ? plan_.most_cost : random_.between(1, plan_.most_cost);
    int capacity = plan_.most_capacity;
    if (!random_.chance(plan_.capacitated_percent)) capacity = static_cast<int>(plan_.supply);
    capacity = std::max(capacity, static_cast<int>(instance_.supply[at(chain)]));
    instance_.arcs.push_back({tail, head, cost, capacity});
    used_.insert(key(tail, head));
  }

  /* Random arcs out of all nodes but sinks, none twice; straight from sources to sinks where nothing is in between. */
  void fill_up() {
    const int tails = plan_.nodes - plan_.sinks;
    const bool bipartite = plan_.sources + plan_.sinks == plan_.nodes;
    const std::int64_t possible =
        static_cast<std::int64_t>(tails) * (bipartite ? plan_.sinks : plan_.nodes - 1);
    if (plan_.arcs >= possible * 3 / 4) {
      for (int tail = 0; tail < tails; ++tail)
        for (int head = bipartite ? tails : 0; head < plan_.nodes; ++head)
          if (tail != head && !used_.contains(key(tail, head))) add_arc(tail, head);
      return;
    }
    for (std::int64_t k = static_cast<std::int64_t>(instance_.arcs.size()); k < plan_.arcs;) {
      const int tail = random_.below(tails);
      const int head = bipartite ? tails + random_.below(plan_.sinks) : random_.below(plan_.nodes);
      if (tail == head || !used_.insert(key(tail, head)).second) continue;
      add_arc(tail, head);
      ++k;
    }
  }

  void add_arc(int tail, int head) {
    const bool capacitated = random_.chance(plan_.capacitated_percent);
    const int cost = random_.between(1, plan_.most_cost);
    instance_.arcs.push_back(
        {tail, head, cost,
         capacitated ? random_.between(1, plan_.most_capacity) : static_cast<int>(plan_.supply)});
  }

  std::uint64_t key(int tail, int head) const {
    return static_cast<std::uint64_t>(tail) * static_cast<std::uint64_t>(plan_.nodes) +
           static_cast<std::uint64_t>(head);
  }

  NetgenPlan plan_;
  Random random_;
  Instance instance_;
  std::unordered_set<std::uint64_t> used_;
};

int root_of(int n) {
  return static_cast<int>(std::lround(std::sqrt(static_cast<double>(n))));
}

/* Grids with a source before the first column and a sink behind the last: arcs to the right, up and down. A row carries
 * its narrowest arc, which is what is sent. After "An efficient implementation of a network interior point method"
 * (Resende, Veiga 1993). */
Instance plain_grid(int height, int width, std::uint64_t seed) {
  Random random(seed);
  Instance instance;
  const int source = height * width, sink = source + 1;
  instance.supply.assign(at(sink + 1), 0);
  const auto node = [&](int row, int column) { return column * height + row; };
  const auto add = [&](int tail, int head, int capacity) {
    instance.arcs.push_back({tail, head, random.between(1, 10000), capacity});
  };
  std::int64_t sent = 0;
  for (int row = 0; row < height; ++row) {
    int least = 1000;
    for (int column = 0; column + 1 < width; ++column) {
      const int capacity = random.between(200, 1000);
      least = std::min(least, capacity);
      add(node(row, column), node(row, column + 1), capacity);
    }
    for (int column = 0; row + 1 < height && column < width; ++column) {
      add(node(row, column), node(row + 1, column), random.between(1, 1000));
      add(node(row + 1, column), node(row, column), random.between(1, 1000));
    }
    add(source, node(row, 0), 1000);
    add(node(row, width - 1), sink, 1000);
    sent += least;
  }
  instance.supply[at(source)] = sent;
  instance.supply[at(sink)] = -sent;
  sort_by_tail(instance);
  return instance;
}

/* Grids with arcs between neighbours both ways, random arcs besides up to `degree` a node, and some sources and sinks,
 * joined by wide paths along the grid. After Lee and Orlin's grid generator (1991). */
Instance grid_with_chords(int height, int width, int degree, std::uint64_t seed) {
  Random random(seed);
  Instance instance;
  const int nodes = height * width, ends = root_of(nodes);
  instance.supply.assign(at(nodes), 0);
  const std::int64_t supply = 1000LL * ends;
  // Every node can send to its neighbours: one way round each pair is wide enough for everything.
  const auto add_pair = [&](int u, int v) {
    for (const bool forward : {true, false})
      instance.arcs.push_back({forward ? u : v, forward ? v : u, random.between(1, 10000),
                               random.chance(20) ? static_cast<int>(supply) : random.between(1, 1000)});
  };
  for (int row = 0; row < height; ++row)
    for (int column = 0; column < width; ++column) {
      const int v = row * width + column;
      if (column + 1 < width) add_pair(v, v + 1);
      if (row + 1 < height) add_pair(v, v + width);
    }
  // A ring of wide dear arcs keeps it feasible.
  for (int v = 0; v < nodes; ++v)
    instance.arcs.push_back({v, (v + 1) % nodes, 10000, static_cast<int>(supply)});
  for (auto k = static_cast<std::int64_t>(instance.arcs.size());
       k < static_cast<std::int64_t>(nodes) * degree; ++k) {
    const int tail = random.below(nodes), head = random.below(nodes);
    if (tail != head)
      instance.arcs.push_back({tail, head, random.between(1, 10000), random.between(1, 1000)});
  }
  for (const std::int64_t amount : parts(random, supply, ends))
    instance.supply[at(random.below(nodes))] += amount;
  for (const std::int64_t amount : parts(random, supply, ends))
    instance.supply[at(random.below(nodes))] -= amount;
  sort_by_tail(instance);
  return instance;
}

/* Grid on a torus: layers around a ring, each node with `degree` arcs to the next layers, short ones narrow and cheap, long ones
 * wide and dear; all supply at one node, all demand at the opposite one, as much as a cut between layers can nearly carry.
 * After Goldberg's "grid on torus" generator (1991). */
Instance torus(int layers, int height, int degree, std::uint64_t seed) {
  Random random(seed);
  Instance instance;
  const int nodes = layers * height;
  instance.supply.assign(at(nodes), 0);
  const int source = 0, sink = (layers / 2) * height;
  const auto node = [&](int layer, int row) { return layer % layers * height + (row + height) % height; };
  const std::int64_t sent = 400LL * height * std::max(degree / 4, 1);
  for (int layer = 0; layer < layers; ++layer)
    for (int row = 0; row < height; ++row) {
      const int v = node(layer, row);
      for (int k = 0; k < degree - 2; ++k) {
        const int ahead = 1 + k / 5, aside = k % 5 - 2;
        const int w = node(layer + ahead, row + aside);
        if (w == v) continue;
        const int length = ahead + std::abs(aside);
        instance.arcs.push_back({v, w, random.between(1, 2000) * length, random.between(1, 400 * ahead)});
      }
      // Within the layer of the ends everything can pass, elsewhere along a dear path.
      const bool at_end = layer == 0 || layer == layers / 2;
      instance.arcs.push_back({v, node(layer, row + 1), random.between(1, at_end ? 10 : 10000),
                               at_end ? static_cast<int>(sent) : 100});
      instance.arcs.push_back({v, node(layer + 1, row), 100000, row == 0 ? static_cast<int>(sent) : 100});
    }
  instance.supply[at(source)] = sent;
  instance.supply[at(sink)] = -sent;
  sort_by_tail(instance);
  return instance;
}

/* Transportation in the plane: the cost is the distance. */
Instance plane(int sources, int sinks, std::uint64_t seed) {
  Random random(seed);
  Instance instance;
  const int nodes = sources + sinks;
  std::vector<std::pair<int, int>> place(at(nodes));
  for (auto& [x, y] : place) x = random.below(10000), y = random.below(10000);
  const std::int64_t supply = 100LL * std::max(sources, sinks);
  for (const int count : {sources, sinks}) {
    const std::vector<std::int64_t> part = parts(random, supply, count);
    for (const std::int64_t amount : part)
      instance.supply.push_back(count == sources && instance.supply.size() < at(sources) ? amount : -amount);
  }
  for (int u = 0; u < sources; ++u)
    for (int v = sources; v < nodes; ++v) {
      const double dx = place[at(u)].first - place[at(v)].first,
                   dy = place[at(u)].second - place[at(v)].second;
      instance.arcs.push_back(
          {u, v, static_cast<int>(std::sqrt(dx * dx + dy * dy)), static_cast<int>(supply)});
    }
  return instance;
}

class Book {
 public:
  void add(const std::string& family, int nodes, std::int64_t arcs,
           std::function<Instance(std::uint64_t)> make) {
    const std::uint64_t seed = 1000 + recipes_.size();
    recipes_.push_back({family, nodes, arcs, [make = std::move(make), seed] { return make(seed); }});
  }
  void add_netgen(const std::string& family, const NetgenPlan& plan) {
    add(family, plan.nodes, plan.arcs, [plan](std::uint64_t seed) { return Netgen(plan, seed).make(); });
  }
  std::vector<Recipe> take() { return std::move(recipes_); }

 private:
  std::vector<Recipe> recipes_;
};

std::int64_t wide(int n) {
  return n;
}

void add_bipartite(Book& book) {
  for (const int n : {128, 1024, 8192, 32768, 131072})
    book.add_netgen("assignment, sparse", {n, n / 2, n / 2, 8 * wide(n), n / 2, 0, 0});
  for (const int k : {32, 128, 400, 1000, 1400})
    book.add_netgen("assignment, dense", {2 * k, k, k, wide(k) * k, k, 0, 0});
  for (const int n : {128, 1024, 8192, 32768, 65536})
    book.add_netgen("transportation, sparse", {n, n / 2, n / 2, 8 * wide(n), 100LL * n, 0, 0});
  for (const int k : {32, 128, 400, 1000, 1400})
    book.add_netgen("transportation, dense", {2 * k, k, k, wide(k) * k, 1000LL * k, 0, 30, 10000, 2000});
  for (const int k : {32, 128, 400, 1000, 1400})
    book.add("transportation, plane", 2 * k, wide(k) * k,
             [k](std::uint64_t seed) { return plane(k, k, seed); });
}

void add_random(Book& book) {
  const auto plan = [](int n, std::int64_t arcs, int average) {
    const int ends = std::max(root_of(n), 2);
    return NetgenPlan{n, ends, ends, arcs, wide(ends) * average};
  };
  for (const int n : {128, 1024, 4096, 16384, 65536})
    book.add_netgen("random, sparse", plan(n, 8 * wide(n), 1000));
  for (const int n : {128, 1024, 4096, 16384, 65536, 131072})
    book.add_netgen("random, sparse, few units", plan(n, 8 * wide(n), 10));
  for (const int n : {100, 1024, 4096, 16000})
    book.add_netgen("random, root degree", plan(n, wide(n) * root_of(n), 1000));
  for (const int n : {100, 1024, 4096, 16000})
    book.add_netgen("random, root degree, few units", plan(n, wide(n) * root_of(n), 10));
  for (const int degree : {2, 4, 16, 64, 256})
    book.add_netgen("random, 4096 nodes", plan(4096, 4096 * wide(degree), 1000));
  for (const int n : {4096, 16384}) {
    NetgenPlan loose = plan(n, 8 * wide(n), 1000);
    loose.capacitated_percent = 40;
    loose.sources = loose.sinks = n / 4;
    loose.supply = 1000LL * loose.sources;
    book.add_netgen("random, many ends", loose);
  }
}

void add_grids(Book& book) {
  const auto grid = [&](const char* family, int height, int width) {
    book.add(family, height * width + 2, 3 * wide(height) * width,
             [=](std::uint64_t seed) { return plain_grid(height, width, seed); });
  };
  for (const int width : {32, 256, 1024, 4096}) grid("grid, long", 16, width);
  for (const int height : {32, 256, 1024, 4096}) grid("grid, wide", height, 16);
  for (const int side : {20, 64, 128, 256}) grid("grid, square", side, side);
  for (const int side : {12, 32, 64, 128, 256})
    book.add("grid with chords", side * side, 8 * wide(side) * side,
             [=](std::uint64_t seed) { return grid_with_chords(side, side, 8, seed); });
  const auto ring = [&](const char* family, int layers, int height, int degree) {
    book.add(family, layers * height, wide(layers) * height * degree,
             [=](std::uint64_t seed) { return torus(layers, height, degree, seed); });
  };
  for (const int k : {1, 2, 4, 8}) ring("torus, sparse", 16 * k, 16 * k, 8);
  for (const int k : {1, 2, 3, 4}) ring("torus, dense", 16 * k, 16 * k, 16 * k);
}

}  // namespace

std::vector<Recipe> all_recipes() {
  Book book;
  add_bipartite(book);
  add_random(book);
  add_grids(book);
  return book.take();
}

}  // namespace bench
