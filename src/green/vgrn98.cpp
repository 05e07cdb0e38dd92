// Sorting of the points by method, and the way of a block: gather, evaluate, scatter.
#include "green/vgrn98.hpp"

#include "green/green_block.hpp"
#include "green/near_kernels.hpp"
#include "green/wide_depth.hpp"
#include "green/wide_kernels.hpp"

#include <cassert>

namespace {

// Methods of deep water, by what a block of them needs, m = row of FTAB:
//   m            GINFL (m <= 40) or GINFS, then ADDDIR: ISNG 0, 1, 2
//   LOGARITHM+m  the same, then ADDLOG: ISNG 3, but for the next
//   TAKEN_OUT+m  GINFG: ISNG 3, X <= 3, Y < 4, so rows 41 to 44
constexpr int LOGARITHM = FTAB_ROWS, TAKEN_OUT = 2 * FTAB_ROWS - 40, DEEP_METHODS = TAKEN_OUT + 44;

// The method of a point. Comparisons are written so that a NaN also ends in a valid row.
[[gnu::always_inline]] inline int deep_method(f32 R, f32 Y, int ISNG) {
    const f32 y = Y > 0 ? Y : 0.0f, s = 16 / (Y > 4 ? Y : 4.0f), w = 15 / (R > 3 ? R : 3.0f);
    const int shallow = static_cast<int>(y < 3 ? y : 3.0f) + 1;
    const int deep = 8 - static_cast<int>(s < 3 ? s : 3.0f);
    const int band = Y >= 4 ? deep : shallow;
    const int step = static_cast<int>(w < 4 ? w : 4.0f);
    const int row = R > 3 ? 5 * band - step : 40 + band;
    const int kind = row > 40 && band <= 4 ? TAKEN_OUT : LOGARITHM;
    return row + (ISNG >= 3 ? kind : 0);
}

// Methods of finite depth:
//   m                R <= H, Y < H: FINFS, FINFL or FINFG as m tells in deep water, GNEAR, then the terms
//   DEEPER+1..3      R <= H, Y >= H: GDEEP, then the terms
//   FAR+3 n+1..3     R > H: the first n modes of GEVAN on top of the propagating one, terms taken off
// all of them with GPROPS, and again beyond SHORT_WAVES with GPROPL. 1 to 3 by selectors:
constexpr int PLAIN = 1; // ISNG = 0 and IBOT = 0
constexpr int TERMS = 2; // others without the logarithm
constexpr int WITH_LOG = 3;
constexpr int MODES = 5;
constexpr int DEEPER = DEEP_METHODS, FAR = DEEPER + 3, SHORT_WAVES = FAR + 3 * (MODES + 1),
              FINITE_METHODS = 2 * SHORT_WAVES;

// Distances at which the methods of finite depth change, held by value for the vector loop.
struct Borders {
    f32 H;
    f32 R3;           // k R = 3
    f32 reach[MODES]; // of the evanescent modes
    Borders(f32 depth, const GSTATE &state) : H(depth), R3(3 / state.RK) {
        for (int n = 0; n < MODES; ++n)
            reach[n] = state.reach[n];
    }
};

[[gnu::always_inline]] inline int finite_method(f32 R, f32 Y, const Borders &b, int ISNG, int IBOT) {
    const int terms = ISNG == 0 && IBOT == 0 ? PLAIN : TERMS, selector = ISNG >= 3 ? WITH_LOG : terms;
    const int near = deep_method(R, Y, ISNG), inner = Y >= b.H ? DEEPER + selector : near;
    const int modes =
        (R < b.reach[0]) + (R < b.reach[1]) + (R < b.reach[2]) + (R < b.reach[3]) + (R < b.reach[4]);
    return (R > b.H ? FAR + 3 * modes + selector : inner) + (R > b.R3 ? SHORT_WAVES : 0);
}

VORDA_SIMD void deep_keys(const GreenPoints &p, int *method) {
    const int n = p.n;
    const f32 *R = p.R, *Z = p.Z, *ZETA = p.ZETA;
    const int *ISNG = p.ISNG;
#pragma omp simd
    for (int i = 0; i < n; ++i)
        method[i] = deep_method(R[i], Z[i] + ZETA[i], ISNG[i]);
}

VORDA_SIMD void finite_keys(const GreenPoints &p, Borders borders, int *method) {
    const int n = p.n;
    const f32 *R = p.R, *Z = p.Z, *ZETA = p.ZETA;
    const int *ISNG = p.ISNG, *IBOT = p.IBOT;
#pragma omp simd
    for (int i = 0; i < n; ++i)
        method[i] = finite_method(R[i], Z[i] + ZETA[i], borders, ISNG[i], IBOT[i]);
}

void set_lane(GreenBlock &block, int lane, f32 R, f32 Z, f32 ZETA, int ISNG) {
    block.X[lane] = R;
    block.Y[lane] = Z + ZETA;
    block.D[lane] = Z - ZETA;
    block.ISNG[lane] = ISNG;
}

void set_bottom(GreenBlock &block, int lane, f32 Z, f32 ZETA, f32 H, int IBOT) {
    block.ZB[lane] = H - Z;
    block.ZETAB[lane] = H - ZETA;
    block.IBOT[lane] = IBOT;
}

// The region kernel stores, then the singular terms are added.
void evaluate_deep(int method, GreenOrder order, GreenBlock &block) {
    if (method > TAKEN_OUT + 40) {
        GINFG(method - TAKEN_OUT, order, block);
        return;
    }
    const bool logarithm = method > LOGARITHM;
    const int row = logarithm ? method - LOGARITHM : method;
    if (row > 40)
        GINFS(row, order, block);
    else
        GINFL(row, order, block);
    if (logarithm)
        ADDLOG(order, block);
    else
        ADDDIR(order, block);
}

// R <= H, Y < H.
void evaluate_near(int method, const GSTATE &state, GreenOrder order, GreenBlock &block) {
    const bool taken_out = method > TAKEN_OUT + 40, logarithm = method > LOGARITHM && !taken_out;
    const int row = logarithm ? method - LOGARITHM : method;
    if (taken_out)
        FINFG(method - TAKEN_OUT, order, block);
    else if (row > 40)
        FINFS(row, order, block);
    else
        FINFL(row, order, block);
    GNEAR(state, order, block);
    ADDBOT(order, block);
    ADDDIR(order, block);
    if (logarithm)
        ADDLOG(order, block);
}

void evaluate_finite(int method, const GSTATE &state, GreenOrder order, GreenBlock &block) {
    const bool short_waves = method > SHORT_WAVES;
    const int region = short_waves ? method - SHORT_WAVES : method;
    const bool far = region > FAR;
    if (short_waves)
        GPROPL(state, far, order, block);
    else
        GPROPS(state, far, order, block);
    if (far) {
        const int modes = (region - FAR - 1) / 3, selector = region - FAR - 3 * modes;
        GEVAN(state, modes, order, block);
        if (selector != PLAIN) {
            SUBBOT(order, block);
            SUBDIR(order, block);
            SUBIMG(order, block);
        }
        if (selector == WITH_LOG)
            ADDLOG(order, block);
    } else if (region > DEEPER) {
        const int selector = region - DEEPER;
        GDEEP(state, order, block);
        ADDBOT(order, block);
        if (selector != PLAIN)
            SUBIMG(order, block);
        ADDDIR(order, block);
        if (selector == WITH_LOG)
            ADDLOG(order, block);
    } else {
        evaluate_near(region, state, order, block);
    }
}

void scatter(const GreenBlock &block, const int *list, int count, GreenOrder order,
             const GreenArrays &result) {
    constexpr GreenValue FIRST[4] = {G_, G_R, G_Z, G_ZETA};
    const int values = order == GreenOrder::first ? 4 : GREEN_VALUES;
    for (int j = 0; j < values; ++j) {
        const int value = order == GreenOrder::first ? FIRST[j] : j;
        f32 *re = result.re[value], *im = result.im[value];
        for (int k = 0; k < count; ++k) {
            re[list[k]] = block.re[value][k];
            im[list[k]] = block.im[value][k];
        }
    }
}

} // namespace

