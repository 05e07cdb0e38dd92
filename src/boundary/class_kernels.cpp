#include "boundary/class_kernels.hpp"

#include "base/lapack.hpp"
#include "base/simd.hpp"
#include "state/symmetry.hpp"

namespace {

// Real and imaginary parts, with a sign, onto complex numbers.
VORDA_SIMD void add_signed(int n, f32 sign, const f32 *re, const f32 *im, f32 *sum) {
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        sum[2 * i] += sign * re[i];
        sum[2 * i + 1] += sign * im[i];
    }
}

} // namespace

bool velocity_columns(const Mesh &mesh, const Symmetry &sym, Array<c32, 2> &columns) {
    if (!columns.alloc(mesh.NEQN, sym.NSYMD))
        return false;
    for (int j = 1; j <= sym.NSYMD; ++j) {
        const int mode = sym.MODLST(j);
        for (int NP = 1; NP <= mesh.NEQN; ++NP)
            columns(NP, sym.MODPOS(mode)) = mesh.VEL(mode, NP);
    }
    return true;
}

bool ClassKernels::alloc(int n, int kernels, int columns, int NSYMR) {
    classes = NSYMR;
    return K.alloc(n, FIELD_STRIP, kernels * NSYMR) && product.alloc(FIELD_STRIP, columns);
}

void ClassKernels::add_image(const Symmetry &sym, int m, int p, const KernelValues &values, int column,
                             int kernel) {
    for (int c = 1; c <= classes; ++c)
        add_signed(static_cast<int>(K.dim(1)), static_cast<f32>(SGN[sym.ICLS[c]][m]), &values.re(1, column),
                   &values.im(1, column), reinterpret_cast<f32 *>(&K(1, p, (kernel - 1) * classes + c)));
}

void ClassKernels::multiply(int kernel, int c, c32 factor, ColumnBlock<const c32> X, FieldStrip strip,
                            ColumnBlock<c32> result) {
    const int points = strip.last - strip.first + 1;
    const int n = static_cast<int>(K.dim(1));
    const c32 one = 1;
    const c32 zero = 0;
    cgemm_("T", "N", &points, &X.columns, &n, &one, &K(1, 1, (kernel - 1) * classes + c), &n, X.data, &X.rows,
           &zero, product.data(), &FIELD_STRIP, 1, 1);
    for (int j = 1; j <= X.columns; ++j) {
        c32 *column = result.data + static_cast<std::int64_t>(j - 1) * result.rows + strip.first - 1;
        for (int p = 1; p <= points; ++p)
            column[p - 1] += factor * product(p, j);
    }
}
