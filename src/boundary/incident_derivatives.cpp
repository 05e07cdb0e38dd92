#include "boundary/incident_derivatives.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr f32 LARGEST_EXPONENT = 30.0f;

// cos or sin of an argument that grows with K, as a function of K and the heading: its value and derivatives.
struct Factor {
    f32 v;  // value
    f32 b;  // by heading
    f32 k;  // by K
    f32 kb; // by both
};
// f(a) with its derivatives f1, f2 by the argument a, a = K g(heading) with derivative ab by heading.
Factor factor(f32 f, f32 f1, f32 f2, f32 a, f32 ab, f32 K) {
    return {f, f1 * ab, f1 * a / K, (f2 * a * ab + f1 * ab) / K};
}
// A product of two factors, times a constant.
struct Horizontal {
    c32 v, b, k, kb;
};
Horizontal product(c32 c, const Factor &f, const Factor &g) {
    return {c * (f.v * g.v), c * (f.b * g.v + f.v * g.b), c * (f.k * g.v + f.v * g.k),
            c * (f.kb * g.v + f.b * g.k + f.k * g.b + f.v * g.kb)};
}

} // namespace

Dispersion DISPD(f32 K, f32 H) {
    if (H <= 0)
        return {K, 1, 0};
    const f32 x = K * H;
    const f32 e = std::exp(-std::min(x, LARGEST_EXPONENT));
    const f32 s = 2 * e / (1 + e * e);
    const f32 t = std::tanh(x);
    return {K * t, t + x * s * s, 2 * H * (1 - x * t) * s * s};
}

DepthFactors DEPFAC(f32 z, f32 H, f32 K) {
    const f32 e2 = std::exp(std::max(K * z, -LARGEST_EXPONENT));
    if (H <= 0)
        return {e2, e2, z * e2, z * e2};
    const f32 e1 = std::exp(-std::min(K * H, LARGEST_EXPONENT));
    const f32 e3 = e1 * std::exp(-std::min(K * (z + H), LARGEST_EXPONENT));
    const f32 d = 1.0f / (1.0f + e1 * e1);
    const f32 C = (e2 + e3) * d, S = (e2 - e3) * d;
    const f32 TH = std::tanh(K * H) * H;
    return {C, S, (z + H) * S - TH * C, (z + H) * C - TH * S};
}

void PLNWWD(const PlaneWave &wave, const f32 (&point)[3], const f32 (&normal)[3], WaveDerivatives &d) {
    const f32 K = wave.K;
    const f32 kx = K * wave.cos_beta, ky = K * wave.sin_beta;
    const f32 a = kx * point[0], b = ky * point[1];
    const f32 ab = -ky * point[0], bb = kx * point[1]; // by heading
    const f32 ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
    const Factor cos_a = factor(ca, -sa, -ca, a, ab, K), sin_a = factor(sa, ca, -sa, a, ab, K);
    const Factor cos_b = factor(cb, -sb, -cb, b, bb, K), sin_b = factor(sb, cb, -sb, b, bb, K);
    const c32 i(0, 1);
    const Horizontal Z[5] = {{},
                             product(1, cos_a, cos_b),
                             product(-i, sin_a, cos_b),
                             product(-1, sin_a, sin_b),
                             product(-i, cos_a, sin_b)};
    // Derivatives by a/kx and b/ky, the x and y derivatives but for the factors kx and ky.
    const Horizontal X[5] = {{},
                             product(-1, sin_a, cos_b),
                             product(-i, cos_a, cos_b),
                             product(-1, cos_a, sin_b),
                             product(i, sin_a, sin_b)};
    const Horizontal Y[5] = {{},
                             product(-1, cos_a, sin_b),
                             product(i, sin_a, sin_b),
                             product(-1, sin_a, cos_b),
                             product(-i, cos_a, cos_b)};
    const DepthFactors D = DEPFAC(point[2], wave.H, K);
    for (int j = 1; j <= 4; ++j) {
        d.P[j] = D.C * Z[j].v;
        d.PB[j] = D.C * Z[j].b;
        d.PN[j] = (D.C * Z[j].k + D.CK * Z[j].v) / wave.VG;
        d.PNB[j] = (D.C * Z[j].kb + D.CK * Z[j].b) / wave.VG;
        d.G[j][1] = D.C * kx * X[j].v;
        d.G[j][2] = D.C * ky * Y[j].v;
        d.G[j][3] = D.S * K * Z[j].v;
        d.GB[j][1] = D.C * (kx * X[j].b - ky * X[j].v);
        d.GB[j][2] = D.C * (ky * Y[j].b + kx * Y[j].v);
        d.GB[j][3] = D.S * K * Z[j].b;
        d.N[j] = d.NB[j] = 0;
        for (int c = 1; c <= 3; ++c) {
            d.N[j] += normal[c - 1] * d.G[j][c];
            d.NB[j] += normal[c - 1] * d.GB[j][c];
        }
    }
}

void INCWWD(const RunState &run, f32 K, ThreadState &thread) {
    const Symmetry &sym = run.sym;
    const Mesh &mesh = run.mesh;
    SecondOrder &second = thread.second;
    const f32 VG = DISPD(K, run.opt.HBOT).NUK;
    WaveDerivatives d;
    for (int ip = 1; ip <= mesh.NEQN; ++ip) {
        const f32 point[3] = {mesh.XCT(1, ip), mesh.XCT(2, ip), mesh.XCT(3, ip)};
        const f32 normal[3] = {mesh.TRM(3, 1, ip), mesh.TRM(3, 2, ip), mesh.TRM(3, 3, ip)};
        for (int b = 1; b <= run.periods.NBETA; ++b) {
            PLNWWD({run.opt.HBOT, K, run.periods.COSBET(b), run.periods.SINBET(b), VG}, point, normal, d);
            for (int s = 1; s <= sym.NSYMR; ++s) {
                const int *parts = sym.IDCLS + (s - 1) * sym.NDCLS + 1;
                const auto sum = [&](const auto &value) {
                    c32 total = 0;
                    for (int k = 0; k < sym.NDCLS; ++k)
                        total += value(parts[k]);
                    return total;
                };
                thread.PHID(ip, b, s) = PI4 * sum([&](int j) { return d.P[j]; });
                second.PHID2(ip, b, s) = PI4 * sum([&](int j) { return d.PB[j]; });
                second.W2D0(ip, b, s) = PI4 * sum([&](int j) { return d.PN[j]; });
                second.W2D0B(ip, b, s) = PI4 * sum([&](int j) { return d.PNB[j]; });
                thread.SRCD(ip, b, s) = -sum([&](int j) { return d.N[j]; });
                second.SRCD2(ip, b, s) = -sum([&](int j) { return d.NB[j]; });
                for (int c = 1; c <= 3; ++c) {
                    thread.VELD(ip, c, b, s) = sum([&](int j) { return d.G[j][c]; });
                    second.VELD2(ip, c, b, s) = sum([&](int j) { return d.GB[j][c]; });
                }
            }
        }
    }
}
