// The routines of BLAS and LAPACK that are used, in their Fortran binding.
#pragma once

#include "base/types.hpp"

#include <cstddef>
#include <omp.h>

extern "C" {
// LU factors of an m x n matrix with row pivots; info > 0: exactly singular.
void cgetrf_(const int *m, const int *n, c32 *a, const int *lda, int *ipiv, int *info);
// Solves with the factors of cgetrf_ for nrhs right-hand sides, in place.
void cgetrs_(const char *trans, const int *n, const int *nrhs, const c32 *a, const int *lda, const int *ipiv,
             c32 *b, const int *ldb, int *info, std::size_t trans_length);
// Interchanges rows k1..k2 of n columns as ipiv tells.
void claswp_(const int *n, c32 *a, const int *lda, const int *k1, const int *k2, const int *ipiv,
             const int *incx);
// B := alpha op(A)^-1 B (side "L") for a triangular A.
void ctrsm_(const char *side, const char *uplo, const char *trans, const char *diag, const int *m,
            const int *n, const c32 *alpha, const c32 *a, const int *lda, c32 *b, const int *ldb, std::size_t,
            std::size_t, std::size_t, std::size_t);
// Least squares of an m x n system with weighted rows by orthogonal factors, of least norm where the columns
// are dependent to within rcond; the solution of nrhs right-hand sides takes their place (ldb >= m, n).
void dgelsy_(const int *m, const int *n, const int *nrhs, double *a, const int *lda, double *b,
             const int *ldb, int *jpvt, const double *rcond, int *rank, double *work, const int *lwork,
             int *info);
// C := alpha A B + beta C.
void cgemm_(const char *trans_a, const char *trans_b, const int *m, const int *n, const int *k,
            const c32 *alpha, const c32 *a, const int *lda, const c32 *b, const int *ldb, const c32 *beta,
            c32 *c, const int *ldc, std::size_t, std::size_t);

// In double precision, for what is derived from the solution: factors and solution as above, and the
// reciprocal of the condition number from the factors and the norm ("1": largest column sum) of the matrix.
void zgetrf_(const int *m, const int *n, std::complex<double> *a, const int *lda, int *ipiv, int *info);
void zgetrs_(const char *trans, const int *n, const int *nrhs, const std::complex<double> *a, const int *lda,
             const int *ipiv, std::complex<double> *b, const int *ldb, int *info, std::size_t);
void zgecon_(const char *norm, const int *n, const std::complex<double> *a, const int *lda,
             const double *anorm, double *rcond, std::complex<double> *work, double *rwork, int *info,
             std::size_t);
// Eigenvalues alpha/beta of A v = lambda B v and right vectors ("V"), complex ones as pairs of columns.
void dggev_(const char *left, const char *right, const int *n, double *a, const int *lda, double *b,
            const int *ldb, double *alpha_real, double *alpha_imaginary, double *beta, double *vl,
            const int *ldvl, double *vr, const int *ldvr, double *work, const int *lwork, int *info,
            std::size_t, std::size_t);
}

// While it lives, a BLAS call of this thread stays on one core, so that its result does not depend on how
// many there are. Inside a parallel region that is so anyway.
class SerialBlas {
  public:
    SerialBlas() : threads_(omp_get_max_threads()) { omp_set_num_threads(1); }
    ~SerialBlas() { omp_set_num_threads(threads_); }
    SerialBlas(const SerialBlas &) = delete;
    SerialBlas &operator=(const SerialBlas &) = delete;

  private:
    int threads_;
};
