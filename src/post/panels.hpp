// Pressure and velocity on the panels and their images, for structural models.
#pragma once

#include "post/hull_state.hpp"
#include "post/names.hpp"
#include "post/surface_gradient.hpp"

// What makes the pressure: a unit motion of one mode, a wave of unit amplitude past the bodies at rest, or
// with their motions.
struct PanelLoad {
    enum class Kind { mode, diffraction, total } kind = Kind::total;
    int index = 1;            // mode, or heading
    bool hydrostatic = false; // total: with that of the depth change of the moving panels
};

// Dimensional by the scales, per unit of the motion (length or radian) or of the amplitude. Panels of the
// free surface inside bodies and of lids, and images behind walls, have 0.
struct PanelValues {
    Array<c64, 2> pressure; // at the centroids, of dipole panels the jump (NEQN,images)
    Array<c64, 3>
        velocity; // of the fluid, global axes (3,NEQN,images); only with ISOR=1, none for dipole panels
};
// False with the reason in `error`: as form_hull_state; no density; moving extra modes with the hydrostatic
// part, of which the file holds the normal displacement only.
[[nodiscard]] bool form_panels(const P2fFile &p2f, int t, Motions xi, const PanelLoad &load,
                               const Scales &scales, const SurfaceGradient &gradient, PanelValues &values,
                               std::string &error);

// A place in global axes from the origin of a body, in the axes of the body; units of ULEN(1).
Vector3 from_body(const P2fFile &p2f, int body, const Vector3 &at);

// Height by which the motions xi of its body raise a place r (dimensional, from the origin of the body, axes
// of the body) of a hull.
c64 rise(const P2fFile &p2f, int body, Motions xi, int b, const Vector3 &r);
