// How long a case will take on this machine, from a small run that is timed.
#pragma once

#include "case/decks.hpp"

// Work of a run, to which its time is about proportional, by the same solver and the same size of matrices.
double work_of(const CasePlan &plan);

// Wall time of the solution of a case [s]: a box of some 750 panels like those of the case is solved in a
// folder for temporary files, at some of its periods, by either solver. What they differ by grows with the
// cube of the unknowns, the rest with the square. Negative: the trial failed.
double seconds_by_trial(const RunCase &run, const CasePlan &plan);
