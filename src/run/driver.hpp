// The run from its input files to the hand-over file.
#pragma once

class Crew;

// Does a whole run in the working directory and ends the process through the stop routine, with exit code 0.
[[noreturn]] void run_solver();
// The same by several processes, each of which calls this.
[[noreturn]] void run_solver(Crew &crew);
