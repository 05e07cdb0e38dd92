// What all rows of an assembly read.
#pragma once

#include "assembly/period_wave.hpp"
#include "assembly/right_hand_sides.hpp"
#include "green/depth_heights.hpp"

// Panel data of the assembly, one contiguous array per quantity; XG and GW have a column per Gauss point.
struct PanelArrays {
    Array<f32, 2> X;    // centroid (NEQN,3)
    Array<f32, 2> N;    // normal (NEQN,3)
    Array<f32, 1> A;    // area (NEQN)
    Array<f32, 3> XG;   // Gauss points (NEQN,3,4), only on the Gauss path
    Array<f32, 2> GW;   // their weights (NEQN,4)
    Array<f32, 1> IFSP; // free-surface mark (NEQN)
    Array<f32, 1> DIAG; // what the diagonal of a panel in the free surface has of -4 pi: its mark, but 1 for
                        // the image of an overhang (NEQN)
    Array<int, 1> LID;  // 1: panel of a lid body; only with such a body (NEQN)
    Array<f32, 1> DAMP; // its damping FSDMP (NEQN)
    [[nodiscard]] bool make(const RunState &run);
};

// For the centroid path; false: no memory.
[[nodiscard]] bool make_heights(const RunState &run, const PeriodWave &wave, const PanelArrays &panels,
                                const GSTATE &gstate, HeightFactors &heights);

struct AssemblyFrame {
    const RunState &run;
    const PeriodWave &wave;
    const PanelArrays &panels;
    const SourceWeights &weights;
    const GSTATE &gstate;
    const HeightFactors
        &heights; // of the centroids, for the panels as sources; empty but for waves in finite depth
};
