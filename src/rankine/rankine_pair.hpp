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
    bool dipole_panels = false; // there are some

    RankineInput(const Options &options, const Mesh &the_mesh, const Dipoles &the_dipoles,
                 const Symmetry &symmetry);

    const Panel &panel(int NP) const { return panels[static_cast<std::size_t>(NP) - 1]; }
    bool dipole(int NP) const { return is_dipole(dipoles, NP); }
    // A filled tank: every pair is near, and there are no images in free surface and bottom.
    bool tank() const { return opt.IRRX != 0; }
};

// A directed pair, the field panel taken at its image; `surface` tells that both panels lie in z = 0. Its
// influence is then the source integral times a mark IFSP: on the potential that of the source panel, of
// which the free-surface condition gives the normal velocity; on the normal velocity that of the field panel,
// of which it gives the velocity that the source makes.
struct DirectedPair {
    int field, source;
    int image; // place in the list of images, from 1
    bool surface;
};

// Kinds of influence of the source panel on the field panel.
enum PairTerm {
    DIPOLE,   // integral of the normal derivative of 1/rho on the source panel
    SOURCE,   // that of 1/rho
    NORMAL,   // normal derivative of the source influence at the field panel
    VELOCITY, // its gradient, three components from here
    PAIR_TERMS = VELOCITY + 3
};

// Near pairs that are worked together. The terms of a pair do not depend on the other ones.
struct PairChunk {
    static constexpr int SIZE = 256;
    int count = 0;
    DirectedPair pair[SIZE];
    int digit[SIZE]; // octal digit of the pair code: 1 direct term, 2 and free-surface image, 3 and its
                     // logarithm; 4 added: bottom
    // By level: 0 the plain Rankine terms, 1 those that multiply the logarithm of the wave function.
    alignas(64) f32 term[2][PAIR_TERMS][SIZE];
    int holder[2][SIZE], holders[2]; // pairs that have terms of the level, in order, and their number

    bool full() const { return count >= SIZE - 1; } // room for both directions
    void add(const DirectedPair &p) { pair[count++] = p; }
};

// The mask of near_pairs for field panel A, or that of a tank.
void pairs_of(const RankineInput &in, int A, std::uint8_t *mask);

// Fills digits and terms of the pairs, those in z = 0 with the marks. At a panel and itself, the gradient
// starts with its own 2 pi. False: an integral has no value.
[[nodiscard]] bool rankine_pairs(const RankineInput &in, PairChunk &chunk);
