/* Workspace of the triangular solves: values by slot, the list of slots that may hold a nonzero, and a set of
 * slots that gives its members back in order. Between solves all of it is zero or empty. */
#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace tovik::lp::factor {

/* A set of slots as bits with a summary above them (bit w of the summary: word w is not empty), so that the
 * next member is found in a few steps whatever the size. In a triangular sweep it serves as the priority
 * queue of the slots still to be visited: a visit inserts only slots that lie ahead, and the order comes for
 * free, without a symbolic pass. */
class SlotSet {
 public:
  void resize(int slots) {
    words_.assign(slots / 64 + 1, 0);
    summary_.assign(slots / 4096 + 1, 0);
  }
  int capacity() const { return static_cast<int>(64 * words_.size()); }
  bool insert_new(int slot) {  // false when it was a member
    if ((words_[slot >> 6] >> (slot & 63) & 1) != 0) return false;
    insert(slot);
    return true;
  }
  void insert(int slot) {
    words_[slot >> 6] |= std::uint64_t{1} << (slot & 63);
    summary_[slot >> 12] |= std::uint64_t{1} << ((slot >> 6) & 63);
  }
  /* Takes out the smallest member; the set has none below `from`. Returns -1 when empty. */
  int take_first(int from) {
    const int groups = static_cast<int>(summary_.size());
    for (int group = from >> 12; group < groups; ++group) {
      if (summary_[group] == 0) continue;
      const int word = (group << 6) + std::countr_zero(summary_[group]);
      const std::uint64_t bits = words_[word];
      const int slot = (word << 6) + std::countr_zero(bits);
      words_[word] = bits & (bits - 1);
      if (words_[word] == 0) summary_[group] &= summary_[group] - 1;
      return slot;
    }
    return -1;
  }
  /* Takes out the largest member; the set has none above `from`. Returns -1 when empty. */
  int take_last(int from) {
    for (int group = from >> 12; group >= 0; --group) {
      if (summary_[group] == 0) continue;
      const int word = (group << 6) + 63 - std::countl_zero(summary_[group]);
      const int bit = 63 - std::countl_zero(words_[word]);
      words_[word] ^= std::uint64_t{1} << bit;
      if (words_[word] == 0) summary_[group] ^= std::uint64_t{1} << (word & 63);
      return (word << 6) + bit;
    }
    return -1;
  }
  void clear() {
    for (std::size_t group = 0; group < summary_.size(); ++group) {
      for (; summary_[group] != 0; summary_[group] &= summary_[group] - 1) {
        words_[(group << 6) + static_cast<std::size_t>(std::countr_zero(summary_[group]))] = 0;
      }
    }
  }

 private:
  std::vector<std::uint64_t> words_, summary_;
};

struct Workspace {
  std::vector<double> x;  // by slot
  std::vector<int> list;  // slots, first `count` valid
  int count = 0;
  SlotSet pending;

  void resize(int slots) {
    x.assign(slots, 0.0);
    list.resize(slots);
    count = 0;
    pending.resize(slots);
  }
};

}  // namespace tovik::lp::factor
