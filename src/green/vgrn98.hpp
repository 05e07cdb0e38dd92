// The wave Green function of a pulsating source, for many pairs of points at once.
//
// Deep water: G = 1/r + 1/r1 + F2(R, Y) - i 2 pi exp(-Y) J0(R), with
//   F2(X, Y) = 2 PV integral over s from 0 to infinity of exp(-s Y) J0(s X) / (s - 1) ds,
// R the horizontal distance, z and zeta the depths of field and source point, positive downward, all times
// nu; Y = z + zeta, r^2 = R^2 + (z - zeta)^2, r1^2 = R^2 + Y^2. The free-surface condition reads dG/dz = -G
// at z = 0 in the downward z. (Newman 1985, Journal of Engineering Mathematics 19, for the method of
// polynomial fits.)
//
// Depth H: G = 1/r + 1/rb + I(R, z - zeta) + I(R, 2 H - Y) - i 2 pi C E(z, zeta) J0(k R), with
//   I(R, Z) = PV integral over s from 0 to infinity of
//             (s + 1) exp(-s H) cosh(s Z) J0(s R) / (s sinh(s H) - cosh(s H)) ds,
// rb^2 = R^2 + (2 H - Y)^2, k and C of GSTATE, E = exp(-k Y) (1 + exp(-2 k (H - z))) (1 + exp(-2 k (H -
// zeta))). For R > H it is evaluated as the expansion in wave modes (John 1950, Communications on Pure and
// Applied Mathematics 3), nearer by polynomials for I on top of F2.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"
#include "green/gstate.hpp"

#include <cstdint>

// The eight complex values of a record, in its order. z and zeta are depths: a derivative by the upward
// coordinate has the other sign.
enum GreenValue { G_ = 0, G_R, G_Z, G_RZ, G_ZZ, G_ZZETA, G_ZETA, G_RZETA };
constexpr int GREEN_VALUES = 8;

// Pairs of points; arrays n long, lengths times nu.
struct GreenPoints {
    int n = 0;
    const f32 *R = nullptr;    // horizontal distance, >= 0
    const f32 *Z = nullptr;    // depth of the field point
    const f32 *ZETA = nullptr; // depth of the source point
    // What stays in the real part: 0 all, 1 all but 1/r, 2 neither 1/r nor 1/r1, 3 the same with 2 ln(r1 + Y)
    // added, so that it stays finite at r1 = 0. r > 0 is asked for with 0, r1 > 0 with 0, 1 and 2.
    const int *ISNG = nullptr;
    const int *IBOT =
        nullptr; // finite depth: 0 the bottom image 1/rb stays, 1 it is left out. Not read in deep water.
    // Finite depth: the factors of the heights of Z where they are known (depth_heights.hpp), columns
    // `stride` apart; they change no bit.
    const f32 *heights = nullptr;
    std::int64_t stride = 0;
};

// Results, one array of n for each value; those that the order does not ask for are not touched and
// may be null.
struct GreenArrays {
    f32 *re[GREEN_VALUES] = {};
    f32 *im[GREEN_VALUES] = {};
};

enum class GreenOrder {
    first, // G, G_R, G_Z, G_ZETA
    second // all eight
};

// How deep water is worked off.
enum class GreenPath {
    best,  // points in their order, sixteen at a time, where the processor has AVX-512; else as `sorted`
    sorted // by boxes of the table, in blocks: every processor
};

// Work lists, made once per thread for the longest call it makes.
struct GreenWork {
    Array<int, 1> method; // box and method of a point
    Array<int, 1> sorted; // point numbers from 0, by method, in each in the order of the points
    GreenPath path = GreenPath::best;
    // False: no memory for n points.
    [[nodiscard]] bool alloc(int n);
};

// G and its derivatives for all points. H is the depth times nu, <= 0: deep water; `state` belongs to
// this H when H > 0. The result of a point depends neither on its place nor on the other points. n < 1
// returns at once.
void VGRN98(const GreenPoints &points, f32 H, const GSTATE &state, GreenOrder order, GreenWork &work,
            const GreenArrays &result);

// One pair, all eight values as 16 numbers, each value as real and imaginary part. Equal bit for
// bit to VGRN98 by its best path.
void VGRN1P(f32 R, f32 Z, f32 ZETA, f32 H, const GSTATE &state, int ISNG, int IBOT, f32 (&record)[16]);
