// The wave Green function of finite depth (vgrn98.hpp) with derivatives by the depth H and to the third
// order. It does not read GSTATE. Nearer than H/2 it rests on the deep-water function at four images and a
// polynomial, beyond on the expansion in wave modes (John 1950, Communications on Pure and Applied
// Mathematics 3), so that every term can be differentiated by H.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"
#include "green/hgruio.hpp"
#include "green/igruio.hpp"
#include "green/vgrn98.hpp"

// Values behind the eight of the record. By H: at fixed R, z and zeta.
enum DepthValue { G_H = GREEN_VALUES, G_RH, G_RZETAH, G_RZZ, G_RZZETA, G_ZZZETA, G_ZETAH, DEPTH_VALUES };

// Pairs of points; arrays n long, lengths times nu.
struct DepthPoints {
    int n = 0;
    const f32 *X = nullptr;    // horizontal distance
    const f32 *Z = nullptr;    // depth of the field point
    const f32 *ZETA = nullptr; // depth of the source point
};

// Results, one array of n for each value.
struct DepthArrays {
    f32 *re[DEPTH_VALUES] = {};
    f32 *im[DEPTH_VALUES] = {};
};

// Work space of a thread; it keeps the depth state of the last H.
struct DepthWork {
    f32 H = 0; // depth that `state` belongs to
    HSTATE state;
    Array<int, 1> method, sorted; // of the points
    Array<f32, 1> X, Y;           // images: arguments of IGRUIO
    Array<int, 1> ISNG;           // images: its selector
    Array<f32, 2> F;              // (images, value) its results
    InfiniteWork infinite;
    // False: no memory for n points.
    [[nodiscard]] bool alloc(int n);
};

// All 15 values, without 1/r, 1/r1 and 1/rb and with 2 ln(r1 + Y) added: those of VGRN98 for ISNG = 3, IBOT =
// 1. The result of a point depends neither on its place nor on the other points. Fails for arguments out of
// range: X beyond 1e8, a depth above the surface or below the bottom, H outside 1e-8..1e8, X + Y < 1e-8 where
// X <= H/2.
[[nodiscard]] Status FGRUIO(const DepthPoints &points, f32 H, DepthWork &work, const DepthArrays &result);
