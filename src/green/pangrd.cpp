#include "green/field_kernels.hpp"
#include "green/field_points.hpp"

#include <cmath>

namespace {

// Call of PANGRD, with K the wave number, or 1 with a lid, whose arguments keep their dimension.
struct Call {
    FieldPoint P;
    const FieldWave &wave;
    f32 K;
    int ILOGK;
    int want;
    int gradient; // IGRAD of the integrals
};

// Exact parts of one near panel, by the columns of the result, and its selectors.
struct NearTerms {
    f32 column[PG_GF3 + 1] = {};
    f32 mean = 0; // of 1/r1
    int ISNG = 1, IBOT = 0;
};

// An image in a horizontal plane: mirrored field point, the horizontal gradient of the panel point as ever,
// the vertical ones alike.
void add_mirrored(const FieldIntegrals &f, NearTerms &t) {
    t.column[PG_V] += f.S;
    t.column[PG_VN] += f.D;
    t.column[PG_GP1] -= f.GS[1];
    t.column[PG_GP2] -= f.GS[2];
    t.column[PG_GP3] -= f.GS[3];
    t.column[PG_GF3] -= f.GS[3];
}

Status add_image(const Call &c, const Panel &panel, const FieldIntegrals &direct, NearTerms &t) {
    const f32 z = -c.P.z;
    if (c.ILOGK == 1 && (c.want & (WANT_V | WANT_VN)) != 0) {
        FieldIntegrals logarithm;
        if (failed(near_integrals(c.P.x, c.P.y, z, panel, 1, 0, logarithm)))
            return Status::failed;
        t.column[PG_V] -= 2 * c.K * (panel.PMOM[1] * std::log(c.K) + logarithm.L);
        t.column[PG_VN] -= 2 * c.K * logarithm.LZ;
    }
    FieldIntegrals image = direct; // the same point when P lies in the free surface
    if (z != c.P.z && failed(near_integrals(c.P.x, c.P.y, z, panel, 0, c.gradient, image)))
        return Status::failed;
    add_mirrored(image, t);
    t.ISNG = c.ILOGK + 2;
    if (c.ILOGK == 1) {
        t.column[PG_GP3] += 2 * c.K * image.S;
        t.column[PG_GF3] += 2 * c.K * image.S;
        t.mean = image.S / panel.PMOM[1];
    }
    return Status::ok;
}

Status near_terms(const Call &c, const FieldPanels &panels, int NP, NearTerms &t) {
    const Panel &panel = panels.panel[static_cast<std::size_t>(NP) - 1];
    const f32 FN = panels.FN(NP);
    FieldIntegrals direct{}, bottom{};
    if (failed(near_integrals(c.P.x, c.P.y, c.P.z, panel, 0, c.gradient, direct)))
        return Status::failed;
    add_mirrored(direct, t);
    t.column[PG_GF3] = direct.GS[3];
    if (FN > distance2({c.P.x, c.P.y, -c.P.z}, panels, NP) && failed(add_image(c, panel, direct, t)))
        return Status::failed;
    const FieldPoint below{c.P.x, c.P.y, -2 * c.wave.HBOT - c.P.z};
    if (c.wave.HBOT > 0 && FN > distance2(below, panels, NP)) {
        if (failed(near_integrals(below.x, below.y, below.z, panel, 0, c.gradient, bottom)))
            return Status::failed;
        add_mirrored(bottom, t);
        t.IBOT = 1;
    }
    return Status::ok;
}

bool wanted(int want, int column) {
    constexpr int WANT[PG_GF3 + 1] = {0,        WANT_V,  WANT_VN, WANT_HORIZONTAL, WANT_HORIZONTAL,
                                      WANT_GP3, WANT_GF3};
    return (want & WANT[column]) != 0;
}

void quadrature(const Call &c, const FieldPanels &panels, const FieldWork &work, KernelValues &result) {
    const f32 K = c.K, K2 = K * K;
    if ((c.want & WANT_V) != 0)
        sum_value(panels, K, G_, work, result, PG_V);
    if ((c.want & WANT_VN) != 0)
        sum_normal(panels, -K2, work, result, PG_VN);
    if ((c.want & WANT_HORIZONTAL) != 0) {
        sum_component(panels, -K2, work.C, work, result, PG_GP1);
        sum_component(panels, -K2, work.S, work, result, PG_GP2);
        if (c.ILOGK == 1)
            sum_logarithm(panels, c.P.z, K, work, result, PG_GP1);
    }
    if ((c.want & WANT_GP3) != 0)
        sum_value(panels, -K2, G_ZETA, work, result, PG_GP3);
    if ((c.want & WANT_GF3) != 0)
        sum_value(panels, -K2, G_Z, work, result, PG_GF3);
}

} // namespace

Status PANGRD(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave, int ILOGK, int want,
              FieldWork &work, KernelValues &result) {
    const bool lid = wave.NU < 0;
    const int gradient = (want & ~(WANT_V | WANT_VN)) != 0 ? 1 : 0;
    const Call c{{P[1], P[2], P[3]}, wave, lid ? 1.0f : wave.NU, lid ? 0 : ILOGK, want, gradient};
    for (int column = PG_V; column <= PG_GF3; ++column)
        if (wanted(want, column))
            result.clear(column);
    find_near(c.P, panels, work);
    for (int NP = 1; NP <= panels.n; ++NP) {
        if (work.near(NP) == 0)
            continue;
        NearTerms t;
        if (failed(near_terms(c, panels, NP, t)))
            return Status::failed;
        work.ISNG(NP, 1) = t.ISNG;
        work.IBOT(NP, 1) = t.IBOT;
        work.mean(NP) = t.mean;
        for (int column = PG_V; column <= PG_GF3; ++column)
            if (wanted(want, column))
                result.re(NP, column) = t.column[column];
    }
    place_points(c.P, c.K, panels, work);
    if (lid)
        evaluate_lid(panels, wave.HBOT, work);
    else
        evaluate_wave(panels, wave, GreenOrder::first, work);
    quadrature(c, panels, work, result);
    return Status::ok;
}
