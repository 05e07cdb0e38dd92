// The panel integrals of eight panels at a time, each at its own field point in global axes.
#pragma once

#include "rankine/panint_lanes.hpp"

// The panels in the lanes and their field points, axes from 1. Unused lanes repeat another one.
struct PanelBatch {
    const Panel *panel[ABREAST];
    alignas(32) f32 P[4][ABREAST];
};

// As FieldIntegrals, without the gradients of D and LZ.
struct FieldBatch {
    alignas(32) f32 D[ABREAST], S[ABREAST], LZ[ABREAST], L[ABREAST];
    alignas(32) f32 GS[4][ABREAST], GL[4][ABREAST];
    int status[ABREAST]; // of PANFLD
};

// D, S, with ILOGF L, LZ; with IGRAD GS, with both GL: as PANFLD, but for rounding. All field points are in
// the region of the exact forms, or all beyond it.
void near_fields(const PanelBatch &batch, int ILOGF, int IGRAD, FieldBatch &out);
void far_fields(const PanelBatch &batch, int ILOGF, int IGRAD, FieldBatch &out);
