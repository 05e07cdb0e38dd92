#include "green/vgrn0.hpp"

#include "green/vgrn98.hpp"

#include <cmath>

namespace {

constexpr f32 PI_F = 3.14159265f;

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

f32 polynomial6(const f32 (&c)[7], f32 w) {
    return (((((c[6] * w + c[5]) * w + c[4]) * w + c[3]) * w + c[2]) * w + c[1]) * w + c[0];
}

// The values of a sum of terms, lengths over H: all eight, or G and its first derivatives alone.
template <GreenOrder ORDER> struct Sum {
    static constexpr bool SECOND = ORDER == GreenOrder::second;
    f32 R; // R / H
    f32 v[GREEN_VALUES] = {};

    // A function of R and Z from its value and derivatives; dz and dzeta are those of Z, 1 or -1.
    void add(f32 value, f32 by_R, f32 by_Z, f32 by_RZ, f32 by_ZZ, f32 dz, f32 dzeta) {
        v[G_] += value;
        v[G_R] += by_R;
        v[G_Z] += dz * by_Z;
        v[G_ZETA] += dzeta * by_Z;
        if constexpr (SECOND) {
            v[G_RZ] += dz * by_RZ;
            v[G_RZETA] += dzeta * by_RZ;
            v[G_ZZ] += by_ZZ;
            v[G_ZZETA] += dz * dzeta * by_ZZ;
        }
    }

    // factor / sqrt(R^2 + Z^2)
    void add_image(f32 factor, f32 Z, f32 dz, f32 dzeta) {
        const f32 i2 = 1 / (R * R + Z * Z), i1 = factor * std::sqrt(i2), i3 = i1 * i2;
        add(i1, -R * i3, -Z * i3, 3 * R * Z * i3 * i2, (3 * Z * Z * i2 - 1) * i3, dz, dzeta);
    }

    // factor times the rest of the image series at (R^2, Z^2).
    void add_rest(const f32 (&c)[22], f32 factor, f32 Z, f32 dz, f32 dzeta) {
        const f32 t = R * R, w = Z * Z;
        f32 s = 0, s_t = 0, s_w = 0, s_tw = 0, half_ww = 0;
        const auto row = [&](f32 value, f32 slope) {
            if constexpr (SECOND) {
                half_ww = half_ww * w + s_w;
                s_tw = s_tw * w + s_t;
            }
            s_w = s_w * w + s;
            s = s * w + value;
            s_t = s_t * w + slope;
        };
        const auto row4 = [&](const f32 *p) {
            row((((p[4] * t + p[3]) * t + p[2]) * t + p[1]) * t + p[0],
                ((4 * p[4] * t + 3 * p[3]) * t + 2 * p[2]) * t + p[1]);
        };
        row((c[21] * t + c[20]) * t + c[19], 2 * c[21] * t + c[20]);
        row(((c[18] * t + c[17]) * t + c[16]) * t + c[15], (3 * c[18] * t + 2 * c[17]) * t + c[16]);
        row4(c + 10);
        row4(c + 5);
        row4(c);
        add(factor * s, factor * 2 * R * s_t, factor * 2 * Z * s_w, factor * 4 * R * Z * s_tw,
            factor * (2 * s_w + 8 * w * half_ww), dz, dzeta);
    }
};

// Lengths over H: D = z - zeta, Y = z + zeta, B = Y - 2 with its digits near the bottom.
template <GreenOrder ORDER>
void near_images(Sum<ORDER> &sum, f32 D, f32 Y, f32 B, int ISNG, int IBOT, int IPLIM) {
    const bool lid = IPLIM == 1, shallow = Y < 1;
    const f32 sigma = lid ? 1.0f : -1.0f;
    const f32(&rest)[22] = REST[lid ? 0 : 1];
    sum.add_rest(rest, 1, D, 1, -1);
    sum.add_rest(rest, !lid && shallow ? -1.0f : 1.0f, shallow ? Y : B, 1, 1);
    sum.add_image(!lid && !shallow ? -1.0f : 1.0f, shallow ? Y + 2 : B - 2, 1, 1);
    sum.add_image(sigma, D - 2, 1, -1);
    sum.add_image(sigma, D + 2, 1, -1);
    if (ISNG < 1)
        sum.add_image(1, D, 1, -1);
    if (IBOT < 1)
        sum.add_image(1, B, 1, 1);
    if (ISNG < 2)
        sum.add_image(sigma, Y, 1, 1);
}

// Heights above the bottom u = 1 - z, v = 1 - zeta.
template <GreenOrder ORDER>
void far_modes(Sum<ORDER> &sum, f32 D, f32 Y, f32 u, f32 v, int ISNG, int IBOT, int IPLIM) {
    constexpr int MODES = 7;
    constexpr f32 LAST = 80; // modes of a faster decay are nothing
    const bool lid = IPLIM == 1;
    const f32 R = sum.R, Rinv = 1 / R;
    if (lid) {
        sum.v[G_] = -2 * std::log(R);
        sum.v[G_R] = -2 * Rinv;
    }
    if (ISNG >= 2)
        sum.add_image(lid ? -1.0f : 1.0f, Y, 1, 1);
    if (IBOT >= 1)
        sum.add_image(-1, u + v, -1, -1);
    if (ISNG >= 1)
        sum.add_image(-1, D, 1, -1);

    // Angles beta u and beta v of the first mode and their step pi u and pi v from mode to mode.
    const f32 first = lid ? PI_F : 0.5f * PI_F;
    f32 cu = std::cos(first * u), su = std::sin(first * u), cv = std::cos(first * v),
        sv = std::sin(first * v);
    const f32 step_cu = lid ? cu : cu * cu - su * su, step_su = lid ? su : 2 * cu * su;
    const f32 step_cv = lid ? cv : cv * cv - sv * sv, step_sv = lid ? sv : 2 * cv * sv;
    f32 beta = first, decay = std::exp(-first * R);
    const f32 step_decay = std::exp(-PI_F * R);
    for (int n = 0; n < MODES && beta * R <= LAST; ++n) {
        const f32 w = (0.5f * PI_F) / (beta * R), e = 4 * decay * std::sqrt(w);
        const f32 T0 = e * polynomial6(A7, w), T1 = beta * e * polynomial6(B7, w);
        const f32 cc = cu * cv, sc = beta * su * cv, cs = beta * cu * sv;
        sum.v[G_] += T0 * cc;
        sum.v[G_R] -= T1 * cc;
        sum.v[G_Z] += T0 * sc;
        sum.v[G_ZETA] += T0 * cs;
        if constexpr (ORDER == GreenOrder::second) {
            sum.v[G_RZ] -= T1 * sc;
            sum.v[G_RZETA] -= T1 * cs;
            sum.v[G_ZZ] -= beta * beta * T0 * cc;
            sum.v[G_ZZETA] += beta * beta * T0 * (su * sv);
        }
        const f32 next_cu = cu * step_cu - su * step_su, next_cv = cv * step_cv - sv * step_sv;
        su = su * step_cu + cu * step_su;
        sv = sv * step_cv + cv * step_sv;
        cu = next_cu;
        cv = next_cv;
        decay *= step_decay;
        beta += PI_F;
    }
}

// One pair, lengths over H.
template <GreenOrder ORDER>
Sum<ORDER> limit_sum(f32 scale, f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM) {
    const f32 D = (Z - ZETA) * scale, Y = (Z + ZETA) * scale;
    Sum<ORDER> sum{R * scale};
    if (H > 0) {
        const f32 u = (H - Z) * scale, v = (H - ZETA) * scale;
        if (sum.R > 1)
            far_modes(sum, D, Y, u, v, ISNG, IBOT, IPLIM);
        else
            near_images(sum, D, Y, -(u + v), ISNG, IBOT, IPLIM);
    } else if (ISNG <= 1) {
        sum.add_image(IPLIM == 1 ? 1.0f : -1.0f, Y, 1, 1);
        if (ISNG < 1)
            sum.add_image(1, D, 1, -1);
    }
    return sum;
}

f32 scale_of(f32 H) {
    return H > 0 ? 1 / H : 1.0f;
}

} // namespace

void VGRN0(f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM, f32 (&record)[16]) {
    const f32 scale = scale_of(H);
    const auto sum = limit_sum<GreenOrder::second>(scale, R, Z, ZETA, H, ISNG, IBOT, IPLIM);
    for (int j = 0; j < GREEN_VALUES; ++j) {
        const bool first = j == G_R || j == G_Z || j == G_ZETA;
        record[2 * j] = sum.v[j] * scale * (j == G_ ? 1.0f : first ? scale : scale * scale);
        record[2 * j + 1] = 0;
    }
}

LimitValues VGRN0G(f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM) {
    const f32 scale = scale_of(H), scale2 = scale * scale;
    const auto sum = limit_sum<GreenOrder::first>(scale, R, Z, ZETA, H, ISNG, IBOT, IPLIM);
    return {sum.v[G_] * scale, sum.v[G_R] * scale2, sum.v[G_Z] * scale2, sum.v[G_ZETA] * scale2};
}
