// The Green function of deep water, points in their order. Which processors have the way.
#include "green/wide_kernels.hpp"

#include "green/wide_f2.hpp"

#ifdef VORDA_HAS_WIDE

namespace {

using namespace wide;

// The values in the order in which they are worked out: four of the first order, four of the second.
constexpr GreenValue VALUES[GREEN_VALUES] = {G_, G_R, G_Z, G_ZETA, G_RZ, G_ZZ, G_ZZETA, G_RZETA};

template <bool SECOND> VORDA_WIDE void deep_points(const GreenPoints &p, const GreenArrays &result) {
    for (int i = 0; i < p.n; i += LANES) {
        const int rest = p.n - i;
        const Mask m = first_lanes(rest);
        const Lanes X = _mm512_mask_loadu_ps(all(1), m, p.R + i),
                    Z = _mm512_mask_loadu_ps(all(1), m, p.Z + i);
        const Lanes ZETA = _mm512_maskz_loadu_ps(m, p.ZETA + i);
        const Integers ISNG = _mm512_mask_loadu_epi32(_mm512_set1_epi32(2), m, p.ISNG + i);
        Lanes re[GREEN_VALUES], im[GREEN_VALUES];
        const Kinds kind = kinds_of(X, Z + ZETA, ISNG);
        deep_lanes<SECOND>(X, Z + ZETA, kind, re, im);
        if (kind.direct != 0)
            add_inverse<1, 1, -1, SECOND>(kind.direct, X, Z - ZETA, re);
#pragma GCC unroll 8
        for (int j = 0; j < (SECOND ? 8 : 4); ++j) {
            _mm512_mask_storeu_ps(result.re[VALUES[j]] + i, m, re[VALUES[j]]);
            _mm512_mask_storeu_ps(result.im[VALUES[j]] + i, m, im[VALUES[j]]);
        }
    }
}

VORDA_WIDE_TARGET void first_order(const GreenPoints &points, const GreenArrays &result) {
    deep_points<false>(points, result);
}
VORDA_WIDE_TARGET void second_order(const GreenPoints &points, const GreenArrays &result) {
    deep_points<true>(points, result);
}

} // namespace

bool wide_available() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
}

void deep_wide(const GreenPoints &points, GreenOrder order, const GreenArrays &result) {
    if (order == GreenOrder::second)
        second_order(points, result);
    else
        first_order(points, result);
}

#else

bool wide_available() {
    return false;
}
void deep_wide(const GreenPoints &, GreenOrder, const GreenArrays &) {}

#endif
