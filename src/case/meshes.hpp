// The meshes of a case: made by vorda-mesh or taken from geometry files, and what is wrong with them.
#pragma once

#include "case/made_from.hpp"
#include "case/outline.hpp"

// Makes meshes/bodyN.gdf of all bodies that changed in the run's folder, and reads them. False with line and
// remedy in `error`.
[[nodiscard]] bool make_meshes(const RunCase &run, MadeFrom &made, std::vector<Outline> &outlines,
                               std::string &error);

// Judges the meshes as vorda-mesh check does. `report`: all it prints; `faults`: lines on what makes numbers
// wrong. False, with the reason in `error`: they cannot be read.
[[nodiscard]] bool judge_meshes(const RunCase &run, double shortest_wave, std::string &report,
                                std::string &faults, std::string &error);
