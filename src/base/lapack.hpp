// The routines of LAPACK that are used, in their Fortran binding.
#pragma once

#include "base/types.hpp"

extern "C" {
// LU factors of an m x n matrix with row pivots; info > 0: exactly singular.
void cgetrf_(const int *m, const int *n, c32 *a, const int *lda, int *ipiv, int *info);
// Solves with the factors of cgetrf_ for nrhs right-hand sides, in place.
void cgetrs_(const char *trans, const int *n, const int *nrhs, const c32 *a, const int *lda, const int *ipiv,
             c32 *b, const int *ldb, int *info, std::size_t trans_length);
}
