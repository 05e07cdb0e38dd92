// The wave coefficients of a part of one panel row: for every image and every panel J of the part the
// influence of the pair in both directions, from one batched call of the Green function (from two on the
// Gauss path).
#pragma once

#include "assembly/assembly_frame.hpp"
#include "assembly/row_part.hpp"
#include "green/vgrn98.hpp"

// Work of one assembling thread, and the results of a part: entry e = m n + J - 1 - from, from 0, for image
// position m from 0 and panel J.
struct WaveRow {
    Array<f32, 1> RR, ZS, ZF, CR, SR, CC, SC; // evaluation points
    Array<int, 1> ISNG, IBOT;
    Array<f32, 2> green; // values of the Green function, a column for each real array
    Array<f32, 1> EB;    // 1 for an ordinary pair, 0 in the free surface (PART)
    // Mark of the source panel of a pair in the free surface: J for the row, I for the column (PART)
    Array<f32, 1> EFR, EFC;
    Array<f32, 2> coefficient; // SPR, DPR, SPC, DPC, and with ISOR=1 VPR, VPC, real and imaginary
    bool ordinary = false;     // EB is 1, EFR and EFC are 0 throughout
    GreenWork work;
    Split SPR, DPR, SPC, DPC;
    bool velocities = false; // VPR and VPC are formed
    Split VPR[3], VPC[3];
    // Full records of the Green function are formed, for pairs with a dipole panel; `green` has 16 columns
    // then, else 8.
    bool second = false;
    bool records = false; // they are formed for the part at work
    bool tank = false;    // a filled tank: no wave term
    [[nodiscard]] bool alloc(int NEQN, int NSYMG, const Options &opt, bool dipoles);
    void set_ordinary();
    // The record of point p, from 0, in the order of GreenValue.
    void record(std::int64_t p, f32 (&values)[16]) const;
};

// With a dipole panel as field panel S and D are derivatives along its normal, and the velocity of a source
// on one is that of a dipole. Forms SPR, DPR, with ISOR=1 VPR, and SPC, DPC, VPC (J < I) for all images.
// `code` holds the pair codes of the part; EB, EFR, EFC are set. Failed: at infinite frequency an image has
// no value.
[[nodiscard]] Status wave_coefficients(const AssemblyFrame &frame, const RowPart &part,
                                       const std::uint16_t *code, WaveRow &row);
