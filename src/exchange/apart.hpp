// Reading in a process of its own: a library that breaks down over a broken file does not take the program
// with it, and what it prints stays unseen.
#pragma once

#include "mesh/edges.hpp"

#include <functional>
#include <string>
#include <vector>

struct ReadMesh {
    MergedVertices mesh; // points of the file, not merged; a triangle has its last two corners equal
    std::vector<std::string> notes; // what a user should know: units, what was left out
};
// Fills the mesh; false with the reason in `error`.
using MeshReader = std::function<bool(ReadMesh &, std::string &error)>;
// Calls `reader` in a child process, whose memory is limited to what the machine has available. `seconds`:
// time after which it is ended, 0: none. False, with the reason in `error`, when the reader says so or does
// not return.
[[nodiscard]] bool read_apart(const MeshReader &reader, unsigned seconds, ReadMesh &result,
                              std::string &error);
