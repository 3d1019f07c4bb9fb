/* Names of one kind in the order of their first appearance, and the index to find them by.
 * Each name is stored once, zero-terminated, in one block of text. The index is an open-addressing table
 * whose slots hold the first eight bytes of the name: a short name, the common case, is found or missed with
 * one cache line touched. */
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "fileio/record/large_pages.h"
#include "model/base/name_block.h"

namespace tovik::fileio {

class NameTable {
 public:
  static constexpr int kNone = -1;

  NameTable();
  int size() const { return static_cast<int>(begin_.size()) - 1; }
  std::string_view name(int id) const {
    const std::size_t i = static_cast<std::size_t>(id);
    return {text_.data() + begin_[i], static_cast<std::size_t>(begin_[i + 1] - begin_[i] - 1)};
  }
  const char* c_str(int id) const { return text_.data() + begin_[static_cast<std::size_t>(id)]; }
  int find(std::string_view name) const;  // kNone when absent
  /* What the index sees of a name. Whoever has several names to look up makes their keys and calls prefetch()
   * for each first: the lookups then find their places in the cache. */
  struct Key {
    std::uint64_t word;  // the first eight bytes, zero behind the end
    std::uint32_t hash;  // its lowest bit is set for names of up to eight bytes, which `word` holds whole
  };
  static Key key_of(std::string_view name);  // while there is a table
  void prefetch(const Key& key) const { __builtin_prefetch(&slots_[key.hash / 2 & (slots_.size() - 1)], 1); }
  /* The id of the name and whether it is new. */
  struct Interned {
    int id;
    bool added;
  };
  Interned intern(std::string_view name) { return intern(name, key_of(name)); }
  Interned intern(std::string_view name, const Key& key);
  void reserve(int count);
  /* For long lists: append() adds a name without looking whether it is there, index_appended() then makes
   * all names appended so far known to find() and intern(), several times faster than one by one. It returns
   * the ids of those that repeat an earlier name (they stay unknown to find). Do not intern in between. */
  void reserve_text(std::size_t names, std::size_t bytes);
  int append(std::string_view name);
  std::vector<int> index_appended();
  /* Takes back the last name, which must be indexed and no repeat. */
  void remove_last();
  /* Hands the texts over, in order; the table may only be destroyed afterwards. */
  model::NameBlock release();

 private:
  struct Slot {
    std::uint64_t word = 0;
    std::uint32_t hash = 0;
    std::int32_t id = kNone;
  };
  using Slots = std::vector<Slot, LargePages<Slot>>;
  bool holds(const Slot& slot, const Key& key, std::string_view name) const;
  std::size_t slot_of(std::string_view name, const Key& key) const;
  void grow(std::size_t slots);
  int add_text(std::string_view name);

  std::vector<char> text_;
  std::vector<std::size_t> begin_;  // size() + 1 entries
  Slots slots_;                     // a power of two; id kNone is empty
  int indexed_ = 0;                 // ids below it are indexed
};

}  // namespace tovik::fileio
