// One flat panel: its record and the routine that makes it from four vertices.
#pragma once

#include "base/types.hpp"
#include "state/state.hpp"

// Next vertex of a quadrilateral: side k runs from vertex k to vertex JP[k].
constexpr int JP[5] = {0, 2, 3, 4, 1};

// The quantities of one panel, as the columns of the mesh arrays of the same names. Indices from 1.
struct Panel {
    f32 XCT[4]; // centroid
    f32 TRM[4]
           [4]; // local frame: row r is local axis r; row 3 the normal, column 3 the vertical in local axes
    f32 XIV[5]; // vertices in the panel plane about the centroid
    f32 ETV[5];
    f32 PMOM[14];  // area and scaled area moments
    f32 SIDE[5];   // side lengths, exactly 0 for a collapsed side
    f32 XGP[5][4]; // Gauss points
    f32 GJAC[5];   // Gauss weights, their sum is the area
    f32 PSIZ[3];   // size scales as they are handed over
    // Measures of the integrals, d the largest distance of two vertices:
    f32 region2; // squared length of the regions and of near pairs, max(PSIZ(2), d^2/8)
    f32 width;   // area/d, what lies in the plane and which sides count is told in units of it
};

// Factors of the stored moments PMOM(1..13): the integrals of 1, xx, xy, yy, xxx, xxy, xyy, yyy, xxxx, xxxy,
// xxyy, xyyy, yyyy over the panel, x and y along the first two local axes from the centroid.
constexpr f32 MOMENT_FACTOR[14] = {0,    1.0f, 1.5f,  3.0f, 1.5f,  1.5f, 1.5f,
                                   1.5f, 1.5f, 3.75f, 7.5f, 3.75f, 7.5f, 3.75f};

// The panel of the vertices `vertex` (4,3): vertex, coordinate. Seen from the side to which the normal points
// the vertices run clockwise. `ordinal` is the number of the panel within its body, for messages. Failed: the
// area is below 1e-10 or two sides cross. A panel with one reflex corner is only warned about.
[[nodiscard]] Status PANGEO(View<const f32, 2> vertex, int IDIAG, int ordinal, Panel &panel);

// Fills region2 and width from the vertices, the area and PSIZ. Up to an aspect ratio of about 8 the area of
// a rectangle is the larger of the two region scales; beyond it the multipoles would begin inside its length.
void measure_regions(Panel &panel);

// Copies between the record and column NP of the mesh arrays.
void put_panel(const Panel &panel, int NP, Mesh &mesh);
Panel panel_of(const Mesh &mesh, int NP);
