// Nodes whose relaxation is unbounded.
#include <memory>

#include "mip/search/search.h"

namespace tovik::mip {
namespace {

/* Objects that the bounds leave open, as if the point lacked all of them. */
Shortfall undecided_objects(const Worker& worker, std::vector<double>& x) {
  const Problem& problem = worker.global.problem;
  const Domain& domain = worker.domain;
  Shortfall open;
  x.assign(static_cast<std::size_t>(problem.num_columns()), 0.0);
  const auto count = [](std::size_t k) { return static_cast<int>(k); };
  for (std::size_t k = 0; k < problem.semi_columns.size(); ++k) {
    const SemiColumn& s = problem.semi_columns[k];
    const bool can_be_zero = domain.lower(s.column) <= 0 && domain.upper(s.column) >= 0;
    if (!can_be_zero || domain.is_fixed(s.column)) continue;
    x[s.column] = (s.lower > 0 ? s.lower : s.upper) / 2;
    open.semi_columns.push_back(count(k));
  }
  for (std::size_t k = 0; k < problem.indicators.size(); ++k) {
    const Indicator& i = problem.indicators[k];
    if (domain.is_fixed(i.switch_column) || domain.upper(i.slack) == 0) continue;
    x[i.switch_column] = i.active_value;
    x[i.slack] = 1;
    open.indicators.push_back(count(k));
  }
  for (std::size_t k = 0; k < problem.sets.size() && open.count() == 0; ++k) {
    const OrderedSet& set = problem.sets[k];
    int first = -1, last = -1, position = 0;
    for (const int j : set.columns) {
      if (domain.lower(j) != 0 || domain.upper(j) != 0) {
        x[j] = 1;
        if (first < 0) first = position;
        last = position;
      }
      ++position;
    }
    if (first >= 0 && last - first >= set.type) open.sets.push_back(count(k));
  }
  return open;
}

}  // namespace

/* A direction of the relaxation improves for ever. Where objects are open they are branched on first, for they may forbid
 * it; where none is, the problem is unbounded if the node has any solution at all, which a search without an objective
 * finds out: directions with rational data lead to integer points ("On the existence of optimal solutions
 * to integer and mixed-integer programming problems", Math. Programming 7 (1974)). */
Search::NodeResult Search::branch_unbounded(int slot, bool* again) {
  std::vector<double> x;
  const Shortfall open = undecided_objects(worker_, x);
  if (open.count() > 0) {
    const Branching branching = branch_on_object(worker_, x, open);
    return branch(slot, branching, tree_[slot].relaxation, {&branching, tree_[slot].bound, false});
  }
  Problem any = problem_;
  any.lp.cost.assign(any.lp.cost.size(), 0.0);
  any.lp.offset = 0;
  for (int j = 0; j < any.num_columns(); ++j) {
    if (global_.is_discrete[j] == 0) continue;
    any.lp.lower[j] = worker_.domain.lower(j);
    any.lp.upper[j] = worker_.domain.upper(j);
  }
  Settings settings = global_.settings;
  settings.cutoff = kInf;
  settings.objective_stop = -kInf;
  settings.solution_limit = 1;
  settings.witness = {};
  settings.enumeration = {};
  settings.node_files = {};
  settings.symmetry = 0;
  SilentObserver silent;
  Search search(any, settings, control_, silent);
  const Conclusion end = search.run();
  worker_.iterations += search.progress().iterations;
  if (!search.incumbent().x.empty()) {
    if (offer(search.incumbent().x) || callbacks_ == nullptr) return NodeResult::unbounded;
    // The caller has refused it, perhaps by cuts that bound the relaxation.
    if (callbacks_->wants_to_stop()) return NodeResult::stopped;
    *again = use_cuts(search.incumbent().x);
    return NodeResult::undecided;
  }
  return end == Conclusion::infeasible ? NodeResult::infeasible
         : end == Conclusion::failed   ? NodeResult::undecided
                                       : NodeResult::stopped;
}

}  // namespace tovik::mip
