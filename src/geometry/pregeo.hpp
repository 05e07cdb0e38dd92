// The body pre-pass: panels of all bodies in global axes, normal velocities of the modes,
// volumes and hydrostatics.
#pragma once

#include "state/state.hpp"

// Makes the panel arrays (all but XVER) for NEQN panels and CHYD for NMODES modes, zeroed; `projected` keeps
// the marks of the input stage. False when memory is refused.
[[nodiscard]] bool allocate_mesh(Bodies &bodies, Mesh &mesh);

// The name of the PRE file of a body, FILNAM(body+4), until it is complete.
std::string unfinished_pre(const Files &files, int body);

// For each body BODGEO; then turns its six mode switches into mode numbers 1..6, or 0 for a mode that is off.
// In a first pass of an extra-mode analysis (NEWMDS(b) < 0) it writes the PRE file of the body; the MOD file
// of a body with NEWMDS(b) > 0 is read. Fills the panel arrays, VEL, RXNG, VOL, XCB, CHYD and MODE. Failed: a
// panel was refused, a PRE file could not be written or a MOD file not be used, or IMDRUN < 0, since a first
// pass ends here.
[[nodiscard]] Status PREGEO(const Options &opt, const Files &files, const Dipoles &dipoles, Bodies &bodies,
                            Mesh &mesh);

// Panels and modes of one body.
struct BodyRange {
    int body = 1;
    int ip1 = 1; // first and last panel
    int ip2 = 0;
    int mode = 1; // row of its first mode
};

// The panels of one body in global axes, its rows of VEL (and RXNG with the Gauss switch), VOL, XCB and its
// block of CHYD, per density and gravity. With IQUAD or IWADD the second moments are those of the Gauss
// points, not of centroids.
[[nodiscard]] Status BODGEO(const Options &opt, const Dipoles &dipoles, const BodyRange &range,
                            Bodies &bodies, Mesh &mesh);

// One line for each panel of the body behind the two heading lines of its PRE file FILNAM(body+4): centroid,
// area, six normal velocities and the dipole mark.
[[nodiscard]] Status WRTPRE(const Files &files, const Dipoles &dipoles, const BodyRange &range,
                            const Mesh &mesh);
