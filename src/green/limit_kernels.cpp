// The pair and its images, the rest of the image series and the modes, as vgrn0.hpp tells.
#include "green/limit_kernels.hpp"

#include "green/block_math.hpp"

#include <cmath>

namespace {

constexpr f32 PI_F = 3.14159265f;
constexpr f32 MAX_DECAY_OF_LIMIT = 80;

// Rest of the image series, by rows of w^j, each a polynomial in t, constant first.
constexpr f32 REST[2][22] = {
    {-1.8090787f,     -0.025257111f,    0.00086546008f,   -0.000040628242f, 0.0000019253471f, 0.050514176f,
     -0.0069237994f,  0.00073292217f,   -0.000066353379f, 0.0000039773372f, 0.0023083785f,    -0.00097874738f,
     0.00020597281f,  -0.000033337874f, 0.0000052404189f, 0.0001293368f,    -0.00010878528f,  0.000039646078f,
     -0.00000890707f, 0.0000091325255f, -0.000012699054f, 0.0000046593414f},
    {0.30685282f,      -0.012307164f,   0.0006534112f,   -0.000036029625f,  0.0000018225063f,
     0.02461428f,      -0.005227393f,   0.00065004325f,  -0.000062860243f,  0.0000038559242f,
     0.0017428991f,    -0.00086821296f, 0.00019542805f,  -0.000032596614f,  0.0000051923985f,
     0.00011462581f,   -0.00010319482f, 0.000038777456f, -0.0000088196493f, 0.0000087028902f,
     -0.000012424751f, 0.0000046035811f}};

// Large-argument series of sqrt(2 x / pi) exp(x) K0(x) (A) and K1(x) (B) in w = (pi/2)/x, for x >= pi/2.
constexpr f32 A7[7] = {0.99999988f,  -0.079562694f,  0.028229972f, -0.016976781f,
                       0.011013586f, -0.0052129063f, 0.0011713845f};
constexpr f32 B7[7] = {1.0000002f,    0.23871414f,   -0.04716581f, 0.02410116f,
                       -0.014671038f, 0.0067597246f, -0.001499919f};

// A sum of terms of one lane.
struct LimitSum {
    f32 G, R, z, zeta, Rz, Rzeta, zz, zzeta;
};

// A function of R and Z from its value and derivatives; DZ and DZETA are those of Z, 1 or -1.
struct LimitTerm {
    f32 G, R, Z, RZ, ZZ;
};
template <int DZ, int DZETA, bool SECOND>
[[gnu::always_inline]] inline void add(LimitSum &s, const LimitTerm &t) {
    s.G += t.G;
    s.R += t.R;
    s.z += DZ * t.Z;
    s.zeta += DZETA * t.Z;
    if constexpr (SECOND) {
        s.Rz += DZ * t.RZ;
        s.Rzeta += DZETA * t.RZ;
        s.zz += t.ZZ;
        s.zzeta += DZ * DZETA * t.ZZ;
    }
}

// factor / sqrt(R^2 + Z^2). Lanes of factor 0 may have R = Z = 0: they get a harmless distance.
[[gnu::always_inline]] inline LimitTerm image(f32 factor, f32 R, f32 Z) {
    const f32 r2 = R * R + Z * Z, i2 = 1 / (factor != 0 ? r2 : 1.0f), i1 = factor * std::sqrt(i2),
              i3 = i1 * i2;
    return {i1, -R * i3, -Z * i3, 3 * R * Z * i3 * i2, (3 * Z * Z * i2 - 1) * i3};
}

// A row of the rest and its slope in t.
struct RestRow {
    f32 value, slope;
};
[[gnu::always_inline]] inline RestRow row4(const f32 *p, f32 t) {
    return {(((p[4] * t + p[3]) * t + p[2]) * t + p[1]) * t + p[0],
            ((4 * p[4] * t + 3 * p[3]) * t + 2 * p[2]) * t + p[1]};
}

struct RestSum {
    f32 s, t, w, tw, half_ww;
    [[gnu::always_inline]] void next(RestRow row, f32 at) {
        half_ww = half_ww * at + w;
        tw = tw * at + t;
        w = w * at + s;
        s = s * at + row.value;
        t = t * at + row.slope;
    }
};

// factor times the rest of the image series at (R^2, Z^2).
[[gnu::always_inline]] inline LimitTerm rest(const f32 (&c)[22], f32 factor, f32 R, f32 Z) {
    const f32 t = R * R, w = Z * Z;
    RestSum sum{(c[21] * t + c[20]) * t + c[19], 2 * c[21] * t + c[20], 0, 0, 0};
    sum.next({((c[18] * t + c[17]) * t + c[16]) * t + c[15], (3 * c[18] * t + 2 * c[17]) * t + c[16]}, w);
    sum.next(row4(c + 10, t), w);
    sum.next(row4(c + 5, t), w);
    sum.next(row4(c, t), w);
    return {factor * sum.s, factor * 2 * R * sum.t, factor * 2 * Z * sum.w, factor * 4 * R * Z * sum.tw,
            factor * (2 * sum.w + 8 * w * sum.half_ww)};
}

template <bool SECOND> [[gnu::always_inline]] inline void store(const LimitSum &s, int k, GreenBlock &b) {
    b.re[G_][k] = s.G;
    b.re[G_R][k] = s.R;
    b.re[G_Z][k] = s.z;
    b.re[G_ZETA][k] = s.zeta;
    if constexpr (SECOND) {
        b.re[G_RZ][k] = s.Rz;
        b.re[G_RZETA][k] = s.Rzeta;
        b.re[G_ZZ][k] = s.zz;
        b.re[G_ZZETA][k] = s.zzeta;
    }
}

template <bool LID, bool SECOND> [[gnu::always_inline]] inline void images(GreenBlock &b) {
    constexpr f32 SIGMA = LID ? 1.0f : -1.0f;
    constexpr const f32(&c)[22] = REST[LID ? 0 : 1];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        // B = Y - 2 with its digits near the bottom.
        const f32 R = b.X[k], D = b.D[k], Y = b.Y[k], B = -(b.ZB[k] + b.ZETAB[k]);
        const bool shallow = Y < 1;
        const f32 mirrored = !LID && shallow ? -1.0f : 1.0f, third = !LID && !shallow ? -1.0f : 1.0f;
        LimitSum s{};
        add<1, -1, SECOND>(s, rest(c, 1, R, D));
        add<1, 1, SECOND>(s, rest(c, mirrored, R, shallow ? Y : B));
        add<1, 1, SECOND>(s, image(third, R, shallow ? Y + 2 : B - 2));
        add<1, -1, SECOND>(s, image(SIGMA, R, D - 2));
        add<1, -1, SECOND>(s, image(SIGMA, R, D + 2));
        add<1, -1, SECOND>(s, image(b.ISNG[k] < 1 ? 1.0f : 0.0f, R, D));
        add<1, 1, SECOND>(s, image(b.IBOT[k] < 1 ? 1.0f : 0.0f, R, B));
        add<1, 1, SECOND>(s, image(b.ISNG[k] < 2 ? SIGMA : 0.0f, R, Y));
        store<SECOND>(s, k, b);
    }
}

