// The cases of a design study: folders, each with the input of a run.
#pragma once

#include <string>
#include <vector>

// The folders of a study, in order: those in the first column of a table of comma-separated values, relative
// to it (a first line that names no folder is a heading, lines that begin with # do not count); or, of a
// folder, the folders in it that have a fnames.vrd. False, with the reason in `error`: there are none, or one
// is missing.
[[nodiscard]] bool list_cases(const std::string &study, std::vector<std::string> &folders,
                              std::string &error);

enum class CaseState { solved, done_before, failed };
struct CaseResult {
    CaseState state = CaseState::failed;
    double seconds = 0;
    std::string message; // of a fault
};
// Solves a case by the solver beside this program, unless its result is there and was made from the same
// input files (by their hashes, which stand in the folder's made_from.txt) by the same version.
CaseResult solve_case(const std::string &folder, const std::string &version);
