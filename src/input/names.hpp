// Names of the input and result files.
#pragma once

#include "state/state.hpp"

#include <string>

// Removes the blanks in front of a name and cuts it at the first blank behind them.
void FNNORM(std::string &name);

// FILNAM(b) becomes FILNAM(a) with extension c of EXTS (from 1) in place of what stands from the first "." of
// the file's own name on, or behind the name when it has none. Folders in front of it keep their dots, and a
// dot that the file's name begins with is part of the name.
void SETEXT(NameTable &FILNAM, int a, int b, int c);

// Names of the geometry and the control file, FILNAM(1) and (2), from lines 1 and 2 of files.names or from
// the console; the name of the result file, FILNAM(3). An old result file is removed. Failed: no name, the
// result or the list file would replace an input file (links and the files of a global geometry file count),
// or the old result cannot be removed.
[[nodiscard]] Status RDNAMS(Files &files, const Options &opt);

// Name of the free-surface panel file, FILNAM(5), from line 5 of files.names or from the console.
[[nodiscard]] Status RDFDFN(Files &files);
