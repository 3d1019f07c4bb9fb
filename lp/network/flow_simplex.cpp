#include "lp/network/flow_simplex.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::network {
namespace {

constexpr std::uint64_t kPollWork = 20000;
constexpr std::uint64_t kClockWork = 1000000;
/* In arcs looked at: steps up the tree wait for the memory. */
constexpr std::uint64_t kWorkPerPivot = 200, kWorkPerStep = 8;
/* Residuals below this share of the largest amount are rounding. */
constexpr double kSnap = 1e-13;

double largest_amount(const FlowProblem& problem) {
  double most = 1;
  const auto look_at = [&](std::span<const double> values) {
    for (const double v : values)
      if (std::isfinite(v)) most = std::max(most, std::fabs(v));
  };
  look_at(problem.supply);
  look_at(problem.lower);
  look_at(problem.upper);
  return most;
}

bool all_whole(std::span<const double> values) {
  return std::ranges::all_of(values, is_exactly_added);
}

}  // namespace

FlowSimplex::FlowSimplex(const FlowProblem& problem, const FlowBasis& start, const FlowOptions& options,
                         Control& control, FlowObserver* observer)
    : problem_(problem),
      options_(options),
      control_(control),
      observer_(observer),
      arcs_(problem),
      tree_(problem.num_nodes()),
      potential_(static_cast<std::size_t>(problem.num_nodes()) + 1),
      pricing_(arcs_, potential_, options.pricing, options.optimality),
      penalty_((1 + arcs_.largest_cost()) * std::min(1e5, 1.0 + problem.num_nodes())) {
  if (!arcs_.is_integral() || !all_whole(problem.supply)) snap_ = kSnap * largest_amount(problem);
  if (start.empty()) {
    start_from_shortest_paths();
  } else {
    start_from(start);
  }
}

// ---- Phases

double FlowSimplex::artificial_cost(const SpanningTree::Node& node) const {
  return phase_ == Phase::cost ? 0 : node.points_up() ? penalty_ : -penalty_;
}

void FlowSimplex::compute_potentials() {
  const int root = tree_.root();
  potential_[static_cast<std::size_t>(root)] = 0;
  for (int v = tree_.next(root); v != root; v = tree_.next(v)) {
    const SpanningTree::Node& node = tree_[v];
    const double step = node.is_artificial() ? artificial_cost(node)
                        : node.points_up()   ? arcs_.cost(node.arc())
                                             : -arcs_.cost(node.arc());
    potential_[static_cast<std::size_t>(v)] = potential_[static_cast<std::size_t>(tree_.parent(v))] + step;
  }
  work_ += static_cast<std::uint64_t>(root);
}

double FlowSimplex::infeasibility() const {
  if (phase_ == Phase::cost) return 0;
  double sum = 0;
  const int root = tree_.root();
  for (int v = tree_.next(root); v != root; v = tree_.next(tree_.last(v)))
    if (tree_[v].is_artificial()) sum += tree_[v].points_up() ? tree_[v].down : tree_[v].up;
  return sum;
}

void FlowSimplex::compute_objective() {
  double sum = 0;
  for (int a = 0; a < arcs_.count(); ++a)
    if (arcs_.state(a) < 0) sum += arcs_.cost(a) * arcs_.capacity(a);
  for (int v = 0; v < tree_.root(); ++v) {
    const SpanningTree::Node& node = tree_[v];
    const double flow = node.points_up() ? node.down : node.up;
    sum += flow * (!node.is_artificial() ? arcs_.cost(node.arc()) : phase_ == Phase::cost ? 0 : penalty_);
  }
  // What shifted bounds cost.
  const bool shifted = phase_ != Phase::infeasibility && arcs_.has_other_bounds();
  for (int a = 0; shifted && a < arcs_.count(); ++a) {
    const double base = arcs_.original_flow(a, 0);
    if (base != 0) sum += problem_.cost[static_cast<std::size_t>(arcs_.origin(a))] * base;
  }
  objective_ = sum;
}

void FlowSimplex::begin_phase(Phase phase) {
  if (phase == Phase::infeasibility) {
    arcs_.clear_costs();
    penalty_ = 1;
  } else if (phase_ == Phase::infeasibility) {
    arcs_.restore_costs();
  }
  phase_ = phase;
  compute_potentials();
  compute_objective();
  running_infeasibility_ = infeasibility();
  pricing_.restart();
}

/* Flows within the tolerance are taken away: their nodes miss so much. */
void FlowSimplex::begin_cost_phase_if_feasible() {
  const int root = tree_.root();
  const double allowed = snap_ > 0 ? options_.feasibility : 0;
  for (int v = tree_.next(root); v != root; v = tree_.next(tree_.last(v)))
    if (tree_[v].is_artificial() && (tree_[v].points_up() ? tree_[v].down : tree_[v].up) > allowed) return;
  for (int v = tree_.next(root); v != root; v = tree_.next(tree_.last(v)))
    if (tree_[v].is_artificial()) tree_.set_parent_arc(v, {kArtificial, true, kInf, 0});
  phase1_iterations_ = iterations_;
  begin_phase(Phase::cost);
}

