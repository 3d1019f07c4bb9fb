/* One minimum-cost flow problem: nodes with supplies, arcs with costs and bounds.
 *
 * - Statement: minimize (or maximize) the sum of cost[a] * flow[a] so that at each node i (flow out of i) -
 *   (flow into i) = supply[i], and lower[a] <= flow[a] <= upper[a].
 * - Values: in the caller's units. Infinite bounds are stored as +-1e20; crossed bounds are data like any
 *   other. Parallel arcs and loops are allowed.
 * - Names: of all nodes or none, of all arcs or none; generated ones begin with 'n' and 'a'.
 * - Arcs of a node: come from lists (incidence.h) that are built when they are first asked for and then kept
 *   up to date; they are dropped when memory for them is short.
 * - Deletion: only marks; the arrays are compacted by the next other access (deletions.h). Deleting a node
 *   deletes its arcs.
 * - Reading: const, but may build the lists or a name index, or compact: one thread at a time.
 * - Errors: bad_alloc; the network is then as before the call. Arguments are the caller's business: indices
 *   in range, sizes as stated. Functions marked noexcept cannot fail. */
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "model/base/deletions.h"
#include "model/base/name_block.h"
#include "model/base/names.h"
#include "model/network/incidence.h"

namespace tovik::model {

/* A whole network, to be moved in. With n nodes and m arcs: supply: n; tail, head (nodes), cost, lower,
 * upper: m; node_names: n or empty; arc_names: m or empty. Bounds of 1e20 and beyond become +-1e20. */
struct NetworkData {
  std::string problem_name;
  int objective_sense = 1;  // 1 minimize, -1 maximize
  std::vector<double> supply;
  std::vector<int> tail, head;
  std::vector<double> cost, lower, upper;
  NameBlock node_names, arc_names;
};

/* Arcs to add. Null arrays mean: cost 0, lower 0, upper 1e20, names generated (or none when the arcs have
 * none). */
struct NewArcs {
  int count = 0;
  const int* tail = nullptr;
  const int* head = nullptr;
  const double* cost = nullptr;
  const double* lower = nullptr;
  const double* upper = nullptr;
  const char* const* names = nullptr;
};

class Network {
 public:
  Network() = default;
  explicit Network(NetworkData&& data);
  Network(const Network&) = delete;
  Network& operator=(const Network&) = delete;

  // ---- Sizes and data
  int num_nodes() const { return static_cast<int>(supply_.size()) - node_deletions_.count(); }
  int num_arcs() const;
  int objective_sense() const { return objective_sense_; }
  std::span<const double> supply() const { return compacted().supply_; }
  std::span<const int> tail() const { return compacted().tail_; }
  std::span<const int> head() const { return compacted().head_; }
  std::span<const double> cost() const { return compacted().cost_; }
  std::span<const double> lower() const { return compacted().lower_; }
  std::span<const double> upper() const { return compacted().upper_; }
  const NameTable& node_names() const { return compacted().node_names_; }
  const NameTable& arc_names() const { return compacted().arc_names_; }
  /* The lists of all nodes; they live until the next change. */
  const Incidence& incidence() const;

  // ---- Growing and shrinking
  /* supply and names may be null. */
  void add_nodes(int count, const double* supply, const char* const* names);
  void add_arcs(const NewArcs& arcs);
  void delete_nodes(int first, int last);
  void delete_arcs(int first, int last);
  /* marks: one per node (arc); exactly 1 deletes. */
  void delete_marked_nodes(std::span<const int> marks);
  void delete_marked_arcs(std::span<const int> marks);

  // ---- Changing values
  void set_objective_sense(int sense) noexcept { objective_sense_ = sense; }
  void set_supply(int node, double value) noexcept { change().supply_[at(node)] = value; }
  void set_ends(int arc, int tail, int head) noexcept;
  void set_cost(int arc, double value) noexcept { change().cost_[at(arc)] = value; }
  void set_lower(int arc, double value) noexcept { change().lower_[at(arc)] = value; }
  void set_upper(int arc, double value) noexcept { change().upper_[at(arc)] = value; }

  // ---- Names
  void rename_nodes(int count, const int* nodes, const char* const* names);
  void rename_arcs(int count, const int* arcs, const char* const* names);
  void delete_names() noexcept;

 private:
  static std::size_t at(int k) { return static_cast<std::size_t>(k); }
  const Network& compacted() const {
    if (node_deletions_.pending() || arc_deletions_.pending()) [[unlikely]] {
      const_cast<Network*>(this)->compact();
    }
    return *this;
  }
  Network& change() noexcept {
    compacted();
    return *this;
  }
  void begin_node_deletions();
  void compact() noexcept;
  void compact_arcs() noexcept;
  void truncate_arcs(int arcs) noexcept;

  int objective_sense_ = 1;
  std::vector<double> supply_;
  std::vector<int> tail_, head_;
  std::vector<double> cost_, lower_, upper_;
  NameTable node_names_{'n'}, arc_names_{'a'};
  mutable std::unique_ptr<Incidence> incidence_;  // null until asked for
  Deletions node_deletions_, arc_deletions_;
};

}  // namespace tovik::model
