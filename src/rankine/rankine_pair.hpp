// Rankine influence of one source panel on one field panel, for one image.
#pragma once

#include "geometry/panel.hpp"
#include "rankine/near_pairs.hpp"
#include "state/state.hpp"

#include <vector>

// What the pairs of a run are made from.
struct RankineInput {
    const Options &opt;
    const Mesh &mesh;
    const Dipoles &dipoles;
    const Symmetry &sym;
    std::vector<Panel> panels; // of all panels, panel NP at NP-1
    PairPoints points;
    PairImages images;

    RankineInput(const Options &options, const Mesh &the_mesh, const Dipoles &the_dipoles,
                 const Symmetry &symmetry);

    const Panel &panel(int NP) const { return panels[static_cast<std::size_t>(NP) - 1]; }
    bool dipole(int NP) const { return is_dipole(dipoles, NP); }
    // A filled tank: every pair is near, and there are no images in free surface and bottom.
    bool tank() const { return opt.IRRX != 0; }
};

// Influence on field panel F, taken at its image, of source panel G. Level 0 holds the plain Rankine terms,
// level 1 those that multiply the logarithm of the wave function. D dipole, S source, N normal derivative of
// the source at the field panel, V its gradient (axes from 1).
struct RankineTerms {
    f32 D[2], S[2], N[2];
    f32 V[2][4];
    int digit; // octal digit of the pair code: 1 direct term, 2 and free-surface image, 3 and its logarithm;
               // 4 added: bottom
};

// The mask of near_pairs for field panel A, or that of a tank.
void pairs_of(const RankineInput &in, int A, std::uint8_t *mask);

// The terms of a near pair for the p-th image of the list; `surface` tells that both panels lie in z = 0. At
// F = G, p = 1, V starts with the 2 pi of the panel itself. False: an integral has no value.
[[nodiscard]] bool rankine_pair(const RankineInput &in, int F, int G, int p, bool surface,
                                RankineTerms &terms);
