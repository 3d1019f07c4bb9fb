#include "mip/search/search.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "mip/domain/point.h"

namespace tovik::mip {

using lp::Stop;

namespace {

constexpr std::size_t kEarlierIncumbents = 2;
constexpr int kMostBacktracks = 500;  // of one plunge
constexpr double kPlungeShare = 0.5;  // of the gap, above the best bound, in which a plunge goes on ...
constexpr int kLeastPlunge = 5;       // ... after as many nodes that need not stay in it

}  // namespace

Search::Search(const Problem& problem, const Settings& settings, lp::Control& control, Observer& observer,
               Origin* origin)
    : problem_(problem),
      control_(control),
      meter_(control_, statistics_),
      observer_(observer),
      global_(problem, settings),
      worker_(global_, std::make_unique<lp::simplex::Relaxation>(problem.lp, settings.lp, control_),
              control_),
      judge_(problem, global_.settings, control_),
      origin_(origin),
      branching_(global_),
      conflicts_(global_),
      separation_(global_),
      heuristics_(global_) {
  worker_.sub_search = &sub_search_;
}

Search::~Search() = default;

void Search::change_settings(const Settings& settings) {
  global_.settings = settings;
  global_.cutoff = std::min(global_.cutoff, settings.cutoff);
  if (enumerates() && global_.has_incumbent())
    global_.cutoff = std::min(global_.cutoff, enumeration_cutoff(global_.incumbent_value));
  worker_.relaxation->set_options(settings.lp);
}

bool Search::offer(std::span<const double> x) {
  return judge(x, "start").has_value();
}

std::optional<Search::Accepted> Search::weigh(std::span<const double> x) {
  constexpr double kRounding = 1e-9;  // relative, of an objective on the way to the origin
  Accepted found;
  if (!judge_.accept(x, global_.cutoff, &found.solution)) return std::nullopt;
  found.point = found.solution.x;
  if (origin_ == nullptr) return found;
  const double room = kRounding * std::max(1.0, std::fabs(global_.cutoff));
  const double cutoff = std::isinf(global_.cutoff) ? kInf : global_.cutoff + room;
  if (!origin_->accept(found.point, cutoff, &found.solution)) return std::nullopt;
  // What callbacks say of the solution is said of this point.
  if (callbacks_ != nullptr) found.point = origin_->crush(found.solution.x);
  return found;
}

std::optional<double> Search::judge(std::span<const double> x, const char* found_by) {
  std::optional<Accepted> found = weigh(x);
  if (!found) {
    keep_for_pool(x);
    return std::nullopt;
  }
  if (callbacks_ != nullptr && admit(*found, false) != Admission::admitted) return std::nullopt;
  const bool is_better = found->solution.objective < incumbent_.objective;
  const double value = take(std::move(*found), found_by);
  return is_better || !enumerates() ? std::optional(value) : std::nullopt;
}

/* A solution that is no better than the incumbent. Callbacks are asked about better ones only. */
void Search::keep_for_pool(std::span<const double> x) const {
  if (sink_ == nullptr || callbacks_ != nullptr || enumerates()) return;
  Solution solution;
  if (!judge_.accept_as_it_is(x, &solution)) return;
  if (origin_ != nullptr && !origin_->accept_as_it_is(std::vector<double>(solution.x), &solution)) return;
  sink_->add(solution);
}

double Search::take(Accepted found, const char* found_by) {
  if (enumerates() && !(found.solution.objective < incumbent_.objective)) {
    if (sink_ != nullptr) sink_->add(found.solution);
    return found.solution.objective;
  }
  if (origin_ != nullptr) origin_->take(found.solution);
  set_incumbent(std::move(found.solution), found.point);
  if (sink_ != nullptr) sink_->add(incumbent_);
  ++solutions_;
  node_of_incumbent_ = nodes_;
  new_incumbent_ = true;
  record_incumbent(found_by);
  observer_.solution(incumbent_.objective, incumbent_.x);
  if (found_by == nullptr) {
    relaxation_was_taken_ = true;
  } else if (in_process_ >= 0) {
    NodeEvent event = event_of(in_process_);
    event.new_incumbent = event.by_heuristic = true;
    observer_.node(event);
  }
  return incumbent_.objective;
}

void Search::inherit(const Solution& solution, std::span<const double> x) {
  set_incumbent(solution, {});
  const PointViolation v = measure(problem_, x);
  const double tolerance = global_.settings.tolerances.feasibility;
  if (v.integrality == 0 && v.primal() <= tolerance && v.object <= tolerance) {
    global_.incumbent.assign(x.begin(), x.end());
  }
  new_incumbent_ = true;
}

/* What rounding is worth is within the gaps. */
double Search::enumeration_cutoff(double best) const {
  const EnumerationSettings& gaps = global_.settings.enumeration;
  const double room = std::min(gaps.absolute_gap, gaps.relative_gap * (1e-10 + std::fabs(best)));
  return best + room + 1e-8 * std::max(1.0, std::fabs(best));
}

/* All that an improved solution changes. */
void Search::set_incumbent(Solution solution, std::span<const double> x) {
  const Settings& settings = global_.settings;
  const double u = solution.objective;
  const double improvement =
      std::max({settings.least_improvement, settings.least_relative_improvement * std::fabs(u),
                1e-9 * std::max(1.0, std::fabs(u))});
  // The next better value is on a step, and bounds are rounded up to steps. The incumbent itself need not be on one: presolve
  // may have left fewer values than the problem has from which it comes.
  double cutoff = u - improvement;
  if (const double step = global_.objective_step; step > 0)
    cutoff = std::min(cutoff, rounded_bound(u) - step * (1 - 1e-5));
  incumbent_ = std::move(solution);
  if (global_.has_incumbent_point()) {
    std::vector<std::vector<double>>& earlier = global_.earlier_incumbents;
    if (earlier.size() == kEarlierIncumbents) earlier.pop_back();
    earlier.insert(earlier.begin(), std::move(global_.incumbent));
  }
  global_.incumbent.assign(x.begin(), x.end());
  global_.incumbent_value = u;
  global_.cutoff = std::min(global_.cutoff, enumerates() ? enumeration_cutoff(u) : cutoff);
}

std::int64_t Search::judges_iterations() const {
  return judge_.iterations() + (origin_ == nullptr ? 0 : origin_->iterations());
}

void Search::record_incumbent(const char* found_by) {
  std::vector<IncumbentRecord>& all = statistics_.incumbents;
  if (all.size() == kMostIncumbents) all.pop_back();
  all.push_back(
      {meter_.seconds(), nodes_, incumbent_.objective, found_by == nullptr ? "relaxation" : found_by});
}

SearchStatistics Search::statistics() const {
  SearchStatistics all = statistics_;
  all.separators = separation_.plugin_counts();
  all.cuts = separation_.all_counts();
  all.symmetry = symmetry_counts();
  all.heuristics = heuristics_.plugin_counts();
  all.strong_iterations = branching_.strong_iterations();
  all.heuristic_iterations = heuristics_.iterations();
  all.judge_iterations = judges_iterations();
  all.clause_moves = worker_.propagator.clauses().moves();
  add_counts(all, absorbed_);
  return all;
}

/* The phase that was left, to be entered again. */
Phase Search::enter(Phase phase) {
  tell_work();
  return meter_.enter(phase, nodes_ == 0);
}

double Search::rounded_bound(double bound) const {
  const double step = global_.objective_step;
  if (!(step > 0) || std::isinf(bound)) return bound;
  const double offset = problem_.lp.offset;
  return std::max(bound, offset + step * std::ceil((bound - offset) / step - 1e-6));
}

bool Search::gap_is_closed(double bound) const {
  if (enumerates()) return prunes(bound);
  if (!global_.has_incumbent()) return false;
  const double gap = global_.incumbent_value - bound;
  return gap <= global_.settings.absolute_gap ||
         gap <= global_.settings.relative_gap * (1e-10 + std::fabs(global_.incumbent_value));
}

/* Of everything that is not yet done. */
double Search::open_bound() {
  double bound = std::min(tree_.best_bound(), undecided_bound_);
  if (in_process_ >= 0) bound = std::min(bound, tree_[in_process_].bound);
  return bound;
}

Progress Search::progress() {
  Progress p = own_progress();
  p.nodes += beside_.nodes;
  p.left += beside_.left;
  p.iterations += beside_.iterations;
  p.tree_bytes += beside_.tree_bytes;
  if (beside_.nodes > 0) p.best_bound = std::min(p.best_bound, beside_.best_bound);
  return p;
}

Progress Search::own_progress() {
  Progress p;
  p.nodes = nodes_;
  p.left = tree_.open();
  p.iterations = worker_.iterations + branching_.strong_iterations() + judges_iterations();
  p.solutions = solutions_;
  p.tree_bytes = tree_.bytes();
  p.parked_bytes = static_cast<double>(tree_.parked_bytes());
  p.stored_bytes = static_cast<double>(tree_.stored_bytes());
  // Where nothing is left the best solution is the bound.
  if (started_) p.best_bound = std::min(open_bound(), global_.incumbent_value);
  return p;
}

lp::simplex::Statistics Search::relaxation_statistics() const {
  lp::simplex::Statistics statistics;
  worker_.relaxation->write_statistics(statistics);
  return statistics;
}

Stop Search::asks_to_stop() {
  const Stop stop = control_.poll();
  return stop != Stop::none ? stop : control_.poll_clock();
}

Conclusion Search::stop_reason() {
  if (has_enough_solutions()) return Conclusion::solution_limit;
  if (stop_ == Stop::none) stop_ = asks_to_stop();
  switch (stop_) {
    case Stop::none:
      return Conclusion::iteration_limit;
    case Stop::time_limit:
      return Conclusion::time_limit;
    case Stop::tick_limit:
      return Conclusion::tick_limit;
    default:
      return Conclusion::user_abort;
  }
}

std::optional<Conclusion> Search::limit_reached() {
  const Settings& settings = global_.settings;
  stop_ = asks_to_stop();
  if (stop_ != Stop::none) return stop_reason();
  if (control_.ticks() >= pause_.ticks || nodes_ >= pause_.nodes ||
      (pause_.seconds < kInf && control_.seconds() >= pause_.seconds))
    return Conclusion::paused;
  if (has_enough_solutions()) return Conclusion::solution_limit;
  if (global_.incumbent_value <= settings.objective_stop) return Conclusion::objective_stop;
  if (nodes_ >= settings.node_limit) return Conclusion::node_limit;
  if (nodes_ - node_of_incumbent_ >= settings.stall_limit) return Conclusion::node_limit;
  if (worker_.iterations >= settings.iteration_limit) return Conclusion::iteration_limit;
  if (tree_.bytes() > settings.tree_limit * 1048576) return Conclusion::tree_limit;
  return std::nullopt;
}

Conclusion Search::conclude() {
  const bool all_decided = undecided_bound_ == kInf;  // below all, -inf, where the node has no bound
  if (!all_decided && !gap_is_closed(undecided_bound_)) return Conclusion::failed;
  if (!global_.has_incumbent()) return Conclusion::infeasible;
  if (enumerates()) return Conclusion::optimal;
  return tree_.empty() && all_decided ? Conclusion::optimal : Conclusion::within_gap;
}

/* Bounds that hold everywhere, and the root as the only node. */
void Search::start() {
  started_ = true;
  const bool possible = worker_.propagator.run_all(worker_.domain);
  if (!possible) return;
  worker_.domain.commit();
  worker_.propagator.went_back(worker_.domain);
  for (const int j : global_.integer_columns) open_columns_ += worker_.domain.is_fixed(j) ? 0 : 1;
  had_given_cuts_ = !given_cuts_.empty();
  if (had_given_cuts_) separation_.add_rows(worker_, given_cuts_);
  given_cuts_.clear();
  separation_.take_counts();
  next_child_ = tree_.add({-kInf, -kInf, -kInf, -1, {}, {}, nullptr});
  next_child_id_ = tree_[next_child_].id;
}

Conclusion Search::run() {
  begin_run();
  const Conclusion end = go_on();
  end_run();
  return end;
}

void Search::begin_run() {
  meter_.begin();
  pause_ = {};
  if (!started_) start();
}

Conclusion Search::go_on() {
  enter(Phase::tree);
  return run_until_limit();
}

Conclusion Search::run_until_limit() {
  for (;;) {
    if (new_incumbent_) {
      new_incumbent_ = false;
      drop_nodes(global_.cutoff);
      note_root_fixings();
    }
    if (!apply_global_bounds()) drop_nodes(-kInf);
    if (tree_.empty() || gap_is_closed(open_bound())) return conclude();
    if (const std::optional<Conclusion> limit = limit_reached()) return *limit;
    if (polishing_is_due()) {
      polish();
      continue;
    }
    node_files_ = tree_.park(global_.settings.node_files);
    if (node_files_ != NodeStore::State::done) return Conclusion::node_file_failed;
    int slot = pick();
    if (asks(&SearchCallbacks::Kinds::node)) slot = ask_for_node(slot);
    node_files_ = tree_.fetch(slot);
    if (node_files_ != NodeStore::State::done) return Conclusion::node_file_failed;
    if (const std::optional<Conclusion> end = process(slot)) return *end;
  }
}

/* The deepest node that the plunge has left open and that may hold a good solution; -1: a new plunge is due. */
int Search::next_of_plunge() {
  const double best = tree_.best_bound();
  const double share = std::min(kPlungeShare, global_.settings.backtrack_share);
  const double farthest =
      std::isinf(global_.cutoff) || std::isinf(best) ? kInf : best + share * (global_.cutoff - best);
  while (!plunge_.empty() && backtracks_ < kMostBacktracks) {
    const Sibling s = plunge_.back();
    plunge_.pop_back();
    if (!tree_.is_open(s.slot, s.id) || gap_is_closed(tree_[s.slot].bound) || tree_[s.slot].bound > farthest)
      continue;
    ++backtracks_;
    return s.slot;
  }
  plunge_.clear();
  backtracks_ = 0;
  return -1;
}

/* With an incumbent a plunge ends where it has become too bad. */
bool Search::goes_on_with(int child) {
  const double bound = tree_[child].bound;
  if (gap_is_closed(bound)) return false;
  if (!global_.has_incumbent()) return true;
  const double best = std::min(tree_.best_bound(), bound);
  double share = global_.settings.backtrack_share;
  const bool may_end = plunged_ >= kLeastPlunge && global_.settings.node_rule != NodeRule::depth_first;
  if (may_end) share = std::min(share, kPlungeShare);
  // Of a search for all solutions every node may be beyond the incumbent.
  const double worst = enumerates() ? global_.cutoff : global_.incumbent_value;
  return bound - best <= share * (worst - best);
}

/* The child of the plunge, else the queue's best. Nodes within the gap only hold the bound up. */
int Search::pick() {
  from_queue_ = false;
  ++plunged_;
  const int child = std::exchange(next_child_, -1);
  if (child >= 0 && tree_.is_open(child, next_child_id_) && goes_on_with(child)) return child;
  if (const int left = next_of_plunge(); left >= 0) return left;
  from_queue_ = true;
  plunged_ = 0;
  const Settings& settings = global_.settings;
  const bool by_bound = settings.node_rule == NodeRule::best_bound ||
                        (settings.best_bound_interval > 0 && settings.node_rule != NodeRule::depth_first &&
                         ++picks_since_best_bound_ >= settings.best_bound_interval);
  if (!by_bound) {
    const int slot = tree_.best_estimate_node();
    if (!gap_is_closed(tree_[slot].bound)) return slot;
  }
  picks_since_best_bound_ = 0;
  return tree_.best_bound_node();
}

void Search::leave_path(std::size_t steps) {
  if (path_.size() <= steps) return;
  worker_.backtrack(path_[steps].begin);
  path_.resize(steps);
}

/* Rows of cuts that have come since are basic; what belonged to those that have gone is left out. */
void Search::load_basis(const StoredBasis& node) {
  const std::shared_ptr<const std::vector<std::int64_t>> now = separation_.row_numbers();
  if (node.cut_rows == now) {
    worker_.relaxation->set_basis(node.basis);
    return;
  }
  const auto rows = static_cast<std::ptrdiff_t>(problem_.num_rows());
  std::vector<lp::BasisStatus> status(node.basis.rows.begin(), node.basis.rows.begin() + rows);
  std::size_t k = 0;  // both lists ascend
  for (const std::int64_t number : *now) {
    while (k < node.cut_rows->size() && (*node.cut_rows)[k] < number) ++k;
    const bool known = k < node.cut_rows->size() && (*node.cut_rows)[k] == number;
    status.push_back(known ? node.basis.rows[static_cast<std::size_t>(rows) + k] : lp::BasisStatus::basic);
  }
  worker_.relaxation->set_basis(node.basis.columns, status);
}

/* Brings the domain to the node: back to the common ancestor, forward along its path, then propagation. False when the node
 * is infeasible. */
bool Search::install(int slot) {
  std::vector<int> chain;
  for (int s = slot; s >= 0; s = tree_[s].parent) chain.push_back(s);
  std::reverse(chain.begin(), chain.end());
  std::size_t common = 0;
  while (common < chain.size() && common < path_.size() && path_[common].id == tree_[chain[common]].id)
    ++common;
  const bool is_jump = common + 1 < chain.size();
  leave_path(common);
  Domain& domain = worker_.domain;
  for (std::size_t k = common; k < chain.size(); ++k) {
    const Node node = tree_[chain[k]];
    path_.push_back({node.id, domain.position()});
    for (const NodeChange& c : node.changes) {
      domain.tighten(c.column, c.side, c.value, {Reason::Kind::branching, c.column});
    }
  }
  follow_symmetry(chain);
  if (local_rows_made_ > 0) bring_rows(chain);
  if (is_jump && tree_[slot].basis != nullptr) {
    load_basis(*tree_[slot].basis);
  }
  const int before = domain.position();
  if (!global_.settings.propagate || !presolves(slot)) {
    domain.forget_queued_rows();
    return !domain.is_infeasible();
  }
  const bool possible = worker_.propagate();
  const BranchRecord branch = tree_[slot].branch;
  if (branch.column >= 0 && common + 1 == chain.size() && tree_[slot].changes.size() == 1) {
    global_.pseudo_costs.add_inference(branch.column, branch.direction, domain.position() - before);
  }
  return possible && fix_by_symmetry();
}

/* Reduced costs of the root tell what a better solution may take. */
void Search::note_root_fixings() {
  if (root_reduced_costs_.empty() || !global_.settings.fix_by_reduced_cost) return;
  const double room = global_.cutoff - root_bound_;
  if (!(room < kInf)) return;
  for (const int j : global_.integer_columns) {
    const double d = root_reduced_costs_[j];
    const double range = root_upper_[j] - root_lower_[j];
    if (!(std::fabs(d) * (range - 0.5) > room)) continue;  // no integer less
    if (d > 0 && !std::isinf(root_lower_[j])) {
      global_bounds_.push_back({j, Side::upper, root_lower_[j] + room / d});
    } else if (d < 0 && !std::isinf(root_upper_[j])) {
      global_bounds_.push_back({j, Side::lower, root_upper_[j] + room / d});
    }
  }
}

/* False when nothing is left. */
bool Search::apply_global_bounds() {
  Domain& domain = worker_.domain;
  if (global_bounds_.empty()) return true;
  leave_path(0);
  bool moved = false;
  for (const GlobalBound& b : global_bounds_) {
    moved |= domain.tighten(b.column, b.side, b.value, {Reason::Kind::known, b.column});
  }
  global_bounds_.clear();
  const bool possible = !domain.is_infeasible() && (!moved || worker_.propagate());
  domain.commit();
  worker_.propagator.went_back(domain);
  return possible;
}

}  // namespace tovik::mip
