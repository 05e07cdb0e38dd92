#include "green/wdkern.hpp"

#include "green/field_points.hpp"

#include <cmath>

namespace {

constexpr f32 OVERHEAD =
    1.0e-4f; // horizontal distance times nu below which a panel always has its four points

Status near_image(FieldPoint image, const Panel &panel, ImageIntegrals &out) {
    FieldIntegrals logarithm, inverse;
    if (failed(near_integrals(image.x, image.y, image.z, panel, 1, 0, logarithm)) ||
        failed(near_integrals(image.x, image.y, image.z, panel, 0, 1, inverse)))
        return Status::failed;
    out = {inverse.S, logarithm.L, {inverse.GS[1], inverse.GS[2], inverse.GS[3]}};
    return Status::ok;
}

// The quadrature points of all panels. Returns their number.
int list_points(FieldPoint P, const FieldPanels &panels, f32 nu, WdkernWork &work) {
    int count = 0;
    for (int NP = 1; NP <= panels.n; ++NP) {
        const Panel &panel = panels.panel[static_cast<std::size_t>(NP) - 1];
        const f32 dx = P.x - panel.XCT[1], dy = P.y - panel.XCT[2];
        const int IQUAD = panels.NG == 1 ? 0 : 1;
        f32 WG[5], PG[5][4];
        const int NG = QUADPT(nu * std::sqrt(dx * dx + dy * dy) <= OVERHEAD ? 1 : IQUAD, panel, WG, PG);
        for (int k = 1; k <= NG; ++k) {
            ++count;
            work.owner(count) = NP;
            work.IFLAG(count) = work.near(NP);
            work.W(count) = WG[k];
            work.X2(count) = nu * PG[k][1];
            work.Y2(count) = nu * PG[k][2];
            work.Z2(count) = -nu * PG[k][3];
        }
    }
    return count;
}

// The terms of a near panel in one point: the share of the whole panel.
void add_near(const NearPair &pair, RegularTerms &t) {
    RegularTerms whole;
    LOGPAR(pair, whole);
    const f32 share = 1 / pair.PD;
    for (int k = 1; k <= 4; ++k) {
        t.P[k] += whole.P[k] * share;
        t.Q[k] += whole.Q[k] * share;
    }
    t.W1 += whole.W1 * share;
    t.W2 += whole.W2 * share;
}

// One point in the eight sums of its panel: weight w, place X2, Y2, normal n of the panel.
void add_point(const RegularTerms &t, f32 w, f32 nu, f32 X2, f32 Y2, const f32 *n,
               c32 (&U)[WDKERN_COLUMNS + 1]) {
    const f32 a = -nu * w, b = nu * a;
    const c32 a1 = a * t.P[1], a2 = a * t.Q[1];
    const c32 a4 = b * (n[1] * t.P[2] + n[2] * t.P[3] + n[3] * t.P[4]);
    const c32 a5 = b * (n[1] * t.Q[2] + n[2] * t.Q[3] + n[3] * t.Q[4]);
    const c32 X = n[1] * t.P[1] + n[2] * t.Q[1] - n[3] * t.W1;
    U[1] += a1;
    U[2] += a2;
    U[3] += X2 * a2 - Y2 * a1;
    U[4] += a4;
    U[5] += a5;
    U[6] += X2 * a5 - Y2 * a4 + nu * (n[1] * a2 - n[2] * a1);
    U[7] += w * t.W2;
    U[8] += 0.5f * nu * w * c32(-X.imag(), X.real());
}

} // namespace

bool WdkernWork::alloc(const FieldPanels &panels) {
    const int n = panels.n, points = 4 * n;
    return near.alloc(panels.padded) && image.alloc(n) && owner.alloc(points) && IFLAG.alloc(points) &&
           W.alloc(points) && X2.alloc(points) && Y2.alloc(points) && Z2.alloc(points) &&
           terms.alloc(points) && regular.alloc(points);
}

Status WDKERN(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave, WdkernWork &work,
              KernelValues &result) {
    const f32 nu = wave.NU;
    const FieldPoint point{P[1], P[2], P[3]}, image{P[1], P[2], -P[3]};
    near_test(panels.padded, image, columns(panels.X), panels.FN.data(), work.near.data());
    for (int NP = 1; NP <= panels.n; ++NP)
        if (work.near(NP) != 0 &&
            failed(near_image(image, panels.panel[static_cast<std::size_t>(NP) - 1], work.image(NP))))
            return Status::failed;
    const int count = list_points(point, panels, nu, work);
    const KernelPoints points{count,          nu * P[1],      nu * P[2],      -nu * P[3],
                              work.X2.data(), work.Y2.data(), work.Z2.data(), work.IFLAG.data()};
    if (failed(REGPAR(points, nu * wave.HBOT, *wave.gstate, work.regular, work.terms.data())))
        return Status::failed;
    for (int k = 1; k <= count;) {
        const int NP = work.owner(k);
        const Panel &panel = panels.panel[static_cast<std::size_t>(NP) - 1];
        const ImageIntegrals &f = work.image(NP);
        c32 U[WDKERN_COLUMNS + 1] = {};
        for (; k <= count && work.owner(k) == NP; ++k) {
            if (work.near(NP) != 0)
                add_near({points.X1,
                          points.Y1,
                          points.Z1,
                          work.X2(k),
                          work.Y2(k),
                          work.Z2(k),
                          nu,
                          f.S,
                          f.L,
                          {f.GS[0], f.GS[1], f.GS[2]},
                          panel.PMOM[1]},
                         work.terms(k));
            add_point(work.terms(k), work.W(k), nu, work.X2(k), work.Y2(k), panel.TRM[3], U);
        }
        for (int column = 1; column <= WDKERN_COLUMNS; ++column) {
            result.re(NP, column) = U[column].real();
            result.im(NP, column) = U[column].imag();
        }
    }
    return Status::ok;
}
