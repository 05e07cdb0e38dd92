// vorda-run: from a case file to results, step by step.
#pragma once

#include <string>

struct RunRequest {
    std::string file, version; // of the program: "VORDA 1.0.0"
    bool dry = false;          // the plan alone
    bool refine = false;       // once more with each panel in four
    bool force = false;        // meshes that make numbers wrong do not stop it
};
// Makes CASE.run and tells each step on standard output. The exit code: 0 when all went well, else standard
// error has the reason.
int run_case(const RunRequest &request);
