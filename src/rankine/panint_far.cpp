#include "rankine/far_multipoles.hpp"

VORDA_SIMD void panint_far(f32 X, f32 Y, f32 Z, const Panel &panel, int IGRAD, int ILOGF,
                           PanelIntegrals &out) {
    far_field::Lanes<1> p;
    p.X[0] = X;
    p.Y[0] = Y;
    p.Z[0] = Z;
    for (int n = 1; n <= 13; ++n)
        p.PMOM[n][0] = panel.PMOM[n];
    for (int r = 0; r < 3; ++r)
        p.up[r][0] = panel.TRM[r + 1][3];
    p.region2[0] = panel.region2;
    LaneIntegrals<1, f32> in{};
    const int order = IGRAD != 0 ? 2 : 0;
    far_field::source<1>(p, order, in);
    if (ILOGF != 0)
        far_field::logarithm<1>(p, order, in);
    put_integrals(in, IGRAD, ILOGF, out);
}
