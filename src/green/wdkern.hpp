// The kernels of a body panel in the second-order right-hand sides: what the derivative of the Green function
// by the wave number and slow motions make of it, integrated over the panel.
#pragma once

#include "green/field_panels.hpp"
#include "green/regpar.hpp"

// The panel seen from the image of the field point in the free surface: integral S of 1/r, its gradient,
// integral L of the logarithm.
struct ImageIntegrals {
    f32 S, L, GS[3];
};

// Work arrays of one thread: of the panels (n), and of the quadrature points, which may be four for any panel
// (4 n).
struct WdkernWork {
    Array<int, 1> near;             // 1: the image of the field point is near (padded)
    Array<ImageIntegrals, 1> image; // of near panels (n)
    Array<int, 1> owner, IFLAG;     // panel of a point, the mark of a near one
    Array<f32, 1> W, X2, Y2, Z2;    // weight; place times nu, Z2 downward
    Array<RegularTerms, 1> terms;
    RegularWork regular;
    // False: no memory.
    [[nodiscard]] bool alloc(const FieldPanels &panels);
};

// Columns of the result: 1 and 2, with 3 their moment about the vertical axis, act on the normal velocity of
// the panel, 4 and 5, with 6 their moment, on its potential, for slow surge, sway and yaw; 7 and 8 likewise
// for the derivative by the wave number.
constexpr int WDKERN_COLUMNS = 8;
// P (x, y, z from 1) lies on the body. Failed: the logarithm has no value at a vertex, or REGPAR has none.
[[nodiscard]] Status WDKERN(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave,
                            WdkernWork &work, KernelValues &result);
