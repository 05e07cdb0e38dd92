// Images and symmetry classes.
#pragma once

#include "state/state.hpp"

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
[[nodiscard]] Status SYMSET(int NMODES, int ISX, int ISY, View<const int, 1> MODE, int diffraction,
                            Symmetry &sym);

// For IWADD=1, after SYMSET; ISX and ISY are 0 or 1. WDDCLS fills WCLS1 to WCLS3, the class of what the slow
// surge, sway or yaw makes of a function of each class (its parities are those of the x, y or angular
// derivative), and the lists NMCLS1.. and MODCLS1.., the modes by the class they move to. WDDLFM fills WMODC,
// WMODM and WMODP: surge, sway and yaw by class, in columns 1 to 3. Failed: " RAM too small ".
[[nodiscard]] Status WDDCLS(int NMODES, int ISX, int ISY, Symmetry &sym);
[[nodiscard]] Status WDDLFM(int NMODES, int ISX, int ISY, Symmetry &sym);

// The modes that a solution works on.
struct ModeLists {
    const int *NMCLS;          // number of modes of each active class, from 1
    View<const int, 2> MODCLS; // k-th mode of active class s
    View<const int, 1> MODPOS; // solution column of a mode
};
inline ModeLists modes_of_run(const Symmetry &sym) {
    return {sym.NMCLS, sym.MODCLS, sym.MODPOS};
}
