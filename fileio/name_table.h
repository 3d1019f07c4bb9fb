/* Names of one kind in the order of their first appearance, and the index to find them by.
 * Each name is stored once, zero-terminated, in one block of text; the index is an open-addressing table of
 * (hash, id) pairs, so looking a name up touches one cache line and compares the text once. */
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/name_block.h"

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
  /* The id of the name and whether it is new. */
  struct Interned {
    int id;
    bool added;
  };
  Interned intern(std::string_view name);
  void reserve(int count);
  /* Hands the texts over, in order; the table may only be destroyed afterwards. */
  model::NameBlock release();

 private:
  struct Slot {
    std::uint32_t hash;
    std::int32_t id;
  };
  std::size_t slot_of(std::string_view name, std::uint32_t hash) const;
  void grow(std::size_t slots);

  std::vector<char> text_;
  std::vector<std::size_t> begin_;  // size() + 1 entries
  std::vector<Slot> slots_;         // a power of two; id kNone is empty
};

}  // namespace tovik::fileio
