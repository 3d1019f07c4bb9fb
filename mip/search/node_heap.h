/* A binary heap of the items of a pool, the smallest key on top, of equal keys the newest item. An item knows its
 * place, so that it can leave from anywhere. Every routine gets the same pool.
 *
 * - Cost: O(log n) a push, removal or changed key; 4 bytes an item here and 4 in the item. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mip/search/slot_pool.h"

namespace tovik::mip {

template <class Item, double Item::*Key, int Item::*Place>
class NodeHeap {
 public:
  using Items = SlotPool<Item>;

  std::int64_t size() const { return static_cast<std::int64_t>(heap_.size()); }
  int top() const { return heap_.front(); }
  std::span<const int> all() const { return heap_; }  // in no order

  void push(Items& items, int item) {
    heap_.push_back(item);
    rise(items, heap_.size() - 1, item);
  }
  void remove(Items& items, int item) {
    const auto place = static_cast<std::size_t>(items[item].*Place);
    const int last = heap_.back();
    heap_.pop_back();
    if (last == item) return;
    settle(items, place, last);
  }
  /* Its key has grown. */
  void key_grew(Items& items, int item) { sink(items, static_cast<std::size_t>(items[item].*Place), item); }

 private:
  static bool before(const Items& items, int a, int b) {
    const Item &x = items[a], &y = items[b];
    return x.*Key != y.*Key ? x.*Key < y.*Key : x.id > y.id;
  }
  void put(Items& items, std::size_t place, int item) {
    heap_[place] = item;
    items[item].*Place = static_cast<int>(place);
  }
  /* Where the place is empty. */
  void settle(Items& items, std::size_t place, int item) {
    if (place > 0 && before(items, item, heap_[(place - 1) / 2])) {
      rise(items, place, item);
    } else {
      sink(items, place, item);
    }
  }
  void rise(Items& items, std::size_t place, int item) {
    for (; place > 0 && before(items, item, heap_[(place - 1) / 2]); place = (place - 1) / 2) {
      put(items, place, heap_[(place - 1) / 2]);
    }
    put(items, place, item);
  }
  void sink(Items& items, std::size_t place, int item) {
    for (;;) {
      std::size_t child = 2 * place + 1;
      if (child >= heap_.size()) break;
      if (child + 1 < heap_.size() && before(items, heap_[child + 1], heap_[child])) ++child;
      if (!before(items, heap_[child], item)) break;
      put(items, place, heap_[child]);
      place = child;
    }
    put(items, place, item);
  }

  std::vector<int> heap_;
};

}  // namespace tovik::mip
