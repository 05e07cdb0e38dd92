// The programs that a case is run by, found beside the one that runs.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct Ended {
    int code = 0;     // exit code; 128 and up: ended by a signal
    std::string text; // what it printed, on standard output and standard error
};
struct Start {
    std::vector<std::string> words; // name of the program and its arguments
    std::string folder;             // that it works in
    bool on_terminal = false;       // its standard error is ours
};
// Runs a program to its end; `watch` is called a few times a second meanwhile, when it is there. False, with
// the reason in `error`: it is not there, or no process can be made.
[[nodiscard]] bool run_program(const Start &start, const std::function<void()> &watch, Ended &ended,
                               std::string &error);
// Name of a program with the folder of the one that runs.
std::string program_beside(const std::string &name);
// As a user types it.
std::string typed(const std::vector<std::string> &words);

bool on_terminal(); // standard error
