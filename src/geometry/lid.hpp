// Bodies that are lids: panels in the free surface on which the waves are damped.
#pragma once

#include "state/state.hpp"

// Damping of panel P, if it belongs to a lid (BDTYP=3): true and EPS = FSDMP of the first lid with
// that panel; else false and EPS = 0. The vertical velocity on a lid of damping e is K (1 - i e)^2
// times the potential.
[[nodiscard]] bool LIDDMP(const Bodies &bodies, int P, f32 &EPS);

// What a lid of damping e takes away from the velocity of a free surface, K phi: (K e^2, 2 K e) times the
// potential, K the deep-water wave number, 0 at a limit frequency.
inline c32 lid_factor(f32 e, f32 K) {
    return {K * e * e, 2 * K * e};
}
