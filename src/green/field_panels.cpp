#include "green/field_panels.hpp"

#include "base/simd.hpp"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

Panel surface_panel(const SurfaceMesh &surface, int J) {
    Panel panel{};
    std::copy_n(&surface.XIVF(1, J), 4, panel.XIV + 1);
    std::copy_n(&surface.ETVF(1, J), 4, panel.ETV + 1);
    std::copy_n(&surface.XCTF(1, J), 3, panel.XCT + 1);
    std::copy_n(&surface.PMOMF(1, J), 13, panel.PMOM + 1);
    std::copy_n(&surface.SIDEF(1, J), 4, panel.SIDE + 1);
    std::copy_n(&surface.GJACF(1, J), 4, panel.GJAC + 1);
    std::copy_n(&surface.PSIZF(1, J), 2, panel.PSIZ + 1);
    for (int c = 1; c <= 3; ++c) {
        for (int r = 1; r <= 3; ++r)
            panel.TRM[r][c] = surface.TRMF(r, c, J);
        for (int k = 1; k <= 4; ++k)
            panel.XGP[k][c] = surface.XGPF(k, c, J);
    }
    measure_regions(panel);
    return panel;
}

template <class PanelOf> bool make_of(FieldPanels &field, int n, int IQUAD, PanelOf panel_at) {
    std::vector<Panel> panels;
    try {
        panels.reserve(static_cast<std::size_t>(n));
    } catch (const std::bad_alloc &) {
        return false;
    }
    for (int i = 1; i <= n; ++i)
        panels.push_back(panel_at(i));
    return field.make(std::move(panels), IQUAD);
}

} // namespace

int QUADPT(int IQ, const Panel &panel, f32 (&WG)[5], f32 (&PG)[5][4]) {
    const int NG = IQ == 0 ? 1 : 4;
    for (int k = 1; k <= NG; ++k) {
        WG[k] = IQ == 0 ? panel.PMOM[1] : panel.GJAC[k];
        for (int c = 1; c <= 3; ++c)
            PG[k][c] = IQ == 0 ? panel.XCT[c] : panel.XGP[k][c];
    }
    return NG;
}

f32 DZSTEP(int N, View<const f32, 2> PMOM) {
    f32 area = 0;
    for (int i = 1; i <= N; ++i)
        area += PMOM(1, i);
    return 0.125f * std::sqrt(area / static_cast<f32>(N));
}

bool FieldPanels::make(std::vector<Panel> panels, int IQUAD) {
    panel = std::move(panels);
    n = static_cast<int>(panel.size());
    padded = (n + BATCH - 1) / BATCH * BATCH;
    NG = IQUAD == 0 ? 1 : 4;
    if (!X.alloc(padded, 3) || !N.alloc(padded, 3) || !FN.alloc(padded) || !XG.alloc(padded, 3, NG) ||
        !W.alloc(padded, NG))
        return false;
    for (int j = 1; n > 0 && j <= padded; ++j) {
        const Panel &p = panel[static_cast<std::size_t>(std::min(j, n) - 1)];
        f32 WG[5], PG[5][4];
        QUADPT(IQUAD, p, WG, PG);
        FN(j) = RKNEAR * p.region2;
        for (int c = 1; c <= 3; ++c) {
            X(j, c) = p.XCT[c];
            N(j, c) = p.TRM[3][c];
        }
        for (int k = 1; k <= NG; ++k) {
            W(j, k) = j <= n ? WG[k] : 0.0f;
            for (int c = 1; c <= 3; ++c)
                XG(j, c, k) = PG[k][c];
        }
    }
    return true;
}

bool FieldPanels::make(const Mesh &mesh, int IQUAD) {
    return make_of(*this, mesh.NEQN, IQUAD, [&](int NP) { return panel_of(mesh, NP); });
}

bool FieldPanels::make(const SurfaceMesh &surface, int IQUAD) {
    if (!make_of(*this, surface.NFSP, IQUAD, [&](int J) { return surface_panel(surface, J); }))
        return false;
    if (padded > 0) // a file may have no panels
        std::fill_n(&X(1, 3), padded, 0.0f);
    return true;
}

bool KernelValues::alloc(const FieldPanels &panels, int values) {
    return re.alloc(panels.padded, values) && im.alloc(panels.padded, values);
}

void KernelValues::clear(int value) {
    std::fill_n(&re(1, value), re.dim(1), 0.0f);
    std::fill_n(&im(1, value), im.dim(1), 0.0f);
}

bool FieldWork::alloc(const FieldPanels &panels) {
    const int n = panels.padded, NG = panels.NG;
    return near.alloc(n) && mean.alloc(n) && R.alloc(n, NG) && C.alloc(n, NG) && S.alloc(n, NG) &&
           Z.alloc(n, NG) && ZETA.alloc(n, NG) && ISNG.alloc(n, NG) && IBOT.alloc(n, NG) &&
           green.alloc(n, NG, 2 * GREEN_VALUES) && vgrn.alloc(n * NG);
}
