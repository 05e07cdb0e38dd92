// Gradient vectors of the Green function.
#pragma once

#include "base/types.hpp"

// The complex gradient V(1..3) of G at the field point, in the upward coordinates, from the first derivatives
// of a record of VGRN1P; c and s are the horizontal unit vectors from field to source of the row pair (1) and
// of the column pair (2).
//   MODE 0: c1, s1, and zeta of the record is the depth of the field point (a row)
//   MODE 1: c2, s2, and z of the record is the depth of the field point (the column of the same record)
void GRADSG(const f32 (&record)[16], int MODE, f32 c1, f32 s1, f32 c2, f32 s2, c32 (&V)[3]);
