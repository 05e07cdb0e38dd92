// Second derivatives of the Green function of a pair with a dipole panel.
#pragma once

#include "base/types.hpp"

// What goes with the record of a pair: normals and unit vectors of the row (1) and of the column (2).
struct HessianPair {
    f32 R = 0;                  // horizontal distance, times nu
    f32 EPSR = 0;               // below it the pair counts as on one vertical
    f32 N1[3] = {}, N2[3] = {}; // normal at the source
    f32 C1 = 0,
        S1 = 0; // horizontal unit vectors from the field point to the source; not read on one vertical
    f32 C2 = 0, S2 = 0;
};

// The velocity W at the field point due to a unit dipole at the source: the gradient there of the derivative
// of G along the normal at the source, in the upward coordinates, from the record of VGRN1P or VGRN0.
//   MODE 0, 2: N1, C1, S1, and z of the record is the depth of the source (a row)
//   MODE 1, 3: N2, C2, S2, and zeta of the record is the depth of the source (the column of the same record)
// The record has no G_RR: Laplace's equation supplies it, on one vertical with G_RR = G_R / R.
void GHESS(const HessianPair &pair, const f32 (&record)[16], int MODE, c32 (&W)[3]);
