// The wave at points of the fluid.
//
// By Green's identity over the hull, 4 pi phi = sum over the panels of V dphi/dn - VN phi, with V and VN the
// integrals of the Green function over a panel; for the scattered wave with the total diffraction potential
// alone, since the incident wave has no share in it. With sources also phi = sum of V times the source, and
// its gradient.
#pragma once

#include "post/hull_state.hpp"
#include "post/points.hpp"

enum FieldPart { INCIDENT, SCATTERED, RADIATED, FIELD_PARTS };

// What is wanted at points, global axes, lengths in units of ULEN(1).
struct FieldRequest {
    std::vector<Vector3> points;
    std::vector<PointMark> mark; // of each point, of mark_points
    bool velocity = false;       // needs ISOR=1
};

// One period, all headings, per unit amplitude as HullState: pressure rho g phi, elevation phi in z = 0,
// velocity g / omega times i grad phi. 0 where the point is not in the fluid, or too near a panel.
struct Field {
    Array<c64, 3> phi;      // (points,FIELD_PARTS,NBETA)
    Array<c64, 4> gradient; // (3,points,FIELD_PARTS,NBETA), only with velocities
    // With ISOR=1: largest difference of the scattered or radiated potential by Green's identity and from the
    // sources, over the largest one.
    double by_sources = 0;
    c64 total(int point, int b) const;
    c64 total_gradient(int axis, int point, int b) const;
};

// Fills `field` for period t. Points are shared among the cores. False with the reason in `error`: as
// form_hull_state; velocities beside dipole panels; a lid body without sources; no memory.
[[nodiscard]] bool form_field(const P2fFile &p2f, int t, Motions xi, const FieldRequest &request,
                              Field &field, std::string &error);
