#include "model/network/incidence.h"

#include <algorithm>

#include "model/base/arrays.h"

namespace tovik::model {

Incidence::Incidence(int nodes, std::span<const int> tail, std::span<const int> head)
    : first_(static_cast<std::size_t>(nodes), kNone), ends_(2 * tail.size()) {
  for (std::size_t a = tail.size(); a-- > 0;) attach(static_cast<int>(a), tail[a], head[a]);
}

void Incidence::add_nodes(int count) {
  append_values<int>(first_, nullptr, count, kNone);
}

void Incidence::add_arcs(int count) {
  reserve_more(ends_, 2 * count);
  ends_.resize(ends_.size() + 2 * static_cast<std::size_t>(count));
}

void Incidence::attach(int arc, int tail, int head) noexcept {
  if (tail != head) link(2 * arc + 1, head);
  link(2 * arc, tail);
}

void Incidence::detach(int arc, int tail, int head) noexcept {
  unlink(2 * arc, tail);
  if (tail != head) unlink(2 * arc + 1, head);
}

void Incidence::link(int e, int node) noexcept {
  int& front = first(node);
  end(e) = {front, kNone};
  if (front != kNone) end(front).previous = e;
  front = e;
}

void Incidence::unlink(int e, int node) noexcept {
  const End links = end(e);
  if (links.previous == kNone) {
    first(node) = links.next;
  } else {
    end(links.previous).next = links.next;
  }
  if (links.next != kNone) end(links.next).previous = links.previous;
}

int Incidence::degree(int node) const noexcept {
  int count = 0;
  for (int e = first_[static_cast<std::size_t>(node)]; e != kNone;
       e = ends_[static_cast<std::size_t>(e)].next)
    ++count;
  return count;
}

std::span<const int> Incidence::arcs_of(int node) const {
  found_.clear();
  for (int e = first_[static_cast<std::size_t>(node)]; e != kNone;
       e = ends_[static_cast<std::size_t>(e)].next)
    found_.push_back(e / 2);
  if (!std::ranges::is_sorted(found_)) std::ranges::sort(found_);
  return found_;
}

}  // namespace tovik::model
