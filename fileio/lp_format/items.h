/* The items of a model in the words of the LP format, one call each: objective, rows, sets, bounds. The file
 * writer and the display routines share them; what stands between the items is theirs.
 *
 * - Order: any. Every item ends with its line. Bounds that a reader assumes without a statement write none.
 * - Numbers: 15 significant digits; finite() tells whether all were numbers so far.
 * - Errors: none of its own. */
#pragma once

#include <span>
#include <string>
#include <vector>

#include "fileio/lp_format/lines.h"
#include "fileio/record/writer_names.h"
#include "model/store/model.h"

namespace tovik::fileio::lp_format {

struct ItemNames {
  std::string objective;
  WriterNames columns, rows, sets, quadratic, indicators, user_cuts, lazy;
  /* By row: the name of its range column; empty where the row is written with two sides or is not ranged. May
   * be empty altogether. */
  std::vector<std::string> range_columns;
};

class ItemWriter {
 public:
  ItemWriter(const model::Model& model, const ItemNames& names, TextWriter& out)
      : model_(model), families_(model.families()), names_(names), lines_(out) {}

  void objective();
  void rows(int begin, int end);
  void quadratic_row(int k);
  void indicator(int k);
  void user_cut(int k) { cut(families_.user_cuts, names_.user_cuts, k); }
  void lazy_constraint(int k) { cut(families_.lazy_constraints, names_.lazy, k); }
  void set(int k);
  void bounds(int j);
  void every_bound(int j);  // also those that a reader assumes
  void range_column_bounds(int i);
  /* Names of columns of these types, as many on a line as there is room; nothing when there are none. */
  void columns_of_types(std::string_view header, std::string_view types);
  void column_list(std::span<const int> columns);
  /* Everything from the objective to the end, each section with its header. */
  void whole();
  void header(std::string_view text) { lines_.header(text); }
  bool finite() const { return lines_.finite(); }

 private:
  void row(int i, model::VectorView view);
  void ranged_row(int i, model::VectorView view);
  void cut(const model::RowPool& rows, const WriterNames& names, int k);
  void quadratic_objective();
  void all_constraints();
  void all_cuts();
  void terms(model::VectorView terms);
  void end(char sense, double rhs);
  const std::string* range_column(std::size_t i) const {
    return names_.range_columns.empty() || names_.range_columns[i].empty() ? nullptr
                                                                           : &names_.range_columns[i];
  }

  const model::Model& model_;
  const model::Families& families_;
  const ItemNames& names_;
  LineWriter lines_;
};

/* 'C' where the model has no types. */
inline char type_of(const model::Model& model, int j) {
  const auto types = model.column_types();
  return types.empty() ? 'C' : types[static_cast<std::size_t>(j)];
}

}  // namespace tovik::fileio::lp_format
