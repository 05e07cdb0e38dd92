// From a PRE file and a modes file to the MOD file of the second pass, and to what motions need.
#pragma once

#include "modes/matrices.hpp"

struct ModesRequest {
    std::string pre, modes; // files to read
    std::string mod;        // to write
    std::string case_file;  // masses and stiffness for vorda-p2f motions, or ""
};
// What was made of a mode, for those who watch.
struct ModeSummary {
    std::string text;               // "free-free, vertical, number 1"
    int like = 0;                   // rigid mode with its symmetry
    double largest = 0;             // normal velocity on a panel
    double mass = 0, stiffness = 0; // generalised; 0: not known
};
// Writes the files whole or not at all. False with file, line and remedy in `error`.
[[nodiscard]] bool make_modes(const ModesRequest &request, std::vector<ModeSummary> &told,
                              std::string &error);