// What the modes have of the points: cosine and sine of beta u and beta v, exp(-beta R), and their steps.
struct ModeLanes {
    alignas(64) f32 cu[GREEN_LANES], su[GREEN_LANES], cv[GREEN_LANES], sv[GREEN_LANES], decay[GREEN_LANES];
};

template <bool LID>
[[gnu::always_inline]] inline void start_modes(const GreenBlock &b, ModeLanes &mode, ModeLanes &step) {
    constexpr f32 FIRST = LID ? PI_F : 0.5f * PI_F;
    exponentials([&](int k) { return FIRST * b.X[k]; }, MAX_DECAY_OF_LIMIT, mode.decay);
    exponentials([&](int k) { return PI_F * b.X[k]; }, MAX_DECAY_OF_LIMIT, step.decay);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const Turn u = turn(FIRST * b.ZB[k]), v = turn(FIRST * b.ZETAB[k]);
        mode.cu[k] = u.c;
        mode.su[k] = u.s;
        mode.cv[k] = v.c;
        mode.sv[k] = v.s;
        step.cu[k] = LID ? u.c : u.c * u.c - u.s * u.s;
        step.su[k] = LID ? u.s : 2 * u.c * u.s;
        step.cv[k] = LID ? v.c : v.c * v.c - v.s * v.s;
        step.sv[k] = LID ? v.s : 2 * v.c * v.s;
    }
}

