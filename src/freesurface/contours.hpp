// The waterline of a body as closed lines in the plane of the free surface, body axes.
#pragma once

#include "state/state.hpp"

#include <vector>

// A point of the free surface. Double, since the generators form differences of near points; vertices of the
// hull keep their value.
struct SurfacePoint {
    double x = 0, y = 0;
};
using Polygon = std::vector<SurfacePoint>; // closed: the first point follows the last
double distance(SurfacePoint a, SurfacePoint b);
// Area of a polygon, positive when it runs clockwise seen from above.
double clockwise_area(const Polygon &polygon);
// True when the point lies inside the polygon.
bool lies_inside(const Polygon &polygon, SurfacePoint point);

// The wet side of a waterline panel.
struct WaterSide {
    SurfacePoint from, to;
};
// The symmetry planes that a waterline may end on.
struct SurfacePlanes {
    bool x0 = false; // x = 0
    bool y0 = false; // y = 0
};
// Sides in walking order. An open contour starts and ends on a symmetry plane.
struct Contour {
    std::vector<int> sides; // places in the list of sides, from 0
    bool open = false;
};
struct WaterlineContours {
    double WLMEAN = 0; // mean length of the sides
    double WLTOL = 0;  // points nearer than it are one; shorter sides do not count
    std::vector<Contour> contours;
};

// Chains the sides into contours: behind each side the one that starts nearest to its end, not farther than
// WLTOL. False: a contour neither closes nor ends on a plane.
[[nodiscard]] bool WLSORT(const std::vector<WaterSide> &sides, SurfacePlanes planes, WaterlineContours &line);

// A closed polygon made of contours: `contours` are their places in the list, `length` and `sides` sum up the
// waterline sides in it.
struct Outline {
    Polygon points;
    std::vector<int> contours;
    double length = 0;
    int sides = 0;
};

// The closed polygons of the contours, with the body's inside on the right of each edge: those around the
// body run clockwise, those of a moonpool the other way. Open contours are closed along the planes: of the
// points where contours meet the planes, put in order along them, the first and the second, the third and the
// fourth ... have the inside between them; steps along the planes are PSCALE mean sides. False: two such
// neighbours are not an end and a start.
[[nodiscard]] bool WLPTS(const std::vector<WaterSide> &sides, SurfacePlanes planes,
                         const WaterlineContours &line, double PSCALE, std::vector<Outline> &outlines);

// Adds to the polygon the points of a straight line behind its last one, that one left out: equal steps of
// about `step`, no fewer than one.
void WLLINE(SurfacePoint from, SurfacePoint to, double step, Polygon &polygon);
