// Hydrostatics of the bodies of a hand-over file, from their panels, in double precision.
#pragma once

#include "post/names.hpp"
#include "post/p2f_reader.hpp"

#include <array>
#include <string>
#include <vector>

using Vec3 = std::array<double, 3>;
using Matrix3 = std::array<std::array<double, 3>, 3>;
using Matrix6 = std::array<std::array<double, 6>, 6>;

// Geometry of one body under water, dimensional. Places in the axes of the body unless "global" is said: the
// global axes have z = 0 in the free surface. Each panel counts as the mean of its two divisions into
// triangles, of which the integrals are exact, so that a closed hull has equal volumes however its panels
// are bent. Interior free surface, lids and plates without thickness take no part.
struct BodyHydrostatics {
    Vec3 volumes{};                                     // from the integrals of n1 x, n2 y, n3 z
    double volume = 0;                                  // their mean
    Vec3 buoyancy{}, buoyancy_global{};                 // centre of buoyancy
    double waterplane_area = 0;                         // 0 for a submerged body
    Vec3 floatation{}, floatation_global{};             // centre of the waterplane, (0,0,0) without one
    double second_xx = 0, second_xy = 0, second_yy = 0; // of the waterplane about its centre
    double wetted_surface = 0;
    Vec3 lowest{}, highest{}; // corners of the box around the wetted panels
    Vec3 origin{};            // origin of the body in global axes
    double heading = 0;       // of its x axis [rad]
};

// False, with the reason in `error`, for the file of a tank: it has no waterplane and no buoyancy. A body
// without panels under water has zeros.
[[nodiscard]] bool form_hydrostatics(const P2fFile &p2f, std::vector<BodyHydrostatics> &bodies,
                                     std::string &error);

// A place in the axes of a body, dimensional, in global axes.
Vec3 global_place(const P2fFile &p2f, int body, const Vec3 &at);

// Mass of a body: its centre in the body's axes and its inertia about axes through that centre, parallel to
// the body's.
struct BodyMass {
    double mass = 0;
    Vec3 centre{};
    Matrix3 inertia{};
};
// What is assumed of a body when nothing is known: its displacement, the centre straight above the centre of
// buoyancy in the free surface, radii of gyration 0.4 of its beam and 0.25, 0.25 of its length.
BodyMass assumed_mass(const BodyHydrostatics &body, double density);

// Parts of the stiffness about the origin of the body, in its axes, per metre or radian: the waterplane, the
// buoyancy at its centre, the weight at the centre of gravity. rho g times the geometry; the weight m g.
struct Stiffness6 {
    Matrix6 waterplane{}, buoyancy{}, weight{};
    Matrix6 total() const;
};
Stiffness6 stiffness_of(const BodyHydrostatics &body, const BodyMass &mass, double density, double gravity);
// The same matrix of a body that is turned by `heading`, in axes parallel to the global ones.
Matrix6 in_global_axes(const Matrix6 &C, double heading);

// Metacentric heights over the centre of gravity, about the body's x axis (transverse) and y axis
// (longitudinal), at the body's volume.
struct MetacentricHeights {
    double transverse = 0, longitudinal = 0;
};
MetacentricHeights metacentric_heights(const BodyHydrostatics &body, const BodyMass &mass);

// Stiffness (NMODES,NMODES) of all bodies with their extra modes, dimensional: the rigid part as above, rows
// and columns of extra modes from the file. False when memory is refused.
[[nodiscard]] bool form_stiffness(const P2fFile &p2f, const std::vector<BodyHydrostatics> &bodies,
                                  const std::vector<BodyMass> &masses, const Scales &scales,
                                  Array<double, 2> &C);
// Mass matrix (NMODES,NMODES) of the rigid modes of all bodies about their origins; 0 for extra modes.
[[nodiscard]] bool form_mass(const P2fFile &p2f, const std::vector<BodyMass> &masses, Array<double, 2> &M);
