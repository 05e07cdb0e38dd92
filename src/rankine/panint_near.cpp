#include "rankine/near_logarithm.hpp"

namespace {

void take_panel(f32 X, f32 Y, f32 Z, const Panel &panel, PanelLanes<1> &p) {
    std::memcpy(p.XIV, &panel.XIV[1], sizeof p.XIV);
    std::memcpy(p.ETV, &panel.ETV[1], sizeof p.ETV);
    std::memcpy(p.SIDE, &panel.SIDE[1], sizeof p.SIDE);
    for (int r = 0; r < 3; ++r)
        p.up[r][0] = panel.TRM[r + 1][3];
    p.width[0] = panel.width;
    p.area[0] = panel.PMOM[1];
    p.X[0] = static_cast<double>(X);
    p.Y[0] = static_cast<double>(Y);
    p.Z[0] = static_cast<double>(Z);
}

} // namespace

VORDA_SIMD int panint_near(f32 X, f32 Y, f32 Z, const Panel &panel, int IGRAD, int ILOGF,
                           PanelIntegrals &out) {
    PanelLanes<1> p;
    take_panel(X, Y, Z, panel, p);
    NearIntegrals<1> in{};
    const int order = IGRAD != 0 ? 2 : 0;
    near_field::source<1>(p, order, in);
    if (ILOGF != 0)
        near_field::logarithm<1>(p, order, in);
    put_integrals(in, IGRAD, ILOGF, out);
    return in.status[0];
}
