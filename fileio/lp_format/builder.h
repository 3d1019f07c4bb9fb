/* What the LP reader has collected so far, row by row, and its turn into a FileModel.
 *
 * Columns come into being at their first mention in an expression, with bounds 0 and infinity. Rows are kept
 * row-wise as they come and are turned into columns once, at the end. */
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fileio/lp_format/messages.h"
#include "fileio/record/model_reader.h"

namespace tovik::fileio::lp_format {

/* One expression: terms in the order of the file (a column may come more than once), quadratic terms, a
 * constant. */
struct Expression {
  std::vector<int> columns;
  std::vector<double> values;
  std::vector<QuadraticTerm> quadratic;
  double constant = 0;
  void clear() {
    columns.clear();
    values.clear();
    quadratic.clear();
    constant = 0;
  }
};

struct RowLimits {
  char sense;
  double rhs, range;
};

enum class RowKind { row, quadratic, indicator, lazy, user_cut };
inline constexpr int kRowKinds = 5;

class Builder {
 public:
  /* bytes: length of the file, 0 when not known. */
  Builder(const ReadOptions& options, std::size_t bytes, Messages& messages);

  /* The column of a name, created when new; -1 after a failure. The key may be made and prefetched before. */
  int column(std::string_view name) { return column(name, NameTable::key_of(name)); }
  int column(std::string_view name, const NameTable::Key& key);
  void prefetch_row(std::string_view name) const { used_names_[0].prefetch(NameTable::key_of(name)); }
  NameTable::Key prefetch_column(std::string_view name) const {
    const NameTable::Key key = NameTable::key_of(name);
    columns_.prefetch(key);
    return key;
  }
  int find_column(std::string_view name) const { return columns_.find(name); }

  void set_objective_sense(int sense) { model_.objective_sense = sense; }
  bool has_objective() const { return has_objective_; }
  const std::string& objective_name() const { return model_.objective_name; }
  bool set_objective(std::string_view name, const Expression& expression, int line);

  /* Rows of all kinds. An empty name is given a default one at the end. False (1447) when the name repeats in
   * its kind; `line` is where the name stands. */
  bool add_row(std::string_view name, const Expression& expression, RowLimits limits, int line);
  bool add_quadratic_row(std::string_view name, const Expression& expression, RowLimits limits, int line);
  bool add_indicator(std::string_view name, const Expression& expression, RowLimits limits, int column,
                     bool active_at_one, int line);
  bool add_lazy_constraint(std::string_view name, const Expression& expression, RowLimits limits, int line);
  bool add_user_cut(std::string_view name, const Expression& expression, RowLimits limits, int line);
  bool add_set(std::string_view name, char type, int line);
  void add_set_member(int column, double weight);

  bool count_bound();  // of each bound statement: 1012 beyond the limit of entries
  void set_lower(int column, double value);
  void set_upper(int column, double value);

  void open_type_section();  // the file declares types, perhaps of no column
  void declare_integer(int column);
  void declare_binary(int column);
  void declare_semicontinuous(int column);

  /* Moves everything into `model`; the builder is empty then. */
  void finish(FileModel& model);

 private:
  enum ColumnNote : unsigned char { kLowerGiven = 1, kUpperGiven = 2, kBinary = 4 };

  bool register_name(std::string_view name, RowKind kind, int line);
  void type_of(int column, char wanted);
  void finalize_binaries();
  void transpose_rows();

  Messages& messages_;
  FileModel model_;
  NameTable columns_;
  std::vector<unsigned char> notes_;  // ColumnNote bits, one per column
  bool has_objective_ = false;
  std::vector<std::int64_t> row_start_;
  std::vector<int> term_column_;
  std::vector<double> term_value_;
  NameTable used_names_[kRowKinds];
  NameTable used_set_names_;
  std::vector<int> row_name_;  // id among the taken row names, or -1
  std::int64_t bounds_ = 0;
};

/* Turns each equation that has a range column of its own back into a range: row r with the column "Rg" + name
 * of r, of coefficient -1, in that row alone, continuous, without cost, bounded by 0 and a finite value. */
void fold_range_columns(FileModel& model);

}  // namespace tovik::fileio::lp_format
