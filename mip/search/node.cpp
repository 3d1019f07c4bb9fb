// The work at one node: propagation, relaxation, bound, candidate, branching.
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include "mip/domain/point.h"
#include "mip/search/search.h"

namespace tovik::mip {

using lp::Outcome;
using lp::simplex::Detail;

namespace {

constexpr int kMostLooks = 2000;      // at one node
constexpr double kBoundTrust = 1e-6;  // relative: what the tolerances of a relaxation leave open of its value
constexpr double kBasesBytes = 256e6;  // of all bases kept with nodes

bool is_trouble(Outcome outcome) {
  return outcome == Outcome::singular || outcome == Outcome::numerical_failure ||
         outcome == Outcome::infeasible_or_unbounded;
}

}  // namespace

std::optional<Conclusion> Search::process(int slot) {
  tree_.take(slot);
  in_process_ = slot;
  new_local_cuts_.clear();
  NodeEvent event = event_of(slot);
  statistics_.largest_depth = std::max(statistics_.largest_depth, event.depth);
  relaxation_was_taken_ = false;
  const NodeResult result = install(slot) ? work_on(slot, event) : NodeResult::infeasible;
  if (worker_.domain.is_infeasible()) learn_from_propagation();
  watch_node(slot, result);
  if (result == NodeResult::stopped || result == NodeResult::restart) {
    in_process_ = -1;
    tree_.put_back(slot);
    next_child_ = slot;
    next_child_id_ = tree_[slot].id;
    if (result == NodeResult::restart) return Conclusion::restart;
    leave_path(path_.size() - 1);
    return stop_reason();
  }
  if (result == NodeResult::unbounded) {
    in_process_ = -1;
    tell_deleted(slot);
    tree_.close(slot);
    return Conclusion::unbounded;
  }
  if (result == NodeResult::undecided) undecided_bound_ = std::min(undecided_bound_, tree_[slot].bound);
  enter(Phase::tree);
  report(event, result);
  in_process_ = -1;
  tell_deleted(slot);
  tree_.close(slot);
  if (nodes_++ == 0) statistics_.root_seconds = meter_.seconds();
  return std::nullopt;
}

/* Until the node is branched on or decided. */
Search::NodeResult Search::work_on(int slot, NodeEvent& event) {
  bool learned = false;
  rounds_ = {};
  const bool is_root = tree_[slot].parent < 0;
  if (is_root && !std::exchange(tried_before_relaxation_, true)) try_before_relaxation();
  for (int looks = 0;; ++looks) {
    if (worker_.must_stop() || has_enough_solutions()) return NodeResult::stopped;
    if (looks == 0 && is_root) enter(Phase::root_relaxation);
    // Each look has moved a bound, a row or the incumbent; more of them than this are noise.
    if (looks > kMostLooks) return branch_anywhere(slot, tree_[slot].bound, true);
    if (const NodeResult solved = solve_relaxation(); solved != NodeResult::branched) {
      bool again = false;
      NodeResult result = solved;
      if (solved == NodeResult::unbounded) result = branch_unbounded(slot, &again);
      if (solved == NodeResult::undecided) result = branch_anywhere(slot, tree_[slot].bound, false);
      if (again) continue;
      return result;
    }
    if (bound_node(slot) == NodeResult::cutoff) return NodeResult::cutoff;
    const double objective = worker_.relaxation->objective();
    event.objective = objective;
    if (!std::exchange(learned, true)) learn_from_branch(tree_[slot], objective);
    const std::span<const double> x = worker_.relaxation->primal();
    x_.assign(x.begin(), x.end());
    if (presolves(slot) && fix_by_reduced_costs()) {
      if (!worker_.propagate() || !fix_by_symmetry()) return NodeResult::cutoff;
      if (relaxation_is_cut_off()) continue;
    }
    if (callbacks_ != nullptr && use_cuts(x_)) continue;
    const Shortfall shortfall = find_shortfall(worker_, x_);
    event.infeasibilities = shortfall.count();
    if (callbacks_ != nullptr) shortfall_ = shortfall;
    bool again = false;
    if (shortfall.count() == 0) {
      const NodeResult result = try_relaxation(slot, objective, &again);
      if (again) continue;
      return result;
    }
    if (global_.settings.node_presolve > 1 && !std::exchange(rounds_.probed, true)) {
      const int before = worker_.domain.position();
      if (!probe_node(shortfall)) return NodeResult::cutoff;
      if (worker_.domain.position() > before) continue;
    }
    const bool before_cuts = is_root && !std::exchange(rounds_.tried_heuristics, true);
    if (before_cuts && try_heuristics(slot, true)) {
      if (prunes(tree_[slot].bound)) return NodeResult::cutoff;
      continue;
    }
    if (separate(slot, event)) continue;
    if (asks(&SearchCallbacks::Kinds::cut) && ask_for_cuts(objective)) continue;
    if (try_heuristics(slot, false) ||
        (asks(&SearchCallbacks::Kinds::heuristic) && ask_for_solution(objective))) {
      if (prunes(tree_[slot].bound)) return NodeResult::cutoff;
      continue;
    }
    if (callbacks_ != nullptr && use_cuts(x_)) continue;
    if (wants_restart(slot)) return NodeResult::restart;
    if (is_root && find_symmetry()) {
      if (!fix_by_symmetry()) return NodeResult::cutoff;
      if (relaxation_is_cut_off()) continue;
    }
    const NodeResult result = branch_on(slot, shortfall, objective, &again);
    if (!again) return result;
  }
}

Outcome Search::solve_within(double cutoff, Detail detail) {
  lp::simplex::Limits limits;
  limits.cutoff = cutoff;
  if (global_.settings.iteration_limit < kNoLimit) {
    limits.iterations = std::max<std::int64_t>(1, global_.settings.iteration_limit - worker_.iterations);
  }
  return worker_.solve(limits, detail);
}

/* branched: it has an optimum. Claims that would drop the node are proven, or made anew with more care. */
Search::NodeResult Search::solve_relaxation() {
  if (asks(&SearchCallbacks::Kinds::solve)) {
    const OwnSolve::Result result = ask_for_solve();
    if (callbacks_->wants_to_stop()) return NodeResult::stopped;
    // Where nothing is left to branch on, only a solve of our own can decide the node.
    const bool can_branch = std::any_of(global_.integer_columns.begin(), global_.integer_columns.end(),
                                        [&](int j) { return !worker_.domain.is_fixed(j); });
    if (result == OwnSolve::Result::no_solution && can_branch) return NodeResult::undecided;
  }
  solve_first();
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (attempt == 2) worker_.relaxation->forget_basis();
    const Outcome outcome =
        solve_within(attempt == 0 ? global_.cutoff : kInf, attempt == 0 ? Detail::primal : Detail::verified);
    if (lp::is_limit(outcome)) return NodeResult::stopped;
    if (is_trouble(outcome)) continue;
    switch (outcome) {
      case Outcome::optimal:
        return NodeResult::branched;
      case Outcome::infeasible:
        if (worker_.is_proven_infeasible()) {
          learn_from_infeasibility();
          return NodeResult::infeasible;
        }
        break;
      case Outcome::objective_limit:
        if (prunes(rounded_bound(worker_.safe_bound()))) {
          learn_from_bound();
          return NodeResult::cutoff;
        }
        break;
      case Outcome::unbounded:
        return NodeResult::unbounded;
      default:
        break;
    }
  }
  return NodeResult::undecided;
}

