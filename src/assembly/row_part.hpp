// A part of a row of the wave assembly.
#pragma once

// Panels that are worked together: a row is worked part by part, so that what is between the Green function
// and the matrices stays in the first caches.
constexpr int PART = 512;

// The panels J = from+1..from+n of row I, J <= I.
struct RowPart {
    int I, from, n;
    int last() const { return from + n; }
    // Those of the column of I, which ends before the diagonal.
    int columns() const { return last() == I ? n - 1 : n; }
};
