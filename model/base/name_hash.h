/* The hash of names, keyed by numbers that each process draws afresh: a file cannot hold names that were chosen to fall
 * into one place of a table. Nothing that a user sees may depend on the order in which a table holds its names.
 *
 * - Cost: a multiplication of 64 by 64 bits for each eight bytes.
 * - Threads: safe; the numbers are drawn once, by the first thread that asks. */
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tovik::model {

struct HashKey {
  std::atomic<std::uint64_t> addend{0}, multiplier{0};  // multiplier 0: not yet drawn
};
extern constinit HashKey hash_key;
void draw_hash_key() noexcept;

/* Makes sure that the numbers are there; cheap after the first time. */
inline void ensure_hash_key() {
  if (hash_key.multiplier.load(std::memory_order_acquire) == 0) [[unlikely]]
    draw_hash_key();
}

/* One word into a hash: the upper half of the product folded onto the lower one. Behind ensure_hash_key(): here, in the
 * innermost loops of readers, nobody asks. */
inline std::uint64_t mix_hash(std::uint64_t h, std::uint64_t word) {
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(h ^ word ^ hash_key.addend.load(std::memory_order_relaxed)) *
                          hash_key.multiplier.load(std::memory_order_relaxed);
  return static_cast<std::uint64_t>(product >> 64) ^ static_cast<std::uint64_t>(product);
}

inline std::uint64_t hash_of(std::string_view name) {
  ensure_hash_key();
  const char* p = name.data();
  std::size_t left = name.size();
  std::uint64_t h = left, word = 0;
  for (; left >= sizeof word; left -= sizeof word, p += sizeof word) {
    std::memcpy(&word, p, sizeof word);
    h = mix_hash(h, word);
  }
  word = 0;
  if (left > 0) std::memcpy(&word, p, left);
  return mix_hash(h, word);
}

}  // namespace tovik::model
