// Integrals over one flat panel of 1/rho, of its normal derivative and of ln(rho + height),
// and their gradients.
//
// rho is the distance from the field point x to the point p of the panel, the height is k . (x - p)
// with k the vertical unit vector. Exact forms near the panel: Hess and Smith, J. Ship Research 8(2),
// 1964; solid angle of a triangle: van Oosterom and Strackee, IEEE Trans. Biomed. Eng. 30, 1983;
// multipoles and the reduction to side integrals: Newman, J. Eng. Math. 20, 1986. The forms used here
// are derived in docs/numerics.md.
#pragma once

#include "geometry/panel.hpp"

// In the frame of the panel: X, Y along the panel, Z along its normal. No factor 1/(4 pi) in any of these.
struct PanelIntegrals {
    f32 D;      // integral of Z/rho^3, minus the Z derivative of S; 0 in the plane of the panel
    f32 S;      // integral of 1/rho
    f32 SX, SY; // X and Y derivatives of S
    f32 DX, DY, DZ;
    f32 L;      // integral of ln(rho + height)
    f32 LZ;     // minus its Z derivative
    f32 LX, LY; // X and Y derivatives of L
    f32 LZX, LZY;
};

// Squared distances from the centroid, in units of region2, beyond which a multipole stands for the exact
// forms, and beyond which one of second order does.
constexpr f32 FAR_FIELD = 40.0f;
constexpr f32 FAR_SECOND_ORDER = 150.0f;

// D and S always; SX to DZ with IGRAD; L and LZ with ILOGF; LX to LZY with both. The others keep what they
// held. Returns 0; 1 when height + rho vanishes at a vertex, that is L has no meaning; 2 when the family L
// belongs to a field point moved a little along the vertical, since the vertical is normal to the plane of a
// side and the field point.
[[nodiscard]] int PANINT(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out);

// The same for a field point in global axes, with gradients there. Indices of vectors from 1.
struct FieldIntegrals {
    f32 D, S, LZ, L;
    f32 GS[4], GD[4];  // gradients of S and D
    f32 GL[4], GLZ[4]; // of L and LZ
};

// D, S, with ILOGF L, LZ; with IGRAD GS, GD, with both GL. Returns the status of PANINT.
[[nodiscard]] int PANFLD(const f32 *P, const Panel &p, int ILOGF, int IGRAD, FieldIntegrals &out);

// Field point on a dipole panel with unit normal NF: D, S, LZ, L are the derivatives along NF of the
// quantities of these names; all gradients are formed (GL, GLZ with ILOGF). EPS is the half step of the
// difference for LZ along Z.
[[nodiscard]] int PANDNF(const f32 *P, const f32 *NF, f32 EPS, const Panel &p, int ILOGF,
                         FieldIntegrals &out);

// Source on a dipole panel: as PANFLD, and with IGRAD and ILOGF also GLZ.
[[nodiscard]] int PANDPS(const f32 *P, f32 EPS, const Panel &p, int ILOGF, int IGRAD, FieldIntegrals &out);

struct Triple {
    f32 x, y, z;
};

// Coordinate of a field point along the axis of a panel frame, and whether the multipoles stand for the panel
// there. In double precision: the result does not depend on the order in which a sum is worked, and is the
// same for a point alone and in a batch.
[[gnu::always_inline]] inline f32 local_coordinate(Triple point, Triple centroid, Triple axis) {
    const double dx = static_cast<double>(point.x) - static_cast<double>(centroid.x),
                 dy = static_cast<double>(point.y) - static_cast<double>(centroid.y),
                 dz = static_cast<double>(point.z) - static_cast<double>(centroid.z);
    return static_cast<f32>(static_cast<double>(axis.x) * dx + static_cast<double>(axis.y) * dy +
                            static_cast<double>(axis.z) * dz);
}

inline bool is_far(Triple point, Triple centroid, f32 region2) {
    const double dx = static_cast<double>(point.x) - static_cast<double>(centroid.x),
                 dy = static_cast<double>(point.y) - static_cast<double>(centroid.y),
                 dz = static_cast<double>(point.z) - static_cast<double>(centroid.z);
    return dx * dx + dy * dy + dz * dz > static_cast<double>(FAR_FIELD) * static_cast<double>(region2);
}

// The parts of PANINT, by region.
void panint_far(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out);
[[nodiscard]] int panint_near(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out);
