// What the search asks its caller, and what becomes of the answers.
#include "mip/search/callbacks.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "mip/domain/point.h"
#include "mip/search/search.h"

namespace tovik::mip {

using Kinds = SearchCallbacks::Kinds;

Sight Search::sight_of_relaxation(double objective) const {
  return {.slot = in_process_, .has_point = true, .x = x_, .objective = objective, .is_relaxation = true};
}

/* The last word on a point that the judges have accepted: first cuts, then yes or no. */
Search::Admission Search::admit(const Accepted& found, bool is_of_node) {
  const std::span<const double> x = found.point;
  const Sight sight{.slot = in_process_,
                    .has_point = true,
                    .x = x,
                    .objective = found.solution.objective,
                    .given = origin_ == nullptr ? nullptr : &found.solution};
  if (asks(&Kinds::cut)) {
    keep_cuts(callbacks_->cuts(sight));
    if (callbacks_->wants_to_stop()) return Admission::stopped;
    const double tolerance = global_.settings.tolerances.feasibility;
    const bool is_cut_off_here =
        is_of_node && std::any_of(new_local_cuts_.begin(), new_local_cuts_.end(),
                                  [&](const Cut& cut) { return violation(cut, x) > tolerance; });
    if (is_cut_off_here || !judge_.satisfies_cuts(x)) return Admission::cut_off;
  }
  if (asks(&Kinds::incumbent)) {
    const bool accepted = callbacks_->accepts(sight);
    if (callbacks_->wants_to_stop()) return Admission::stopped;
    if (!accepted) return Admission::rejected;
  }
  return Admission::admitted;
}

/* They become rows when they are violated; those of a node in any case where its children are installed. */
void Search::keep_cuts(OwnCuts cuts) {
  const bool whole_tree = in_process_ < 0 || tree_[in_process_].parent < 0;
  if (whole_tree) {
    std::move(cuts.in_subtree.begin(), cuts.in_subtree.end(), std::back_inserter(cuts.everywhere));
    cuts.in_subtree.clear();
  }
  for (Cut& cut : cuts.everywhere) {
    cut.kind = CutClass::user;
    judge_.add_cut(cut);
    if (origin_ != nullptr) origin_->add_cut(cut);
    idle_cuts_.push_back(std::move(cut));
  }
  for (Cut& cut : cuts.in_subtree) {
    cut.kind = CutClass::local;
    cut.stays = true;
    cut.node = tree_[in_process_].id;
    cut.number = local_rows_made_++;
    tree_.extras(in_process_).rows.push_back(cut);
    new_local_cuts_.push_back(std::move(cut));
  }
}

/* True when rows came that the point violates: the relaxation has to be solved anew. */
bool Search::use_cuts(std::span<const double> x) {
  const double tolerance = global_.settings.tolerances.feasibility;
  std::vector<Cut> rows;
  for (std::vector<Cut>* waiting : {&idle_cuts_, &new_local_cuts_}) {
    std::erase_if(*waiting, [&](Cut& cut) {
      if (violation(cut, x) <= tolerance) return false;
      rows.push_back(std::move(cut));
      return true;
    });
  }
  if (rows.empty()) return false;
  separation_.add_rows(worker_, rows);
  observer_.cuts(separation_.take_counts());
  return true;
}

bool Search::ask_for_cuts(double objective) {
  keep_cuts(callbacks_->cuts(sight_of_relaxation(objective)));
  return callbacks_->wants_to_stop() || use_cuts(x_);
}

/* Once a node. True when there is a new incumbent, or the search has to stop. */
bool Search::ask_for_solution(double objective) {
  if (std::exchange(rounds_.asked_for_solution, true)) return false;
  const std::vector<double> x = callbacks_->heuristic(sight_of_relaxation(objective));
  if (callbacks_->wants_to_stop()) return true;
  if (x.empty()) return false;
  const bool better = judge(x, "callback").has_value();
  return better || callbacks_->wants_to_stop() || use_cuts(x_);
}

OwnSolve::Result Search::ask_for_solve() {
  worker_.flush();
  const OwnSolve own = callbacks_->solve({.slot = in_process_, .objective = tree_[in_process_].bound});
  const lp::LpData& lp = worker_.relaxation->user_lp();
  const bool fits = static_cast<int>(own.basis.columns.size()) == lp.num_columns() &&
                    static_cast<int>(own.basis.rows.size()) == lp.num_rows();
  if (own.result == OwnSolve::Result::solved && fits) worker_.relaxation->set_basis(own.basis);
  return own.result;
}

int Search::ask_for_node(int proposed) {
  const int chosen = callbacks_->choose_node(proposed);
  return chosen >= 0 && !callbacks_->wants_to_stop() ? chosen : proposed;
}

/* Nothing where it is to be branched as proposed. */
std::optional<Search::NodeResult> Search::ask_for_branching(int slot, double objective,
                                                            const Proposal& proposal) {
  if (!asks(proposal.has_relaxation ? &Kinds::branch : &Kinds::branch_without_solution)) return std::nullopt;
  Sight sight = sight_of_relaxation(objective);
  if (!proposal.has_relaxation) sight = {.slot = slot, .objective = tree_[slot].bound};
  std::optional<std::vector<NewChild>> own = callbacks_->branch(sight, proposal);
  if (callbacks_->wants_to_stop()) return NodeResult::stopped;
  if (!own) return std::nullopt;
  return add_own_children(slot, std::move(*own), objective);
}

Search::NodeResult Search::add_own_children(int slot, std::vector<NewChild> children, double objective) {
  const std::shared_ptr<const StoredBasis> basis = stored_basis();
  const double bound = tree_[slot].bound;
  const bool depth_first = global_.settings.node_rule == NodeRule::depth_first;
  bool any = false;
  for (NewChild& child : children) {
    for (const NodeChange& change : child.changes) follow_bounds(change.column);
    std::unique_ptr<NodeExtras> extras = extras_of_child();
    extras->handle = child.handle;
    extras->rows = std::move(child.rows);
    for (Cut& row : extras->rows) {
      row.kind = CutClass::local;
      row.stays = true;
      row.node = child.id;
      row.number = local_rows_made_++;
    }
    const double estimate = depth_first ? -tree_[slot].depth - 1.0 : std::max(bound, child.estimate);
    const int made = tree_.add(
        {bound, estimate, objective, slot, {}, std::move(child.changes), basis, std::move(extras), child.id});
    if (any) {
      plunge_.push_back({made, child.id});
    } else {
      next_child_ = made;
      next_child_id_ = child.id;
    }
    any = true;
  }
  return any ? NodeResult::branched : NodeResult::cutoff;
}

/* No solution of the node may be what the relaxation says: what is not fixed is split. Where all is, the node goes. */
Search::NodeResult Search::branch_on_rejected(int slot, double objective) {
  const NodeResult result = branch_anywhere(slot, objective, true);
  return result == NodeResult::undecided ? NodeResult::infeasible : result;
}

/* The relaxation does not know what the domain has found of a column that nobody thought of branching on. */
void Search::follow_bounds(int column) {
  if (std::exchange(global_.is_discrete[column], 1) != 0) return;
  worker_.relaxation->change_bounds(column, worker_.domain.lower(column), worker_.domain.upper(column));
}

std::unique_ptr<NodeExtras> Search::extras_of_child() const {
  if (callbacks_ == nullptr) return nullptr;
  auto extras = std::make_unique<NodeExtras>();
  extras->infeasibilities = shortfall_.count();
  for (const Fraction& f : shortfall_.fractions) extras->infeasibility_sum += fractionality(f.value);
  return extras;
}

void Search::drop_nodes(double cutoff) {
  if (!asks(&Kinds::delete_node)) {
    tree_.prune(cutoff);
    return;
  }
  for (const int slot : tree_.nodes_beyond(cutoff)) {
    tell_deleted(slot);
    tree_.close(slot);
  }
}

void Search::tell_deleted(int slot) {
  if (!asks(&Kinds::delete_node)) return;
  const Node& node = tree_[slot];
  callbacks_->delete_node(node.id, node.extras == nullptr ? nullptr : node.extras->handle);
}

/* Rows that hold on the path, and no others of single nodes. */
void Search::bring_rows(const std::vector<int>& chain) {
  std::vector<std::int64_t> path;
  for (const int slot : chain) path.push_back(tree_[slot].id);
  const auto on_path = [&](std::int64_t id) { return std::find(path.begin(), path.end(), id) != path.end(); };
  separation_.remove_rows(worker_, [&](const Cut& cut) { return cut.node >= 0 && !on_path(cut.node); });
  std::vector<Cut> rows;
  const auto is_there = [&](const Cut& row) {
    return std::any_of(worker_.cut_rows.begin(), worker_.cut_rows.end(),
                       [&](const Cut& cut) { return cut.number == row.number; });
  };
  for (const int slot : chain) {
    if (tree_[slot].extras == nullptr) continue;
    for (const Cut& row : tree_[slot].extras->rows) {
      if (!is_there(row)) rows.push_back(row);
    }
  }
  if (!rows.empty()) separation_.add_rows(worker_, rows);
}

}  // namespace tovik::mip
