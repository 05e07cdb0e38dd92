// How far the results of a case may be trusted: two ways to the same number, panels against waves.
#pragma once

#include "case/report.hpp"
#include "post/table.hpp"

// "differences": the largest difference between two ways, of each kind, and where.
Table difference_table(const DataSet &data);
// Sentences on what to refine or to doubt.
std::vector<std::string> convergence_hints(const ReportOf &of);
// What a reader has to know first: faults of the mesh, warnings of the solver, what is missing.
std::vector<std::string> warnings_of(const ReportOf &of);