Outcome FlowSimplex::run() {
  begin_phase(Phase::penalty);
  begin_cost_phase_if_feasible();
  for (;;) {
    if (iterations_ >= options_.iteration_limit) return Outcome::iteration_limit;
    switch (poll()) {
      case Stop::none:
        break;
      case Stop::time_limit:
        return Outcome::time_limit;
      case Stop::tick_limit:
        return Outcome::tick_limit;
      case Stop::user_abort:
        return Outcome::user_abort;
    }
    const Step step = iterate();
    if (step == Step::pivot) continue;
    const Outcome outcome = conclude(step);
    if (outcome != Outcome::numerical_failure) return outcome;
  }
}

/* How the run ends where no pivot could be made; numerical_failure: it goes on in another phase. */
Outcome FlowSimplex::conclude(Step step) {
  if (step == Step::endless && phase_ == Phase::cost) return Outcome::unbounded;
  // Potentials that were shifted many times are made anew before they are believed.
  if (snap_ > 0 && step == Step::no_candidate) {
    compute_potentials();
    pricing_.restart();
    if (const int arc = pricing_.choose(); arc != Pricing::kNone) return Outcome::numerical_failure;
  }
  if (phase_ == Phase::cost) return Outcome::optimal;
  begin_cost_phase_if_feasible();
  if (phase_ == Phase::cost) return Outcome::numerical_failure;
  if (phase_ == Phase::penalty) {
    begin_phase(Phase::infeasibility);
    return Outcome::numerical_failure;
  }
  return Outcome::infeasible;
}

// ---- One iteration

FlowSimplex::Step FlowSimplex::iterate() {
  const int arc = pricing_.choose();
  if (arc == Pricing::kNone) return Step::no_candidate;
  const double gain = pricing_.gain(arc);
  const std::uint64_t before = work_;
  const Cycle cycle = find_cycle(arc);
  if (cycle.step == kInf) {
    store_ray(cycle);
    return Step::endless;
  }
  ++iterations_;
  push(cycle);
  objective_ -= cycle.step * gain;
  if (cycle.out == kNoNode) {
    arcs_.set_state(arc, -arcs_.state(arc));
  } else {
    exchange(cycle, gain);
  }
  pricing_.learn_pivot_work(work_ - before);
  if (phase_ != Phase::cost && cycle.join == tree_.root() && cycle.step > 0 &&
      running_infeasibility_ <= 1e-3 * options_.feasibility + static_cast<double>(tree_.root()) * snap_)
    begin_cost_phase_if_feasible();
  if (observer_ != nullptr && iterations_ % options_.report_interval == 0) observer_->report(flow_progress());
  return Step::pivot;
}

/* In the order of the flow, from the join, stand the first path, the entering arc and the second path, and the last of
 * equal steps is to be chosen: the first path must offer less than what was found, the second one as much. A step of
 * zero is thus the first one met on the way from `first`, and there is none on the second path of a strongly feasible tree. */
FlowSimplex::Cycle FlowSimplex::find_cycle(int arc) {
  const bool forward = arcs_.state(arc) > 0;
  Cycle cycle{arc,
              forward ? arcs_.tail(arc) : arcs_.head(arc),
              forward ? arcs_.head(arc) : arcs_.tail(arc),
              0,
              arcs_.capacity(arc),
              kNoNode,
              false,
              kNoNode,
              kNoNode};
  find_join(cycle);
  for (int u = cycle.first; u != cycle.join && cycle.step > 0; u = tree_.parent(u)) {
    if (tree_[u].down < cycle.step - snap_) {
      cycle.step = tree_[u].down;
      cycle.out = u;
      cycle.out_on_first = true;
    }
  }
  if (cycle.step == 0) return cycle;
  for (int v = cycle.second; v != cycle.join; v = tree_.parent(v)) {
    const double up = tree_[v].up;
    if (up <= cycle.step + snap_ && up < kInf) {
      cycle.step = std::min(cycle.step, up);
      cycle.out = v;
      cycle.out_on_first = false;
    }
  }
  return cycle;
}

/* The node with fewer nodes below it is no ancestor of the other. */
void FlowSimplex::find_join(Cycle& cycle) {
  int u = cycle.first, v = cycle.second;
  std::uint64_t length = 0;
  for (; u != v; ++length) {
    if (tree_.size(u) < tree_.size(v)) {
      cycle.top_first = u;
      u = tree_.parent(u);
    } else {
      cycle.top_second = v;
      v = tree_.parent(v);
    }
  }
  cycle.join = u;
  work_ += kWorkPerPivot + kWorkPerStep * length;
}

