#include "rankine/near_logarithm.hpp"
#include "rankine/panint.hpp"
#include "rankine/panint_eight.hpp"

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

f32 single(const PerPanel<1> &value) {
    return static_cast<f32>(value[0]);
}

} // namespace

VORDA_SIMD int panint_near(f32 X, f32 Y, f32 Z, const Panel &panel, int IGRAD, int ILOGF, PanelIntegrals &out) {
    PanelLanes<1> p;
    take_panel(X, Y, Z, panel, p);
    NearIntegrals<1> in;
    const int order = IGRAD != 0 ? 2 : 0;
    near_field::near_source<1>(p, order, in);
    out.D = single(in.D);
    out.S = single(in.S);
    if (order > 0) {
        out.SX = single(in.SX);
        out.SY = single(in.SY);
        out.DX = single(in.DX);
        out.DY = single(in.DY);
        out.DZ = single(in.DZ);
    }
    if (ILOGF == 0)
        return 0;
    near_field::near_logarithm<1>(p, order, in);
    out.L = single(in.L);
    out.LZ = single(in.LZ);
    if (order > 0) {
        out.LX = single(in.LX);
        out.LY = single(in.LY);
        out.LZX = single(in.LZX);
        out.LZY = single(in.LZY);
    }
    return in.status[0];
}

VORDA_SIMD void panint_near_eight(const PanelLanes<ABREAST> &p, int order, int ILOGF,
                                  NearIntegrals<ABREAST> &out) {
    near_field::near_source<ABREAST>(p, order, out);
    if (ILOGF != 0) {
        near_field::near_logarithm<ABREAST>(p, order, out);
        return;
    }
    for (int l = 0; l < ABREAST; ++l)
        out.status[l] = 0;
}
