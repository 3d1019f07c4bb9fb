/* The routines of BLAS that fronts use, with 32-bit sizes, column by column. */
#pragma once

namespace tovik::lp::cholesky::blas {

extern "C" {
void dgemm_(const char* transpose_a, const char* transpose_b, const int* m, const int* n, const int* k,
            const double* alpha, const double* a, const int* a_stride, const double* b, const int* b_stride,
            const double* beta, double* c, const int* c_stride);
void dtrsm_(const char* side, const char* triangle, const char* transpose, const char* diagonal, const int* m,
            const int* n, const double* alpha, const double* a, const int* a_stride, double* b,
            const int* b_stride);
void dgemv_(const char* transpose, const int* rows, const int* columns, const double* alpha, const double* a,
            const int* a_stride, const double* x, const int* x_step, const double* beta, double* y,
            const int* y_step);
void dtrsv_(const char* triangle, const char* transpose, const char* diagonal, const int* n, const double* a,
            const int* a_stride, double* x, const int* x_step);
}

struct Block {
  double* value;
  int stride;
};

struct ConstBlock {
  const double* value;
  int stride;
};

struct Shape {
  int rows, columns, inner;
};

/* C := beta C + alpha A B (transposed: A B' or A' B). */
inline void multiply(char transpose_a, char transpose_b, Shape shape, double alpha, ConstBlock a,
                     ConstBlock b, double beta, Block c) {
  dgemm_(&transpose_a, &transpose_b, &shape.rows, &shape.columns, &shape.inner, &alpha, a.value, &a.stride,
         b.value, &b.stride, &beta, c.value, &c.stride);
}

}  // namespace tovik::lp::cholesky::blas
