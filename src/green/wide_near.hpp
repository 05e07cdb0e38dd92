// The near field of finite depth for sixteen points, as in near_kernels.cpp.
#pragma once

#include "green/wide_f2.hpp"

#ifdef VORDA_HAS_WIDE

#include "green/depth_polynomial.hpp"
#include "green/gstate.hpp"

namespace wide {

// As PolynomialSums.
struct Sums {
    Lanes f, t, v, tv, half_vv;
};

struct Row {
    Lanes value, slope;
};

// Coefficients that are the same for all lanes.
struct SameForAll {
    const f32 *c;
    VORDA_WIDE Lanes operator[](int term) const { return all(c[term]); }
};

// Those of the box of each lane.
struct ByBoxes {
    const f32 (*c)[BOXES];
    Integers box;
    VORDA_WIDE Lanes operator[](int term) const {
        return _mm512_permutexvar_ps(box, _mm512_load_ps(c[term]));
    }
};

// The box in one variable z, 0 to 1, and the local variable.
struct BoxPlace {
    Integers box;
    Lanes local;
};
VORDA_WIDE BoxPlace box_place(Lanes z) {
    const Integers box = whole(_mm512_min_ps(all(4) * z, all(3)));
    return {box, fma(all(8), z, -fma(all(2), real(box), all(1)))};
}
VORDA_WIDE Integers box_of(const BoxPlace &t, const BoxPlace &v) {
    return _mm512_add_epi32(t.box, _mm512_slli_epi32(v.box, 2));
}

template <int DEGREE, class C> VORDA_WIDE Row nested_row(const C &c, int start, Lanes t) {
    Row row{c[start], _mm512_setzero_ps()};
#pragma GCC unroll 16
    for (int i = 1; i <= DEGREE; ++i) {
        row.slope = i == 1 ? row.value : fma(row.slope, t, row.value);
        row.value = fma(row.value, t, c[start + i]);
    }
    return row;
}

template <bool SECOND> VORDA_WIDE void next_row(Sums &s, const Row &row, Lanes v) {
    if constexpr (SECOND) {
        s.half_vv = fma(s.half_vv, v, s.v);
        s.tv = fma(s.tv, v, s.t);
    }
    s.v = fma(s.v, v, s.f);
    s.f = fma(s.f, v, row.value);
    s.t = fma(s.t, v, row.slope);
}

template <class Shape, bool SECOND, int ROW, class C>
VORDA_WIDE void next_rows(const C &c, Lanes t, Lanes v, Sums &s) {
    if constexpr (ROW < Shape::ROWS) {
        next_row<SECOND>(s, nested_row<Shape::DEGREE[ROW]>(c, row_start<Shape>(ROW), t), v);
        next_rows<Shape, SECOND, ROW + 1>(c, t, v, s);
    }
}

template <class Shape, bool SECOND, class C> VORDA_WIDE Sums sums(const C &c, Lanes t, Lanes v) {
    const Lanes zero = _mm512_setzero_ps();
    const Row row = nested_row<Shape::DEGREE[0]>(c, 0, t);
    Sums s{row.value, row.slope, zero, zero, zero};
    next_rows<Shape, SECOND, 1>(c, t, v, s);
    return s;
}

// The same at two values of v, which share the rows.
template <class Shape, bool SECOND, int ROW, class C>
VORDA_WIDE void next_rows(const C &c, Lanes t, Lanes v1, Lanes v2, Sums &s1, Sums &s2) {
    if constexpr (ROW < Shape::ROWS) {
        const Row row = nested_row<Shape::DEGREE[ROW]>(c, row_start<Shape>(ROW), t);
        next_row<SECOND>(s1, row, v1);
        next_row<SECOND>(s2, row, v2);
        next_rows<Shape, SECOND, ROW + 1>(c, t, v1, v2, s1, s2);
    }
}

template <class Shape, bool SECOND, class C>
VORDA_WIDE void sums(const C &c, Lanes t, Lanes v1, Lanes v2, Sums &s1, Sums &s2) {
    const Lanes zero = _mm512_setzero_ps();
    const Row row = nested_row<Shape::DEGREE[0]>(c, 0, t);
    s1 = s2 = {row.value, row.slope, zero, zero, zero};
    next_rows<Shape, SECOND, 1>(c, t, v1, v2, s1, s2);
}

// R <= H, Y < H: adds to the real parts what the bottom brings to F2. Slopes in local variables count 8
// times.
template <bool SECOND>
VORDA_WIDE void depth_and_surface(const GSTATE &g, Lanes R, Lanes D, Lanes Y, Lanes (&re)[GREEN_VALUES]) {
    const Lanes i2 = all(g.HINV2), w = D * D * i2;
    const BoxPlace t = box_place(R * R * i2), d = box_place(w), y = box_place(Y * all(g.HINV));
    const Sums s = sums<BoxS, SECOND>(ByBoxes{g.boxes.S, box_of(t, d)}, t.local, d.local);
    const Sums p = sums<BoxP, SECOND>(ByBoxes{g.boxes.P, box_of(t, y)}, t.local, y.local);
    const Lanes twice = all(8 * g.HINV2X2), inv = all(8 * g.HINV);
    const Lanes R2 = twice * R, D2 = twice * D, bD = D2 * s.v, bP = inv * p.v;
    re[G_] = re[G_] + (s.f + p.f);
    re[G_R] = fma(R2, s.t + p.t, re[G_R]);
    re[G_Z] = re[G_Z] + (bP + bD);
    re[G_ZETA] = re[G_ZETA] + (bP - bD);
    if constexpr (SECOND) {
        const Lanes cD = R2 * D2 * s.tv, cP = R2 * inv * p.tv;
        const Lanes dD = fma(twice, s.v, all(64 * g.HINV2X8) * w * s.half_vv),
                    dP = all(8) * twice * p.half_vv;
        re[G_RZ] = re[G_RZ] + (cP + cD);
        re[G_RZETA] = re[G_RZETA] + (cP - cD);
        re[G_ZZ] = re[G_ZZ] + (dP + dD);
        re[G_ZZETA] = re[G_ZZETA] + (dP - dD);
    }
}

// R <= H, Y >= H: stores the real parts, all of the function but 1/r and 1/rb. A = 2 H - Y.
template <bool SECOND>
VORDA_WIDE void two_depths(const GSTATE &g, Lanes R, Lanes D, Lanes A, Lanes (&re)[GREEN_VALUES]) {
    const Lanes i2 = all(g.HINV2), t = R * R * i2, w = D * D * i2, a = A * A * i2, twice = all(g.HINV2X2);
    Sums s, i; // direct and image
    sums<ShapeS, SECOND>(SameForAll{g.COEF91}, t, w, a, s, i);
    const Lanes R2 = twice * R, D2 = twice * D, A2 = twice * A, bD = D2 * s.v, bA = A2 * i.v;
    re[G_] = s.f + i.f;
    re[G_R] = R2 * (s.t + i.t);
    re[G_Z] = bD - bA;
    re[G_ZETA] = -bD - bA;
    if constexpr (SECOND) {
        const Lanes cD = R2 * D2 * s.tv, cA = R2 * A2 * i.tv, eight = all(g.HINV2X8);
        const Lanes dD = fma(twice, s.v, eight * w * s.half_vv), dA = fma(twice, i.v, eight * a * i.half_vv);
        re[G_RZ] = cD - cA;
        re[G_RZETA] = -cD - cA;
        re[G_ZZ] = dD + dA;
        re[G_ZZETA] = dA - dD;
    }
}

} // namespace wide

#endif