bool GreenWork::alloc(int n) {
    return method.alloc(n) && sorted.alloc(n);
}

void VGRN98(const GreenPoints &points, f32 H, const GSTATE &state, GreenOrder order, GreenWork &work,
            const GreenArrays &result) {
    const int n = points.n;
    if (n < 1)
        return;
    assert(work.sorted.size() >= n);
    const bool finite = H > 0;
    if (work.path != GreenPath::sorted && wide_available()) {
        if (finite)
            depth_wide(points, H, state, order, result);
        else
            deep_wide(points, order, result);
        return;
    }
    const int methods = finite ? FINITE_METHODS : DEEP_METHODS;
    int *method = work.method.data(), *sorted = work.sorted.data();
    if (finite)
        finite_keys(points, Borders(H, state), method);
    else
        deep_keys(points, method);
    int first[FINITE_METHODS + 2] = {}; // of each method in `sorted`, then where the next one goes
    for (int i = 0; i < n; ++i)
        ++first[method[i] + 1];
    for (int m = 1; m <= methods + 1; ++m)
        first[m] += first[m - 1];
    for (int i = 0; i < n; ++i)
        sorted[first[method[i]]++] = i;

    GreenBlock block;
    for (int m = 1; m <= methods; ++m) {
        for (int begin = first[m - 1], end = first[m]; begin < end; begin += GREEN_LANES) {
            const int count = end - begin < GREEN_LANES ? end - begin : GREEN_LANES;
            for (int k = 0; k < GREEN_LANES; ++k) {
                const int i = sorted[begin + (k < count ? k : count - 1)];
                set_lane(block, k, points.R[i], points.Z[i], points.ZETA[i], points.ISNG[i]);
                if (finite)
                    set_bottom(block, k, points.Z[i], points.ZETA[i], H, points.IBOT[i]);
            }
            if (finite)
                evaluate_finite(m, state, order, block);
            else
                evaluate_deep(m, order, block);
            scatter(block, sorted + begin, count, order, result);
        }
    }
}

void VGRN1P(f32 R, f32 Z, f32 ZETA, f32 H, const GSTATE &state, int ISNG, int IBOT, f32 (&record)[16]) {
    GreenBlock block;
    if (wide_available()) {
        GreenArrays result;
        for (int j = 0; j < GREEN_VALUES; ++j) {
            result.re[j] = record + 2 * j;
            result.im[j] = record + 2 * j + 1;
        }
        const GreenPoints point{1, &R, &Z, &ZETA, &ISNG, &IBOT};
        if (H > 0)
            depth_wide(point, H, state, GreenOrder::second, result);
        else
            deep_wide(point, GreenOrder::second, result);
        return;
    }
    for (int k = 0; k < GREEN_LANES; ++k) {
        set_lane(block, k, R, Z, ZETA, ISNG);
        if (H > 0)
            set_bottom(block, k, Z, ZETA, H, IBOT);
    }
    if (H > 0)
        evaluate_finite(finite_method(R, Z + ZETA, Borders(H, state), ISNG, IBOT), state, GreenOrder::second,
                        block);
    else
        evaluate_deep(deep_method(R, Z + ZETA, ISNG), GreenOrder::second, block);
    for (int j = 0; j < GREEN_VALUES; ++j) {
        record[2 * j] = block.re[j][0];
        record[2 * j + 1] = block.im[j][0];
    }
}
