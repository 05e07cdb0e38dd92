#include "green/field_loops.hpp"

#include "base/simd.hpp"

#include <cmath>

namespace {

constexpr f32 SMALL = 1.0e-5f; // distance below which a direction is not formed

} // namespace

VORDA_SIMD void near_test(int n, FieldPoint P, Columns3 centroid, const f32 *FN, int *near) {
    const f32 *xc = centroid.x, *yc = centroid.y, *zc = centroid.z;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        const f32 dx = P.x - xc[i], dy = P.y - yc[i], dz = P.z - zc[i];
        near[i] = FN[i] > (dx * dx + dy * dy) + dz * dz ? 1 : 0;
    }
}

VORDA_SIMD void point_geometry(int n, FieldPoint P, Columns3 point, f32 K, PointColumns result) {
    const f32 *xg = point.x, *yg = point.y, *zg = point.z;
    f32 *R = result.R, *C = result.C, *S = result.S, *ZETA = result.ZETA;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        const f32 dx = P.x - xg[i], dy = P.y - yg[i];
        const f32 rho = std::sqrt(dx * dx + dy * dy);
        const f32 inverse = 1 / (rho > SMALL ? rho : 1.0f), on = rho > SMALL ? inverse : 0.0f;
        R[i] = K * rho;
        C[i] = dx * on;
        S[i] = dy * on;
        ZETA[i] = -K * zg[i];
    }
}

VORDA_SIMD void add_value(int n, f32 factor, const f32 *W, const f32 *G, f32 *sum) {
#pragma omp simd
    for (int i = 0; i < n; ++i)
        sum[i] += factor * W[i] * G[i];
}

VORDA_SIMD void add_component(int n, f32 factor, const f32 *W, const f32 *C, const f32 *G, f32 *sum) {
#pragma omp simd
    for (int i = 0; i < n; ++i)
        sum[i] += factor * W[i] * C[i] * G[i];
}

VORDA_SIMD void add_normal(int n, f32 factor, const f32 *W, const NormalDerivative &d, f32 *sum) {
    const f32 *n1 = d.N.x, *n2 = d.N.y, *n3 = d.N.z, *C = d.C, *S = d.S, *GR = d.GR, *GZETA = d.GZETA;
#pragma omp simd
    for (int i = 0; i < n; ++i)
        sum[i] += factor * W[i] * ((n1[i] * C[i] + n2[i] * S[i]) * GR[i] + n3[i] * GZETA[i]);
}

VORDA_SIMD void add_inverse_distance(int n, f32 factor, const f32 *W, const f32 *R, const f32 *ZETA,
                                     const int *near, f32 *sum) {
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        const f32 r2 = R[i] * R[i] + ZETA[i] * ZETA[i];
        sum[i] += near[i] != 0 ? factor * W[i] / std::sqrt(r2) : 0.0f;
    }
}

VORDA_SIMD void add_logarithm(int n, f32 z, f32 K, const LogarithmPoints &p, f32 *X, f32 *Y) {
    const f32 *W = p.W, *R = p.R, *C = p.C, *S = p.S, *mean = p.mean, *zc = p.zc;
    const f32 length = 1 / K;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        const f32 rho = R[i] * length, e = -z - zc[i];
        const f32 r = std::sqrt(rho * rho + e * e);
        const f32 t = r > SMALL ? 2 * K * mean[i] * W[i] * rho / (e + r) : 0.0f;
        X[i] += C[i] * t;
        Y[i] += S[i] * t;
    }
}
