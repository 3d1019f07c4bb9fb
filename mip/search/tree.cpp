#include "mip/search/tree.h"

#include <algorithm>

namespace tovik::mip {
namespace {

// Bytes put away at once: a search that is to stop does not wait for more.
constexpr std::int64_t kMostAtOnce = std::int64_t{1} << 23;
constexpr int kFewDetails = 32;  // are not worth the search for the worst

std::int64_t bytes_of(const StoredBasis* basis) {
  if (basis == nullptr) return 0;
  const lp::Basis& b = basis->basis;
  return static_cast<std::int64_t>(sizeof(StoredBasis) +
                                   (b.columns.size() + b.rows.size()) * sizeof(lp::BasisStatus) +
                                   b.dual_weights.size() * sizeof(double));
}

}  // namespace

int Tree::add(NewNode node) {
  const int slot = steps_.take();
  Step& step = steps_[slot];
  step.id = node.id >= 0 ? node.id : take_id();
  step.parent = node.parent;
  step.depth = node.parent < 0 ? 0 : steps_[node.parent].depth + 1;
  step.children = 0;
  step.is_open = true;
  if (node.changes.size() == 1) {
    step.change = node.changes.front();
  } else if (!node.changes.empty()) {
    more_changes_ += static_cast<std::int64_t>(node.changes.size());
    more_of(step).changes = std::move(node.changes);
  }
  if (node.extras != nullptr) more_of(step).extras = std::move(node.extras);
  step.waiting = waiting_.take();
  Waiting& waiting = waiting_[step.waiting];
  waiting.bound = node.bound;
  waiting.estimate = node.estimate;
  waiting.detail = details_.take();
  basis_bytes_ += bytes_of(node.basis.get());
  details_[waiting.detail] = {node.relaxation, node.branch, std::move(node.basis)};
  waiting.slot = slot;
  waiting.id = step.id;
  if (node.parent >= 0) ++steps_[node.parent].children;
  push(step.waiting);
  return slot;
}

void Tree::push(int waiting) {
  by_bound_.push(waiting_, waiting);
  by_estimate_.push(waiting_, waiting);
}

void Tree::raise_bound(int slot, double bound) {
  const Step& step = steps_[slot];
  Waiting& waiting = waiting_[step.waiting];
  if (!(bound > waiting.bound)) return;
  waiting.bound = bound;
  if (step.is_open) by_bound_.key_grew(waiting_, step.waiting);
}

void Tree::take(int slot) {
  Step& step = steps_[slot];
  step.is_open = false;
  by_bound_.remove(waiting_, step.waiting);
  by_estimate_.remove(waiting_, step.waiting);
}

void Tree::put_back(int slot) {
  steps_[slot].is_open = true;
  push(steps_[slot].waiting);
}

void Tree::drop_detail(Waiting& waiting) {
  basis_bytes_ -= bytes_of(details_[waiting.detail].basis.get());
  details_[waiting.detail] = {};
  details_.give_back(waiting.detail);
  waiting.detail = -1;
}

void Tree::drop_waiting(Step& step) {
  if (step.waiting < 0) return;
  Waiting& waiting = waiting_[step.waiting];
  if (waiting.detail >= 0) {
    drop_detail(waiting);
  } else {
    store_.forget(waiting.place);
  }
  waiting_.give_back(step.waiting);
  step.waiting = -1;
}

void Tree::close(int slot) {
  if (steps_[slot].is_open) take(slot);
  drop_waiting(steps_[slot]);
  while (slot >= 0 && steps_[slot].children == 0 && steps_[slot].waiting < 0) {
    const int parent = steps_[slot].parent;
    release(slot);
    if (parent >= 0) --steps_[parent].children;
    slot = parent;
  }
}

void Tree::release(int slot) {
  Step& step = steps_[slot];
  if (step.more != nullptr) more_changes_ -= static_cast<std::int64_t>(step.more->changes.size());
  step = {};
  steps_.give_back(slot);
}

double Tree::best_bound() const {
  return by_bound_.size() == 0 ? kInf : waiting_[by_bound_.top()].bound;
}

std::vector<int> Tree::nodes_beyond(double cutoff) const {
  std::vector<int> worse;
  for (const int waiting : by_bound_.all()) {
    if (waiting_[waiting].bound >= cutoff) worse.push_back(waiting_[waiting].slot);
  }
  std::sort(worse.begin(), worse.end());
  return worse;
}

std::int64_t Tree::prune(double cutoff) {
  const std::vector<int> worse = nodes_beyond(cutoff);
  for (const int slot : worse) close(slot);
  return static_cast<std::int64_t>(worse.size());
}

std::vector<int> Tree::open_nodes() const {
  std::vector<int> slots;
  for (const int waiting : by_bound_.all()) slots.push_back(waiting_[waiting].slot);
  std::sort(slots.begin(), slots.end(), [&](int a, int b) { return steps_[a].id < steps_[b].id; });
  return slots;
}

Tree::More& Tree::more_of(Step& step) {
  if (step.more == nullptr) step.more = std::make_unique<More>();
  return *step.more;
}

NodeExtras& Tree::extras(int slot) {
  std::unique_ptr<NodeExtras>& extras = more_of(steps_[slot]).extras;
  if (extras == nullptr) extras = std::make_unique<NodeExtras>();
  return *extras;
}

/* Half of those that are open at most, the worst bounds first, of equal ones the oldest. */
std::vector<int> Tree::worst_with_details() const {
  std::vector<int> with_details;
  for (const int waiting : by_bound_.all()) {
    if (waiting_[waiting].detail >= 0) with_details.push_back(waiting);
  }
  const auto half = with_details.begin() + static_cast<std::ptrdiff_t>(with_details.size() / 2);
  std::partial_sort(with_details.begin(), half, with_details.end(), [&](int a, int b) {
    const Waiting &x = waiting_[a], &y = waiting_[b];
    return x.bound != y.bound ? x.bound > y.bound : x.id < y.id;
  });
  std::int64_t bytes = 0;
  auto last = with_details.begin();
  for (; last != half && bytes < kMostAtOnce; ++last)
    bytes += bytes_of(details_[waiting_[*last].detail].basis.get()) +
             static_cast<std::int64_t>(sizeof(NodeDetail));
  with_details.erase(last, with_details.end());
  return with_details;
}

NodeStore::State Tree::park(const NodeFileSettings& settings) {
  const double taken =
      static_cast<double>(details_.in_use()) * sizeof(NodeDetail) + static_cast<double>(basis_bytes_);
  if (!settings.on || taken <= settings.memory * 1048576 || details_.in_use() < kFewDetails)
    return NodeStore::State::done;
  const std::vector<int> parked = worst_with_details();
  store_.configure(settings);
  std::vector<const NodeDetail*> details;
  for (const int waiting : parked) details.push_back(&details_[waiting_[waiting].detail]);
  std::vector<NodeStore::Place> places(parked.size());
  std::size_t stored = 0;
  const NodeStore::State state = store_.put(details, places, &stored);
  for (std::size_t k = 0; k < stored; ++k) {
    Waiting& waiting = waiting_[parked[k]];
    drop_detail(waiting);
    waiting.place = places[k];
  }
  return state;
}

NodeStore::State Tree::fetch(int slot) {
  Waiting& waiting = waiting_[steps_[slot].waiting];
  if (waiting.detail >= 0) return NodeStore::State::done;
  NodeDetail detail;
  const NodeStore::State state = store_.take(waiting.place, &detail);
  if (state != NodeStore::State::done) return state;
  waiting.detail = details_.take();
  basis_bytes_ += bytes_of(detail.basis.get());
  details_[waiting.detail] = std::move(detail);
  return state;
}

double Tree::bytes() const {
  return static_cast<double>(steps_.in_use()) * sizeof(Step) +
         static_cast<double>(waiting_.in_use()) * (sizeof(Waiting) + sizeof(NodeDetail) + 2 * sizeof(int)) +
         static_cast<double>(more_changes_) * sizeof(NodeChange);
}

}  // namespace tovik::mip
