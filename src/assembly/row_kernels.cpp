#include "assembly/row_kernels.hpp"

#include "base/simd.hpp"

#include <cmath>

namespace {

#define VORDA_INLINE [[gnu::always_inline]] inline

// A quantity of the source panel of point j: one value for each point, or the same for all.
struct Each {
    const f32 *value;
    VORDA_INLINE f32 operator[](int j) const { return value[j]; }
};
struct Same {
    f32 value;
    VORDA_INLINE f32 operator[](int) const { return value; }
};
template <class V> struct Source { V n1, n2, n3, area; };
VORDA_INLINE Source<Each> each_source(const SourceArea &s) {
    return {{s.n1}, {s.n2}, {s.n3}, {s.area}};
}
VORDA_INLINE Source<Same> one_source(const OneSource &s) {
    return {{s.n1}, {s.n2}, {s.n3}, {s.area}};
}

// The arrays of a GreenRow, as locals of the loops.
struct GreenLocals {
    const f32 *gr, *gi, *rr, *ri, *vr, *vi;
    VORDA_INLINE explicit GreenLocals(const GreenRow &g)
        : gr(g.G.re), gi(g.G.im), rr(g.GR.re), ri(g.GR.im), vr(g.GV.re), vi(g.GV.im) {}
};

template <class V>
VORDA_INLINE void accumulate(int n, const GreenRow &green, const SourceArea &at, const Source<V> source,
                             Split S, Split D) {
    const GreenLocals g(green);
    const f32 *cosine = at.cosine, *sine = at.sine;
    f32 *sr = S.re, *si = S.im, *dr = D.re, *di = D.im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const f32 w = source.area[j];
        const f32 h = source.n1[j] * cosine[j] + source.n2[j] * sine[j];
        sr[j] += w * g.gr[j];
        si[j] += w * g.gi[j];
        dr[j] += w * (g.rr[j] * h - g.vr[j] * source.n3[j]);
        di[j] += w * (g.ri[j] * h - g.vi[j] * source.n3[j]);
    }
}

template <class V>
VORDA_INLINE void finish(int n, const GreenRow &green, const SourceArea &at, const Source<V> source, f32 NU,
                         Split S, Split D) {
    const int *ISNG = green.ISNG;
    const f32 LOGT = green.LOGT;
    const f32 *EB = at.EB, *EFS = at.EFS;
    f32 *sr = S.re, *si = S.im, *dr = D.re, *di = D.im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const f32 t = sr[j] + (ISNG[j] == 3 ? source.area[j] * LOGT : 0.0f);
        dr[j] = NU * NU * (EB[j] * dr[j] - EFS[j] * t);
        di[j] = NU * NU * (EB[j] * di[j] - EFS[j] * si[j]);
        sr[j] = NU * t;
        si[j] = NU * si[j];
    }
}

template <class V> VORDA_INLINE void velocity(int n, const VelocityRow &at, const V area, const Split *sum) {
    const f32 *rr = at.GR.re, *ri = at.GR.im, *vr = at.GV.re, *vi = at.GV.im;
    const f32 *cosine = at.cosine, *sine = at.sine;
    f32 *xr = sum[0].re, *xi = sum[0].im, *yr = sum[1].re, *yi = sum[1].im, *zr = sum[2].re, *zi = sum[2].im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const f32 w = area[j];
        xr[j] += w * cosine[j] * rr[j];
        xi[j] += w * cosine[j] * ri[j];
        yr[j] += w * sine[j] * rr[j];
        yi[j] += w * sine[j] * ri[j];
        zr[j] += w * vr[j];
        zi[j] += w * vi[j];
    }
}

template <class V>
VORDA_INLINE void point_velocity(int n, const VelocityRow &at, const V area, f32 NU, const f32 *EB,
                                 const Split *value) {
    const f32 *rr = at.GR.re, *ri = at.GR.im, *vr = at.GV.re, *vi = at.GV.im;
    const f32 *cosine = at.cosine, *sine = at.sine;
    f32 *xr = value[0].re, *xi = value[0].im, *yr = value[1].re, *yi = value[1].im, *zr = value[2].re,
        *zi = value[2].im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const f32 w = area[j] * (-NU * NU * EB[j]), wc = w * cosine[j], ws = w * sine[j];
        xr[j] = wc * rr[j];
        xi[j] = wc * ri[j];
        yr[j] = ws * rr[j];
        yi[j] = ws * ri[j];
        zr[j] = w * vr[j];
        zi[j] = w * vi[j];
    }
}