/* The bound that the relaxation's duals prove; cutoff where that ends the node. */
Search::NodeResult Search::bound_node(int slot) {
  lagrangian_bound_ = worker_.safe_bound();
  tree_.raise_bound(slot, rounded_bound(lagrangian_bound_));
  // Without rows that were not worth keeping the root's bound is weaker than it was.
  if (tree_[slot].parent < 0 && !std::isinf(lagrangian_bound_) && lagrangian_bound_ >= root_bound_) {
    root_bound_ = lagrangian_bound_;
    if (std::isinf(statistics_.root_bound_before_cuts)) statistics_.root_bound_before_cuts = root_bound_;
    statistics_.root_bound_after_cuts = root_bound_;
    const std::span<const double> d = worker_.safe_reduced_costs();
    root_reduced_costs_.assign(d.begin(), d.end());
    root_lower_.assign(worker_.domain.lower().begin(), worker_.domain.lower().end());
    root_upper_.assign(worker_.domain.upper().begin(), worker_.domain.upper().end());
    branching_.set_root_values(worker_.relaxation->primal());
  }
  if (!prunes(tree_[slot].bound)) return NodeResult::branched;
  learn_from_bound();
  return NodeResult::cutoff;
}

/* With the duals that gave the node's bound, whose value counts before any rounding. True when a bound moved. */
bool Search::fix_by_reduced_costs() {
  if (!global_.settings.fix_by_reduced_cost || std::isinf(lagrangian_bound_) || std::isinf(global_.cutoff))
    return false;
  const double room = global_.cutoff - lagrangian_bound_;
  const std::span<const double> d = worker_.safe_reduced_costs();
  Domain& domain = worker_.domain;
  bool moved = false;
  constexpr int kNotKept = -2;
  int proof = learns() ? kNotKept : -1;
  for (const int j : global_.integer_columns) {
    if (d[j] == 0 || !(std::fabs(d[j]) * (domain.upper(j) - domain.lower(j)) > room)) continue;
    if (std::isinf(d[j] > 0 ? domain.lower(j) : domain.upper(j))) continue;  // then it is noise
    if (proof == kNotKept) proof = worker_.keep_proof();
    const Reason reason{Reason::Kind::reduced_cost, proof};
    moved |= d[j] > 0 ? domain.tighten_upper(j, domain.lower(j) + room / d[j], reason)
                      : domain.tighten_lower(j, domain.upper(j) + room / d[j], reason);
  }
  return moved;
}

