/* Branch and cut over a mixed-integer problem.
 *
 * - Gets: the problem, settings, a control that says when to stop, an observer that is told what happens, and, where the
 *   caller takes part, its callbacks. All of them must outlive it, the callbacks the run.
 * - run(): searches until the gap is closed or a limit is met. After a limit it may be called again, with other limits, and
 *   goes on with the tree that it left.
 * - Trust: incumbents pass the judge on the problem as it was given. A node is dropped only by a bound that holds
 *   whatever rounding did, a proof of infeasibility that stands on the data, or propagation; where neither can be had it
 *   counts with its parent's bound until it is decided, or for ever.
 * - With Settings::enumeration the sink gets a solution for every assignment of the integer columns that has one within
 *   the gaps, as good as the best with that assignment, before optimal is told; a node whose relaxation is a solution is
 *   branched on until its integer columns are fixed. Where presolve keeps all points these are all there are of the given problem.
 * - Paths depend on settings and seed, never on the clock.
 * - Errors: bad_alloc; the object can then only be asked for its incumbent and progress. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "mip/branching/branching.h"
#include "mip/learning/conflict_analysis.h"
#include "mip/search/callbacks.h"
#include "mip/search/heuristic_schedule.h"
#include "mip/search/judge.h"
#include "mip/search/separation.h"
#include "mip/search/solution_sink.h"
#include "mip/search/statistics.h"
#include "mip/search/sub_search.h"
#include "mip/search/tree.h"
#include "mip/symmetry/orbital_fixing.h"
#include "mip/symmetry/plan.h"
#include "mip/worker/observer.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

/* Where the solutions of a search count, when the problem that it searches was made from another. */
class Origin {
 public:
  Origin() = default;
  Origin(const Origin&) = delete;
  Origin& operator=(const Origin&) = delete;
  virtual ~Origin() = default;
  /* x: of the search's problem. False when no solution of the origin below the cutoff comes of it. */
  virtual bool accept(std::span<const double> x, double cutoff, Solution* solution) = 0;
  /* As accept() without a cutoff, of a point whose continuous columns stay as they are. */
  virtual bool accept_as_it_is(std::span<const double> x, Solution* solution) const = 0;
  /* A solution that was accepted is the incumbent. */
  virtual void take(const Solution& solution) = 0;
  /* The point of the search's problem that belongs to one of the origin. */
  virtual std::vector<double> crush(std::span<const double> x) const = 0;
  /* Of the search's problem: solutions that are accepted from now on satisfy it. Only where each of its columns is one of the
   * origin. */
  virtual void add_cut(const Cut& cut) = 0;
  virtual std::int64_t iterations() const = 0;  // of the simplex, spent on that
};

enum class Conclusion {
  optimal,     // no better solution exists, but for the cutoff and the least improvement
  within_gap,  // the gap is within the tolerances
  infeasible,
  unbounded,
  infeasible_or_unbounded,
  solution_limit,
  objective_stop,
  node_limit,
  iteration_limit,
  tree_limit,
  time_limit,
  tick_limit,
  user_abort,
  failed,            // nodes are left that no relaxation decides
  node_file_failed,  // Search::node_files() tells how; what was not read is lost, else the tree is whole
  paused,            // as pause_after() has asked
  restart  // the root has fixed so much that presolve should see it; run() may be called again and asks again
};

/* An open node on its way from one tree to another: all that its path changes. */
struct MovedNode {
  double bound, estimate, relaxation;
  BranchRecord branch;
  std::vector<NodeChange> path;
  std::shared_ptr<const StoredBasis> basis;  // null: none
};

/* What a search has found that holds for all nodes, also those of others that search the same tree with the same cutoff. */
struct Findings {
  std::vector<std::vector<BoundLiteral>> clauses;  // short ones; of a single bound, too
  std::vector<Cut> cuts;                           // that became rows in the tree
};

struct Progress {
  std::int64_t nodes = 0, left = 0, iterations = 0, solutions = 0;
  double best_bound = -kInf;  // of all solutions
  double tree_bytes = 0;
  double parked_bytes = 0, stored_bytes = 0;  // of it in node files, and what is kept of that
};

class Search {
 public:
  /* origin: null where the problem is the user's own. */
  Search(const Problem& problem, const Settings& settings, lp::Control& control, Observer& observer,
         Origin* origin = nullptr);
  ~Search();
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  Conclusion run();
  /* Between two runs: other limits, other rules. */
  void change_settings(const Settings& settings);
  /* Before run(), or between two runs: a point of the problem that may be a solution. True when it is a new incumbent. */
  bool offer(std::span<const double> x);
  /* Before run(): a solution of the origin that is known there, and the point of the problem that belongs to it; none, if
   * that is no solution here. */
  void inherit(const Solution& solution, std::span<const double> x);

