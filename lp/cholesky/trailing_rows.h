/* The rows below a block of eliminated columns: X L' = A, then L := X D^-1.
 * Block   width x width, its unit lower triangle L, D on the diagonal (0 where a pivot is infinite: then its column of L is 0).
 * Rows    of width numbers, by columns with the same stride; in place.
 * Method  16 rows by 8 columns in the wide registers of processors that have them; otherwise dtrsm of BLAS. What becomes of a
 *         row does not depend on the rows beside it. */
#pragma once

namespace tovik::lp::cholesky {

inline constexpr int kLeaf = 32;  // columns at most

/* `inverse` has one for each pivot. */
void solve_trailing_rows(const double* block, const double* inverse, int width, double* below, int rows,
                         int stride);

/* What processors without wide registers use. */
void solve_trailing_rows_by_blas(const double* block, const double* inverse, int width, double* below,
                                 int rows, int stride);

}  // namespace tovik::lp::cholesky
