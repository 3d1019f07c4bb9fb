/* Sparse factorization P K P' = L D L' of a symmetric quasi-definite matrix K, without pivoting for size: D is diagonal, and
 * the caller knows its signs (all +1: K is positive definite; -1 and +1: K is strongly factorizable in any order, see
 * "Symmetric quasi-definite matrices", SIAM J. Optim. 5, 1995).
 *
 * Order   analyze() once for a pattern (preview() before it, if wanted), then factorize() for any number of values, after each of them any number of solves.
 *         Each call begins anew: a factorize() that did not end with State::done leaves nothing to solve with.
 * Holds   the permutation, the structure of L by supernodes, and the numbers of the last factorization.
 * Method  multifrontal over the supernodal elimination tree; the dense work of a front is BLAS on the calling threads only.
 * Threads `Options::threads` of them work in factorize(); the same digits for any number. No two calls at once, except solves.
 * Memory  is counted by analyze() before allocate() takes it: `Counts::bytes`. Where L does not fit into Options::work_memory
 *         most of it goes to a temporary file, from which solves read; the digits are the same.
 * Stops   Control is asked a few times a second, and told of the work in ticks that depend on the pattern alone.
 * Errors  State; solve() may throw std::bad_alloc and FileError. */
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "lp/base/control.h"

namespace tovik::lp::cholesky {

/* The lower triangle with the diagonal, by columns, row indices ascending. Every column begins with its diagonal. */
struct Pattern {
  int size = 0;
  std::vector<std::int64_t> start;  // size + 1
  std::vector<int> index;
};

enum class Ordering { automatic, minimum_degree, minimum_fill, nested_dissection };

struct Options {
  Ordering ordering = Ordering::automatic;
  int threads = 1;
  double work_memory = 128.0 * 1024 * 1024;  // bytes that L may take in memory
  std::string work_directory = ".";
};

struct Counts {
  int rows = 0;
  int supernodes = 0;
  int largest_front = 0;
  std::int64_t integers = 0;  // stored for the structure of L
  std::int64_t entries = 0;   // of L with its diagonal, without the zeros that supernodes add
  std::int64_t stored = 0;    // numbers kept of L, with those zeros
  std::int64_t bytes = 0;     // that factorize() takes
  double flops = 0;           // sum of squares of the column counts of L: multiplications and additions
  Ordering used = Ordering::automatic;
  double ordering_seconds = 0;
};

/* A pivot that has the wrong sign, or whose magnitude is not greater than `smallest`, is replaced by `replacement` with the
 * expected sign. A replacement that is not positive means an infinite pivot: the unknown becomes 0 in every solve. */
struct Pivoting {
  double smallest = 0;
  double replacement = 0;
};

struct Report {
  std::int64_t replaced = 0;                     // pivots
  double smallest_pivot = 0, largest_pivot = 0;  // magnitudes, without the replaced ones; 0 if there are none
};

/* Where the numbers of L stand. */
struct Storage {
  bool out_of_core = false;
  double work_memory = 0;  // bytes that were allowed
  double needed = 0;       // bytes in memory out of core; above work_memory where less does not do
  double file_bytes = 0;   // bytes of L that are written
  std::string directory;   // made for the file, and gone already; from allocate() on
};

enum class State { done, out_of_memory, stopped, file_not_opened, file_not_read, file_not_written };

/* What was written to the temporary file cannot be read any more. */
class FileError : public std::exception {
 public:
  const char* what() const noexcept override { return "the factor cannot be read from its temporary file"; }
};

class Cholesky {
 public:
  Cholesky();
  ~Cholesky();
  Cholesky(Cholesky&&) noexcept;
  Cholesky& operator=(Cholesky&&) noexcept;

  /* Before analyze(), where several patterns are to be compared: entries and flops of counts() by the first ordering that
   * the options have tried. analyze() of the same pattern with the same options goes on from there. */
  [[nodiscard]] State preview(const Pattern& pattern, const Options& options, Control& control);
  [[nodiscard]] State analyze(const Pattern& pattern, const Options& options, Control& control);
  const Counts& counts() const;
  const Storage& storage() const;
  /* The memory and the file, which factorize() takes otherwise. */
  [[nodiscard]] State allocate();
  /* `values` go with the pattern's entries. `signs` by row of K; nullptr: all +1. `report` may be nullptr. */
  [[nodiscard]] State factorize(const double* values, const signed char* signs, const Pivoting& pivoting,
                                Control& control, Report* report);
  /* In place; the k-th of several right-hand sides begins at x + k * size. */
  void solve(double* x) const { solve(x, 1); }
  void solve(double* x, int columns) const;

 private:
  struct Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tovik::lp::cholesky