  /* After a restart was asked for: bounds of the integer columns that hold for all better solutions, and the cuts that are
   * tight at the root. */
  void take_root_bounds(Problem& problem) const;
  std::vector<Cut> root_cuts() const;
  /* Before run(): cuts that hold, which become rows of the root's relaxation. */
  void add_cuts(std::vector<Cut> cuts) { given_cuts_ = std::move(cuts); }

  const Solution& incumbent() const { return incumbent_; }  // of the origin; no values: none
  Progress progress();
  lp::simplex::Statistics relaxation_statistics() const;
  /* Of all runs. */
  SearchStatistics statistics() const;
  /* What stands, also from within the observer. */
  const Global& global() const { return global_; }
  const Worker& worker() const { return worker_; }
  Worker& worker() { return worker_; }  // for queries that make what they answer
  const Tree& tree() const { return tree_; }
  /* How the last attempt to use node files ended. */
  NodeStore::State node_files() const { return node_files_; }
  int node_in_process() const { return in_process_; }  // slot; -1: none
  /* Between two runs; null: none. */
  void set_callbacks(SearchCallbacks* callbacks) { callbacks_ = callbacks; }
  /* Between two runs; null: none. */
  void set_sink(SolutionSink* sink) { sink_ = sink; }
  /* What it is at. */
  Phase phase() const { return meter_.phase(); }
  bool is_at_root() const { return nodes_ == 0; }
  /* For the child that a callback makes. */
  std::int64_t take_node_id() { return tree_.take_id(); }
  /* All open nodes go: there is nothing left to search. */
  void drop_all_nodes() { drop_nodes(-kInf); }

  // As a member of a team that searches one tree (team_search): member.cpp.

  /* run() in pieces: begin, any number of go_on, end. */
  void begin_run();
  Conclusion go_on();
  void end_run() { meter_.end(); }
  /* After run() has met a limit: polishes until the control, which must not stop it at once, ends it. What run() would return now where
   * that has closed the gap. */
  std::optional<Conclusion> polish_on();
  /* From now on go_on() ends before a node once so much is done, in ticks, in seconds or in nodes. */
  void pause_after(std::int64_t ticks, double seconds, std::int64_t nodes = kNoLimit);
  /* Before it begins: without nodes, but with what the leader's root has left. The leader is between two nodes. */
  void join(Search& leader);
  std::int64_t open_nodes() const { return tree_.open(); }
  /* Of all its nodes; kInf: none is left. */
  double bound() { return open_bound(); }
  /* Of the open ones alone. */
  double bound_of_nodes() { return tree_.best_bound(); }
  bool closes_gap(double bound) const { return gap_is_closed(bound); }
  /* So many nodes are better; kInf: there are fewer. */
  double bound_behind(std::int64_t nodes) const;
  /* Every second one of its best nodes, at most so many. */
  std::vector<MovedNode> hand_over(std::int64_t most);
  /* All of them. */
  std::vector<MovedNode> hand_over();
  void take_over(std::vector<MovedNode> nodes);
  /* A better solution that another member has found. */
  void hear_of(const Search& finder, bool is_leader);
  /* Where cuts in the tree have paid for one they are due for all. */
  bool cuts_have_paid() const { return tree_cuts_.failures == 0; }
  void set_cuts_due() { tree_cuts_.failures = tree_cuts_.waits = 0; }
  /* What it has found since the last call; the first call only begins to keep it. */
  Findings take_findings();
  void learn_from(const Findings& findings);
  const PseudoCosts& pseudo_costs() const { return global_.pseudo_costs; }
  void set_pseudo_costs(const PseudoCosts& costs) { global_.pseudo_costs = costs; }
  /* Without what the leader had done when it joined. */
  Progress progress_since_joining();
  /* What the others have done so far, for the leader's reports. */
  void set_beside(const Progress& beside) { beside_ = beside; }
  /* The member leaves: its work, its nodes and what it could not decide count here. */
  void absorb(Search& member);

 private:
  struct Accepted {
    std::vector<double> point;  // of the problem
    Solution solution;          // of the origin
  };
  struct PathStep {
    std::int64_t id;
    int begin;  // position on the trail before the node's own changes
  };
  /* How the work at a node ended. */
  enum class NodeResult { branched, integral, infeasible, cutoff, undecided, stopped, unbounded, restart };

