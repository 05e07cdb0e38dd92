// Dipole panels: thin plates in the fluid.
#pragma once

#include "base/text.hpp"
#include "state/state.hpp"

// Gives IDIP, DPORA, DPORB, DTHK room for `size` panels and keeps what they hold; new entries are 0, ordinary
// panels. Nothing happens when they are that large already. Failed: no memory.
[[nodiscard]] Status DIPGRW(std::int64_t size, Dipoles &dipoles);

// Reads one record IDIP, DPORA, DPORB, DTHK for each of n panels from panel `first` on; the arrays grow as
// needed. DTHK is taken as it stands, in units of ULEN(1).
[[nodiscard]] Status read_dipoles(FreeReader &in, int first, int n, Dipoles &dipoles);

// Gives the images that mirroring made of the n panels from `first` on, so that they are `total` now, the
// dipole records of their originals: the image of a thin plate is a thin plate.
[[nodiscard]] Status mirror_dipoles(int first, int n, int total, Dipoles &dipoles);

// Fills DEPS: 0.125 times the root of the area on a dipole panel, 0 elsewhere. Failed: no memory, or a dipole
// panel lies in the free surface (IFSP).
[[nodiscard]] Status INIT_DIPOLE(const Mesh &mesh, Dipoles &dipoles);
