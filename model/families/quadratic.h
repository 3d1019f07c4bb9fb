/* The quadratic data of a model.
 *
 * - QuadraticObjective: the symmetric matrix Q of the term x'Qx / 2 in the objective, by columns, both halves
 *   stored, no zeros.
 * - QuadraticRows: quadratic constraints: linear part + x'Qx (no factor 1/2), sense 'L' or 'G', right-hand
 *   side, names of all or of none. Their quadratic parts are lists of terms: coefficient times the product of
 *   two columns, each pair once, column <= other, in this order; no zeros. Deleting a column takes its terms
 *   out; a constraint stays.
 * - Errors: bad_alloc; the data are then as before the call. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "model/base/vector_file.h"
#include "model/families/row_pool.h"

namespace tovik::model {

struct QuadraticTerm {
  int column, other;
  double value;  // coefficient of x[column] * x[other] in the function itself
};

/* Puts terms into the stored form: sums repeated pairs (in either order), drops zeros, sorts. */
void normalize(std::vector<QuadraticTerm>& terms);

class QuadraticObjective {
 public:
  QuadraticObjective() = default;
  /* From terms of the function (not of Q), in the stored form of normalize(). */
  explicit QuadraticObjective(std::span<const QuadraticTerm> terms);
  /* From the entries of Q as matrix() gives them. */
  static QuadraticObjective of_matrix(std::span<const QuadraticTerm> entries);

  bool empty() const { return matrix_.entries() == 0; }
  /* Stored entries of Q, both halves counted. */
  std::int64_t entries() const { return matrix_.entries(); }
  VectorView column(int j) const {
    return j < matrix_.size() ? matrix_.at(j) : VectorView{nullptr, nullptr, 0};
  }
  /* Entry (i, j) of Q. */
  double coefficient(int i, int j) const noexcept;
  /* Columns that have an entry. */
  int num_columns() const noexcept;
  /* Terms of the function x'Qx / 2, each pair once: q/2 for a square, q for a product. */
  std::vector<QuadraticTerm> terms() const;
  /* Entries of Q itself, each pair once: column <= other, in this order. */
  std::vector<QuadraticTerm> matrix() const;

  /* Sets entries (i, j) and (j, i) of Q; 0 removes them. */
  void set(int i, int j, double value);
  void clear() noexcept { matrix_ = VectorFile(); }
  void renumber_columns(std::span<const int> renumber) noexcept;
  void remove_small(double eps) noexcept { matrix_.remove_small(eps); }

 private:
  void build(std::span<const QuadraticTerm> terms, double of_square);

  VectorFile matrix_;  // its vectors end with the last column that was given an entry
};

struct NewQuadraticRow {
  PoolRow linear;
  std::span<const QuadraticTerm> terms;  // any pairs in any order; repeated ones are summed
};

class QuadraticRows {
 public:
  int size() const { return linear_.size(); }
  bool empty() const { return size() == 0; }
  const RowPool& linear() const { return linear_; }
  std::span<const QuadraticTerm> terms(int k) const { return terms_[static_cast<std::size_t>(k)]; }
  const NameTable& names() const { return linear_.names(); }

  void add(const NewQuadraticRow& row);
  void rename(int count, const int* positions, const char* const* names) {
    linear_.rename(count, positions, names);
  }
  void clear_names() noexcept { linear_.clear_names(); }
  void clear() noexcept;
  void renumber(std::span<const int> renumber) noexcept;
  void renumber_columns(std::span<const int> renumber) noexcept;
  void remove_small(double eps) noexcept;

 private:
  RowPool linear_{'q'};
  std::vector<std::vector<QuadraticTerm>> terms_;
};

}  // namespace tovik::model
