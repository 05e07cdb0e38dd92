// The run from its input files to the hand-over file.
#pragma once

// Does a whole run in the working directory and ends the process through the stop routine, with exit code 0.
[[noreturn]] void run_solver();
