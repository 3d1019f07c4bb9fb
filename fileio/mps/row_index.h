/* The index from row names to rows, made once when all rows are known and then asked once or twice for every
 * line of the matrix.
 *
 * - Holds: buckets of one cache line with four rows each, a power of two of them, at most half full on
 *   average. A row whose bucket is full stands in a bucket behind it. For names of up to eight bytes the key
 *   is the name itself, so that a look-up touches one line of memory, no text, and rarely branches twice.
 * - Ids: 0, 1 .. the rows of the model; -1, -2 .. the free rows.
 * - Fields: what is asked for must have kScanSlack readable bytes behind it. */
#pragma once

#include <cstdint>
#include <vector>

#include "fileio/mps/fields.h"
#include "fileio/record/name_table.h"
#include "model/base/name_hash.h"

namespace tovik::fileio::mps {

class RowIndex {
 public:
  struct Found {
    std::int32_t id = 0;
    std::int32_t* stamp = nullptr;  // the last column that named the row, -1 before; null: no such row
    explicit operator bool() const { return stamp != nullptr; }
  };

  RowIndex(const NameTable& rows, const NameTable& free_rows) : rows_(rows), free_rows_(free_rows) {}

  static std::uint64_t key_of(const Field& name) { return name.length <= 8 ? name.word : key_of_long(name); }
  /* Indexes all rows by the keys of their names, in the order of their ids; returns the ids of those that
   * repeat an earlier name. */
  std::vector<std::int32_t> build(const std::vector<std::uint64_t>& row_keys,
                                  const std::vector<std::uint64_t>& free_row_keys);
  [[gnu::always_inline]] void prefetch(const Field& name) const {
    if (name.length <= 8) __builtin_prefetch(&buckets_[bucket_of(name.word)], 1);
  }
  Found find(const Field& name) {
    const std::uint64_t key = key_of(name);
    return key != 0 ? find(key, name.view()) : Found{};  // 0: an empty field
  }
  std::string_view text_of(std::int32_t id) const {
    return id >= 0 ? rows_.name(id) : free_rows_.name(-1 - id);
  }

 private:
  struct alignas(64) Bucket {
    static constexpr unsigned kPlaces = 4;
    std::uint64_t key[kPlaces] = {};  // 0: an empty place; they fill from the first on
    std::int32_t id[kPlaces] = {};
    std::int32_t stamp[kPlaces] = {-1, -1, -1, -1};
    /* The places with this key, a bit each. */
    unsigned places(std::uint64_t wanted) const {
      return unsigned{key[0] == wanted} | unsigned{key[1] == wanted} << 1 | unsigned{key[2] == wanted} << 2 |
             unsigned{key[3] == wanted} << 3;
    }
    bool full() const { return key[kPlaces - 1] != 0; }
  };

  static std::uint64_t key_of_long(const Field& name);
  std::size_t bucket_of(std::uint64_t key) const {
    return static_cast<std::size_t>(model::mix_hash(0, key) >> shift_);
  }
  Found find(std::uint64_t key, std::string_view name) {
    for (std::size_t i = bucket_of(key);; i = (i + 1) & (buckets_.size() - 1)) {
      Bucket& bucket = buckets_[i];
      for (unsigned places = bucket.places(key); places != 0; places &= places - 1) {
        const int place = std::countr_zero(places);
        if (name.size() <= 8 || text_of(bucket.id[place]) == name)
          return {bucket.id[place], &bucket.stamp[place]};
      }
      if (!bucket.full()) return {};
    }
  }
  void insert(std::uint64_t key, std::int32_t id);

  const NameTable& rows_;  // their making has drawn the key of the hash
  const NameTable& free_rows_;
  std::vector<Bucket> buckets_;
  unsigned shift_ = 0;
};

}  // namespace tovik::fileio::mps
