// What is wrong with the mesh of a body, in words that tell what to do.
#pragma once

#include "mesh/body_mesh.hpp"

#include <string>

// One kind of finding: the words, the panels concerned (from 1; empty: the body as a whole), what to do.
struct MeshFinding {
    std::string what;
    std::vector<int> panels;
    std::string remedy;
    bool wrong = true; // numbers of the run will be wrong; false: a hint
};

struct MeshLimits {
    double shortest_wave = 0; // wave length; 0: none given
    bool treated = false;     // interior panels are wanted: IRR is not 0
};

// Nothing is reported of a mesh that is sound. 20 000 panels take about 0.1 s.
std::vector<MeshFinding> check_mesh(const BodyMesh &mesh, const MeshLimits &limits);

// The finding in one line: what, the panels (five at most, then a count), the remedy.
std::string told(const MeshFinding &finding);
