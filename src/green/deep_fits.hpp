// The fitted functions of a = (X/3)^2 that go with FTAB, and where the deep-water kernels change, for both
// ways of evaluation. Constant first.
#pragma once

#include "base/types.hpp"

constexpr f32 JA[6] = {1.9999998f,  -4.4999847f, 2.5310714f,
                       -0.6320438f, 0.08748448f, -0.0066312575f}; // 2 J0(X)
constexpr f32 WA[6] = {2.9999998f,   -3.3749917f,  1.265558f,
                       -0.23707318f, 0.026305571f, -0.001680552f}; // times X/3: 2 J1(X)
constexpr f32 QA[6] = {-0.2318625f, 5.0216532f,   -4.089872f,
                       1.2315611f,  -0.19187479f, 0.015697394f}; // pi Y0(X) - 2 J0(X) ln(X)
constexpr f32 VA[6] = {3.3477938f,  -5.4537463f,  2.466858f,
                       -0.5212723f, 0.062998235f, -0.0042694374f}; // times X/3: slope of Q in X
constexpr f32 PI_F = 3.14159265f;
constexpr f32 TINY_R1 = 1e-8f;   // below it the image distance counts as zero
constexpr f32 MAX_DEPTH = 30.0f; // exp(-Y) stops falling there
