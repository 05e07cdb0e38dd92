// Panels of simple hulls, as patches of a quarter x >= 0, y >= 0 with the free surface at z = 0.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

using Point = std::array<double, 3>;
struct MeshPanel {
    std::array<Point, 4> vertex;
    bool plate = false; // a dipole panel
};
using Panels = std::vector<MeshPanel>;

// What makers take, each what its options say; lengths in units of length, counts of one quarter.
struct Sizes {
    double length = 1, beam = 1, draft = 1, radius = 1, inner = 1, bilge = 0;
    double distance = 1, span = 1, depth = 1, height = 1;
    int nu = 8, nv = 8, nw = 4, nb = 2, columns = 2;
    bool lid = false, standing = false, horizontal = false;
    bool cosine = false; // panels finer towards the edges of the body and the waterline
    std::string table;   // name of a file
};

// Makers. Each fills `quarter` (`ship`: the half y >= 0) and returns what is wrong with the sizes, in words
// that name the option; nothing when the panels are made.
using Maker = std::string(const Sizes &sizes, Panels &quarter);
// Floating hulls.
Maker hemisphere, ellipsoid, cylinder, box, wigley, catamaran, moonpool, semisubmersible, ship;
// Bodies below the surface; `depth` is that of their middle.
Maker sphere, closed_ellipsoid, closed_cylinder, closed_box;
// Thin plates: a horizontal disc, normal up; two vertical plates in x = distance/2 and its image, from the
// free surface down, normal towards x = 0.
Maker disc_plate, twin_plates;
// The closed walls of a tank from z = -depth down, normal out of the fluid.
Maker tank;

// Pieces of makers.

// Where equal steps of 0..1 go: equal, or as a cosine finer towards 1 (`end`) or towards both (`ends`).
struct Spacing {
    bool cosine = false;
    double end(double t) const;
    double ends(double t) const;
};
// n + 1 equal values from 0 to 1.
std::vector<double> steps(int n);
// Cosine and sine of u quarters of a circle, exact at its ends.
std::pair<double, double> quarter_circle(double u);

// Turns the order of vertices so that the normal (of the panel's own frame) has a positive
// component along `inward`.
MeshPanel oriented(const MeshPanel &panel, const Point &inward);
// Panels of a surface between the values u and v; inward(centroid) points into the body.
Panels grid(const std::vector<double> &u, const std::vector<double> &v,
            const std::function<Point(double u, double v)> &surface,
            const std::function<Point(const Point &)> &inward);
// nu by nv panels over the unit square.
Panels patch(int nu, int nv, const std::function<Point(double u, double v)> &surface,
             const std::function<Point(const Point &)> &inward);
void append(Panels &to, const Panels &from);
// The panels moved by `rise` along z.
Panels raised(Panels panels, double rise);
// The panels and their images in x = 0 (axis 0) or y = 0 (axis 1).
Panels mirrored(const Panels &panels, int axis);

// "OPTION VALUE: words", the form of a maker's complaints.
std::string refused(const char *option, double value, const std::string &words);
std::string in_words(double value);
// More panels than any run can take: true, and then counts are refused.
bool too_many(double panels);
