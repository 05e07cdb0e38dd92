// Source panels with their quadrature points side by side, and the work arrays, for the integrals of the
// Green function over every panel at one field point.
#pragma once

#include "geometry/panel.hpp"
#include "green/vgrn98.hpp"
#include "rankine/panint.hpp"

#include <vector>

// Panels as columns, padded to a multiple of BATCH with copies of the last one of weight 0. Made once, read
// by all threads.
struct FieldPanels {
    int n = 0;                // panels
    int padded = 0;           // rows of the arrays
    int NG = 0;               // quadrature points of a panel
    std::vector<Panel> panel; // panel NP at NP-1
    Array<f32, 2> X;          // centroids, those of the free surface with height 0 (padded,3)
    Array<f32, 2> N;          // normals (padded,3)
    Array<f32, 1> FN;         // RKNEAR region2: squared distance below which a field point is near (padded)
    Array<f32, 3> XG;         // quadrature points (padded,3,NG)
    Array<f32, 2> W;          // their weights (padded,NG)
    // IQUAD as in QUADPT. False: no memory.
    [[nodiscard]] bool make(std::vector<Panel> panels, int IQUAD);
    [[nodiscard]] bool make(const Mesh &mesh, int IQUAD);
    [[nodiscard]] bool make(const SurfaceMesh &surface, int IQUAD);
};

// Quadrature of a panel: its centroid (IQ = 0) or its four Gauss points (IQ = 1). Returns NG; points and
// weights from 1.
int QUADPT(int IQ, const Panel &panel, f32 (&WG)[5], f32 (&PG)[5][4]);

// Step of vertical differences: an eighth of the root of the mean area PMOM(1,1..N).
f32 DZSTEP(int N, View<const f32, 2> PMOM);

// The wave of the kernels: depth HBOT (< 0: deep water), wave number NU of deep water or RIGID_LID, and for
// HBOT > 0 the depth state of that wave number.
constexpr f32 RIGID_LID = -1.0f;
struct FieldWave {
    f32 HBOT = -1;
    f32 NU = 0;
    const GSTATE *gstate = nullptr;
};

// Results of a kernel: a column of panels for each of its values; rows behind the last panel mean nothing.
struct KernelValues {
    Array<f32, 2> re, im; // (padded,values)
    [[nodiscard]] bool alloc(const FieldPanels &panels, int values);
    c32 operator()(int NP, int value) const { return {re(NP, value), im(NP, value)}; }
    void clear(int value);
};

// Work arrays of one thread. Points stand in a column per quadrature point.
struct FieldWork {
    Array<int, 1> near;       // 1: the field point, or its image, is near the panel (padded)
    Array<f32, 1> mean;       // of near panels: mean of the inverse distance, for the logarithm (padded)
    Array<f32, 2> R, C, S;    // horizontal distance times nu, its direction (padded,NG)
    Array<f32, 2> Z, ZETA;    // depths times nu (padded,NG)
    Array<int, 2> ISNG, IBOT; // selectors (padded,NG)
    Array<f32, 3> green;      // record values in the order of GreenValue, real and imaginary (padded,NG,16)
    GreenWork vgrn;
    // False: no memory.
    [[nodiscard]] bool alloc(const FieldPanels &panels);
};