void FlowSimplex::push(const Cycle& cycle) {
  const double step = cycle.step;
  if (step > 0) {
    if (phase_ != Phase::cost && cycle.join == tree_.root()) {
      // On the way down flow goes root -> top_first, on the way up top_second -> root.
      for (const auto& [top, downwards] :
           {std::pair(cycle.top_first, true), std::pair(cycle.top_second, false)})
        if (top != kNoNode && tree_[top].is_artificial())
          running_infeasibility_ += tree_[top].points_up() == downwards ? -step : step;
    }
    for (int v = cycle.first; v != cycle.join; v = tree_.parent(v)) {
      SpanningTree::Node& node = tree_[v];
      node.down = snapped(node.down - step);
      node.up += step;
    }
    for (int v = cycle.second; v != cycle.join; v = tree_.parent(v)) {
      SpanningTree::Node& node = tree_[v];
      node.up = snapped(node.up - step);
      node.down += step;
    }
  }
}

void FlowSimplex::exchange(const Cycle& cycle, double gain) {
  const SpanningTree::Node& out = tree_[cycle.out];
  // On the first path flow went down to the node, on the second one up from it.
  if (!out.is_artificial()) arcs_.set_nonbasic(out.arc(), cycle.out_on_first != out.points_up());
  const int inner = cycle.out_on_first ? cycle.first : cycle.second;
  const int outer = cycle.out_on_first ? cycle.second : cycle.first;
  const double capacity = arcs_.capacity(cycle.arc);
  const double flow = arcs_.state(cycle.arc) > 0 ? cycle.step : snapped(capacity - cycle.step);
  const double room = capacity == kInf ? kInf : snapped(capacity - flow);
  const bool points_up = arcs_.tail(cycle.arc) == inner;
  const double reduced_cost = -gain * arcs_.state(cycle.arc);
  tree_.move({cycle.out,
              inner,
              outer,
              cycle.join,
              {cycle.arc, points_up, points_up ? room : flow, points_up ? flow : room}});
  arcs_.set_state(cycle.arc, 0);
  shift_potentials(inner, points_up ? reduced_cost : -reduced_cost);
}

/* Of the subtree, or of all others the other way: only differences count. */
void FlowSimplex::shift_potentials(int top, double shift) {
  const int size = tree_.size(top), all = tree_.root() + 1;
  int first = top, last = tree_.last(top), count = size;
  if (2 * size > all) {
    first = tree_.next(last);
    last = tree_.previous(top);
    count = all - size;
    shift = -shift;
  }
  // From both ends at once: the memory answers two walks as fast as one.
  for (int k = count / 2; k > 0; --k) {
    potential_[static_cast<std::size_t>(first)] += shift;
    potential_[static_cast<std::size_t>(last)] += shift;
    first = tree_.next(first);
    last = tree_.previous(last);
  }
  if (count % 2 != 0) potential_[static_cast<std::size_t>(first)] += shift;
  work_ += static_cast<std::uint64_t>(count);
}

void FlowSimplex::store_ray(const Cycle& cycle) {
  ray_.clear();
  ray_.push_back({cycle.arc, arcs_.state(cycle.arc)});
  for (int v = cycle.first; v != cycle.join; v = tree_.parent(v))
    if (!tree_[v].is_artificial()) ray_.push_back({tree_[v].arc(), tree_[v].points_up() ? -1 : 1});
  for (int v = cycle.second; v != cycle.join; v = tree_.parent(v))
    if (!tree_[v].is_artificial()) ray_.push_back({tree_[v].arc(), tree_[v].points_up() ? 1 : -1});
}

// ---- The outside

Stop FlowSimplex::poll() {
  work_ += pricing_.work();
  if (const Stop stop = control_.iteration_callback(*this); stop != Stop::none) return stop;
  const bool first = iterations_ == 0;  // small networks, too, know their limits
  if (work_ < kPollWork && !first) return Stop::none;
  control_.add_work(work_);
  clock_work_ += work_;
  work_ = 0;
  if (const Stop stop = control_.poll(); stop != Stop::none) return stop;
  if (clock_work_ < kClockWork && !first) return Stop::none;
  clock_work_ = 0;
  return control_.poll_clock();
}

FlowProgress FlowSimplex::flow_progress() const {
  FlowProgress now;
  now.phase1 = phase_ != Phase::cost;
  now.iterations = iterations_;
  now.infeasibility = std::max(running_infeasibility_, 0.0);
  now.penalized = objective_;
  now.objective = phase_ == Phase::penalty ? objective_ - penalty_ * running_infeasibility_ : objective_;
  return now;
}

Progress FlowSimplex::progress() const {
  const FlowProgress now = flow_progress();
  SimplexProgress simplex;
  simplex.phase1 = now.phase1;
  simplex.iterations = now.iterations;
  simplex.objective = now.objective;
  simplex.primal_infeasibility = now.infeasibility;
  simplex.dual_infeasibility = kInf;
  return simplex;
}

}  // namespace tovik::lp::network
