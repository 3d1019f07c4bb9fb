#include "model/base/vector_file.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <numeric>
#include <utility>

namespace tovik::model {

namespace {

constexpr int kFree = -1;
constexpr int kErased = -2;

std::size_t hash(int index) {
  std::uint64_t h = static_cast<std::uint32_t>(index);
  h *= 0x9e3779b97f4a7c15ULL;
  return static_cast<std::size_t>(h >> 20);
}

/* Room for `more` elements with geometric growth, so that the following insertions cannot fail. */
template <class T>
void reserve_more(std::vector<T>& v, std::size_t more) {
  const std::size_t needed = v.size() + more;
  if (needed > v.capacity()) v.reserve(std::max(needed, v.capacity() + v.capacity() / 2));
}

}  // namespace

VectorFile::VectorFile(std::vector<std::int64_t>&& start, std::vector<int>&& index,
                       std::vector<double>&& value) {
  const std::size_t vectors = start.empty() ? 0 : start.size() - 1;
  count_.resize(vectors);
  for (std::size_t k = 0; k < vectors; ++k) count_[k] = static_cast<int>(start[k + 1] - start[k]);
  capacity_ = count_;
  start_ = std::move(start);
  start_.resize(vectors);
  index_ = std::move(index);
  value_ = std::move(value);
  entries_ = static_cast<std::int64_t>(index_.size());
}

VectorFile::VectorFile(const VectorFile& other)
    : start_(other.start_.size()), count_(other.count_), capacity_(other.count_), entries_(other.entries_) {
  index_.reserve(static_cast<std::size_t>(entries_));
  value_.reserve(static_cast<std::size_t>(entries_));
  for (int k = 0; k < other.size(); ++k) {
    const VectorView v = other.at(k);
    start_[static_cast<std::size_t>(k)] = static_cast<std::int64_t>(index_.size());
    index_.insert(index_.end(), v.index, v.index + v.count);
    value_.insert(value_.end(), v.value, v.value + v.count);
  }
}

int VectorFile::find(int k, int index) const noexcept {
  const VectorView v = at(k);
  if (v.count == 0) return -1;
  if (v.index[v.count - 1] == index) return v.count - 1;
  if (v.count > kShort) {
    const Lookup* lookup = lookup_of(k);
    if (lookup == nullptr) lookup = try_build_lookup(k);
    if (lookup != nullptr) return lookup->slots[slot_of(*lookup, k, index)];
  }
  const int* const end = v.index + v.count;
  const int* const found = std::find(v.index, end, index);
  return found == end ? -1 : static_cast<int>(found - v.index);
}

VectorFile::Lookup* VectorFile::lookup_of(int k) const noexcept {
  if (lookups_.empty()) return nullptr;
  const auto found = lookups_.find(k);
  return found == lookups_.end() ? nullptr : &found->second;
}

/* Null when there is no memory for it; the search then scans. */
VectorFile::Lookup* VectorFile::try_build_lookup(int k) const noexcept {
  try {
    const VectorView v = at(k);
    Lookup fresh;
    std::size_t slots = 128;
    while (slots < 2 * static_cast<std::size_t>(v.count)) slots *= 2;
    fresh.slots.assign(slots, kFree);
    const std::size_t mask = slots - 1;
    for (int p = 0; p < v.count; ++p) {
      std::size_t s = hash(v.index[p]) & mask;
      while (fresh.slots[s] != kFree) s = (s + 1) & mask;
      fresh.slots[s] = p;
    }
    fresh.used = static_cast<std::size_t>(v.count);
    return &lookups_.insert_or_assign(k, std::move(fresh)).first->second;
  } catch (...) {
    return nullptr;
  }
}

/* The slot that holds the position of `index`, or the free one that ends the search. */
std::size_t VectorFile::slot_of(const Lookup& lookup, int k, int index) const noexcept {
  const int* const indices = index_.data() + begin(k);
  const std::size_t mask = lookup.slots.size() - 1;
  std::size_t s = hash(index) & mask;
  while (lookup.slots[s] != kFree && (lookup.slots[s] == kErased || indices[lookup.slots[s]] != index))
    s = (s + 1) & mask;
  return s;
}

void VectorFile::enter_lookup(int k, int position) noexcept {
  Lookup* const lookup = lookup_of(k);
  if (lookup == nullptr) return;
  if (4 * (lookup->used + 1) > 3 * lookup->slots.size()) {
    drop_lookup(k);  // the next search builds a larger one
    return;
  }
  lookup->slots[slot_of(*lookup, k, index_[begin(k) + static_cast<std::size_t>(position)])] = position;
  ++lookup->used;
}

void VectorFile::grow_vectors(std::size_t more) {
  reserve_more(start_, more);
  reserve_more(count_, more);
  reserve_more(capacity_, more);
}

void VectorFile::grow_entries(std::size_t more) {
  reserve_more(index_, more);
  reserve_more(value_, more);
}

void VectorFile::append_empty(int vectors) {
  const auto more = static_cast<std::size_t>(vectors);
  grow_vectors(more);
  start_.resize(start_.size() + more, static_cast<std::int64_t>(index_.size()));
  count_.resize(count_.size() + more, 0);
  capacity_.resize(capacity_.size() + more, 0);
}

void VectorFile::append(VectorView entries) {
  grow_vectors(1);
  grow_entries(static_cast<std::size_t>(entries.count));
  start_.push_back(static_cast<std::int64_t>(index_.size()));
  count_.push_back(entries.count);
  capacity_.push_back(entries.count);
  index_.insert(index_.end(), entries.index, entries.index + entries.count);
  value_.insert(value_.end(), entries.value, entries.value + entries.count);
  entries_ += entries.count;
}

void VectorFile::reserve_entries(int k, int extra) {
  const auto s = static_cast<std::size_t>(k);
  if (capacity_[s] - count_[s] < extra) relocate(k, extra);
}

void VectorFile::relocate(int k, int extra) {
  const auto s = static_cast<std::size_t>(k);
  const int wanted = static_cast<int>(
      std::min<std::int64_t>(std::int64_t{count_[s]} + std::max(extra, count_[s] / 2 + 2), INT_MAX));
  const bool at_end = start_[s] + capacity_[s] == static_cast<std::int64_t>(index_.size());
  if (!at_end && abandoned_ > static_cast<std::int64_t>(index_.size() / 2) + 1024) rewrite();
  const bool now_at_end = start_[s] + capacity_[s] == static_cast<std::int64_t>(index_.size());
  const std::size_t more = static_cast<std::size_t>(now_at_end ? wanted - capacity_[s] : wanted);
  grow_entries(more);
  index_.resize(index_.size() + more);
  value_.resize(value_.size() + more);
  if (!now_at_end) {
    const std::size_t from = begin(k), to = index_.size() - more;
    std::copy_n(index_.data() + from, count_[s], index_.data() + to);
    std::copy_n(value_.data() + from, count_[s], value_.data() + to);
    abandoned_ += capacity_[s];
    start_[s] = static_cast<std::int64_t>(to);
  }
  capacity_[s] = wanted;
}

/* Writes the vectors anew in their order, each with its room: room that was asked for stays. */
void VectorFile::rewrite() {
  std::vector<std::int64_t> start(start_.size());
  std::int64_t length = 0;
  for (std::size_t k = 0; k < start.size(); ++k) {
    start[k] = length;
    length += capacity_[k];
  }
  std::vector<int> index(static_cast<std::size_t>(length));
  std::vector<double> value(static_cast<std::size_t>(length));
  for (std::size_t k = 0; k < start.size(); ++k) {
    std::copy_n(index_.data() + start_[k], count_[k], index.data() + start[k]);
    std::copy_n(value_.data() + start_[k], count_[k], value.data() + start[k]);
  }
  start_ = std::move(start);
  index_ = std::move(index);
  value_ = std::move(value);
  abandoned_ = 0;
}

void VectorFile::push(int k, int index, double value) {
  reserve_entries(k, 1);
  const auto s = static_cast<std::size_t>(k);
  const std::size_t at = begin(k) + static_cast<std::size_t>(count_[s]);
  index_[at] = index;
  value_[at] = value;
  ++count_[s];
  ++entries_;
  enter_lookup(k, count_[s] - 1);
}

void VectorFile::remove(int k, int position) noexcept {
  const auto s = static_cast<std::size_t>(k);
  const std::size_t first = begin(k);
  const std::size_t at = first + static_cast<std::size_t>(position);
  const std::size_t last = first + static_cast<std::size_t>(count_[s] - 1);
  if (Lookup* const lookup = lookup_of(k)) {
    lookup->slots[slot_of(*lookup, k, index_[at])] = kErased;
    if (at != last) lookup->slots[slot_of(*lookup, k, index_[last])] = position;
  }
  index_[at] = index_[last];
  value_[at] = value_[last];
  --count_[s];
  --entries_;
}

void VectorFile::sort(int k) {
  const std::size_t first = begin(k);
  const auto n = static_cast<std::size_t>(count(k));
  int* const index = index_.data() + first;
  double* const value = value_.data() + first;
  if (std::is_sorted(index, index + n)) return;
  std::vector<std::pair<int, double>> pairs(n);
  for (std::size_t p = 0; p < n; ++p) pairs[p] = {index[p], value[p]};
  std::sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  drop_lookup(k);
  for (std::size_t p = 0; p < n; ++p) {
    index[p] = pairs[p].first;
    value[p] = pairs[p].second;
  }
}

void VectorFile::truncate(int vectors) noexcept {
  while (size() > vectors) {
    const int k = size() - 1;
    if (!lookups_.empty()) drop_lookup(k);
    entries_ -= count_.back();
    const std::int64_t end = start_.back() + capacity_.back();
    if (end == static_cast<std::int64_t>(index_.size())) {
      index_.resize(static_cast<std::size_t>(start_.back()));
      value_.resize(static_cast<std::size_t>(start_.back()));
    } else {
      abandoned_ += capacity_.back();
    }
    start_.pop_back();
    count_.pop_back();
    capacity_.pop_back();
  }
}

/* A vector that became much shorter keeps room in proportion to its length only. */
void VectorFile::release_space(int k) noexcept {
  const auto s = static_cast<std::size_t>(k);
  const int enough = count_[s] + count_[s] / 2 + 2;
  if (capacity_[s] / 2 <= enough) return;
  abandoned_ += capacity_[s] - enough;
  capacity_[s] = enough;
}

void VectorFile::keep_vectors(std::span<const int> renumber) noexcept {
  lookups_.clear();
  std::size_t kept = 0;
  for (std::size_t k = 0; k < start_.size(); ++k) {
    if (renumber[k] < 0) {
      entries_ -= count_[k];
      abandoned_ += capacity_[k];
      continue;
    }
    start_[kept] = start_[k];
    count_[kept] = count_[k];
    capacity_[kept] = capacity_[k];
    ++kept;
  }
  start_.resize(kept);
  count_.resize(kept);
  capacity_.resize(kept);
}

void VectorFile::renumber_indices(std::span<const int> renumber) noexcept {
  lookups_.clear();
  for (int k = 0; k < size(); ++k) {
    int* const index = index_.data() + begin(k);
    double* const value = value_.data() + begin(k);
    const int n = count(k);
    int kept = 0;
    for (int p = 0; p < n; ++p) {
      const int now = renumber[static_cast<std::size_t>(index[p])];
      if (now < 0) continue;
      index[kept] = now;
      value[kept] = value[p];
      ++kept;
    }
    entries_ -= n - kept;
    count_[static_cast<std::size_t>(k)] = kept;
    release_space(k);
  }
}

bool VectorFile::remove_small(double eps) noexcept {
  const std::int64_t before = entries_;
  for (int k = 0; k < size(); ++k) {
    for (int p = count(k); p-- > 0;) {
      if (std::fabs(value_[begin(k) + static_cast<std::size_t>(p)]) < eps) remove(k, p);
    }
  }
  return entries_ != before;
}

}  // namespace tovik::model
