// The solver's run of the decks of a case, in its folder or in a folder of that.
#pragma once

#include "case/decks.hpp"
#include "case/made_from.hpp"

// Folder of the finer meshes.
constexpr const char *FINE = "fine/";

struct Solution {
    std::string folder; // within the run's folder: "" or FINE
    const CasePlan *plan;
    std::string version; // of the program
    std::string p2f() const { return folder + "case.p2f"; }
};
// Writes the decks and runs the solver when something changed since the last time; tells both. False with the
// reason in `error`.
[[nodiscard]] bool write_decks(const RunCase &run, const Solution &solution, std::string &error);
[[nodiscard]] bool solve(const RunCase &run, const Solution &solution, MadeFrom &made, std::string &error);
