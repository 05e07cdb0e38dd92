// Steps that the panel kernels share.
#pragma once

#include "green/field_loops.hpp"
#include "green/field_panels.hpp"

// PANFLD with its fault as the message of the run.
[[nodiscard]] Status near_integrals(f32 x, f32 y, f32 z, const Panel &panel, int ILOGF, int IGRAD,
                                    FieldIntegrals &out);

inline Columns3 columns(const Array<f32, 2> &A) {
    return {&A(1, 1), &A(1, 2), &A(1, 3)};
}

// Squared distance of (x, y, z) from the centroid, as near_test has it.
f32 distance2(FieldPoint P, const FieldPanels &panels, int NP);

// Fills work.near for P, and clears work.mean and the first column of work.ISNG, work.IBOT.
void find_near(FieldPoint P, const FieldPanels &panels, FieldWork &work);

// Geometry of all points for P, in units of 1/K, and the selectors of the first column in the others.
void place_points(FieldPoint P, f32 K, const FieldPanels &panels, FieldWork &work);

// Fills work.green at all points.
void evaluate_wave(const FieldPanels &panels, const FieldWave &wave, GreenOrder order, FieldWork &work);
void evaluate_lid(const FieldPanels &panels, f32 HBOT, FieldWork &work);

// Adds factor W times a value of the record, over all points of each panel, to a column of the result; with a
// direction cosine (work.C or work.S); and the derivative along the normal with its sign.
void sum_value(const FieldPanels &panels, f32 factor, int value, const FieldWork &work, KernelValues &result,
               int column);
void sum_component(const FieldPanels &panels, f32 factor, const Array<f32, 2> &cosine, const FieldWork &work,
                   KernelValues &result, int column);
void sum_normal(const FieldPanels &panels, f32 factor, const FieldWork &work, KernelValues &result,
                int column);
// The horizontal gradient of the logarithm, to two columns.
void sum_logarithm(const FieldPanels &panels, f32 z, f32 K, const FieldWork &work, KernelValues &result,
                   int column);
