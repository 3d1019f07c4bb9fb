#include "fileio/mps/row_index.h"

#include <algorithm>

namespace tovik::fileio::mps {

/* The lowest byte is 0, which no name of up to eight bytes can have. */
std::uint64_t RowIndex::key_of_long(const Field& name) {
  std::uint64_t h = name.length;
  const char* p = name.text;
  std::uint32_t left = name.length;
  for (; left >= 8; left -= 8, p += 8) {
    h = model::mix_hash(h, detail::load_word(p));
  }
  if (left > 0) h = model::mix_hash(h, detail::low_bytes(detail::load_word(p), left));
  return (h << 8) | (std::uint64_t{1} << 63);
}

std::vector<std::int32_t> RowIndex::build(const std::vector<std::uint64_t>& row_keys,
                                          const std::vector<std::uint64_t>& free_row_keys) {
  constexpr std::size_t kAhead = 16;  // buckets are fetched this many rows ahead of their turn
  const std::size_t rows = row_keys.size(), all = rows + free_row_keys.size();
  const std::size_t size =
      std::max<std::size_t>(2, std::bit_ceil((all + all / 2 + Bucket::kPlaces - 1) / Bucket::kPlaces));
  buckets_.assign(size, Bucket{});
  shift_ = 64u - static_cast<unsigned>(std::countr_zero(size));
  const auto key_at = [&](std::size_t k) { return k < rows ? row_keys[k] : free_row_keys[k - rows]; };
  std::vector<std::int32_t> repeats;
  for (std::size_t k = 0; k < all; ++k) {
    if (k + kAhead < all) __builtin_prefetch(&buckets_[bucket_of(key_at(k + kAhead))], 1);
    const auto id = static_cast<std::int32_t>(k < rows ? k : rows - 1 - k);
    if (find(key_at(k), text_of(id))) {
      repeats.push_back(id);
    } else {
      insert(key_at(k), id);
    }
  }
  return repeats;
}

void RowIndex::insert(std::uint64_t key, std::int32_t id) {
  std::size_t i = bucket_of(key);
  while (buckets_[i].full()) i = (i + 1) & (buckets_.size() - 1);
  Bucket& bucket = buckets_[i];
  unsigned place = 0;
  while (bucket.key[place] != 0) ++place;
  bucket.key[place] = key;
  bucket.id[place] = id;
}

}  // namespace tovik::fileio::mps
