// The decks of a case: what the solver reads, and what the run will cost.
#pragma once

#include "case/outline.hpp"

// What is planned.
struct CasePlan {
    int IRR = 0, ISOR = 0, ISOLVE = 0;
    int periods = 0; // with the limits
    int panels = 0, with_images = 0;
    int unknowns = 0, classes = 1; // of each class of symmetry; panels that the solver makes are an estimate
    double memory = 0;             // [bytes] of the matrices of two periods
    double longest_panel = 0;      // side of a square panel of the mean area [m]
    double shortest_wave = 0;      // [m]
};

// What is wrong with the bodies in their places: below the bottom, above the surface, in each other, walls,
// gravity. False with line and remedy in `error`.
[[nodiscard]] bool check_places(const RunCase &run, const std::vector<Outline> &bodies, std::string &error);

[[nodiscard]] bool make_plan(const RunCase &run, const std::vector<Outline> &bodies, CasePlan &plan,
                             std::string &error);

// A file of the deck: its name in the run's folder and its text. Meshes are meshes/body1.gdf and up.
struct DeckFile {
    std::string name, text;
};
std::vector<DeckFile> decks_of(const RunCase &run, const CasePlan &plan);
std::string mesh_name(std::size_t body); // from 0
// The geometry file that fnames.vrd names.
std::string geometry_name(const RunCase &run);
// Whether that is a global geometry file.
bool has_global_file(const RunCase &run);
