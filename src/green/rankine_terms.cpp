// Singular terms that are added to what the region kernels store.
#include "green/green_block.hpp"

#include <cmath>

namespace {

template <bool SECOND> [[gnu::always_inline]] inline void add_direct(GreenBlock &b) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        // The other lanes may have r = 0: they get a harmless distance and the factor 0. No lane is skipped,
        // which would leave its -0 where adding makes a +0.
        const f32 asked = b.ISNG[k] == 0 ? 1.0f : 0.0f;
        const f32 R = b.X[k], D = b.D[k], r2 = R * R + D * D;
        const f32 i2 = 1 / (b.ISNG[k] == 0 ? r2 : 1.0f), i1 = asked * std::sqrt(i2), i3 = i2 * i1;
        b.re[G_][k] += i1;
        b.re[G_R][k] -= R * i3;
        b.re[G_Z][k] -= D * i3;
        b.re[G_ZETA][k] += D * i3;
        if constexpr (SECOND) {
            const f32 mixed = 3 * R * D * i3 * i2, twice = (3 * D * D * i2 - 1) * i3;
            b.re[G_RZ][k] += mixed;
            b.re[G_RZETA][k] -= mixed;
            b.re[G_ZZ][k] += twice;
            b.re[G_ZZETA][k] -= twice;
        }
    }
}

template <bool SECOND> [[gnu::always_inline]] inline void add_logarithm(GreenBlock &b) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = b.X[k], Y = b.Y[k], i2 = 1 / (R * R + Y * Y), i1 = std::sqrt(i2), i3 = i2 * i1;
        const f32 x = std::sqrt(R * R + Y * Y) + Y;
        b.re[G_][k] += 2 * logf(x);
        b.re[G_R][k] += 2 * R * i1 / x;
        b.re[G_Z][k] += 2 * i1;
        b.re[G_ZETA][k] += 2 * i1;
        if constexpr (SECOND) {
            const f32 mixed = 2 * R * i3, twice = 2 * Y * i3;
            b.re[G_RZ][k] -= mixed;
            b.re[G_RZETA][k] -= mixed;
            b.re[G_ZZ][k] -= twice;
            b.re[G_ZZETA][k] -= twice;
        }
    }
}

} // namespace

VORDA_SIMD void ADDDIR(GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::first)
        add_direct<false>(block);
    else
        add_direct<true>(block);
}

VORDA_SIMD void ADDLOG(GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::first)
        add_logarithm<false>(block);
    else
        add_logarithm<true>(block);
}
