#include "freesurface/waterline.hpp"

#include "state/messages.hpp"

#include <cmath>

namespace {

constexpr f32 AT_SURFACE = 1.0e-5f; // a vertex that near to z = 0 lies in it; vertices that near coincide

bool coincide(View<const f32, 3> XVER, int v, int w, int panel) {
    for (int c = 1; c <= 3; ++c) {
        if (!(std::fabs(XVER(v, c, panel) - XVER(w, c, panel)) < AT_SURFACE))
            return false;
    }
    return true;
}

// First vertex of the wet side of a triangle with the vertices L in the surface and `below` under it; 0 when
// no two of L coincide.
int triangle_side(View<const f32, 3> XVER, const int L[3], int below, int panel) {
    for (int i = 1; i <= 3; ++i) {
        if (coincide(XVER, L[i - 1], L[i % 3], panel))
            return (below + 2 - (i - below + 4) % 3) % 4 + 1;
    }
    return 0;
}

} // namespace

Status WLFIND(View<const f32, 3> XVER, f32 ZB, View<int, 1> IWLP, View<int, 1> IWLE, int &NWLB) {
    NWLB = 0;
    int flat = 0; // panels with all four vertices in the surface
    for (int p = 1; p <= XVER.dim(3); ++p) {
        int L[4] = {};
        int n = 0;
        int below = 0;
        for (int v = 1; v <= 4; ++v) {
            if (std::fabs(XVER(v, 3, p) + ZB) <= AT_SURFACE)
                L[n++] = v;
            else
                below = v;
        }
        int side = 0;
        if (n == 2) {
            side = L[1] - L[0] == 1 ? L[0] : L[1];
        } else if (n == 3) {
            side = triangle_side(XVER, L, below, p);
            if (side == 0)
                return MSGOUT("Error: Three vertices on the free surface of panel I= ", p);
        } else if (n == 4) {
            ++flat;
        }
        if (side != 0) {
            IWLP(++NWLB) = p;
            IWLE(NWLB) = side;
        }
    }
    if (flat != 0)
        message("Warning: Some panels have four vertices on the free surface");
    return Status::ok;
}