// One real array of the images: all of them in one pass, added in their order to what is there or to 0.
template <int COUNT, bool ADD>
VORDA_INLINE void images_pass(int n, const Images &images, const f32 *x, f32 *sum) {
    const std::int64_t stride = images.stride;
    const f32 s0 = images.sign[0], s1 = images.sign[1], s2 = images.sign[2], s3 = images.sign[3];
    const f32 *x1 = COUNT > 1 ? x + stride : x, *x2 = COUNT > 2 ? x + 2 * stride : x;
    const f32 *x3 = COUNT > 2 ? x + 3 * stride : x;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        f32 all = 0.0f + s0 * x[j];
        if (COUNT > 1)
            all += s1 * x1[j];
        if (COUNT > 2)
            all = all + s2 * x2[j] + s3 * x3[j];
        sum[j] = ADD ? sum[j] + all : all;
    }
}

template <bool ADD> VORDA_INLINE void images_pass(int n, const Images &images, const f32 *x, f32 *sum) {
    if (images.count == 1)
        images_pass<1, ADD>(n, images, x, sum);
    else if (images.count == 2)
        images_pass<2, ADD>(n, images, x, sum);
    else
        images_pass<4, ADD>(n, images, x, sum);
}

} // namespace

VORDA_SIMD void sum_images(int n, const Images &images, ConstSplit coefficient, Split sum) {
    images_pass<false>(n, images, coefficient.re, sum.re);
    images_pass<false>(n, images, coefficient.im, sum.im);
}

VORDA_SIMD void add_images(int n, const Images &images, ConstSplit coefficient, Split sum) {
    images_pass<true>(n, images, coefficient.re, sum.re);
    images_pass<true>(n, images, coefficient.im, sum.im);
}

VORDA_SIMD void pair_directions(int n, const FixedPoint &point, const f32 *px, const f32 *py,
                                const PairDirections &out) {
    const f32 x = point.x, y = point.y, sx = point.sx, sy = point.sy, NU = point.NU;
    f32 *RR = out.RR, *CR = out.CR, *SR = out.SR, *CC = out.CC, *SC = out.SC;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const f32 dx = px[j] - sx * x;
        const f32 dy = py[j] - sy * y;
        const f32 d = std::sqrt(dx * dx + dy * dy);
        const f32 q = d > 1.0e-6f ? 1.0f / d : 0.0f;
        RR[j] = NU * d;
        CR[j] = dx * q;
        SR[j] = dy * q;
        CC[j] = (x - sx * px[j]) * q;
        SC[j] = (y - sy * py[j]) * q;
    }
}

VORDA_SIMD bool has_mark(int n, int mark, const std::uint16_t *code) {
    unsigned all = 0;
#pragma omp simd reduction(| : all)
    for (int j = 0; j < n; ++j)
        all |= code[j];
    return (all & static_cast<unsigned>(mark)) != 0;
}

VORDA_SIMD void decode_pairs(int n, int shift, const std::uint16_t *code, int *ISNG, int *IBOT) {
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const int group = code[j] >> shift;
        ISNG[j] = group & 3;
        IBOT[j] = (group >> 2) & 1;
    }
}

VORDA_SIMD void scale_to(int n, f32 factor, const f32 *source, f32 *value) {
#pragma omp simd
    for (int j = 0; j < n; ++j)
        value[j] = factor * source[j];
}

