/* The rows of an MPS file: the sections ROWS, USERCUTS and LAZYCONS, the choice of the objective, and the
 * index that every later section looks rows up in.
 *
 * Holds    every row by its id: ids 0, 1 .. are the rows of the model in file order (user cuts and lazy
 * constraints among them until they are taken out, see mps_extract.h); -1, -2 .. are the free rows, of which
 * one becomes the objective. Index    open addressing over (key, id, stamp), 16 bytes an entry: for names of
 * up to eight bytes the key is the name, so that a look-up touches one cache line and no text. Errors   1431,
 * 1438, 1445, 1453, 1476, 1486. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fileio/mps_context.h"

namespace tovik::fileio::mps {

enum class RowKind : char { linear, user_cut, lazy_constraint, quadratic, indicator };

class RowDirectory {
 public:
  struct Entry {
    std::uint64_t key = 0;  // 0: no entry
    std::int32_t id = 0;
    std::int32_t stamp = -1;  // the last column that named the row
  };

  explicit RowDirectory(Context& context);

  /* One line of a section of rows. */
  bool record(const Record& record, RowKind kind);
  void name_objective(const Field& name) { wanted_objective_.assign(name.view()); }
  /* Call once, behind the last row: reports repeats, chooses the objective, prints both lines. */
  bool close(int line);

  Entry* find(const Field& name) {
    const std::uint64_t key = name.length <= 8 ? name.word : key_of_long(name);
    if (key == 0) return nullptr;  // an empty field
    for (std::size_t i = slot_of(key);; i = (i + 1) & mask_) {
      Entry& entry = entries_[i];
      if (entry.key == key && (name.length <= 8 || text_of(entry.id) == name.view())) return &entry;
      if (entry.key == 0) return nullptr;
    }
  }
  bool is_objective(std::int32_t id) const { return id == objective_; }
  bool reading_cards() const { return cards_; }  // names with blanks were met
  void read_cards() { cards_ = true; }
  std::vector<RowKind>& kinds() { return kinds_; }  // one per row of the model; empty while all are linear
  std::string_view text_of(std::int32_t id) const {
    return id >= 0 ? context_.model.rows.name(id) : free_rows_.name(-1 - id);
  }
  void mark(std::int32_t id, RowKind kind);

 private:
  static std::uint64_t key_of_long(const Field& name);
  std::size_t slot_of(std::uint64_t key) const {
    key ^= key >> 32;
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15u) >> shift_);
  }
  bool add(const Field& name, char sense, RowKind kind);
  void insert(std::uint64_t key, std::int32_t id);
  void grow();

  Context& context_;
  std::vector<Entry> entries_;  // a power of two, at most half of them used
  std::size_t mask_ = 0, used_ = 0;
  unsigned shift_ = 0;
  NameTable free_rows_;
  std::vector<RowKind> kinds_;
  std::string wanted_objective_;
  std::int32_t objective_ = 0;  // below 0 once chosen
  bool cards_ = false;
  Repeats repeats_{1477};
};

}  // namespace tovik::fileio::mps
