// Images and symmetry classes.
#pragma once

#include "run/state.hpp"

// Signs of image g = 1..4 of a point: (x,y), (-x,y), (-x,-y), (x,-y).
constexpr int SGX[5] = {0, 1, -1, -1, 1};
constexpr int SGY[5] = {0, 1, 1, -1, -1};
// SGN[t][g]: sign with which image g enters a function of parity type t: 1 even-even, 2 odd-even, 3 odd-odd,
// 4 even-odd in x, y.
constexpr int SGN[5][5] = {
    {0, 0, 0, 0, 0}, {0, 1, 1, 1, 1}, {0, 1, -1, -1, 1}, {0, 1, -1, 1, -1}, {0, 1, 1, -1, -1}};

// Fills `sym` for the symmetry indices ISX, ISY (-1, 0, 1) and the mode switches MODE(NMODES), which hold the
// rigid-mode number of each wanted mode (0: off). A class without a wanted mode stays only when `diffraction`
// is 1. MODLST, MODCLS, MODPOS are allocated here; failed: " RAM too small ".
[[nodiscard]] Status SYMSET(int NMODES, int ISX, int ISY, View<const int, 1> MODE, int diffraction, Symmetry &sym);
