#include "green/wide_depth.hpp"

#include "green/depth_heights.hpp"
#include "green/green_block.hpp"
#include "green/wide_kernels.hpp"
#include "green/wide_modes.hpp"
#include "green/wide_near.hpp"

#ifdef VORDA_HAS_WIDE

namespace {

using namespace wide;

// The values in the order in which they are worked out: four of the first order, four of the second.
constexpr GreenValue VALUES[GREEN_VALUES] = {G_, G_R, G_Z, G_ZETA, G_RZ, G_ZZ, G_ZZETA, G_RZETA};
template <bool SECOND> constexpr int VALUES_OF = SECOND ? GREEN_VALUES : 4;

enum Kernel {
    NEAR,   // R <= H, Y < H: F2 and two polynomials
    DEEPER, // R <= H, Y >= H: one polynomial twice
    FAR     // R > H: modes
};

struct DepthPoint {
    Lanes R, Y, D, A; // Y = z + zeta, D = z - zeta, A = 2 H - Y
    Integers ISNG;
    Mask bottom; // 1/rb stays
    VORDA_WIDE Mask selector_at_least(int selector) const {
        return _mm512_cmpge_epi32_mask(ISNG, _mm512_set1_epi32(selector));
    }
};

template <bool SECOND>
VORDA_WIDE void near_terms(const DepthPoint &p, Mask direct, Lanes (&re)[GREEN_VALUES]) {
    if (p.bottom != 0)
        add_inverse<1, -1, -1, SECOND>(p.bottom, p.R, p.A, re);
    if (direct != 0)
        add_inverse<1, 1, -1, SECOND>(direct, p.R, p.D, re);
}

template <bool SECOND>
VORDA_WIDE void terms_taken_off(const DepthPoint &p, Mask direct, Mask bottom, Lanes (&re)[GREEN_VALUES]) {
    if (bottom != 0)
        add_inverse<-1, -1, -1, SECOND>(bottom, p.R, p.A, re);
    if (direct != 0)
        add_inverse<-1, 1, -1, SECOND>(direct, p.R, p.D, re);
    const Mask image = p.selector_at_least(2), logarithm = p.selector_at_least(3);
    if (image != 0)
        add_inverse<-1, 1, 1, SECOND>(image, p.R, p.Y, re);
    if (logarithm != 0)
        add_logarithm<SECOND>(logarithm, p.R, p.Y, re);
}

// Sixteen points of one region.
template <Kernel KERNEL, bool SECOND>
VORDA_WIDE void depth_lanes(const GSTATE &g, const DepthPoint &p, const Height &z, const Height &zeta,
                            Lanes (&re)[GREEN_VALUES], Lanes (&im)[GREEN_VALUES]) {
    const Mask direct = p.selector_at_least(1);
    if constexpr (KERNEL == FAR) {
        propagating<true, SECOND>(g, p.R, p.Y, z, zeta, re, im);
        evanescent<SECOND>(g, p.R, z, zeta, re);
        terms_taken_off<SECOND>(p, direct, static_cast<Mask>(~p.bottom), re);
        return;
    }
    if constexpr (KERNEL == NEAR) {
        const Kinds kind = kinds_of(p.R, p.Y, p.ISNG);
        deep_lanes<SECOND>(p.R, p.Y, kind, re, im);
        depth_and_surface<SECOND>(g, p.R, p.D, p.Y, re);
    } else {
        two_depths<SECOND>(g, p.R, p.D, p.A, re);
        terms_taken_off<SECOND>(p, 0, 0, re);
    }
    near_terms<SECOND>(p, static_cast<Mask>(~direct), re);
    propagating<false, SECOND>(g, p.R, p.Y, z, zeta, re, im);
}

struct Water {
    f32 H;
    const GSTATE &g;
};

// Where the selectors of a point stand: each in an array of its own, or both in one number.
struct Selectors {
    int ISNG_bits, IBOT_shift;
};
constexpr Selectors APART{-1, 0}, JOINED{0xff, 8};

// All points, of one region. Lanes that are missing in the last block take the first point of it.
template <Kernel KERNEL, bool SECOND>
VORDA_WIDE_TARGET void work(const GreenPoints &p, Selectors selectors, const Water &water, Height &last,
                            const GreenArrays &result) {
    const auto &[H, g] = water;
    Height z, zeta = last;
    const Integers ISNG_bits = _mm512_set1_epi32(selectors.ISNG_bits);
    const __m128i IBOT_shift = _mm_cvtsi32_si128(selectors.IBOT_shift);
    const Lanes mu = _mm512_maskz_loadu_ps(first_lanes(MODES), g.EVK);
    for (int i = 0; i < p.n; i += LANES) {
        const Mask m = first_lanes(p.n - i);
        const Lanes Z = _mm512_mask_loadu_ps(all(p.Z[i]), m, p.Z + i),
                    ZETA = _mm512_mask_loadu_ps(all(p.ZETA[i]), m, p.ZETA + i);
        const Lanes ZB = all(H) - Z, ZETAB = all(H) - ZETA;
        const Integers ISNG = _mm512_mask_loadu_epi32(_mm512_set1_epi32(p.ISNG[i]), m, p.ISNG + i),
                       marks = _mm512_mask_loadu_epi32(_mm512_set1_epi32(p.IBOT[i]), m, p.IBOT + i),
                       IBOT = _mm512_srl_epi32(marks, IBOT_shift);
        const DepthPoint at{_mm512_mask_loadu_ps(all(p.R[i]), m, p.R + i),
                            Z + ZETA,
                            Z - ZETA,
                            ZB + ZETAB,
                            _mm512_and_si512(ISNG, ISNG_bits),
                            _mm512_testn_epi32_mask(IBOT, IBOT)};
        if (p.heights != nullptr)
            take_height(p.heights + i, p.stride, z);
        else
            set_height<KERNEL == FAR>(g, mu, ZB, z);
        set_height<KERNEL == FAR>(g, mu, ZETAB, zeta);
        Lanes re[GREEN_VALUES], im[GREEN_VALUES];
        depth_lanes<KERNEL, SECOND>(g, at, z, zeta, re, im);
#pragma GCC unroll 8
        for (int j = 0; j < VALUES_OF<SECOND>; ++j) {
            _mm512_mask_storeu_ps(result.re[VALUES[j]] + i, m, re[VALUES[j]]);
            _mm512_mask_storeu_ps(result.im[VALUES[j]] + i, m, im[VALUES[j]]);
        }
    }
    last = zeta;
}

// What is worked together: lanes of a group want the same parts of its kernel, or most of them. Any
// grouping gives the same values.
enum Group {
    NEAR_AXIS, // k R <= 3
    NEAR_BEYOND,
    DEEPER_GROUP,
    MANY_MODES, // two or more
    FEW_MODES,
    GROUPS
};

template <bool SECOND>
void work(int group, const GreenPoints &p, Selectors selectors, const Water &water, Height &last,
          const GreenArrays &result) {
    if (group <= NEAR_BEYOND)
        work<NEAR, SECOND>(p, selectors, water, last, result);
    else if (group == DEEPER_GROUP)
        work<DEEPER, SECOND>(p, selectors, water, last, result);
    else
        work<FAR, SECOND>(p, selectors, water, last, result);
}

constexpr int CHUNK = 512, BLOCKS = CHUNK / LANES;

// The lanes of each group in the blocks of a chunk.
struct Groups {
    Mask lanes[BLOCKS][GROUPS];
    int count[GROUPS];
};

int blocks(int points) {
    return (points + LANES - 1) / LANES;
}

VORDA_WIDE_TARGET void group(const GreenPoints &p, f32 H, const GSTATE &g, Groups &groups) {
    for (int &count : groups.count)
        count = 0;
    const Lanes axis = all(3 / g.RK), reach = all(g.reach[1]);
    for (int i = 0; i < p.n; i += LANES) {
        const Mask m = first_lanes(p.n - i);
        const Lanes R = _mm512_maskz_loadu_ps(m, p.R + i);
        const Lanes Y = _mm512_maskz_loadu_ps(m, p.Z + i) + _mm512_maskz_loadu_ps(m, p.ZETA + i);
        const Mask far = _mm512_mask_cmp_ps_mask(m, R, all(H), _CMP_GT_OQ), inner = m & ~far;
        const Mask deeper = _mm512_mask_cmp_ps_mask(inner, Y, all(H), _CMP_GE_OQ), near = inner & ~deeper;
        const Mask beyond = _mm512_mask_cmp_ps_mask(near, R, axis, _CMP_GT_OQ);
        const Mask many = _mm512_mask_cmp_ps_mask(far, R, reach, _CMP_LT_OQ);
        const Mask lanes[GROUPS] = {static_cast<Mask>(near & ~beyond), beyond, deeper, many,
                                    static_cast<Mask>(far & ~many)};
        for (int c = 0; c < GROUPS; ++c) {
            groups.lanes[i / LANES][c] = lanes[c];
            groups.count[c] += __builtin_popcount(lanes[c]);
        }
    }
}

// Joins two groups of one kernel when mixed blocks, a third dearer, are so much fewer.
void join(Groups &groups, int n, int from, int to) {
    const int apart = blocks(groups.count[from]) + blocks(groups.count[to]),
              joined = blocks(groups.count[from] + groups.count[to]);
    if (4 * joined > 3 * apart)
        return;
    for (int b = 0; b < blocks(n); ++b) {
        groups.lanes[b][to] |= groups.lanes[b][from];
        groups.lanes[b][from] = 0;
    }
    groups.count[to] += groups.count[from];
    groups.count[from] = 0;
}

// The points, those of a group side by side from a whole block on, and their values.
struct Pack {
    static constexpr int LENGTH = CHUNK + GROUPS * LANES; // a block is stored whole
    alignas(64) f32 R[LENGTH], Z[LENGTH], ZETA[LENGTH];
    alignas(64) int selectors[LENGTH];
    alignas(64) f32 value[2 * GREEN_VALUES][LENGTH];
    int first[GROUPS];
    GreenPoints points(int group, int n) const {
        const int i = first[group];
        return {n, R + i, Z + i, ZETA + i, selectors + i, selectors + i};
    }
    GreenArrays arrays(int group) {
        GreenArrays a;
        for (int j = 0; j < GREEN_VALUES; ++j) {
            a.re[j] = value[2 * j] + first[group];
            a.im[j] = value[2 * j + 1] + first[group];
        }
        return a;
    }
};

VORDA_WIDE_TARGET void pack(const GreenPoints &p, const Groups &groups, int group, Pack &to) {
    int at = to.first[group];
    for (int i = 0; i < p.n; i += LANES) {
        const Mask m = groups.lanes[i / LANES][group], any = first_lanes(p.n - i);
        if (m == 0)
            continue;
        const auto lanes = [&](const f32 *from, f32 *store) VORDA_WIDE_TARGET {
            _mm512_storeu_ps(store + at, _mm512_maskz_compress_ps(m, _mm512_maskz_loadu_ps(any, from + i)));
        };
        lanes(p.R, to.R);
        lanes(p.Z, to.Z);
        lanes(p.ZETA, to.ZETA);
        const Integers ISNG = _mm512_maskz_loadu_epi32(any, p.ISNG + i),
                       IBOT = _mm512_slli_epi32(_mm512_maskz_loadu_epi32(any, p.IBOT + i), 8);
        _mm512_storeu_si512(to.selectors + at, _mm512_maskz_compress_epi32(m, _mm512_or_si512(ISNG, IBOT)));
        at += __builtin_popcount(m);
    }
}

// Values of all groups to their places.
template <bool SECOND>
VORDA_WIDE_TARGET void unpack(const Groups &groups, const Pack &pack, int n, const GreenArrays &result) {
    constexpr int COUNT = 2 * VALUES_OF<SECOND>;
    int at[GROUPS];
    for (int c = 0; c < GROUPS; ++c)
        at[c] = pack.first[c];
    for (int i = 0; i < n; i += LANES) {
        Lanes x[COUNT];
#pragma GCC unroll 16
        for (int j = 0; j < COUNT; ++j)
            x[j] = _mm512_setzero_ps();
        for (int c = 0; c < GROUPS; ++c) {
            const Mask m = groups.lanes[i / LANES][c];
            if (m == 0)
                continue;
#pragma GCC unroll 16
            for (int j = 0; j < COUNT; ++j) {
                const f32 *from = pack.value[2 * VALUES[j / 2] + j % 2] + at[c];
                x[j] = _mm512_mask_expand_ps(x[j], m, _mm512_loadu_ps(from));
            }
            at[c] += __builtin_popcount(m);
        }
        const Mask any = first_lanes(n - i);
#pragma GCC unroll 16
        for (int j = 0; j < COUNT; ++j)
            _mm512_mask_storeu_ps((j % 2 == 0 ? result.re : result.im)[VALUES[j / 2]] + i, any, x[j]);
    }
}

template <bool SECOND>
void depth_chunk(const GreenPoints &p, const Water &water, Height &last, Pack &packed,
                 const GreenArrays &result) {
    Groups groups;
    group(p, water.H, water.g, groups);
    join(groups, p.n, NEAR_BEYOND, NEAR_AXIS);
    join(groups, p.n, FEW_MODES, MANY_MODES);
    for (int c = 0; c < GROUPS; ++c) {
        if (groups.count[c] == p.n)
            return work<SECOND>(c, p, APART, water, last, result);
    }
    int first = 0;
    for (int c = 0; c < GROUPS; ++c) {
        packed.first[c] = first;
        if (groups.count[c] == 0)
            continue;
        first += padded(groups.count[c]);
        pack(p, groups, c, packed);
        work<SECOND>(c, packed.points(c, groups.count[c]), JOINED, water, last, packed.arrays(c));
    }
    unpack<SECOND>(groups, packed, p.n, result);
}

template <bool SECOND>
void depth_points(const GreenPoints &p, const Water &water, const GreenArrays &result) {
    Pack packed;
    Height last; // of the source points
    for (int i = 0; i < p.n; i += CHUNK) {
        const int n = p.n - i < CHUNK ? p.n - i : CHUNK;
        GreenArrays to;
        for (int j = 0; j < VALUES_OF<SECOND>; ++j) {
            to.re[VALUES[j]] = result.re[VALUES[j]] + i;
            to.im[VALUES[j]] = result.im[VALUES[j]] + i;
        }
        depth_chunk<SECOND>({n, p.R + i, p.Z + i, p.ZETA + i, p.ISNG + i, p.IBOT + i,
                             p.heights != nullptr ? p.heights + i : nullptr, p.stride},
                            water, last, packed, to);
    }
}

VORDA_WIDE_TARGET void store_heights(int n, const f32 *Z, f32 H, const GSTATE &g, std::int64_t stride,
                                     f32 *value) {
    for (int i = 0; i < n; i += LANES) {
        Height h;
        h.above = all(H) - _mm512_maskz_loadu_ps(first_lanes(n - i), Z + i);
        set_propagating(g, h);
        _mm512_storeu_ps(value + i, h.one);
        _mm512_storeu_ps(value + stride + i, h.rest);
        for (int mode = 0; mode < MODES; ++mode) {
            const Turns t = turns(all(g.EVK[mode]) * h.above);
            _mm512_storeu_ps(value + cosine_column(mode) * stride + i, t.c);
            _mm512_storeu_ps(value + (cosine_column(mode) + 1) * stride + i, t.s);
        }
    }
}

} // namespace

bool HeightFactors::make(int n, const f32 *Z, f32 H, const GSTATE &state) {
    if (!wide_available())
        return true;
    if (!value.alloc(padded(n), HEIGHT_FACTORS))
        return false;
    points = n;
    store_heights(n, Z, H, state, value.dim(1), value.data());
    return true;
}

void depth_wide(const GreenPoints &points, f32 H, const GSTATE &state, GreenOrder order,
                const GreenArrays &result) {
    if (order == GreenOrder::second)
        depth_points<true>(points, {H, state}, result);
    else
        depth_points<false>(points, {H, state}, result);
}

#else

bool HeightFactors::make(int, const f32 *, f32, const GSTATE &) {
    return true;
}

void depth_wide(const GreenPoints &, f32, const GSTATE &, GreenOrder, const GreenArrays &) {}

#endif
