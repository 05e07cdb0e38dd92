// The wave function of deep water for sixteen points: X = R, Y = z + zeta, r1^2 = X^2 + Y^2, as in
// deep_kernels.cpp, whose formulas these are. What differs: a lane picks the coefficients of its own row from
// registers, all kinds of points are worked at once and blended, a kind that no lane wants is left out.
#pragma once

#include "green/wide_lanes.hpp"

#ifdef VORDA_HAS_WIDE

#include "green/bessel_fits.hpp"
#include "green/deep_fits.hpp"
#include "green/tables/ftab.hpp"
#include "green/vgrn98.hpp"

namespace wide {

// The place of each lane's row (place_in_term). The rows of lanes of one half of the table are in two of its
// three registers, those of X <= 3, Y < 4 in one.
enum class Part { axis, shallow, deep, both };
struct Rows {
    Integers at;
    Mask later, last; // place 16 or more, 32 or more
};

template <Part PART> struct Coefficients {
    const Rows &rows;
    VORDA_WIDE Lanes operator[](int term) const {
        const f32 *c = FTAB_BY_TERM.value[term];
        if constexpr (PART == Part::axis)
            return _mm512_permutexvar_ps(rows.at, _mm512_load_ps(c));
        if constexpr (PART == Part::deep) // five bits of the place count
            return _mm512_permutex2var_ps(_mm512_load_ps(c + 2 * LANES), rows.at, _mm512_load_ps(c + LANES));
        const Lanes any = _mm512_permutex2var_ps(_mm512_load_ps(c), rows.at, _mm512_load_ps(c + LANES));
        if constexpr (PART == Part::shallow)
            return any;
        return _mm512_mask_permutexvar_ps(any, rows.last, rows.at, _mm512_load_ps(c + 2 * LANES));
    }
};

struct TableLanes {
    Lanes B, slope; // slope in v
};

template <int N, class C> VORDA_WIDE Lanes table_row(const C &c, Lanes t) {
    Lanes p = c[FTAB_FIRST[N] + FTAB_DEGREE[N]];
#pragma GCC unroll 8
    for (int k = FTAB_DEGREE[N] - 1; k >= 0; --k)
        p = fma(p, t, c[FTAB_FIRST[N] + k]);
    return p;
}

template <int N, class C> VORDA_WIDE void add_table_row(const C &c, Lanes v, Lanes t, TableLanes &p) {
    p.slope = fma(p.slope, v, p.B);
    p.B = fma(p.B, v, table_row<N>(c, t));
}

template <Part PART> VORDA_WIDE TableLanes table(const Rows &rows, Lanes v, Lanes t) {
    const Coefficients<PART> c{rows};
    const Lanes p6 = table_row<6>(c, t);
    TableLanes p{fma(p6, v, table_row<5>(c, t)), p6};
    add_table_row<4>(c, v, t, p);
    add_table_row<3>(c, v, t, p);
    add_table_row<2>(c, v, t, p);
    add_table_row<1>(c, v, t, p);
    add_table_row<0>(c, v, t, p);
    return p;
}

VORDA_WIDE TableLanes table(const Rows &rows, Lanes v, Lanes t) {
    if (rows.later == 0)
        return table<Part::axis>(rows, v, t);
    if (rows.last == 0)
        return table<Part::shallow>(rows, v, t);
    if (rows.later == 0xffff)
        return table<Part::deep>(rows, v, t);
    return table<Part::both>(rows, v, t);
}

// Kinds of lanes.
struct Kinds {
    Mask far;    // X > 3
    Mask deep;   // Y >= 4
    Mask taken;  // the logarithm is taken out: X <= 3, Y < 4, ISNG = 3
    Mask added;  // it is added: ISNG = 3 elsewhere
    Mask image;  // 1/r1 stays: ISNG < 2
    Mask direct; // 1/r stays: ISNG = 0
    Mask shallow() const { return static_cast<Mask>(~(far | deep)); }
};

struct RealLanes {
    Lanes F, FX, FY, FXY, FYY;
};

// Waves with their X slope and the imaginary parts: 2 pi exp(-Y) times Y0, its slope, J0 and J1.
struct WaveLanes {
    Lanes W, WX, J0, J1;
};

// Functions of X <= 3, less exp(-Y).
struct AxisLanes {
    Lanes J, W, Jm; // Jm: J less its constant, before that rounds its digits away
};

VORDA_WIDE AxisLanes axis_lanes(Lanes x3, Lanes a) {
    constexpr f32 REST[5] = {JA[1], JA[2], JA[3], JA[4], JA[5]};
    const Lanes Jm = polynomial(REST, a) * a;
    return {Jm + all(JA[0]), polynomial(WA, a) * x3, Jm};
}

// X > 3.
VORDA_WIDE WaveLanes wave_lanes(Lanes X, Lanes xinv, Lanes exy) {
    const Lanes x3 = all(3) * xinv, v = x3 * x3, ex = exy * root(xinv);
    const Turns turn = wave_phase(X, _mm512_setzero_ps());
    const Lanes ca = ex * turn.c, sa = ex * turn.s;
    const Lanes P0 = polynomial(P0C, v), Q0 = polynomial(Q0C, v) * x3;
    const Lanes P1 = polynomial(P1C, v), Q1 = polynomial(Q1C, v) * x3;
    return {fma(Q0, ca, P0 * sa), fnma(Q1, sa, P1 * ca), fnma(Q0, sa, P0 * ca), fma(Q1, ca, P1 * sa)};
}

// Y >= 4, as in deep_kernels.cpp.
VORDA_WIDE RealLanes beyond_tail(Lanes X, Lanes Y, Lanes B, Lanes BX, Lanes W, Lanes WX, Lanes i2,
                                 Lanes rinv) {
    const Lanes i3 = i2 * rinv, i5 = i2 * i3, p = Y * i2, q = Y * p;
    const Lanes N = fma(i5, B, -W), rest = fma(p, fma(all(30), q, all(-18)), all(6) * q);
    const Lanes FY = fma(fma(all(2), Y, all(-2)) + rest, i3, -N);
    const Lanes slope = fma(all(6), Y, all(-6)) + fma(all(30), q, p * fma(all(210), q, all(-90)));
    const Lanes NX = fma(i5, fma(X, fnma(all(5) * i2, B, slope), BX), -WX);
    return {-fma(all(2), rinv, FY), fma(all(2) * X, i3, NX), FY, -NX, fma(all(2) - rest, i3, N)};
}

// With the logarithm taken out, X <= 3, Y < 4.
struct TakenLanes {
    Lanes G, GR, GZ, GRZ;
};

// Of the distance r1.
struct Distance {
    Lanes i2, rinv, i3, r1; // 1/r1^2, 1/r1, 1/r1^3, r1, all 0 unless `apart`
    Mask apart;             // r1 above TINY_R1
};

VORDA_WIDE Distance distance(Lanes X, Lanes Y) {
    Distance to;
    const Lanes r2 = fma(X, X, Y * Y);
    to.apart = _mm512_cmp_ps_mask(r2, all(TINY_R1 * TINY_R1), _CMP_GT_OQ);
    const Roots of = roots(select(to.apart, r2, all(1)));
    to.i2 = _mm512_maskz_mov_ps(to.apart, of.inverse);
    to.rinv = _mm512_maskz_mov_ps(to.apart, of.inverse_root);
    to.i3 = to.i2 * to.rinv;
    to.r1 = _mm512_maskz_mov_ps(to.apart, of.root);
    return to;
}

// What the values of a point are made of beside its coefficients.
struct PointLanes {
    Lanes Q, V, BX, L, sinv, exy;
};

// M = 2 - exp(-Y) 2 J0 is what the added logarithm leaves of its factor, small at small r1. 2 - M comes as
// exp(-Y) 2 J0: in G_z = 2 L - G and its like the digits would go.
VORDA_WIDE TakenLanes taken_out(Lanes X, Lanes Y, const TableLanes &p, const AxisLanes &axis,
                                const Distance &to, const PointLanes &at) {
    const auto &[Q, V, BX, L, sinv, exy] = at;
    const Lanes g = decay(Y).rest, h = all(1) - g;
    const Lanes M = fma(g, axis.J, -axis.Jm), px = X * to.rinv * sinv, smooth = fma(to.r1, p.B, -Q);
    const Lanes any = fma(L, axis.W, fma(p.B, X * to.rinv, fma(to.r1, BX, -V))),
                inner = _mm512_maskz_mov_ps(to.apart, any);
    return {fma(M, L, smooth * h), fma(M, px, inner * h), fma(axis.J, L, -smooth) * h,
            fma(axis.J, px, -inner) * h};
}

// Adds S / sqrt(X^2 + Z^2) to the lanes of m, S = 1 or -1; DZ and DZETA: derivatives of Z by z and zeta.
template <int S, int DZ, int DZETA, bool SECOND>
VORDA_WIDE void add_inverse(Mask m, Lanes X, Lanes Z, Lanes (&re)[GREEN_VALUES]) {
    const Lanes r2 = select(m, fma(X, X, Z * Z), all(1)), i1 = all(S) / root(r2), i2 = i1 * i1, i3 = i2 * i1;
    const Lanes by_z = DZ > 0 ? i3 : -i3, by_zeta = DZETA > 0 ? i3 : -i3;
    re[G_] = _mm512_mask_add_ps(re[G_], m, re[G_], i1);
    re[G_R] = _mm512_mask3_fnmadd_ps(X, i3, re[G_R], m);
    re[G_Z] = _mm512_mask3_fnmadd_ps(Z, by_z, re[G_Z], m);
    re[G_ZETA] = _mm512_mask3_fnmadd_ps(Z, by_zeta, re[G_ZETA], m);
    if constexpr (SECOND) {
        const Lanes three = all(3) * i2, mixed = X * Z, twice = fma(Z * Z, three * i3, -i3);
        re[G_RZ] = _mm512_mask3_fmadd_ps(mixed, three * by_z, re[G_RZ], m);
        re[G_RZETA] = _mm512_mask3_fmadd_ps(mixed, three * by_zeta, re[G_RZETA], m);
        re[G_ZZ] = _mm512_mask_add_ps(re[G_ZZ], m, re[G_ZZ], twice);
        re[G_ZZETA] = _mm512_mask_add_ps(re[G_ZZETA], m, re[G_ZZETA], DZ * DZETA > 0 ? twice : -twice);
    }
}

// Adds 2 ln(r1 + Y) to the lanes of m: 1/r1^3, 1/r1, the logarithm and 1/(r1 + Y).
template <bool SECOND>
VORDA_WIDE void add_logarithm(Mask m, Lanes X, Lanes Y, const Distance &to, Lanes L, Lanes sinv,
                              Lanes (&re)[GREEN_VALUES]) {
    re[G_] = _mm512_mask3_fmadd_ps(all(2), L, re[G_], m);
    re[G_R] = _mm512_mask3_fmadd_ps(all(2) * X * to.rinv, sinv, re[G_R], m);
    re[G_Z] = _mm512_mask3_fmadd_ps(all(2), to.rinv, re[G_Z], m);
    if constexpr (SECOND) {
        re[G_RZ] = _mm512_mask3_fnmadd_ps(all(2) * X, to.i3, re[G_RZ], m);
        re[G_ZZ] = _mm512_mask3_fnmadd_ps(all(2) * Y, to.i3, re[G_ZZ], m);
    }
}

// The same for both derivatives by depths, r1 > 0.
template <bool SECOND> VORDA_WIDE void add_logarithm(Mask m, Lanes X, Lanes Y, Lanes (&re)[GREEN_VALUES]) {
    const Distance to = distance(X, Y);
    const Lanes s = select(m, to.r1 + Y, all(1));
    add_logarithm<SECOND>(m, X, Y, to, logarithm(s), all(1) / s, re);
    re[G_ZETA] = _mm512_mask3_fmadd_ps(all(2), to.rinv, re[G_ZETA], m);
    if constexpr (SECOND) {
        re[G_RZETA] = _mm512_mask3_fnmadd_ps(all(2) * X, to.i3, re[G_RZETA], m);
        re[G_ZZETA] = _mm512_mask3_fnmadd_ps(all(2) * Y, to.i3, re[G_ZZETA], m);
    }
}

// Row and local variables of each lane; a NaN takes the second operand of min and max, and so a valid row.
struct Place {
    const Kinds &kind;
    Rows rows;
    Lanes t, v, slope; // slope: dv/dX
    Lanes xinv;        // of X > 3
    Lanes x3, a;       // X/3 and its square
};

VORDA_WIDE Kinds kinds_of(Lanes X, Lanes Y, Integers ISNG) {
    Kinds kind;
    kind.far = _mm512_cmp_ps_mask(X, all(3), _CMP_GT_OQ);
    kind.deep = _mm512_cmp_ps_mask(Y, all(4), _CMP_GE_OQ);
    const Mask logarithms = _mm512_cmpge_epi32_mask(ISNG, _mm512_set1_epi32(3));
    kind.taken = logarithms & kind.shallow();
    kind.added = static_cast<Mask>(logarithms & ~kind.taken);
    kind.image = _mm512_cmplt_epi32_mask(ISNG, _mm512_set1_epi32(2));
    kind.direct = _mm512_cmpeq_epi32_mask(ISNG, _mm512_setzero_si512());
    return kind;
}

VORDA_WIDE Place place_of(Lanes X, Lanes Y, const Kinds &kind) {
    const Lanes x3 = X * all(1 / 3.0f), a = x3 * x3;
    const Integers band_shallow = whole(_mm512_min_ps(_mm512_max_ps(Y, _mm512_setzero_ps()), all(3)));
    Integers band = band_shallow, half = _mm512_setzero_si512(); // half: as place_in_term
    Place at{kind, {}, Y - real(band_shallow), a, all(2 / 3.0f) * x3, all(0), x3, a};
    if (kind.deep != 0) {
        const Lanes over = all(16) / _mm512_max_ps(Y, all(4));
        const Integers band_deep = whole(_mm512_min_ps(over, all(3)));
        band = _mm512_mask_sub_epi32(band, kind.deep, _mm512_set1_epi32(7), band_deep);
        half = _mm512_mask_blend_epi32(kind.far, _mm512_set1_epi32(20), _mm512_set1_epi32(4));
        half = _mm512_maskz_mov_epi32(kind.deep, half);
        at.t = select(kind.deep, over - real(band_deep), at.t);
    }
    Integers row = band;
    if (kind.far != 0) {
        const Lanes far_X = _mm512_max_ps(X, all(3)), xinv = all(1) / far_X, w_about = all(15) * xinv;
        const Lanes w = fma(fnma(w_about, far_X, all(15)), xinv, w_about); // 15/X to its last digit
        const Integers step = whole(_mm512_min_ps(w, all(4)));
        const Integers five = _mm512_add_epi32(_mm512_slli_epi32(band, 2), band);
        row = _mm512_mask_sub_epi32(row, kind.far, _mm512_add_epi32(five, _mm512_set1_epi32(8)), step);
        at.v = select(kind.far, w - real(step), at.v);
        at.slope = select(kind.far, all(-15) * xinv * xinv, at.slope);
        at.xinv = xinv;
    }
    row = _mm512_add_epi32(row, half);
    at.rows = {row, _mm512_cmpge_epi32_mask(row, _mm512_set1_epi32(LANES)),
               _mm512_cmpge_epi32_mask(row, _mm512_set1_epi32(2 * LANES))};
    return at;
}

// Waves and imaginary parts, and the functions of X <= 3.
VORDA_WIDE void waves(Lanes X, const Place &at, Lanes exy, WaveLanes &wave, AxisLanes &axis) {
    const Lanes zero = _mm512_setzero_ps();
    const Mask far = at.kind.far;
    wave = {zero, zero, zero, zero};
    axis = {zero, zero, zero};
    if (far != 0xffff) {
        axis = axis_lanes(at.x3, at.a);
        const Lanes pi_exy = all(PI_F) * exy;
        wave.J0 = pi_exy * axis.J;
        wave.J1 = pi_exy * axis.W;
    }
    if (far != 0) {
        const WaveLanes w = wave_lanes(X, at.xinv, exy);
        wave = {_mm512_maskz_mov_ps(far, w.W), _mm512_maskz_mov_ps(far, w.WX), select(far, w.J0, wave.J0),
                select(far, w.J1, wave.J1)};
    }
}

// F2 with its derivatives; Y < 4 by the free-surface relation. `near`: its Q, V and, with the logarithm, L
// and 1/(r1 + Y) are filled for the lanes that need them.
VORDA_WIDE RealLanes real_lanes(Lanes X, Lanes Y, const Place &at, const Distance &to, const TableLanes &p,
                                const WaveLanes &wave, const AxisLanes &axis, PointLanes &near) {
    const Kinds &kind = at.kind;
    const Mask shallow = kind.shallow(), asked = shallow | kind.added;
    Lanes F = p.B - wave.W, FX = near.BX - wave.WX;
    if (asked != 0) { // ln(r1 + Y)
        const Mask one = static_cast<Mask>(~to.apart & kind.taken);
        const Lanes s = select(one, all(1), to.r1 + Y);
        near.L = logarithm(s);
        near.sinv = all(1) / s;
    }
    if (shallow != 0) {
        near.Q = polynomial(QA, at.a);
        near.V = polynomial(VA, at.a) * at.x3;
        const Lanes f = near.exy * fnma(axis.J, near.L, fma(to.r1, p.B, -near.Q));
        const Lanes slope = fma(X * to.rinv, fnma(axis.J, near.sinv, p.B), fma(to.r1, near.BX, -near.V));
        F = select(shallow, f, F);
        FX = select(shallow, near.exy * fma(near.L, axis.W, slope), FX);
    }
    RealLanes r;
    r.F = F;
    r.FX = FX;
    r.FY = -fma(all(2), to.rinv, F);
    r.FXY = fma(all(2) * X, to.i3, -FX);
    r.FYY = fma(all(2) * Y, to.i3, -r.FY);
    if (kind.deep != 0) {
        const RealLanes d = beyond_tail(X, Y, p.B, near.BX, wave.W, wave.WX, to.i2, to.rinv);
        r = {select(kind.deep, d.F, r.F), select(kind.deep, d.FX, r.FX), select(kind.deep, d.FY, r.FY),
             select(kind.deep, d.FXY, r.FXY), select(kind.deep, d.FYY, r.FYY)};
    }
    return r;
}

// The real parts with the terms that stay, but 1/r, and the imaginary parts: the values that the order
// asks for.
template <bool SECOND>
VORDA_WIDE void deep_lanes(Lanes X, Lanes Y, const Kinds &kind, Lanes (&re)[GREEN_VALUES],
                           Lanes (&im)[GREEN_VALUES]) {
    const Lanes zero = _mm512_setzero_ps();
    const Place at = place_of(X, Y, kind);
    const TableLanes p = table(at.rows, at.v, at.t);
    const Distance to = distance(X, Y);
    const Lanes exy = exponential(-_mm512_min_ps(Y, all(MAX_DEPTH)));
    WaveLanes wave;
    AxisLanes axis;
    waves(X, at, exy, wave, axis);
    PointLanes near{zero, zero, p.slope * at.slope, zero, zero, exy};
    const RealLanes r = real_lanes(X, Y, at, to, p, wave, axis, near);

    const Lanes n3 = _mm512_maskz_mov_ps(kind.image, to.i3);
    re[G_] = _mm512_mask_add_ps(r.F, kind.image, r.F, to.rinv);
    re[G_R] = fnma(X, n3, r.FX);
    re[G_Z] = fnma(Y, n3, r.FY);
    if constexpr (SECOND) {
        const Lanes n5 = all(3) * n3 * to.i2;
        re[G_RZ] = fma(X * Y, n5, r.FXY);
        re[G_ZZ] = r.FYY + fma(Y * Y, n5, -n3);
    }
    if (kind.taken != 0) {
        const Mask m = kind.taken;
        const TakenLanes g = taken_out(X, Y, p, axis, to, near);
        re[G_] = select(m, g.G, re[G_]);
        re[G_R] = select(m, g.GR, re[G_R]);
        re[G_Z] = select(m, g.GZ, re[G_Z]);
        if constexpr (SECOND) {
            re[G_RZ] = select(m, g.GRZ, re[G_RZ]);
            re[G_ZZ] = select(m, fma(all(2), to.rinv, -g.GZ), re[G_ZZ]);
        }
    }
    if (kind.added != 0)
        add_logarithm<SECOND>(kind.added, X, Y, to, near.L, near.sinv, re);
    re[G_ZETA] = re[G_Z];
    im[G_] = -wave.J0;
    im[G_R] = wave.J1;
    im[G_Z] = im[G_ZETA] = wave.J0;
    if constexpr (SECOND) {
        re[G_RZETA] = re[G_RZ];
        re[G_ZZETA] = re[G_ZZ];
        im[G_RZ] = im[G_RZETA] = -wave.J1;
        im[G_ZZ] = im[G_ZZETA] = -wave.J0;
    }
}

} // namespace wide

#endif