  void start();
  std::optional<Conclusion> limit_reached();
  Conclusion run_until_limit();
  Conclusion conclude();
  Conclusion stop_reason();
  lp::Stop asks_to_stop();
  bool gap_is_closed(double bound) const;
  bool prunes(double bound) const { return bound >= global_.cutoff; }
  bool has_enough_solutions() const {
    return solutions_ >= global_.settings.solution_limit || (sink_ != nullptr && sink_->is_full());
  }
  // Improving the incumbent instead of searching the tree: polishing.cpp.
  bool polishing_is_due();
  void polish();

  bool enumerates() const { return global_.settings.enumeration.on; }
  double enumeration_cutoff(double best) const;
  double open_bound();

  int pick();
  int next_of_plunge();
  bool goes_on_with(int child);
  MovedNode take_out(int slot);
  Progress own_progress();
  bool install(int slot);
  void leave_path(std::size_t steps);
  bool apply_global_bounds();
  void note_root_fixings();

  std::optional<Conclusion> process(int slot);
  NodeResult work_on(int slot, NodeEvent& event);
  NodeResult solve_relaxation();
  // What comes before the usual solve: before_solve.cpp.
  bool presolves(int slot) const { return global_.settings.node_presolve >= 0 || tree_[slot].parent < 0; }
  bool probe_node(const Shortfall& shortfall);
  void solve_first();
  void solve_root_presolved();
  void solve_first_by(FirstMethod method);
  lp::Outcome solve_within(double cutoff, lp::simplex::Detail detail);
  NodeResult bound_node(int slot);
  double rounded_bound(double bound) const;
  bool fix_by_reduced_costs();
  bool relaxation_is_cut_off() const;
  // From what is infeasible or beyond the cutoff: learning.cpp.
  std::int64_t learning_work() const;
  bool learns();
  void learn_from_propagation();
  void learn_from_bound();
  void learn_from_infeasibility();
  void take_learned(bool learned);
  void keep_cuts_of_tree(int count);
  // What symmetry says of a node: node_symmetry.cpp.
  bool finds_symmetry() const;
  bool find_symmetry();
  void follow_symmetry(const std::vector<int>& chain);
  bool fix_by_symmetry();
  std::int64_t symmetry_ticks() const;
  void use_symmetry(std::unique_ptr<const SymmetryPlan> plan);
  SymmetryCounts symmetry_counts() const;
  void learn_from_branch(const Node& node, double objective);
  NodeResult try_relaxation(int slot, double objective, bool* again);
  NodeResult branch_on(int slot, const Shortfall& shortfall, double objective, bool* again);
  NodeResult branch_anywhere(int slot, double objective, bool has_relaxation);
  NodeResult branch_unbounded(int slot, bool* again);
  NodeResult branch(int slot, const Branching& branching, double objective, const Proposal& proposal);
  NodeResult add_children(int slot, const Branching& branching, double objective, double estimate);
  std::shared_ptr<const StoredBasis> stored_basis();
  std::unique_ptr<NodeExtras> extras_of_child() const;

  // Where the caller takes part: callbacks.cpp.
  enum class Admission { admitted, cut_off, rejected, stopped };
  bool asks(bool SearchCallbacks::Kinds::*kind) const {
    return callbacks_ != nullptr && callbacks_->kinds().*kind;
  }
  Sight sight_of_relaxation(double objective) const;
  Admission admit(const Accepted& found, bool is_of_node);
  void keep_cuts(OwnCuts cuts);
  bool use_cuts(std::span<const double> x);
  bool ask_for_cuts(double objective);
  bool ask_for_solution(double objective);
  OwnSolve::Result ask_for_solve();
  int ask_for_node(int proposed);
  std::optional<NodeResult> ask_for_branching(int slot, double objective, const Proposal& proposal);
  NodeResult add_own_children(int slot, std::vector<NewChild> children, double objective);
  NodeResult branch_on_rejected(int slot, double objective);
  void follow_bounds(int column);
  void drop_nodes(double cutoff);
  void tell_deleted(int slot);
  void bring_rows(const std::vector<int>& chain);
  bool separate(int slot, const NodeEvent& event);
  bool wants_restart(int slot) const;
  void watch_cuts(int count) const;
  void watch_clause(std::span<const BoundLiteral> clause) const;
  void watch_node(int slot, NodeResult result) const;
  Effort due_in_tree();
  bool separate_in_tree(int slot, double objective);
  bool is_worthwhile(double gain, double from) const;
  bool cuts_were_worthwhile(double bound) const;
  void load_basis(const StoredBasis& basis);
  void try_before_relaxation();
  bool try_heuristics(int slot, bool before_cuts);
  bool run_heuristics(const Moment& moment);
  HeuristicSchedule::Passed passed();
  HeuristicSchedule::Taken try_candidate(const Candidate& candidate);
  double estimate(const Shortfall& shortfall, double objective) const;
  /* What the judges make of a point of the problem, here and in the origin. */
  std::optional<Accepted> weigh(std::span<const double> x);
  /* The value of the new incumbent that comes of the point; none: nothing comes of it. */
  std::optional<double> judge(std::span<const double> x, const char* found_by);
  /* found_by: null for the relaxation of a node. */
  double take(Accepted found, const char* found_by);
  void set_incumbent(Solution solution, std::span<const double> x);
  void keep_for_pool(std::span<const double> x) const;
  void record_incumbent(const char* found_by);
  std::int64_t judges_iterations() const;
  Phase enter(Phase phase);
  void tell_work();
  NodeEvent event_of(int slot) const;
  void report(NodeEvent& event, NodeResult result);

