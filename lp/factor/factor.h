/* Sparse LU factor of a simplex basis with Forrest-Tomlin updates.
 *
 * Basis columns are named by variable: 0..n-1 structural columns of the matrix, n+i the unit column e_i
 * (logical of row i). build() permutes the caller's head so that head[i] is the variable pivoted in row i;
 * positions and rows then share one index space, and all vectors have dimension m:
 * - ftran: solves B x = b; in b by row, out x by position;
 * - btran: solves B' y = c; in c by position, out y by row.
 *
 * A factor can be put aside and taken up again without elimination, and updates can be taken back one by one:
 * that is what a search does between nodes and around strong branching. */
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "lp/base/lp_data.h"
#include "lp/base/sparse_vector.h"

namespace tovik::lp::factor {

struct Settings {
  double threshold = 0.1;  // Markowitz threshold u in (0, 1): |pivot| >= u * max of its column (or row)
  double pivot_absolute = 1e-10;
  double drop = 1e-14;
};

/* A variable that was removed from a singular basis, and the row whose logical replaced it. */
struct Exchange {
  int removed;  // variable index
  int row;      // logical n + row entered the basis
};

/* Of the last build. */
struct Stats {
  int bump = 0;  // order of the Markowitz kernel
  std::int64_t basis_nonzeros = 0;
  std::int64_t l_nonzeros = 0, u_nonzeros = 0;  // off the diagonal; with the diagonal of U: all of the factor
  std::int64_t factor_nonzeros = 0;
};

/* Since the factor was made. A solve is two sweeps, one through each triangle, counted by how they ran; solves of
 * several vectors in one pass are counted apart, by vector. */
struct Counts {
  std::int64_t builds = 0, updates = 0, refused_updates = 0;
  std::int64_t sparse_sweeps = 0, plain_sweeps = 0,
               switched_sweeps = 0;  // switched: from sparse to plain half-way
  std::int64_t joint_solves = 0;
  std::int64_t build_ticks = 0, solve_ticks = 0, update_ticks = 0;
  std::int64_t update_solve_ticks = 0;  // share of solve_ticks caused by updates since the build

  void add(const Counts& other) {
    each(other, [](std::int64_t& sum, std::int64_t count) { sum += count; });
  }
  void subtract(const Counts& other) {
    each(other, [](std::int64_t& rest, std::int64_t count) { rest -= count; });
  }

 private:
  template <class Combine>
  void each(const Counts& other, Combine combine) {
    combine(builds, other.builds);
    combine(updates, other.updates);
    combine(refused_updates, other.refused_updates);
    combine(sparse_sweeps, other.sparse_sweeps);
    combine(plain_sweeps, other.plain_sweeps);
    combine(switched_sweeps, other.switched_sweeps);
    combine(joint_solves, other.joint_solves);
    combine(build_ticks, other.build_ticks);
    combine(solve_ticks, other.solve_ticks);
    combine(update_ticks, other.update_ticks);
    combine(update_solve_ticks, other.update_solve_ticks);
  }
};

/* How triangular solves run: chosen by density, or always one way (for tests). */
enum class SolveMode { automatic, sparse, plain };

class Factor {
 public:
  /* Keeps the address of the matrix; it must outlive the factor and not change while built. */
  explicit Factor(const Matrix& matrix);
  ~Factor();
  Factor(const Factor&) = delete;
  Factor& operator=(const Factor&) = delete;

  void set(const Settings& settings);
  void use_matrix(const Matrix& matrix);  // the same matrix in another place, or one for the next build
  void set_rebuild_overhead(std::int64_t ticks);  // what a rebuild costs the caller on top of build()

  /* Factors the basis `head` (m variables). Permutes head (see above). Returns the rank deficiency: 0 when
   * regular; otherwise exchanges() lists what was replaced, head holds the repaired basis, and the factor is
   * of the repaired one. */
  int build(std::vector<int>& head);
  const std::vector<Exchange>& exchanges() const;

  /* Repeated solves with the basis and its transpose for random right-hand sides of +-1; returns the larger
   * residual, relative to the sizes of the basis, the solution and the right-hand side. About 1e-16 is
   * normal; above 1e-12 the factor deserves a larger threshold. For the basis last built, before any update.
   */
  double residual_check();

  /* expected_density: running average of the result density of this kind of solve; steers hyper-sparse mode.
   * With v.want_pack the partial result that update() needs is packed, in the factor's own numbering: the
   * spike in ftran, the row eta in btran; the flag is reset. */
  void ftran(SparseVector& v, double expected_density);
  void btran(SparseVector& v, double expected_density);

  /* ftran() of up to four vectors in one pass; for vectors whose results are expected to be dense. */
  void ftran(std::span<SparseVector* const> vectors);

  /* Replaces the basic variable of position r. column: packed spike of ftran(a_q), with the full result in
   * its array (pivot = column.array[r]); row: packed partial result of btran(e_r). Returns false when the new
   * diagonal disagrees with its independent value by more than 1e-6 of its size, or at the update limit: the
   * caller then refactors, the factor is unusable. */
  bool update(const SparseVector& column, const SparseVector& row, int r);

  /* A factored basis with its updates, put aside. Cost of both calls: a copy of what is in use. The matrix
   * must then hold the same columns. */
  struct Saved;
  std::shared_ptr<const Saved> save() const;
  void restore(const Saved& saved);

  /* From record_updates() on updates can be taken back: undo_updates() leaves the factor of that moment, for
   * what the updates wrote, and ends the recording. After a build there is nothing to undo: a build ends it
   * too. */
  void record_updates();
  void undo_updates();

  void force_mode(SolveMode mode);

  int updates() const;         // since the last build
  std::int64_t work() const;   // ticks so far: entries touched in builds, solves and updates
  bool wants_rebuild() const;  // update file or memory has grown past what pays
  const Stats& stats() const;
  const Counts& counts() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tovik::lp::factor
