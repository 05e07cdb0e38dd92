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

// Where a term of a pair has its field point: the panel itself, or its image in the free surface or
// in the bottom.
enum class At { panel, free_surface, bottom };

// The sum of the terms of one pair, field panel F and source panel G.
class PairSum {
  public:
    PairSum(const RankineInput &in, int F, int G, int gradient, RankineTerms &t)
        : in_(in), F_(F), G_(G), gradient_(gradient), t_(t) {}

    // Adds the term of field point P with field normal N; in the free surface with that of the logarithm.
    // False: an integral has no value.
    bool add(At at, const f32 *P, const f32 *N) {
        const int logarithm = at == At::free_surface ? in_.opt.ILOG : 0;
        FieldIntegrals f;
        if (!evaluate(at, P, N, logarithm, f))
            return false;
        // The image in a horizontal plane turns the vertical.
        const f32 vertical = at == At::panel ? 1.0f : -1.0f;
        t_.D[0] += f.D;
        t_.S[0] += f.S;
        if (logarithm == 1) {
            t_.D[1] = -2 * f.LZ;
            t_.S[1] = -2 * f.L;
        }
        if (gradient_ == 0)
            return true;
        const bool dipole = in_.dipole(G_);
        add_gradient(0, 1, vertical, dipole ? f.GD : f.GS, N);
        if (logarithm == 1)
            add_gradient(1, -2, vertical, dipole ? f.GLZ : f.GL, N);
        return true;
    }

  private:
    // By the kinds of the panels.
    bool evaluate(At at, const f32 *P, const f32 *N, int logarithm, FieldIntegrals &f) const {
        const Panel &source = in_.panel(G_);
        if (in_.dipole(F_))
            return PANDNF(P, N, in_.dipoles.DEPS(F_), source, logarithm, f) != 1;
        if (at == At::free_surface && in_.opt.ILOG != 0 && in_.dipole(G_))
            return PANDPS(P, in_.dipoles.DEPS(G_), source, logarithm, gradient_, f) != 1;
        return PANFLD(P, source, logarithm, gradient_, f) != 1;
    }
    void add_gradient(int level, f32 factor, f32 vertical, const f32 *g, const f32 *N) {
        t_.V[level][1] += factor * g[1];
        t_.V[level][2] += factor * g[2];
        t_.V[level][3] += factor * vertical * g[3];
        t_.N[level] += factor * dot(N, g);
    }

    const RankineInput &in_;
    int F_, G_;
    int gradient_;
    RankineTerms &t_;
};

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
    const f32 sx = in.images.sx[p - 1], sy = in.images.sy[p - 1];
    f32 P[4] = {0, sx * field.XCT[1], sy * field.XCT[2], field.XCT[3]};
    f32 N[4] = {0, sx * field.TRM[3][1], sy * field.TRM[3][2], field.TRM[3][3]};
    const f32 dx = P[1] - source.XCT[1], dy = P[2] - source.XCT[2];
    const f32 dh2 = dx * dx + dy * dy;
    const f32 sum = field.XCT[3] + source.XCT[3];
    const f32 near2 = RKNEAR * std::max(field.region2, source.region2);

    t = RankineTerms{};
    if (F == G && p == 1 && !in.dipole(F))
        for (int c = 1; c <= 3; ++c)
            t.V[0][c] = PI2 * field.TRM[3][c];

    PairSum terms(in, F, G, surface ? 0 : opt.ISOR, t);
    if (!terms.add(At::panel, P, N))
        return false;
    if (in.tank())
        return true;
    t.digit = 1;

    N[3] = -N[3]; // of both images in horizontal planes
    if (dh2 + sum * sum < near2) {
        P[3] = -field.XCT[3];
        if (!terms.add(At::free_surface, P, N))
            return false;
        t.digit = opt.ILOG + 2;
    }

    const f32 depth2 = 2 * opt.HBOT;
    const f32 below = depth2 + sum;
    if (opt.HBOT > 0 && dh2 + below * below <= near2) {
        P[3] = -(depth2 + field.XCT[3]);
        if (!terms.add(At::bottom, P, N))
            return false;
        t.digit += 4;
    }
    return true;
}
