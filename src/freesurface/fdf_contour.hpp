// The waterline as one line of points, for the panels around the body.
#pragma once

#include "freesurface/contours.hpp"

// Chains the sides, the first one to start with: forward to sides that start where the chain ends, then, when
// it has not closed, backward to sides that end where it starts; points nearer than TOL are one, sides
// shorter than TOL do not count. XYCH: the points in order (the first again at the end of a closed line).
// NSHORT: number of short sides.
void WLCHN(const std::vector<WaterSide> &sides, double TOL, std::vector<SurfacePoint> &XYCH, int &NSHORT);

// Middle and size of a line of points.
struct LineCentre {
    std::vector<SurfacePoint> points; // without those within the tolerance of the point before
    SurfacePoint centre;              // mean of the mid-points of its sides
    double rmin = 0, rmax = 0;        // least and largest distance of a point from the centre
};
LineCentre WLCENT(const std::vector<SurfacePoint> &XYCH, double TOL);
