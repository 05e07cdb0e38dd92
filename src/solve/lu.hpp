// LU factors of a dense complex matrix, on all cores, with a result that does not depend on their number.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"

// Factors the n x n matrix A in place with row pivots IPIV (n), in the form that CGETRS takes. Failed when A
// is exactly singular; no message. The matrix is worked in column strips of fixed width with serial BLAS
// calls (right-looking block LU, Golub and Van Loan, Matrix Computations, 3.2); the strips are shared out,
// and a result is the same to the last bit on one core and on many, which a threaded CGETRF does not give.
[[nodiscard]] Status LUFACT(View<c32, 2> A, int *IPIV, int n);
