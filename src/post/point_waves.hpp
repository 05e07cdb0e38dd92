// The whole wave beneath points of bodies: incident, scattered and radiated.
#pragma once

#include "post/case_file.hpp"
#include "post/hull_state.hpp"

#include <string>

struct PointWaves {
    // In z = 0 at the place of a point at rest, over the amplitude; no number at limit frequencies and where
    // a hull is, or a panel nearer than half its size (points,NBETA,NPER).
    Array<c64, 3> elevation;
    std::string none; // why no point has a wave; empty: those in the fluid have one
};

// Of the points of a case, with the motions xi (NMODES,NBETA,NPER).
PointWaves form_point_waves(const P2fFile &p2f, const CaseFile &file, const Array<c64, 3> &xi);