/* Bounds of discrete columns have moved beyond the relaxation's solution. */
bool Search::relaxation_is_cut_off() const {
  const double tolerance = global_.settings.tolerances.feasibility;
  const Domain& domain = worker_.domain;
  const std::span<const int> moved = domain.moved_columns();
  return std::any_of(moved.begin(), moved.end(), [&](int j) {
    return global_.is_discrete[j] != 0 &&
           (x_[j] < domain.lower(j) - tolerance || x_[j] > domain.upper(j) + tolerance);
  });
}

void Search::learn_from_branch(const Node& node, double objective) {
  if (node.branch.column < 0 || std::isinf(node.relaxation)) return;
  const double gain = std::max(0.0, objective - node.relaxation);
  global_.pseudo_costs.add_gain(node.branch.column, node.branch.direction, node.branch.distance, gain);
}

/* The relaxation's solution lacks nothing. */
Search::NodeResult Search::try_relaxation(int slot, double objective, bool* again) {
  std::optional<double> value;
  if (std::optional<Accepted> found = weigh(x_)) {
    switch (callbacks_ == nullptr ? Admission::admitted : admit(*found, true)) {
      case Admission::cut_off:
        use_cuts(found->point);
        *again = true;
        return NodeResult::branched;
      case Admission::rejected:
        return branch_on_rejected(slot, objective);
      case Admission::stopped:
        return NodeResult::stopped;
      default:
        break;
    }
    value = take(std::move(*found), nullptr);
  }
  if (enumerates()) {
    if (value && !global_.settings.enumeration.splits) return NodeResult::integral;
  } else if (value) {
    // No point of the node is better than its relaxation, whose value is known to its tolerances only.
    if (prunes(tree_[slot].bound) ||
        *value <= objective + kBoundTrust * std::max(1.0, std::fabs(objective))) {
      return NodeResult::integral;
    }
  } else if (objective >= global_.cutoff - kBoundTrust * std::max(1.0, std::fabs(objective))) {
    return NodeResult::cutoff;
  }
  const NodeResult result = branch_anywhere(slot, objective, true);
  // Where nothing is left to branch on, the point is better than its solution by what tolerances are worth.
  if (result != NodeResult::undecided) return result;
  Solution known;
  return value || judge_.accept(x_, kInf, &known) ? NodeResult::integral : result;
}

/* True when the node has to be looked at again: there is a new incumbent. */
bool Search::try_heuristics(int slot, bool before_cuts) {
  Moment moment;
  moment.before_cuts = before_cuts;
  moment.root = tree_[slot].parent < 0;
  moment.depth = tree_[slot].depth;
  return run_heuristics(moment);
}

/* Where the caller takes part the root comes first. */
void Search::try_before_relaxation() {
  if (callbacks_ != nullptr) return;
  Moment moment;
  moment.root = moment.before_relaxation = true;
  run_heuristics(moment);
}

bool Search::run_heuristics(const Moment& moment) {
  const Phase before = enter(Phase::heuristics);
  const bool found = heuristics_.run(worker_, moment, passed(),
                                     [this](const Candidate& candidate) { return try_candidate(candidate); });
  enter(before);
  return found;
}

HeuristicSchedule::Passed Search::passed() {
  return {nodes_, open_bound(), branching_.strong_iterations(), &control_};
}

HeuristicSchedule::Taken Search::try_candidate(const Candidate& candidate) {
  if (has_enough_solutions()) return {};
  const std::int64_t iterations = judges_iterations();
  const bool better = judge(candidate.x, candidate.found_by).has_value();
  return {better, judges_iterations() - iterations};
}

Search::NodeResult Search::branch_on(int slot, const Shortfall& shortfall, double objective, bool* again) {
  enter(Phase::branching);
  const Branching branching = branching_.choose(worker_, x_, shortfall, objective, global_.pseudo_costs);
  enter(Phase::tree);
  switch (branching.kind) {
    case Branching::Kind::stopped:
      return NodeResult::stopped;
    case Branching::Kind::infeasible:
      return NodeResult::cutoff;
    case Branching::Kind::tightened:
      if (!worker_.propagate()) return NodeResult::cutoff;
      *again = true;
      return NodeResult::branched;
    default:
      return branch(slot, branching, objective, {&branching, estimate(shortfall, objective), true});
  }
}

