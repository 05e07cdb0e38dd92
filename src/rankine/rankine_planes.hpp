// Where the terms of a pair go: the planes of the Rankine matrices, per class and level.
#pragma once

#include "rankine/rankine_pair.hpp"

// Which planes there are.
struct Planes {
    int per_class;                // of one class and level
    int source, normal, velocity; // place of the first of its kind, -1: absent; dipole is 0
    int levels, classes;

    Planes(const Options &opt, const Symmetry &sym) {
        int next = 1;
        source = keeps_source(opt) ? next++ : -1;
        normal = opt.ISOR == 1 ? next++ : -1;
        velocity = opt.ISOR == 1 ? next : -1;
        per_class = next + (opt.ISOR == 1 ? 3 : 0);
        levels = opt.ILOG + 1;
        classes = sym.NSYMR;
    }
    int all() const { return per_class * levels * classes; }
    int first(int s, int k) const { return ((s - 1) * levels + k) * per_class; }
};

// One element of all planes: the place in the first plane, and the distance from plane to plane.
struct PlaneElement {
    f32 *at;
    std::int64_t plane;
};

// Adds the terms of the pair to the element in all classes, and to the right-hand sides of the field panel
// rhs (NSYMD,0:1); null: no radiation.
void scatter_terms(const RankineInput &in, const Planes &planes, const RankineTerms &terms,
                   const DirectedPair &pair, PlaneElement to, f32 *rhs);

// The half solid angle that a panel has of itself; one in z = 0 or a dipole panel has none.
void add_half_solid_angle(const Planes &planes, PlaneElement to);

// Two panels in the free surface need the logarithm's level. Failed: ILOG=0 and there are such panels; the
// messages name the first one.
[[nodiscard]] Status surface_panels_allowed(const RankineInput &in);
