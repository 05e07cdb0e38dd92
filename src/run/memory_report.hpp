// What a run takes beside the matrices that the memory plan counts.
#pragma once

#include "state/state.hpp"

// Bytes of the large arrays of a run whose matrices are in memory.
struct RunMemory {
    std::int64_t shared = 0;     // Rankine store, pair codes
    std::int64_t per_period = 0; // matrices, solutions, assembly and solver of one period at work
};
// Of a period that has `cores` cores to itself.
RunMemory memory_of(const RunState &run, int cores);

// With INCORE one line on the list file, behind those of the plan: what the run takes with `threads`
// periods at a time.
void report_memory(const RunState &run, int threads);
