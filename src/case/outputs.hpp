// What is made of a solution: files for other programs, and the report.
#pragma once

#include "case/decks.hpp"
#include "case/made_from.hpp"

// What the steps before found, for the report.
struct CaseFindings {
    CasePlan plan;
    std::string mesh_report, mesh_faults; // as vorda-mesh check tells
    std::string solver_list;              // the report of the solver
    bool refined = false;                 // there is a solution with finer meshes
};
// Makes the outputs that the case wants and that are not there or changed; those it no longer wants go. False
// with the reason in `error`.
[[nodiscard]] bool make_outputs(const RunCase &run, const std::string &version, const CaseFindings &findings,
                                MadeFrom &made, std::string &error);
