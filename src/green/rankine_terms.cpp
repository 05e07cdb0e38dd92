// Singular terms that are added to what the region kernels store.
#include "green/green_block.hpp"

#include <cmath>

namespace {

// One term of a lane: factor / sqrt(R^2 + Z^2).
struct Term {
    f32 factor, Z;
};

// Adds the term of each lane; DZ and DZETA: derivatives of Z by z and zeta, 1 or -1. Lanes of factor 0 may
// have R = Z = 0: they get a harmless distance. No lane is skipped, which would leave its -0 where adding
// makes a +0.
template <int DZ, int DZETA, bool SECOND, class Lane>
[[gnu::always_inline]] inline void add_term(GreenBlock &b, Lane lane) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const Term term = lane(k);
        const f32 R = b.X[k], Z = term.Z, r2 = R * R + Z * Z, i2 = 1 / (term.factor != 0 ? r2 : 1.0f);
        const f32 i1 = term.factor * std::sqrt(i2), i3 = i2 * i1;
        b.re[G_][k] += i1;
        b.re[G_R][k] -= R * i3;
        b.re[G_Z][k] -= DZ * Z * i3;
        b.re[G_ZETA][k] -= DZETA * Z * i3;
        if constexpr (SECOND) {
            const f32 mixed = 3 * R * Z * i3 * i2, twice = (3 * Z * Z * i2 - 1) * i3;
            b.re[G_RZ][k] += DZ * mixed;
            b.re[G_RZETA][k] += DZETA * mixed;
            b.re[G_ZZ][k] += twice;
            b.re[G_ZZETA][k] += DZ * DZETA * twice;
        }
    }
}

template <int DZ, int DZETA, class Lane>
[[gnu::always_inline]] inline void add_term(GreenOrder order, GreenBlock &b, Lane lane) {
    if (order == GreenOrder::first)
        add_term<DZ, DZETA, false>(b, lane);
    else
        add_term<DZ, DZETA, true>(b, lane);
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
    add_term<1, -1>(order, block, [&](int k) { return Term{block.ISNG[k] == 0 ? 1.0f : 0.0f, block.D[k]}; });
}
VORDA_SIMD void SUBDIR(GreenOrder order, GreenBlock &block) {
    add_term<1, -1>(order, block, [&](int k) { return Term{block.ISNG[k] >= 1 ? -1.0f : 0.0f, block.D[k]}; });
}
VORDA_SIMD void SUBIMG(GreenOrder order, GreenBlock &block) {
    add_term<1, 1>(order, block, [&](int k) { return Term{block.ISNG[k] >= 2 ? -1.0f : 0.0f, block.Y[k]}; });
}
VORDA_SIMD void ADDBOT(GreenOrder order, GreenBlock &block) {
    add_term<-1, -1>(order, block, [&](int k) {
        return Term{block.IBOT[k] == 0 ? 1.0f : 0.0f, block.ZB[k] + block.ZETAB[k]};
    });
}
VORDA_SIMD void SUBBOT(GreenOrder order, GreenBlock &block) {
    add_term<-1, -1>(order, block, [&](int k) {
        return Term{block.IBOT[k] == 1 ? -1.0f : 0.0f, block.ZB[k] + block.ZETAB[k]};
    });
}

VORDA_SIMD void ADDLOG(GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::first)
        add_logarithm<false>(block);
    else
        add_logarithm<true>(block);
}