template <bool SECOND>
[[gnu::always_inline]] inline void add_mode(f32 beta, ModeLanes &mode, const ModeLanes &step, GreenBlock &b) {
    const Polynomial<7> A(A7), B(B7);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        // Modes of a faster decay are nothing, and products would leave the normal numbers.
        const f32 x = beta * b.X[k], w = (0.5f * PI_F) / x;
        const f32 decay = x <= MAX_DECAY_OF_LIMIT ? mode.decay[k] : 0.0f;
        const f32 cu = mode.cu[k], su = mode.su[k], cv = mode.cv[k], sv = mode.sv[k];
        const f32 e = 4 * decay * std::sqrt(w), T0 = e * A(w), T1 = beta * e * B(w);
        const f32 cc = cu * cv, sc = beta * su * cv, cs = beta * cu * sv;
        b.re[G_][k] += T0 * cc;
        b.re[G_R][k] -= T1 * cc;
        b.re[G_Z][k] += T0 * sc;
        b.re[G_ZETA][k] += T0 * cs;
        if constexpr (SECOND) {
            b.re[G_RZ][k] -= T1 * sc;
            b.re[G_RZETA][k] -= T1 * cs;
            b.re[G_ZZ][k] -= beta * beta * T0 * cc;
            b.re[G_ZZETA][k] += beta * beta * T0 * (su * sv);
        }
        mode.cu[k] = cu * step.cu[k] - su * step.su[k];
        mode.su[k] = su * step.cu[k] + cu * step.su[k];
        mode.cv[k] = cv * step.cv[k] - sv * step.sv[k];
        mode.sv[k] = sv * step.cv[k] + cv * step.sv[k];
        mode.decay[k] = decay * step.decay[k];
    }
}

template <bool LID, bool SECOND> [[gnu::always_inline]] inline void modes(GreenBlock &b) {
    constexpr int MODES = 7;
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = b.X[k];
        LimitSum s{};
        if constexpr (LID) {
            s.G = -2 * logf(R);
            s.R = -2 / R;
        }
        add<1, 1, SECOND>(s, image(b.ISNG[k] >= 2 ? (LID ? -1.0f : 1.0f) : 0.0f, R, b.Y[k]));
        add<-1, -1, SECOND>(s, image(b.IBOT[k] >= 1 ? -1.0f : 0.0f, R, b.ZB[k] + b.ZETAB[k]));
        add<1, -1, SECOND>(s, image(b.ISNG[k] >= 1 ? -1.0f : 0.0f, R, b.D[k]));
        store<SECOND>(s, k, b);
    }
    ModeLanes mode, step;
    start_modes<LID>(b, mode, step);
    f32 beta = LID ? PI_F : 0.5f * PI_F;
    for (int n = 0; n < MODES; ++n) {
        add_mode<SECOND>(beta, mode, step, b);
        beta += PI_F;
    }
}

template <bool LID, bool SECOND> [[gnu::always_inline]] inline void pair(GreenBlock &b) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        LimitSum s{};
        add<1, 1, SECOND>(s, image(b.ISNG[k] < 2 ? (LID ? 1.0f : -1.0f) : 0.0f, b.X[k], b.Y[k]));
        add<1, -1, SECOND>(s, image(b.ISNG[k] < 1 ? 1.0f : 0.0f, b.X[k], b.D[k]));
        store<SECOND>(s, k, b);
    }
}

} // namespace

VORDA_SIMD void limit_images(Limit limit, GreenOrder order, GreenBlock &block) {
    const bool second = order == GreenOrder::second;
    if (limit == Limit::zero) {
        if (second)
            images<true, true>(block);
        else
            images<true, false>(block);
    } else {
        if (second)
            images<false, true>(block);
        else
            images<false, false>(block);
    }
}

VORDA_SIMD void limit_modes(Limit limit, GreenOrder order, GreenBlock &block) {
    const bool second = order == GreenOrder::second;
    if (limit == Limit::zero) {
        if (second)
            modes<true, true>(block);
        else
            modes<true, false>(block);
    } else {
        if (second)
            modes<false, true>(block);
        else
            modes<false, false>(block);
    }
}

VORDA_SIMD void limit_pair(Limit limit, GreenOrder order, GreenBlock &block) {
    const bool second = order == GreenOrder::second;
    if (limit == Limit::zero) {
        if (second)
            pair<true, true>(block);
        else
            pair<true, false>(block);
    } else {
        if (second)
            pair<false, true>(block);
        else
            pair<false, false>(block);
    }
}
