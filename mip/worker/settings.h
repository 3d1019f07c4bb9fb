/* What steers a search, resolved once from parameters. */
#pragma once

#include <cstdint>
#include <string>

#include "lp/simplex/types.h"
#include "mip/domain/problem.h"
#include "mip/domain/witness.h"
#include "mip/presolve/settings.h"

namespace tovik::mip {

inline constexpr std::int64_t kNoLimit = INT64_MAX;

enum class NodeRule { depth_first, best_bound, best_estimate, best_estimate_by_gap };

/* -1 never, 0 as it pays; 1 in every round and with a larger budget; 2 in the tree, too, whatever it costs, at nodes from the
 * queue; 3 at every node. */
using Effort = int;

inline constexpr int kMostCuts = 2100000000;

/* Effort by family, and in all. */
struct CutSettings {
  Effort fractional = 0, rounding = 0, covers = 0, cliques = 0, flow_covers = 0, implied_bounds = 0,
         zero_half = 0, flow_paths = 0, gub_covers = 0;
  int root_rounds = 0;              // -1 none, 0 automatic
  int fractional_rounds = 0;        // at the root: 0 automatic
  Effort in_tree = 0;               // 0 at nodes that are taken from the queue, as it pays; 1 at each node
  double rows_factor = 4;           // rows with cuts by rows without them, where these are not few
  int most_of_a_class = kMostCuts;  // cuts that ever become rows
  int fractional_candidates = 200;  // rows of the tableau a round
  int aggregations = 3;             // of rows for rounding and flow covers
};

/* How a relaxation is first solved; after it the dual simplex goes on. */
enum class FirstMethod { dual, primal, sifting };

enum class DiveKind { automatic, traditional, probing, guided };

struct HeuristicSettings {
  int interval = 0;                // nodes between calls: -1 never, 0 as it pays
  bool local_branching = false;    // once around each new incumbent
  int neighbourhood_interval = 0;  // the same of searches in a neighbourhood
  DiveKind dives = DiveKind::automatic;
  std::int64_t sub_nodes = 500;  // of a sub-search
  int repair_tries = 0;          // of a start: -1 none, 0 automatic
  int pump = 0;  // feasibility pump: -1 none, 0 automatic, 1 feasibility only, 2 objective too
  // What is switched on.
  bool rounding = true, diving = true, improvement = true;
  bool jumps = true;   // local searches without a relaxation
  bool fixing = true;  // fixing and propagation
};

/* When the search leaves its tree to improve the incumbent, until that has come to nothing for some time or the tree has a better
 * one: at the first of these that is met. */
struct PolishSettings {
  double absolute_gap = 0, relative_gap = 0;            // 0: never
  std::int64_t nodes = kNoLimit, solutions = kNoLimit;  // so many have been processed, found
  double seconds = kInf;                                // of the call
  bool at_limits = false;  // once a limit has ended the search, for a time that its caller sets
  bool is_on() const {
    return absolute_gap > 0 || relative_gap > 0 || nodes < kNoLimit || solutions < kNoLimit ||
           seconds < kInf || at_limits;
  }
};

/* A search for all solutions instead of a better one: nodes are dropped for what is worse than the best solution by more than both
 * gaps allow, and none for the gap that is left. */
struct EnumerationSettings {
  bool on = false;
  bool splits = true;  // nodes whose relaxation is a solution are searched further
  double relative_gap = kInf, absolute_gap = kInf;
};

/* What open nodes hold is put away where it takes more than `memory`. */
struct NodeFileSettings {
  bool on = false;
  bool compressed = true, on_disk = false;
  double memory = 128;    // megabytes
  std::string directory;  // for files: "" is the current one
};

/* Searches that share one tree. */
struct TeamSettings {
  int threads = 1;
  bool deterministic = true;                 // the same path in every run with as many threads
  std::int64_t ticks_alone = 30'000'000;     // of the first one, before others join
  std::int64_t nodes_each = 8;               // open, for others to join
  std::int64_t ticks_together = 10'000'000;  // between two meetings, the first time
};

struct Settings {
  Tolerances tolerances;
  lp::simplex::Options lp;

  // When the search may end.
  double relative_gap = 1e-4, absolute_gap = 1e-6;
  double cutoff = kInf;                                          // nodes whose bound is beyond are dropped
  double objective_stop = -kInf;                                 // a solution as good as this ends the search
  double least_improvement = 0, least_relative_improvement = 0;  // of a new solution
  std::int64_t node_limit = kNoLimit, solution_limit = kNoLimit, iteration_limit = kNoLimit;
  std::int64_t stall_limit = kNoLimit;  // nodes since the last solution
  double tree_limit = 1e75;             // megabytes

  // Order of the nodes.
  NodeRule node_rule = NodeRule::best_bound;
  int best_bound_interval = 7;
  double backtrack_share = 0.9999;  // of the gap, by which a child may be worse than the best node
  int first_direction = 0;          // -1 down, 0 automatic, 1 up

  FirstMethod root_method = FirstMethod::dual, node_method = FirstMethod::dual;
  bool root_presolve = false;  // of the root's relaxation as an LP
  int node_presolve = 0;       // below the root: -1 no propagation, 2 probing too

  // Branching.
  int variable_rule =
      0;  // -1 least fractional, 0 automatic, 1 most fractional, 2 pseudo-costs, 3 strong, 4 pseudo reduced costs
  int strong_candidates = 10;
  int strong_iterations = 0;  // 0 automatic
  std::int64_t strong_start =
      100000;  // iterations of strong branching that need not stand against those of the tree

  // What is switched on.
  bool propagate = true, fix_by_reduced_cost = true, propagate_objective = true;
  bool learn_conflicts = true;
  PresolveSettings presolve;
  CutSettings cuts;
  HeuristicSettings heuristics;
  PolishSettings polish;
  int symmetry = -1;  // -1 automatic, 0 off, 1 to 5: ever more work for finding it
  EnumerationSettings enumeration;
  NodeFileSettings node_files;
  std::uint64_t seed = 1;
  TeamSettings team;
  Witness witness;
};

}  // namespace tovik::mip
