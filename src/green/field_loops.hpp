// The loops over points of the panel kernels; n is a multiple of BATCH, arrays are n long and do not overlap.
#pragma once

#include "base/types.hpp"

struct FieldPoint {
    f32 x, y, z;
};

// Three columns of coordinates or components.
struct Columns3 {
    const f32 *x, *y, *z;
};

// 1 where the squared distance of the point from the centroid is below FN.
void near_test(int n, FieldPoint P, Columns3 centroid, const f32 *FN, int *near);

// The points of one quadrature column seen from P: R = K rho with rho the horizontal distance, direction C, S
// (0 for rho <= 1e-5), ZETA = -K z of the point.
struct PointColumns {
    f32 *R, *C, *S, *ZETA;
};
void point_geometry(int n, FieldPoint P, Columns3 point, f32 K, PointColumns result);

// sum += factor W G
void add_value(int n, f32 factor, const f32 *W, const f32 *G, f32 *sum);
// sum += factor W C G, C a direction cosine
void add_component(int n, f32 factor, const f32 *W, const f32 *C, const f32 *G, f32 *sum);

// sum += factor W ((N1 C + N2 S) G_R + N3 G_ZETA)
struct NormalDerivative {
    Columns3 N;
    const f32 *C, *S, *GR, *GZETA;
};
void add_normal(int n, f32 factor, const f32 *W, const NormalDerivative &d, f32 *sum);

// sum += factor W / sqrt(R^2 + ZETA^2) where the panel is near
void add_inverse_distance(int n, f32 factor, const f32 *W, const f32 *R, const f32 *ZETA, const int *near,
                          f32 *sum);

// The horizontal gradient of the logarithm over near panels, by points: e = -z - zc the height over the image
// of the centroid, r^2 = (R/K)^2 + e^2, t = 2 K W mean / (e + r) where r > 1e-5; X += t C
// R/K, Y += t S R/K.
struct LogarithmPoints {
    const f32 *W, *R, *C, *S;
    const f32 *mean; // mean of the inverse distance over a near panel, 0 for others
    const f32 *zc;
};
void add_logarithm(int n, f32 z, f32 K, const LogarithmPoints &p, f32 *X, f32 *Y);
