/* The names of one family (columns or rows) of a model, and the index that finds a name's position.
 *
 * - Holds: one character block with all texts and one offset per name; either no names at all or one for each
 *   item.
 * - Index: open addressing over positions, built by the first find() and then kept up to date by every
 *   change. It is a derived structure: when memory for it is short it is dropped and the change goes on.
 *   Equal names are allowed; find() then gives the lowest position.
 * - Generated names: when only some items of a family are given names, the others get the letter and their
 *   number (x7), or the letter and the next free number where that name is taken.
 * - Cost: append, rename, find: amortised proportional to the length of the names.
 * - Errors: bad_alloc; the table is then as before the call. */
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "model/base/name_block.h"

namespace tovik::model {

class NameTable {
 public:
  explicit NameTable(char letter) : letter_(letter) {}

  bool empty() const { return block_.empty(); }
  int size() const { return static_cast<int>(block_.size()); }
  const char* name(int k) const { return block_.name(static_cast<std::size_t>(k)); }
  std::size_t length(int k) const { return std::string_view(name(k)).size(); }

  /* Lowest position with this name, or -1. The first call builds the index. */
  int find(std::string_view name) const;

  /* Takes over a block that holds a name for every item, or is empty. */
  void adopt(NameBlock&& block) noexcept;

  /* Makes a table of `present` names into one of present + count. names may be null, and so may its entries:
   * those are generated. A table without names stays without when names is null; otherwise the first `present`
   * are generated too. */
  void append(int present, int count, const char* const* names);

  /* Gives its block away and is empty then. */
  NameBlock release() noexcept;

  /* Cuts back to the first `count` names. */
  void truncate(int count) noexcept;
  void clear() noexcept;

  /* Renames the listed positions of `present` items; a later entry for the same position wins. In a table
   * without names the other items get generated ones. */
  void rename(int present, int count, const int* positions, const char* const* names);

  /* Drops the names with renumber[k] < 0 and moves the others to renumber[k] (ascending). */
  void renumber(std::span<const int> renumber) noexcept;

 private:
  static constexpr int kFree = -1;
  static constexpr int kErased = -2;

  void append(int present, int count, const char* const* names, bool always);
  void rename_present(int count, const int* positions, const char* const* names);
  void add_generated(int position);
  bool mostly_waste() const { return waste_ > block_.text.size() / 2 + 1024; }
  void compact();
  void build_index() const;
  void insert(int position) const;
  void insert_if_indexed(int position) noexcept;
  void erase_if_indexed(int position) noexcept;
  void drop_index() const noexcept;
  std::string_view view(int k) const { return name(k); }

  char letter_;
  NameBlock block_;
  std::size_t waste_ = 0;    // bytes of text that no offset refers to
  long next_generated_ = 0;  // no generated name beyond the item's own number is free below this number
  mutable std::vector<int> slots_;      // empty: not built
  mutable std::size_t used_slots_ = 0;  // occupied or erased
  mutable bool duplicates_ = false;     // some position is not in the index because a lower one has its name
};

/* The names of `count` items in one block of exactly the needed size; null entries are generated with the
 * letter. Empty when names is null. */
NameBlock collect_names(char letter, int count, const char* const* names);

}  // namespace tovik::model