/* Where the relaxation gives no direction: any integer column that is not fixed, the one farthest from whole first. */
Search::NodeResult Search::branch_anywhere(int slot, double objective, bool has_relaxation) {
  int best = -1;
  double farthest = -1;
  const bool has_point = has_relaxation && x_.size() == static_cast<std::size_t>(problem_.num_columns());
  for (const int j : global_.integer_columns) {
    if (worker_.domain.is_fixed(j)) continue;
    const double far = has_point ? fractionality(x_[j]) : 0;
    if (far > farthest) {
      farthest = far;
      best = j;
    }
  }
  if (best < 0) {
    return ask_for_branching(slot, objective, {nullptr, objective, has_relaxation})
        .value_or(NodeResult::undecided);
  }
  const double lower = worker_.domain.lower(best), upper = worker_.domain.upper(best);
  const double value = has_point            ? std::clamp(x_[best], lower, upper)
                       : !std::isinf(lower) ? lower
                       : !std::isinf(upper) ? upper
                                            : 0;
  Branching branching = BranchingRule::split(worker_, best, value);
  for (Child& child : branching.children) child.record.column = -1;  // says nothing of pseudo-costs
  return branch(slot, branching, objective, {&branching, objective, has_relaxation});
}

/* The caller has the first word. */
Search::NodeResult Search::branch(int slot, const Branching& branching, double objective,
                                  const Proposal& proposal) {
  const std::optional<NodeResult> own = ask_for_branching(slot, objective, proposal);
  return own ? *own : add_children(slot, branching, objective, proposal.estimate);
}

double Search::estimate(const Shortfall& shortfall, double objective) const {
  double sum = objective;
  for (const Fraction& f : shortfall.fractions) {
    const double down = f.value - std::floor(f.value);
    sum += std::min(global_.pseudo_costs.gain(f.column, Direction::down) * down,
                    global_.pseudo_costs.gain(f.column, Direction::up) * (1 - down));
  }
  return sum;
}

/* Null where those that are kept have outgrown their share. */
std::shared_ptr<const StoredBasis> Search::stored_basis() {
  const double size = 9.0 * (problem_.num_columns() + problem_.num_rows());
  if (static_cast<double>(tree_.open()) * size >= kBasesBytes) return nullptr;
  return std::make_shared<const StoredBasis>(
      StoredBasis{worker_.relaxation->basis(), separation_.row_numbers()});
}

Search::NodeResult Search::add_children(int slot, const Branching& branching, double objective,
                                        double estimate) {
  const std::shared_ptr<const StoredBasis> basis = stored_basis();
  bool any = false;
  std::array<Sibling, 2> made_children{{{-1, -1}, {-1, -1}}};
  for (int k = 0; k < 2; ++k) {
    const Child& child = branching.children[k];
    const double bound = std::max(tree_[slot].bound, rounded_bound(child.bound));
    if (prunes(bound)) continue;
    const bool depth_first = global_.settings.node_rule == NodeRule::depth_first;
    const int made = tree_.add({bound, depth_first ? -tree_[slot].depth - 1.0 : std::max(bound, estimate),
                                objective, slot, child.record, child.changes, basis, extras_of_child()});
    made_children[static_cast<std::size_t>(k)] = {made, tree_[made].id};
    if (k == branching.first || !any) {
      next_child_ = made;
      next_child_id_ = tree_[made].id;
    }
    any = true;
  }
  for (const Sibling& s : made_children) {
    if (s.slot >= 0 && s.slot != next_child_) plunge_.push_back(s);
  }
  return any ? NodeResult::branched : NodeResult::cutoff;
}

void Search::tell_work() {
  const std::int64_t work = worker_.domain.work() + worker_.propagator.work() + worker_.objective.work() +
                            learning_work() + symmetry_ticks();
  control_.add_work(static_cast<std::uint64_t>(work - work_told_));
  work_told_ = work;
}

/* As it begins. */
NodeEvent Search::event_of(int slot) const {
  const Node node = tree_[slot];
  NodeEvent event;
  event.id = node.id;
  event.parent_id = node.parent < 0 ? -1 : tree_[node.parent].id;
  event.depth = node.depth;
  event.branch_column = node.branch.column;
  event.branch_direction = node.branch.direction;
  event.objective = node.bound;
  event.nodes = nodes_ + beside_.nodes;
  event.left = tree_.open() + beside_.left;
  return event;
}

void Search::report(NodeEvent& event, NodeResult result) {
  event.left = tree_.open() + beside_.left;
  event.new_incumbent = relaxation_was_taken_;
  switch (result) {
    case NodeResult::branched:
    case NodeResult::undecided:
      event.end = NodeEnd::fractional;
      break;
    case NodeResult::integral:
      event.end = NodeEnd::integral;
      break;
    case NodeResult::infeasible:
      event.end = NodeEnd::infeasible;
      break;
    default:
      event.end = NodeEnd::cutoff;
  }
  observer_.node(event);
}

}  // namespace tovik::mip
