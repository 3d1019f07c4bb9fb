/* Builds the LU factor of a basis: logicals, column singletons and row singletons by queues, the rest by the
 * kernel. Holds the workspace between builds, so that a rebuild allocates nothing once sizes have settled.
 * Cost: a few passes over m and over the entries of the basis, plus the kernel; counted in work(). */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/factor/factor.h"
#include "lp/factor/kernel.h"
#include "lp/factor/lu.h"
#include "lp/factor/workspace.h"

namespace tovik::lp::factor {

class Builder {
 public:
  explicit Builder(const Matrix& matrix) : matrix_(&matrix) {}
  void use_matrix(const Matrix& matrix) { matrix_ = &matrix; }

  /* Fills lu (all but the update part is overwritten, the update part reset) and permutes head; returns the
   * deficiency. */
  int build(std::vector<int>& head, const Settings& settings, Lu& lu);

  const std::vector<Exchange>& exchanges() const { return exchanges_; }
  std::int64_t work() const { return work_; }  // of the last build
  int bump() const { return bump_; }
  std::int64_t basis_nonzeros() const { return basis_nonzeros_; }

 private:
  struct Remaining {  // active entries of a line: how many, and the exclusive or of their places
    int count = 0, combined = 0;
    void add(int place) {
      ++count;
      combined ^= place;
    }
    int remove(int place) {
      combined ^= place;
      return --count;
    }
  };

  void reset(int rows, Lu& lu);
  void pivot_logicals(const std::vector<int>& head, Lu& lu);
  void count_lines(const Lu& lu);
  void pivot_column_singleton(int column, Lu& lu);
  void pivot_column_singletons(Lu& lu);
  void pivot_row_singletons(Lu& lu);
  void pivot_row_singleton(int row, int column, Lu& lu);
  void pivot_kernel(Lu& lu);
  void load_kernel(const Lu& lu);
  void store_kernel(Lu& lu);
  void replace_rejected(Lu& lu);
  void finish_l(Lu& lu);
  void finish_u(Lu& lu);
  void assign(int slot, int row, int column, double pivot, Lu& lu);

  const Matrix* matrix_;
  Settings settings_;
  Kernel kernel_;
  std::vector<Exchange> exchanges_;
  std::int64_t work_ = 0;
  std::int64_t basis_nonzeros_ = 0;
  int bump_ = 0;
  int next_slot_ = 0;

  std::vector<int> columns_;   // structural basic variables; "column" below is a place in this list
  std::vector<int> rejected_;  // variables that found no pivot
  std::vector<int> new_head_;  // row -> variable, kNone while the row has no pivot
  std::vector<Remaining> column_left_, row_left_;
  SlotSet basic_;  // structural basic variables, to list them in order
  std::vector<char> column_done_;
  std::vector<int> row_start_, row_columns_;       // columns of each row that has no logical
  std::vector<int> stack_;                         // singletons to pivot next
  std::vector<int> kernel_row_;                    // row -> its number in the kernel
  std::vector<int> kernel_rows_, kernel_columns_;  // and back
  std::vector<int> count_;                         // scratch of the transpositions
  std::vector<int> place_;
};

}  // namespace tovik::lp::factor
