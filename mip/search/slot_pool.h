/* Objects in numbered slots, which stand still while others come and go.
 *
 * - Memory: by chunks, never copied; a freed slot is given out again before a new one is made. */
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace tovik::mip {

template <class Item>
class SlotPool {
 public:
  Item& operator[](int slot) {
    return (*chunks_[static_cast<std::size_t>(slot) / kChunk])[static_cast<std::size_t>(slot) % kChunk];
  }
  const Item& operator[](int slot) const {
    return (*chunks_[static_cast<std::size_t>(slot) / kChunk])[static_cast<std::size_t>(slot) % kChunk];
  }
  /* The item in it is as it was left: new ones are empty. */
  int take() {
    if (!free_.empty()) {
      const int slot = free_.back();
      free_.pop_back();
      return slot;
    }
    if (static_cast<std::size_t>(made_) == chunks_.size() * kChunk)
      chunks_.push_back(std::make_unique<Chunk>());
    return made_++;
  }
  void give_back(int slot) { free_.push_back(slot); }
  int in_use() const { return made_ - static_cast<int>(free_.size()); }

 private:
  static constexpr std::size_t kChunk = 256;
  using Chunk = std::array<Item, kChunk>;
  std::vector<std::unique_ptr<Chunk>> chunks_;
  std::vector<int> free_;
  int made_ = 0;
};

}  // namespace tovik::mip
