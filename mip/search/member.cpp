// A search as a member of a team: how it begins with what another knows, and what members pass to each other.
#include <algorithm>
#include <utility>

#include "mip/search/search.h"

namespace tovik::mip {

void Search::pause_after(std::int64_t ticks, double seconds, std::int64_t nodes) {
  pause_.ticks = ticks < kNoLimit ? control_.ticks() + ticks : kNoLimit;
  pause_.nodes = nodes < kNoLimit ? nodes_ + nodes : kNoLimit;
  pause_.seconds = seconds < kInf ? control_.seconds() + seconds : kInf;
}

void Search::join(Search& leader) {
  started_ = tried_before_relaxation_ = true;
  leader.leave_path(0);
  Domain& domain = worker_.domain;
  const Domain& known = leader.worker_.domain;
  for (int j = 0; j < problem_.num_columns(); ++j) {
    domain.tighten_lower(j, known.lower(j), {Reason::Kind::known, j});
    domain.tighten_upper(j, known.upper(j), {Reason::Kind::known, j});
  }
  if (!worker_.propagator.run_all(domain)) return;  // then no node has a solution, and each finds that out
  domain.commit();
  worker_.propagator.went_back(domain);
  open_columns_ = leader.open_columns_;
  std::vector<Cut> rows = leader.worker_.cut_rows;
  if (!rows.empty()) separation_.add_rows(worker_, rows);
  separation_.take_counts();
  global_.pseudo_costs = leader.global_.pseudo_costs;
  branching_.set_root_values(leader.branching_.root_values());
  root_bound_ = leader.root_bound_;
  root_reduced_costs_ = leader.root_reduced_costs_;
  root_lower_ = leader.root_lower_;
  root_upper_ = leader.root_upper_;
  if (leader.incumbent_.objective < kInf) set_incumbent(leader.incumbent_, leader.global_.incumbent);
  global_.cutoff = leader.global_.cutoff;
  nodes_ = nodes_at_joining_ = leader.nodes_;
  node_of_incumbent_ = leader.node_of_incumbent_;
  tree_cuts_.waits = leader.tree_cuts_.waits;
  tree_cuts_.failures = leader.tree_cuts_.failures;
}

/* Rows of cuts are others in every member: the basis keeps the problem's rows. */
MovedNode Search::take_out(int slot) {
  MovedNode moved;
  // What a node file has lost the node can do without.
  if (const NodeStore::State read = tree_.fetch(slot); read != NodeStore::State::done) node_files_ = read;
  {
    const Node node = tree_[slot];
    moved = {node.bound, node.estimate, node.relaxation, node.branch, {}, nullptr};
    if (node.basis != nullptr) {
      StoredBasis basis{node.basis->basis, std::make_shared<const std::vector<std::int64_t>>()};
      basis.basis.rows.resize(static_cast<std::size_t>(problem_.num_rows()));
      moved.basis = std::make_shared<const StoredBasis>(std::move(basis));
    }
  }
  std::vector<int> chain;
  for (int s = slot; s >= 0; s = tree_[s].parent) chain.push_back(s);
  for (std::size_t k = chain.size(); k-- > 0;) {
    const Node step = tree_[chain[k]];
    moved.path.insert(moved.path.end(), step.changes.begin(), step.changes.end());
  }
  tree_.take(slot);
  tree_.close(slot);
  return moved;
}

std::vector<MovedNode> Search::hand_over(std::int64_t most) {
  struct Place {
    double bound;
    std::int64_t id;
    int slot;
  };
  std::vector<Place> nodes;
  for (const int slot : tree_.open_nodes()) nodes.push_back({tree_[slot].bound, tree_[slot].id, slot});
  std::sort(nodes.begin(), nodes.end(), [](const Place& a, const Place& b) {
    return a.bound < b.bound || (a.bound == b.bound && a.id < b.id);
  });
  std::vector<MovedNode> moved;
  for (std::size_t k = 1; k < nodes.size() && static_cast<std::int64_t>(moved.size()) < most; k += 2)
    moved.push_back(take_out(nodes[k].slot));
  return moved;
}

std::vector<MovedNode> Search::hand_over() {
  std::vector<MovedNode> moved;
  for (const int slot : tree_.open_nodes()) moved.push_back(take_out(slot));
  return moved;
}

/* Below nodes of their own, which have nothing else. */
void Search::take_over(std::vector<MovedNode> nodes) {
  for (std::size_t first = 0; first < nodes.size(); first += Tree::kMostChildren) {
    const std::size_t end = std::min(nodes.size(), first + Tree::kMostChildren);
    const int top = tree_.add({-kInf, -kInf, -kInf, -1, {}, {}, nullptr});
    tree_.take(top);
    for (std::size_t k = first; k < end; ++k) {
      MovedNode& node = nodes[k];
      tree_.add({node.bound, node.estimate, node.relaxation, top, node.branch, std::move(node.path),
                 std::move(node.basis)});
    }
    tree_.close(top);
  }
}

double Search::bound_behind(std::int64_t nodes) const {
  if (tree_.open() <= nodes) return kInf;
  std::vector<double> bounds;
  for (const int slot : tree_.open_nodes()) bounds.push_back(tree_[slot].bound);
  const auto place = bounds.begin() + static_cast<std::ptrdiff_t>(nodes);
  std::nth_element(bounds.begin(), place, bounds.end());
  return *place;
}

Progress Search::progress_since_joining() {
  Progress p = own_progress();
  p.nodes -= nodes_at_joining_;
  return p;
}

void Search::hear_of(const Search& finder, bool is_leader) {
  if (!(finder.incumbent_.objective < incumbent_.objective)) return;
  set_incumbent(finder.incumbent_, finder.global_.incumbent);
  new_incumbent_ = true;
  node_of_incumbent_ = nodes_;
  if (!is_leader) return;
  if (origin_ != nullptr) origin_->take(incumbent_);
  ++solutions_;
  record_incumbent(finder.statistics_.incumbents.empty() ? nullptr
                                                         : finder.statistics_.incumbents.back().found_by);
  observer_.solution(incumbent_.objective, incumbent_.x);
}

void Search::absorb(Search& member) {
  take_over(member.hand_over());
  findings_.reset();
  new_incumbent_ = true;  // some of them may be beyond the cutoff
  nodes_ += member.nodes_ - member.nodes_at_joining_;
  worker_.iterations += member.own_progress().iterations;
  undecided_bound_ = std::min(undecided_bound_, member.undecided_bound_);
  if (member.node_files_ != NodeStore::State::done) node_files_ = member.node_files_;
  add_counts(absorbed_, member.statistics());
}

}  // namespace tovik::mip
