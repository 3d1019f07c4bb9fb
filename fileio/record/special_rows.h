/* What writers need to know of the families of a model beyond its rows and columns. */
#pragma once

#include <cstdint>
#include <vector>

#include "model/families/families.h"

namespace tovik::fileio {

/* Marks the columns that occur in an expression of some family (quadratic terms, indicator, lazy and cut
 * rows); empty when there is no such family. Sets only refer to columns that the file knows already. */
std::vector<char> columns_in_families(const model::Families& families, int columns);

/* The linear rows of all families in one list, in the order quadratic, indicator, user cut, lazy, and their
 * terms by columns. */
class SpecialRows {
 public:
  struct Row {
    model::VectorView terms;
    char sense;
    double rhs;
  };
  SpecialRows(const model::Families& families, int columns);

  int size() const { return static_cast<int>(rows_.size()); }
  const Row& operator[](int k) const { return rows_[static_cast<std::size_t>(k)]; }
  int first_indicator() const { return first_indicator_; }
  int first_user_cut() const { return first_user_cut_; }
  int first_lazy() const { return first_lazy_; }
  /* Entries of a column: positions in this list. */
  model::VectorView column(int j) const;

 private:
  void append(const model::RowPool& rows);
  void transpose(int columns);

  std::vector<Row> rows_;
  int first_indicator_ = 0, first_user_cut_ = 0, first_lazy_ = 0;
  std::vector<std::int64_t> start_;
  std::vector<int> index_;
  std::vector<double> value_;
};

}  // namespace tovik::fileio
