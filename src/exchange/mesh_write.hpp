// Panels as files of other programs.
#pragma once

#include "mesh/merge.hpp"

#include <string>

struct NamedMesh {
    std::string name; // of the body
    MergedVertices
        mesh; // lengths in metres or whatever the geometry file has; anti-clockwise seen from the water
};
// The extensions that can be written: "stl, obj, ...".
std::string written_extensions();
// Writes the bodies by the extension of `file`. False with the reason in `error`; then there is no file.
[[nodiscard]] bool write_mesh(const std::string &file, const std::vector<NamedMesh> &bodies,
                              std::string &error);
