// The wave along the waterlines of the bodies.
#pragma once

#include "post/hull_state.hpp"
#include "post/surface_gradient.hpp"

// A side of a panel in the free surface; global axes, lengths in units of ULEN(1).
struct WaterlineSide {
    int body, panel;
    int image; // counted from 1 as in images_of
    Vector3 middle, normal;
    double length;
};
// All sides of the bodies and their images; none when the file has no waterlines (ISOR=0).
std::vector<WaterlineSide> waterline_sides(const P2fFile &p2f);

// Velocity on an image of a panel, in units of the state: along the surface the gradient of the potentials
// where it has one, across it what the motions ask for; else that of the sources, 0 when the state has none.
// For states of the whole wave and of motions.
Complex3 hull_velocity(const P2fFile &p2f, const SurfaceGradient &gradient, const HullState &state, int J,
                       int g, double nu);

// Elevation of the wave at the middle of a side over the amplitude: the potential of the panel and its slope,
// which up the side goes from that of the panel to nu phi.
c64 side_elevation(const P2fFile &p2f, const SurfaceGradient &gradient, const HullState &state,
                   const WaterlineSide &side, double nu);