  const Problem& problem_;
  MeteredControl control_;
  SearchStatistics statistics_;
  PhaseMeter meter_;
  Observer& observer_;
  SearchCallbacks* callbacks_ = nullptr;
  SolutionSink* sink_ = nullptr;
  Global global_;
  Worker worker_;
  Judge judge_;
  Origin* origin_;
  BranchingRule branching_;
  ConflictAnalysis conflicts_;
  std::optional<Findings> findings_;  // none: nobody asks
  Separation separation_;
  HeuristicSchedule heuristics_;
  TreeSubSearch sub_search_;
  Tree tree_;
  NodeStore::State node_files_ = NodeStore::State::done;
  Solution incumbent_;
  std::vector<PathStep> path_;
  std::vector<double> x_;  // of the node's relaxation
  int in_process_ = -1;    // slot
  int next_child_ = -1;    // slot of the child that the plunge goes on with
  std::int64_t next_child_id_ = -1;
  struct Sibling {
    int slot;
    std::int64_t id;
  };
  std::vector<Sibling> plunge_;  // what the present plunge has left open, the deepest last
  int backtracks_ = 0;           // of the present plunge
  int plunged_ = 0;              // nodes of the present plunge
  std::int64_t nodes_ = 0, node_of_incumbent_ = 0, solutions_ = 0, picks_since_best_bound_ = 0;
  double undecided_bound_ = kInf;           // of nodes that nothing decides
  double lagrangian_bound_ = -kInf;         // of the node's last relaxation, not rounded
  double root_bound_ = -kInf;               // the same of the root
  std::vector<double> root_reduced_costs_;  // at the bounds that held then:
  std::vector<double> root_lower_, root_upper_;
  std::vector<Cut> given_cuts_;
  bool had_given_cuts_ = false;
  int open_columns_ = 0;                    // integer columns that were not fixed at the beginning
  std::vector<GlobalBound> global_bounds_;  // found, not yet in the domain
  std::vector<Cut> idle_cuts_;              // of the caller, no rows for now
  std::vector<Cut> new_local_cuts_;         // of the node, not yet rows
  std::int64_t local_rows_made_ = 0;        // rows that hold in a subtree
  Shortfall shortfall_;                     // of x_; kept where the caller takes part
  struct {
    int round = 0, stalled = 0;
    Effort least_effort = 0;         // of the families, in the tree
    double objective = -kInf;        // before the last round
    double first_objective = -kInf;  // before the first, in the tree
    bool tried_heuristics = false;
    bool probed = false;
    bool asked_for_solution = false;
    bool any = false;  // has brought rows
  } rounds_;           // of separation at the node
  struct {
    int failures = 0, waits = 0;  // nodes from the queue
    std::int64_t work = 0;
  } tree_cuts_;
  struct {
    bool is_on = false;
    int failures = 0;     // in a row
    double value = kInf;  // incumbent at the last one
  } polishing_;
  bool from_queue_ = false;  // the node in process was not reached by a plunge
  bool started_ = false, tried_before_relaxation_ = false, new_incumbent_ = false;
  bool relaxation_was_taken_ = false;  // the relaxation of the node in process is an incumbent
  std::int64_t work_told_ = 0;         // entries of propagation that the control knows of
  std::unique_ptr<const SymmetryPlan> symmetry_plan_;  // null: not looked for
  std::unique_ptr<OrbitalFixing> orbital_fixing_;      // null: there is nothing to use
  std::unique_ptr<OrbitopalFixing> orbitopal_fixing_;
  std::int64_t detection_ticks_ = 0;
  int idle_symmetry_ = 0;  // nodes since it has fixed anything
  std::vector<BranchedBound> branched_;
  Progress beside_;            // of the other members of a team
  SearchStatistics absorbed_;  // of those that have left
  struct {
    std::int64_t ticks = kNoLimit, nodes = kNoLimit;
    double seconds = kInf;
  } pause_;
  std::int64_t nodes_at_joining_ = 0;
  lp::Stop stop_ = lp::Stop::none;
};

}  // namespace tovik::mip
