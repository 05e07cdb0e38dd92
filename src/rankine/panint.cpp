#include "rankine/panint.hpp"

namespace {

struct Local {
    f32 X, Y, Z;
};

Local to_local(const f32 *P, const Panel &p) {
    const auto along = [P, &p](int r) {
        return local_coordinate({P[1], P[2], P[3]}, {p.XCT[1], p.XCT[2], p.XCT[3]},
                                {p.TRM[r][1], p.TRM[r][2], p.TRM[r][3]});
    };
    return {along(1), along(2), along(3)};
}

void to_global(const Panel &p, f32 a1, f32 a2, f32 a3, f32 *g) {
    for (int c = 1; c <= 3; ++c)
        g[c] = p.TRM[1][c] * a1 + p.TRM[2][c] * a2 + p.TRM[3][c] * a3;
}

f32 dot(const f32 *a, const f32 *b) {
    return a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

void global_gradients(const Panel &p, const PanelIntegrals &I, int ILOGF, FieldIntegrals &out) {
    to_global(p, I.SX, I.SY, -I.D, out.GS);
    to_global(p, I.DX, I.DY, I.DZ, out.GD);
    if (ILOGF != 0)
        to_global(p, I.LX, I.LY, -I.LZ, out.GL);
}

// Z derivative of LZ by a central difference.
int difference_of_LZ(const Local &at, f32 EPS, const Panel &p, f32 &LZZ) {
    PanelIntegrals above, below;
    const int upper = PANINT(at.X, at.Y, at.Z + EPS, p, 0, 1, above);
    const int lower = PANINT(at.X, at.Y, at.Z - EPS, p, 0, 1, below);
    LZZ = (above.LZ - below.LZ) / (2 * EPS);
    return lower != 0 ? lower : upper;
}

// All integrals and gradients at a point, GLZ included; D, S, LZ, L plain.
int with_all_gradients(const f32 *P, f32 EPS, const Panel &p, int ILOGF, FieldIntegrals &out) {
    const Local at = to_local(P, p);
    PanelIntegrals I;
    f32 LZZ = 0;
    int status = ILOGF != 0 ? difference_of_LZ(at, EPS, p, LZZ) : 0;
    if (const int s = PANINT(at.X, at.Y, at.Z, p, 1, ILOGF, I))
        status = s;
    out.D = I.D;
    out.S = I.S;
    global_gradients(p, I, ILOGF, out);
    if (ILOGF != 0) {
        out.LZ = I.LZ;
        out.L = I.L;
        to_global(p, I.LZX, I.LZY, LZZ, out.GLZ);
    }
    return status;
}

} // namespace

int PANINT(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out) {
    if (X * X + Y * Y + Z * Z > FAR_FIELD * p.region2) {
        panint_far(X, Y, Z, p, IGRAD, ILOGF, out);
        return 0;
    }
    return panint_near(X, Y, Z, p, IGRAD, ILOGF, out);
}

int PANFLD(const f32 *P, const Panel &p, int ILOGF, int IGRAD, FieldIntegrals &out) {
    const Local at = to_local(P, p);
    PanelIntegrals I;
    int status = 0;
    if (is_far({P[1], P[2], P[3]}, {p.XCT[1], p.XCT[2], p.XCT[3]}, p.region2))
        panint_far(at.X, at.Y, at.Z, p, IGRAD, ILOGF, I);
    else
        status = panint_near(at.X, at.Y, at.Z, p, IGRAD, ILOGF, I);
    out.D = I.D;
    out.S = I.S;
    if (ILOGF != 0) {
        out.LZ = I.LZ;
        out.L = I.L;
    }
    if (IGRAD != 0)
        global_gradients(p, I, ILOGF, out);
    return status;
}

int PANDNF(const f32 *P, const f32 *NF, f32 EPS, const Panel &p, int ILOGF, FieldIntegrals &out) {
    const int status = with_all_gradients(P, EPS, p, ILOGF, out);
    out.S = dot(out.GS, NF);
    out.D = dot(out.GD, NF);
    if (ILOGF != 0) {
        out.L = dot(out.GL, NF);
        out.LZ = dot(out.GLZ, NF);
    }
    return status;
}

int PANDPS(const f32 *P, f32 EPS, const Panel &p, int ILOGF, int IGRAD, FieldIntegrals &out) {
    if (IGRAD == 0)
        return PANFLD(P, p, ILOGF, 0, out);
    return with_all_gradients(P, EPS, p, ILOGF, out);
}
