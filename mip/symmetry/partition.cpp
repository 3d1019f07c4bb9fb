#include "mip/symmetry/partition.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tovik::mip {
namespace {

/* The finalizer of splitmix64. */
std::uint64_t mixed(std::uint64_t v) {
  v += 0x9e3779b97f4a7c15U;
  v = (v ^ (v >> 30)) * 0xbf58476d1ce4e5b9U;
  v = (v ^ (v >> 27)) * 0x94d049bb133111ebU;
  return v ^ (v >> 31);
}

std::uint64_t mixed(int a, std::uint64_t b) {
  return mixed(mixed(static_cast<std::uint64_t>(a)) ^ b);
}

}  // namespace

Partition::Partition(const ColouredGraph& graph)
    : graph_(graph),
      order_(static_cast<std::size_t>(graph.vertices)),
      place_(order_.size()),
      cell_(order_.size()),
      length_(order_.size()),
      is_queued_(order_.size()),
      is_touched_(order_.size()),
      sight_(order_.size()) {
  std::iota(order_.begin(), order_.end(), 0);
  std::stable_sort(order_.begin(), order_.end(),
                   [&](int a, int b) { return graph.colour[a] < graph.colour[b]; });
  int first = 0;
  for (int k = 0; k < graph.vertices; ++k) {
    const int v = order_[k];
    if (k > 0 && graph.colour[v] != graph.colour[order_[k - 1]]) first = k;
    place_[v] = k;
    cell_[v] = first;
    ++length_[first];
  }
  for (int k = 0; k < graph.vertices; k += length_[k]) queue(k);
  ticks_ += graph.vertices;
}

void Partition::queue(int first) {
  if (is_queued_[first] != 0) return;
  is_queued_[first] = 1;
  queue_.push_back(first);
}

/* The part from `at` on. */
void Partition::cut_off(int first, int at) {
  const int end = first + length_[first];
  splits_.push_back({first, at});
  length_[at] = end - at;
  length_[first] = at - first;
  for (int k = at; k < end; ++k) cell_[order_[k]] = at;
}

void Partition::individualize(int vertex) {
  const int first = cell_[vertex];
  const int other = order_[first];
  std::swap(order_[first], order_[place_[vertex]]);
  std::swap(place_[other], place_[vertex]);
  if (length_[first] > 1) {
    ticks_ += length_[first];
    cut_off(first, first + 1);
  }
  queue(first);
}

void Partition::backtrack(std::size_t splits) {
  while (splits_.size() > splits) {
    const Split last = splits_.back();
    splits_.pop_back();
    for (const int v : cell(last.at)) cell_[v] = last.from;
    ticks_ += length_[last.at];
    length_[last.from] += length_[last.at];
    length_[last.at] = 0;
  }
}

bool Partition::note(std::uint64_t event) {
  if (compares_) return trace_at_ < trace_.size() && trace_[trace_at_++] == event;
  trace_.push_back(event);
  return true;
}

void Partition::look_from(int splitter) {
  seen_by_single_ = 0;
  for (const int v : cell(splitter)) {
    for (int k = graph_.start[v]; k < graph_.start[v + 1]; ++k) {
      const int u = graph_.neighbour[k];
      const auto edge = static_cast<std::uint64_t>(graph_.edge_colour[k]);
      if (length_[cell_[u]] == 1) {
        seen_by_single_ += mixed(cell_[u], edge);
        continue;
      }
      sight_[u] += mixed(edge);
      if (is_touched_[u] != 0) continue;
      is_touched_[u] = 1;
      touched_.push_back(u);
    }
    ticks_ += 1 + graph_.degree(v);
  }
}

/* The vertices touched_[begin, end) are of one cell, by what they see. The parts: those that see nothing, then by sight. */
bool Partition::split_cell(std::size_t begin, std::size_t end) {
  const int first = cell_[touched_[begin]], length = length_[first];
  const bool was_queued = is_queued_[first] != 0;
  int at = first + length;
  for (std::size_t k = end; k-- > begin;) {
    const int u = touched_[k], other = order_[--at];
    std::swap(order_[at], order_[place_[u]]);
    std::swap(place_[u], place_[other]);
  }
  bool same = note(mixed(first, static_cast<std::uint64_t>(end - begin)));
  std::vector<int> parts{first};
  for (std::size_t k = begin; k < end; ++k, ++at) {
    if (k > begin && sight_[touched_[k]] == sight_[touched_[k - 1]]) continue;
    same = same && note(mixed(at, sight_[touched_[k]]));
    if (at > first) {
      cut_off(parts.back(), at);
      parts.push_back(at);
    }
  }
  ticks_ += static_cast<std::int64_t>(end - begin);
  int largest = first;
  for (const int part : parts) {
    if (length_[part] > length_[largest]) largest = part;
  }
  for (const int part : parts) {
    if (was_queued || part != largest) queue(part);
  }
  return same;
}

bool Partition::split_touched() {
  std::sort(touched_.begin(), touched_.end(), [&](int a, int b) {
    if (cell_[a] != cell_[b]) return cell_[a] < cell_[b];
    return sight_[a] != sight_[b] ? sight_[a] < sight_[b] : a < b;
  });
  bool same = true;
  for (std::size_t begin = 0; begin < touched_.size() && same;) {
    std::size_t end = begin + 1;
    while (end < touched_.size() && cell_[touched_[end]] == cell_[touched_[begin]]) ++end;
    same = split_cell(begin, end);
    begin = end;
  }
  for (const int u : touched_) {
    is_touched_[u] = 0;
    sight_[u] = 0;
  }
  touched_.clear();
  return same;
}

bool Partition::refine() {
  while (next_queued_ < queue_.size()) {
    const int splitter = queue_[next_queued_++];
    is_queued_[splitter] = 0;
    look_from(splitter);
    // Both, so that nothing is left touched.
    const bool same = note(mixed(splitter, seen_by_single_));
    if (!split_touched() || !same) {
      forget();
      return false;
    }
  }
  forget();
  return true;
}

void Partition::forget() {
  for (; next_queued_ < queue_.size(); ++next_queued_) is_queued_[queue_[next_queued_]] = 0;
  queue_.clear();
  next_queued_ = 0;
}

}  // namespace tovik::mip
