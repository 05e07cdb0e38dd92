// Gradient vectors of the Green function.
#pragma once

#include "base/types.hpp"

// The complex gradient V(1..3) from the first derivatives of a record of VGRN1P; c and s are the unit
// horizontal vectors of the row pair (1) and of the column pair (2).
//   MODE  V(1)    V(2)    V(3)
//   0    -c1 GR  -s1 GR  -GZ      1  -c2 GR  -s2 GR  -GF      (GF: derivative by zeta)
//   2     c1 GR   s1 GR  -GF      3   c2 GR   s2 GR  -GZ
void GRADSG(const f32 (&record)[16], int MODE, f32 c1, f32 s1, f32 c2, f32 s2, c32 (&V)[3]);
