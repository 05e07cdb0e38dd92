// What infinite frequency takes off the coefficients of a row.
#pragma once

#include "assembly/wave_row.hpp"

// At infinite frequency the image in the free surface has the opposite sign of the one in the Rankine store:
// takes it off twice from the coefficients of the pairs that hold it (ISNG > 1). `code` holds the pair codes
// of the part. Failed: an integral has no value; the message is out.
[[nodiscard]] Status infinite_frequency_images(const RunState &run, const RowPart &part,
                                               const std::uint16_t *code, WaveRow &row);
