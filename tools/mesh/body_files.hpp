// The bodies of a geometry file or a global geometry file, read without a run.
#pragma once

#include "geometry/dipoles.hpp"
#include "input/gdf.hpp"
#include "mesh/checks.hpp"

#include <string>
#include <vector>

// Where a body of a global file stands, and whether it is a lid.
struct Placement {
    f32 XBODY[4] = {};
    bool lid = false;
};
struct BodyFile {
    std::string name;
    Placement place;
    GdfHead head;
    int n = 0;
    Array<f32, 3> XVER; // in units of length, body axes
    Dipoles dipoles;
    bool has_dipoles = false;
};

// Reads the bodies that `file` holds or names; `lids`: a global file with body types (IFSLID). False: it
// cannot be read, and the message is out on standard error.
[[nodiscard]] bool read_body_files(const std::string &file, bool lids, std::vector<BodyFile> &bodies);

struct Surroundings {
    double depth = 0; // of the water [length], 0: infinite
    bool tank = false;
};
// A body for the checks, over its ULEN. One that is moved and given in part stays in its own axes, where it
// is judged about its own planes.
BodyMesh mesh_of(const BodyFile &file, const Surroundings &around);
// Whether a body is in those axes.
bool in_own_axes(const BodyFile &file);
// A point of the body axes in those of the run.
BodyPoint placed(const BodyPoint &p, const Placement &place);
