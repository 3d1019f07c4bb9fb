/* The rows of an MPS file: the sections ROWS, USERCUTS and LAZYCONS, the choice of the objective, and the
 * index that every later section looks rows up in.
 *
 * - Ids: 0, 1 .. are the rows of the model in file order (user cuts, lazy constraints and the like among
 *   them until they are taken out); -1, -2 .. are the free rows, of which one becomes the objective.
 * - Errors: 1431, 1438, 1445, 1453, 1476, 1486. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fileio/mps/context.h"
#include "fileio/mps/row_index.h"

namespace tovik::fileio::mps {

enum class RowKind : char { linear, user_cut, lazy_constraint, quadratic, indicator };

class RowDirectory {
 public:
  explicit RowDirectory(Context& context) : context_(context), index_(context.model.rows, free_rows_) {}

  /* One line of a section of rows. */
  bool record(const Record& record, RowKind kind);
  void name_objective(const Field& name) { wanted_objective_.assign(name.view()); }
  /* Call once, behind the last row: indexes the rows, reports repeats, chooses the objective and reports it. */
  bool close(int line);

  /* When the rows are closed. */
  [[gnu::always_inline]] void prefetch(const Field& name) const { index_.prefetch(name); }
  RowIndex::Found find(const Field& name) { return index_.find(name); }
  std::string_view text_of(std::int32_t id) const { return index_.text_of(id); }
  bool is_objective(std::int32_t id) const { return id == objective_; }
  RowKind kind_of(std::int32_t id) const {  // of a row of the model
    return kinds_.empty() ? RowKind::linear : kinds_[static_cast<std::size_t>(id)];
  }
  void mark(std::int32_t id, RowKind kind);
  const std::vector<RowKind>& kinds() const { return kinds_; }  // one per row; empty while all are linear

  /* Whether names with blanks were met, so that lines are read by the card layout. */
  bool reading_cards() const { return cards_; }
  void read_cards() { cards_ = true; }

 private:
  bool add(const Field& name, char sense, RowKind kind);

  Context& context_;
  NameTable free_rows_;
  RowIndex index_;
  std::vector<std::uint64_t> row_keys_, free_row_keys_;  // of the names, until the index is built
  std::vector<RowKind> kinds_;
  std::string wanted_objective_;
  std::int32_t objective_ = 0;  // below 0 once chosen
  bool cards_ = false;
};

}  // namespace tovik::fileio::mps
