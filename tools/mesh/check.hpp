// vorda-mesh check: what the solver's report says about the mesh of a geometry file, without a run.
#pragma once

#include "gdf_file.hpp"

struct CheckRequest {
    std::string file;
    double depth = 0;       // of the water [length], 0: infinite
    double wave_length = 0; // shortest wave [length], 0: none
    bool tank = false;      // a filled tank
    bool lids = false;      // a global file with body types (IFSLID)
    bool treated =
        false; // interior panels may be wanted: a body just below z = 0 is one that was to reach it
};
// Prints the report of each body. 0: nothing wrong, 2: there are findings that make numbers wrong, 1: the
// file cannot be read; the message is out.
int check_gdf(const CheckRequest &request);
// The same of bodies that were read; 0 or 2.
int check_bodies(const CheckRequest &request, const std::vector<GdfBody> &bodies);