// Both directions of a pair in one pass, as they share most of what they read.
VORDA_SIMD void centroid_coefficients(int n, f32 NU, const Direction &row, const Direction &column,
                                      const OneSource &one) {
    const GreenLocals g(row.green);
    const int *ISNG = row.green.ISNG;
    const f32 LOGT = row.green.LOGT;
    const f32 *fr = column.green.GV.re, *fi = column.green.GV.im;
    const f32 *n1 = row.source.n1, *n2 = row.source.n2, *n3 = row.source.n3, *area = row.source.area;
    const f32 *CR = row.source.cosine, *SR = row.source.sine, *CC = column.source.cosine,
              *SC = column.source.sine;
    const f32 *EB = row.source.EB, *EFR = row.source.EFS, *EFC = column.source.EFS;
    f32 *sr = row.S.re, *si = row.S.im, *dr = row.D.re, *di = row.D.im;
    f32 *cr = column.S.re, *ci = column.S.im, *er = column.D.re, *ei = column.D.im;
    const f32 m1 = one.n1, m2 = one.n2, m3 = one.n3, b = NU * one.area;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        const f32 tr = g.gr[j] + (ISNG[j] == 3 ? LOGT : 0.0f), ti = g.gi[j], rr = g.rr[j], ri = g.ri[j];
        const f32 a = NU * area[j], h = n1[j] * CR[j] + n2[j] * SR[j], k = m1 * CC[j] + m2 * SC[j];
        sr[j] = a * tr;
        si[j] = a * ti;
        dr[j] = NU * a * (EB[j] * (rr * h - g.vr[j] * n3[j]) - EFR[j] * tr);
        di[j] = NU * a * (EB[j] * (ri * h - g.vi[j] * n3[j]) - EFR[j] * ti);
        cr[j] = b * tr;
        ci[j] = b * ti;
        er[j] = NU * b * (EB[j] * (rr * k - fr[j] * m3) - EFC[j] * tr);
        ei[j] = NU * b * (EB[j] * (ri * k - fi[j] * m3) - EFC[j] * ti);
    }
}

VORDA_SIMD void gauss_accumulate(int n, const GreenRow &green, const SourceArea &source, Split S, Split D) {
    accumulate(n, green, source, each_source(source), S, D);
}

VORDA_SIMD void gauss_accumulate(int n, const GreenRow &green, const SourceArea &source, const OneSource &one,
                                 Split S, Split D) {
    accumulate(n, green, source, one_source(one), S, D);
}

VORDA_SIMD void gauss_finish(int n, const GreenRow &green, const SourceArea &source, f32 NU, Split S,
                             Split D) {
    finish(n, green, source, each_source(source), NU, S, D);
}

VORDA_SIMD void gauss_finish(int n, const GreenRow &green, const SourceArea &source, const OneSource &one,
                             f32 NU, Split S, Split D) {
    finish(n, green, source, one_source(one), NU, S, D);
}

VORDA_SIMD void velocity_accumulate(int n, const VelocityRow &at, const f32 *area, const Split *V) {
    velocity(n, at, Each{area}, V);
}

VORDA_SIMD void velocity_accumulate(int n, const VelocityRow &at, f32 area, const Split *V) {
    velocity(n, at, Same{area}, V);
}

VORDA_SIMD void velocity_finish(int n, f32 NU, const f32 *EB, const Split *V) {
    for (int c = 0; c < 3; ++c) {
        f32 *re = V[c].re, *im = V[c].im;
#pragma omp simd
        for (int j = 0; j < n; ++j) {
            re[j] *= -NU * NU * EB[j];
            im[j] *= -NU * NU * EB[j];
        }
    }
}

VORDA_SIMD void centroid_velocity(int n, const VelocityRow &at, const f32 *area, f32 NU, const f32 *EB,
                                  const Split *V) {
    point_velocity(n, at, Each{area}, NU, EB, V);
}

VORDA_SIMD void centroid_velocity(int n, const VelocityRow &at, f32 area, f32 NU, const f32 *EB,
                                  const Split *V) {
    point_velocity(n, at, Same{area}, NU, EB, V);
}

VORDA_SIMD void add_surface_pairs(int n, const f32 *EFR, const f32 *EFC, ConstSplit value, Split sum) {
    const f32 *vr = value.re, *vi = value.im;
    f32 *sr = sum.re, *si = sum.im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        sr[j] += EFR[j] * EFC[j] * vr[j];
        si[j] += EFR[j] * EFC[j] * vi[j];
    }
}
