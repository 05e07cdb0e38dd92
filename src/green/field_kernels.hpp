// The Green function integrated over every panel, at a field point that is no collocation point
// of the matrices.
//
// One call takes one field point P (x, y, z from 1, global axes) and all panels. Over a panel the Green
// function is summed by the quadrature of QUADPT; for a near panel, by the squared distance RKNEAR region2,
// the inverse distances and the logarithm are taken out of the quadrature and integrated exactly. The Green
// function is called once, with the points of all panels. Failed: the logarithm has no value at a vertex,
// with the message.
#pragma once

#include "green/field_panels.hpp"

// Columns of FSFLD: integrals of G, of its derivative along the normal at the panel, of d2G/dz2 at
// the field point.
constexpr int FS_A = 1, FS_B = 2, FS_C = 3;
// P lies on the free surface, its z is not read; the panels are those of the body. STEP is the step of the
// vertical differences that make the near part of FS_C.
[[nodiscard]] Status FSFLD(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave, f32 STEP,
                           FieldWork &work, KernelValues &result);

// Columns of PANGRD: integral V of G, VN of its derivative along the normal at the panel, the gradient GP
// of V in the panel point and the vertical component GF3 of the gradient in the field point; GF1 = -GP1,
// GF2 = -GP2.
constexpr int PG_V = 1, PG_VN = 2, PG_GP1 = 3, PG_GP2 = 4, PG_GP3 = 5, PG_GF3 = 6;
// What is wanted, a sum of these; other columns are not touched.
constexpr int WANT_V = 1, WANT_VN = 2, WANT_HORIZONTAL = 4, WANT_GP3 = 8, WANT_GF3 = 16;
// Any field point, panels of the body. With wave.NU = RIGID_LID the free surface is a rigid lid and the
// results are real. ILOGK = 1: over panels near the image of P the logarithm is integrated exactly, too; 0:
// it stays in the quadrature. Not read under a lid.
[[nodiscard]] Status PANGRD(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave, int ILOGK,
                            int want, FieldWork &work, KernelValues &result);

// P on the body, panels of the free surface. Column d = 1, 2, 3: 2 (gx STF2(J,1,d) + gy STF2(J,2,d)) - g0
// STF3(J,d) with g0, gx, gy the integrals of G and of its x and y derivatives in the panel point.
[[nodiscard]] Status FSKERN(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave,
                            const SteadyFlow &flow, FieldWork &work, KernelValues &result);
