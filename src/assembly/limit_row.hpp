// The wave term at the limit frequencies, where the Green function is real and its points are worked
// one by one.
#pragma once

#include "assembly/wave_row.hpp"

// Evaluates the first `count` points of a row at zero (IPLIM=1) or infinite frequency
// (IPLIM=2) into `values`.
void limit_green(int count, const PeriodWave &wave, const WaveRow &row, const GreenArrays &values);

// At infinite frequency the image in the free surface has the opposite sign of the one in the Rankine store:
// takes it off twice from the coefficients of the pairs that hold it (ISNG > 1). `code` holds the pair codes
// of row I. Failed: an integral has no value; the message is out.
[[nodiscard]] Status infinite_frequency_images(const RunState &run, int I, const std::uint16_t *code,
                                               WaveRow &row);
