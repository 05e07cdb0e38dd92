// What makes a hull of loose panels, step by step. Each step tells what it did in one line.
#pragma once

#include "mesh/merge.hpp"

#include <functional>
#include <string>

struct HullRequest {
    double merge = 0; // vertices nearer to each other are one [length]; 0: 1e-6 of the size
    std::string part = "auto";
    bool recombine = false;
    bool lid = false;
    double ULEN = 1; // unit of lengths in findings
};
struct Hull {
    MergedVertices mesh;                // length, z = 0 in the free surface
    bool symmetric[2] = {false, false}; // about x = 0, y = 0: one side is in the mesh
};
using TellStep = std::function<void(const std::string &step, const std::string &line)>;

// Makes the wetted hull of what lies in hull.mesh. False with the reason in `error`.
[[nodiscard]] bool make_hull(const HullRequest &request, Hull &hull, const TellStep &tell,
                             std::string &error);
