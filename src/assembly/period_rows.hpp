// All rows of a period, by the store that they go to.
#pragma once

#include "assembly/assembly_frame.hpp"

// To ACORE, ECORE and VCORE of the thread. Failed: memory is refused, or a row has no value; the
// message is out.
[[nodiscard]] Status rows_in_core(const AssemblyFrame &frame, ThreadState &thread);
// Bytes that WAVEGR takes for that, with `cores` cores at work, while it lasts.
std::int64_t rows_memory(const RunState &run, int cores);
// From the Rankine records to AMAT and the scratch files. Failed: memory, a scratch file, or a row without a
// value; the message is out.
[[nodiscard]] Status rows_on_scratch(const AssemblyFrame &frame, ThreadState &thread);
