// The machine's memory, whether the influence matrices live in it, and how many periods run at a time.
#pragma once

#include "state/state.hpp"

// Reports the memory of the machine on the list file and fills AVAILM [bytes]: 0 when the system
// does not tell.
void MEMRPT(Memory &memory);

// Order of the matrix AMAT of one thread.
int core_order(const Options &opt, int NEQN);

// Decides INCORE and NTMAX from AVAILM and writes the lines of the plan. The matrices are planned for memory
// only if NEQN <= MAXSCR and neither IUSESCR=1 nor ISOLVN=1.
void MEMPLN(const Options &opt, int NEQN, int NSYMR, Memory &memory);

// Lays the arrays of the store out in a block of zeros, aligned to 64 bytes, and returns its size [bytes];
// with a null block it only tells the size.
std::int64_t lay_out_store(const Options &opt, const Symmetry &sym, int NEQN, std::byte *block,
                           RankineStore &store);

// Makes and clears the shared store when INCORE. Failed: " RAM too small ".
[[nodiscard]] Status allocate_store(const Options &opt, const Symmetry &sym, int NEQN, RankineStore &store);

// Number of periods that may run at a time: 1 without the in-core store, else the system's thread count
// limited by NTMAX. Writes it to the list file.
int period_threads(const Memory &memory);
