// The strips of interior free-surface panels behind the waterline panels.
#pragma once

#include "state/state.hpp"

// Fills strips.IRRP and strips.head for the panels that FSMARK has marked: by adjacency for IRR 1 to 3, by
// distance for IRR=4. IRRP is as long as its entries need, and NEQN at least. Failed: " RAM too small ".
[[nodiscard]] Status fill_strips(const RunState &run, Strips &strips);

// The strips of body `body`, whose panels start at `first` and whose waterline panels are the entries w1..w2
// of the lists. From the wet side of each waterline panel a strip runs from panel to panel over sides that
// are shared in opposite sense (compared in x and y), until there is no such panel or a triangle ends it. The
// strips grow in turn, one panel a round, so that those of opposite sides meet at the centreline; a panel is
// in one strip only. `used` counts the entries of IRRP, before and after.
void FSSTRP(const RunState &run, int body, int first, int w1, int w2, View<int, 1> IRRP, int &used);

// Gives each interior panel to the waterline panel with the nearest centroid in the horizontal plane,
// the first of equals, and lists for each waterline panel its own in ascending order. `head` holds
// the waterline panels.
void FSNEAR(const Mesh &mesh, View<const int, 1> head, View<int, 1> IRRP, int &used);
