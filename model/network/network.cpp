#include "model/network/network.h"

#include <algorithm>
#include <utility>

#include "model/base/arrays.h"
#include "model/base/named_vectors.h"
#include "model/store/model.h"

namespace tovik::model {

namespace {

void fold_infinity(std::span<double> bounds) noexcept {
  for (double& bound : bounds) bound = std::clamp(bound, -kInfinity, kInfinity);
}

}  // namespace

Network::Network(NetworkData&& data)
    : objective_sense_(data.objective_sense),
      supply_(std::move(data.supply)),
      tail_(std::move(data.tail)),
      head_(std::move(data.head)),
      cost_(std::move(data.cost)),
      lower_(std::move(data.lower)),
      upper_(std::move(data.upper)) {
  fold_infinity(lower_);
  fold_infinity(upper_);
  node_names_.adopt(std::move(data.node_names));
  arc_names_.adopt(std::move(data.arc_names));
}

int Network::num_arcs() const {
  const Network& network = node_deletions_.pending() ? compacted() : *this;
  return static_cast<int>(network.tail_.size()) - arc_deletions_.count();
}

const Incidence& Network::incidence() const {
  compacted();
  if (!incidence_) incidence_ = std::make_unique<Incidence>(num_nodes(), tail_, head_);
  return *incidence_;
}

void Network::add_nodes(int count, const double* supply, const char* const* names) {
  const int present = change().num_nodes();
  reserve_more(supply_, count);
  if (incidence_) incidence_->add_nodes(count);
  try {
    node_names_.append(present, count, names);
  } catch (...) {
    incidence_.reset();
    throw;
  }
  append_values(supply_, supply, count, 0.0);
}

void Network::add_arcs(const NewArcs& arcs) {
  const int present = change().num_arcs();
  reserve_more(tail_, arcs.count);
  reserve_more(head_, arcs.count);
  for (auto* values : {&cost_, &lower_, &upper_}) reserve_more(*values, arcs.count);
  if (incidence_) incidence_->add_arcs(arcs.count);
  try {
    arc_names_.append(present, arcs.count, arcs.names);
  } catch (...) {
    incidence_.reset();
    throw;
  }
  append_values(tail_, arcs.tail, arcs.count, 0);
  append_values(head_, arcs.head, arcs.count, 0);
  append_values(cost_, arcs.cost, arcs.count, 0.0);
  append_values(lower_, arcs.lower, arcs.count, 0.0);
  append_values(upper_, arcs.upper, arcs.count, kInfinity);
  fold_infinity(std::span(lower_).subspan(at(present)));
  fold_infinity(std::span(upper_).subspan(at(present)));
  if (!incidence_) return;
  for (int a = present; a < present + arcs.count; ++a) incidence_->attach(a, tail_[at(a)], head_[at(a)]);
}

/* Which arcs go with the nodes is found out by compact(), which must not need memory. */
void Network::begin_node_deletions() {
  if (node_deletions_.pending()) return;
  arc_deletions_.begin(static_cast<int>(tail_.size()));
  node_deletions_.begin(static_cast<int>(supply_.size()));
}

void Network::delete_nodes(int first, int last) {
  begin_node_deletions();
  node_deletions_.mark(first, last);
}

void Network::delete_arcs(int first, int last) {
  const int arcs = num_arcs();
  if (last == arcs - 1 && !arc_deletions_.pending()) {
    truncate_arcs(first);
    return;
  }
  arc_deletions_.begin(arcs);
  arc_deletions_.mark(first, last);
}

void Network::delete_marked_nodes(std::span<const int> marks) {
  compacted();
  begin_node_deletions();
  for (std::size_t k = 0; k < marks.size(); ++k) {
    if (marks[k] == 1) node_deletions_.mark_stored(static_cast<int>(k));
  }
}

void Network::delete_marked_arcs(std::span<const int> marks) {
  compacted();
  arc_deletions_.begin(num_arcs());
  for (std::size_t k = 0; k < marks.size(); ++k) {
    if (marks[k] == 1) arc_deletions_.mark_stored(static_cast<int>(k));
  }
}

void Network::truncate_arcs(int arcs) noexcept {
  if (incidence_) {
    for (int a = num_arcs(); a-- > arcs;) incidence_->detach(a, tail_[at(a)], head_[at(a)]);
    incidence_->truncate_arcs(arcs);
  }
  for (auto* ends : {&tail_, &head_}) ends->resize(at(arcs));
  for (auto* values : {&cost_, &lower_, &upper_}) values->resize(at(arcs));
  if (!arc_names_.empty()) arc_names_.truncate(arcs);
}

void Network::compact() noexcept {
  incidence_.reset();
  if (node_deletions_.pending()) {
    const auto gone = [&](int node) { return node_deletions_.is_marked(node); };
    for (std::size_t a = 0; a < tail_.size(); ++a) {
      const int arc = static_cast<int>(a);
      if ((gone(tail_[a]) || gone(head_[a])) && !arc_deletions_.is_marked(arc))
        arc_deletions_.mark_stored(arc);
    }
  }
  if (arc_deletions_.pending()) compact_arcs();
  if (node_deletions_.pending()) {
    const std::span<const int> renumber = node_deletions_.renumbering();
    for (auto* ends : {&tail_, &head_}) {
      for (int& node : *ends) node = renumber[at(node)];
    }
    compact_values(supply_, renumber);
    node_names_.renumber(renumber);
  }
  node_deletions_.clear();
  arc_deletions_.clear();
}

void Network::compact_arcs() noexcept {
  const std::span<const int> renumber = arc_deletions_.renumbering();
  for (auto* ends : {&tail_, &head_}) compact_values(*ends, renumber);
  for (auto* values : {&cost_, &lower_, &upper_}) compact_values(*values, renumber);
  arc_names_.renumber(renumber);
}

void Network::set_ends(int arc, int tail, int head) noexcept {
  compacted();
  const std::size_t a = at(arc);
  if (incidence_) incidence_->detach(arc, tail_[a], head_[a]);
  tail_[a] = tail;
  head_[a] = head;
  if (incidence_) incidence_->attach(arc, tail, head);
}

void Network::rename_nodes(int count, const int* nodes, const char* const* names) {
  const int present = change().num_nodes();
  node_names_.rename(present, count, nodes, names);
}

void Network::rename_arcs(int count, const int* arcs, const char* const* names) {
  const int present = change().num_arcs();
  arc_names_.rename(present, count, arcs, names);
}

void Network::delete_names() noexcept {
  node_names_.clear();
  arc_names_.clear();
}

}  // namespace tovik::model
