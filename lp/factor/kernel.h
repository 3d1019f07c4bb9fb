/* Markowitz elimination with threshold pivoting of the part of a basis that singletons do not solve.
 *
 * Works on local numbers of rows and columns from 0. Active columns are held with values, active rows as
 * patterns only; both in files with spare room per line, a line that outgrows its room moves to the end of
 * its file. Lines are kept in doubly linked lists by count. The search looks at no more than a few lines
 * (Duff, Erisman, Reid; Suhl & Suhl, ORSA J. Computing 2, 1990) and starts at the running minimum of the
 * counts. Pivots satisfy |pivot| >= threshold * largest entry of their column; columns below the absolute
 * tolerance are rejected. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/factor/dense_tail.h"
#include "lp/factor/factor.h"
#include "lp/factor/lu.h"

namespace tovik::lp::factor {

struct KernelPivot {
  int row, column;
  double value;
  Line l;  // multipliers in l_file(), by local row
  Line u;  // the rest of the pivot row in u_file(), by local column
};

class Kernel {
 public:
  /* Loading: begin, then for each column in turn begin_column and add, then end. */
  void begin(int rows, int columns, int entries);
  void begin_column();
  void add(int row, double value);

  /* Eliminates; pivots() come in order. Rows and columns that are in none of them were left over. */
  void eliminate(const Settings& settings);

  const std::vector<KernelPivot>& pivots() const { return pivots_; }
  const File& l_file() const { return l_; }
  const File& u_file() const { return u_; }
  std::int64_t work() const { return work_; }

 private:
  struct Slot {  // room of a line in its file
    int start, length, capacity;
  };
  struct Buckets {  // lines linked by count
    std::vector<int> head, next, previous;
    std::vector<char> linked;
    void reset(int lines, int counts);
    void link(int line, int count);
    void unlink(int line, int count);
  };
  struct Choice {
    int row = -1, column = -1;
    std::int64_t merit = INT64_MAX;
    double size = 0.0;
  };

  void build_rows();
  bool choose(Choice& best);
  void try_column(int column, Choice& best);
  bool try_row(int row, Choice& best);
  double column_max(int column);
  void reject_column(int column);
  void pivot(int row, int column);
  void take_pivot_column(int row, int column);
  double take_from_column(int row, int column);
  void update_column(int column, double multiple);
  void relink_row(int row);
  void remove_from_row(int row, int column);
  void reserve_column(int column, int extra);
  void reserve_row(int row, int extra);
  void compress_columns();
  void compress_rows();
  bool is_dense() const;
  void eliminate_dense();

  Settings settings_;
  int num_rows_ = 0, num_columns_ = 0;
  int left_rows_ = 0, left_columns_ = 0;
  std::int64_t active_entries_ = 0;
  int min_column_ = 0, min_row_ = 0;
  std::vector<Slot> column_, row_;
  std::vector<double> column_max_;  // < 0: not known
  File columns_;
  std::vector<int> rows_;
  int rows_used_ = 0;
  Buckets column_list_, row_list_;
  std::vector<int> row_old_count_;  // count under which a row is linked
  std::vector<char> row_done_, column_done_;
  std::vector<double> multiplier_;  // of the pivot column, by row
  std::vector<int> mark_;           // by row: the last column update that met it
  int stamp_ = 0;
  std::vector<int> affected_, pivot_row_;
  std::vector<int> order_;  // lines by place in the file, for compression
  std::vector<KernelPivot> pivots_;
  File l_, u_;
  DenseTail dense_;
  std::vector<int> dense_rows_, dense_columns_, dense_place_;
  std::int64_t work_ = 0;
};

}  // namespace tovik::lp::factor
