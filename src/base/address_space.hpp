// The limit of the address space (ulimit -v). The BLAS library waits for ever for buffers that it does not
// get, some of them before main, so that a limit too low must be seen before anything else.
#pragma once

#include <cstdint>

// Bytes, -1: no limit.
std::int64_t address_space_limit();
// Bytes that the process has mapped; 0 when the system does not tell.
std::int64_t address_space_used();
// Bytes for the program, the buffers of the BLAS library and the stacks of that many threads,
// without any matrix.
std::int64_t address_space_needed(int threads);
