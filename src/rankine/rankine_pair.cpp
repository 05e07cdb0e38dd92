#include "rankine/rankine_pair.hpp"

#include "base/simd.hpp"
#include "rankine/panint.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

constexpr f32 FAR_AWAY = 1.0e15f; // coordinate of padding points; its square is finite

f32 dot(const f32 *a, const f32 *b) {
    return a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

// One evaluation: field point P with field normal N on panel F (which decides by its kind), source panel G.
struct Term {
    int F, G;
    const f32 *P, *N;
    int logarithm, gradient;
    bool image; // the free-surface image
};

bool evaluate(const RankineInput &in, const Term &t, FieldIntegrals &out) {
    const Panel &source = in.panel(t.G);
    int status;
    if (in.dipole(t.F))
        status = PANDNF(t.P, t.N, in.dipoles.DEPS(t.F), source, t.logarithm, out);
    else if (t.image && in.opt.ILOG != 0 && in.dipole(t.G))
        status = PANDPS(t.P, in.dipoles.DEPS(t.G), source, t.logarithm, t.gradient, out);
    else
        status = PANFLD(t.P, source, t.logarithm, t.gradient, out);
    return status != 1;
}

// Adds the gradient g of a term at an image of the field panel in a horizontal plane: the image turns the
// vertical.
void add_reflected(f32 factor, const f32 *g, f32 *V) {
    V[1] += factor * g[1];
    V[2] += factor * g[2];
    V[3] -= factor * g[3];
}

} // namespace

RankineInput::RankineInput(const Options &options, const Mesh &the_mesh, const Dipoles &the_dipoles,
                           const Symmetry &symmetry)
    : opt(options), mesh(the_mesh), dipoles(the_dipoles), sym(symmetry) {
    const int N = mesh.NEQN;
    panels.reserve(static_cast<std::size_t>(N));
    points.padded = (N + BATCH - 1) / BATCH * BATCH;
    const std::size_t padded = static_cast<std::size_t>(points.padded);
    points.x.assign(padded, FAR_AWAY);
    points.y.assign(padded, FAR_AWAY);
    points.z.assign(padded, FAR_AWAY);
    points.size.assign(padded, 0.0f);
    points.reach.assign(padded, 0.0f);
    for (int i = 1; i <= N; ++i) {
        panels.push_back(panel_of(mesh, i));
        const std::size_t at = static_cast<std::size_t>(i) - 1;
        points.x[at] = mesh.XCT(1, i);
        points.y[at] = mesh.XCT(2, i);
        points.z[at] = mesh.XCT(3, i);
        points.size[at] = mesh.PSIZ(2, i);
        points.reach[at] = panels.back().region2;
    }
    images.count = sym.NSYMG;
    for (int p = 1; p <= sym.NSYMG; ++p) {
        images.sx[p - 1] = static_cast<f32>(SGX[sym.ISYMG[p]]);
        images.sy[p - 1] = static_cast<f32>(SGY[sym.ISYMG[p]]);
    }
}

void pairs_of(const RankineInput &in, int A, std::uint8_t *mask) {
    if (in.tank())
        std::fill_n(mask, in.mesh.NEQN, static_cast<std::uint8_t>((1 << in.images.count) - 1));
    else
        near_pairs(in.points, A - 1, in.images, mask);
}

bool rankine_pair(const RankineInput &in, int F, int G, int p, bool surface, RankineTerms &t) {
    const Options &opt = in.opt;
    const Panel &field = in.panel(F);
    const Panel &source = in.panel(G);
    const int gradient = surface ? 0 : opt.ISOR;
    const f32 sx = in.images.sx[p - 1], sy = in.images.sy[p - 1];
    f32 P[4] = {0, sx * field.XCT[1], sy * field.XCT[2], field.XCT[3]};
    f32 N[4] = {0, sx * field.TRM[3][1], sy * field.TRM[3][2], field.TRM[3][3]};
    const f32 dx = P[1] - source.XCT[1], dy = P[2] - source.XCT[2];
    const f32 dh2 = dx * dx + dy * dy;
    const f32 sum = field.XCT[3] + source.XCT[3];
    const f32 near2 = RKNEAR * std::max(field.region2, source.region2);
    const bool dipole_source = in.dipole(G);

    t = RankineTerms{};
    if (F == G && p == 1 && !in.dipole(F))
        for (int c = 1; c <= 3; ++c)
            t.V[0][c] = PI2 * field.TRM[3][c];

    FieldIntegrals f;
    if (!evaluate(in, {F, G, P, N, 0, gradient, false}, f))
        return false;
    t.D[0] = f.D;
    t.S[0] = f.S;
    t.digit = 1;
    if (gradient != 0) {
        const f32 *g = dipole_source ? f.GD : f.GS;
        for (int c = 1; c <= 3; ++c)
            t.V[0][c] += g[c];
        t.N[0] += dot(N, g);
    }

    if (in.tank()) {
        t.digit = 0;
        return true;
    }

    N[3] = -N[3]; // of both images in horizontal planes
    if (dh2 + sum * sum < near2) {
        P[3] = -field.XCT[3];
        if (!evaluate(in, {F, G, P, N, opt.ILOG, gradient, true}, f))
            return false;
        t.D[0] += f.D;
        t.S[0] += f.S;
        t.digit = opt.ILOG + 2;
        if (opt.ILOG == 1) {
            t.D[1] = -2 * f.LZ;
            t.S[1] = -2 * f.L;
        }
        if (gradient != 0) {
            const f32 *g = dipole_source ? f.GD : f.GS;
            add_reflected(1, g, t.V[0]);
            t.N[0] += dot(N, g);
            if (opt.ILOG == 1) {
                const f32 *gl = dipole_source ? f.GLZ : f.GL;
                add_reflected(-2, gl, t.V[1]);
                t.N[1] = -2 * dot(N, gl);
            }
        }
    }

    const f32 depth2 = 2 * opt.HBOT;
    const f32 below = depth2 + sum;
    if (opt.HBOT > 0 && dh2 + below * below <= near2) {
        P[3] = -(depth2 + field.XCT[3]);
        if (!evaluate(in, {F, G, P, N, 0, gradient, false}, f))
            return false;
        t.D[0] += f.D;
        t.S[0] += f.S;
        t.digit += 4;
        if (gradient != 0) {
            const f32 *g = dipole_source ? f.GD : f.GS;
            add_reflected(1, g, t.V[0]);
            t.N[0] += dot(N, g);
        }
    }
    return true;
}
