#include "rankine/rankine_pair.hpp"

#include "base/simd.hpp"
#include "rankine/panint_eight.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

constexpr f32 FAR_AWAY = 1.0e15f; // coordinate of padding points; its square is finite

// Where a term of a pair has its field point: the panel itself, or its image in the free surface or
// in the bottom.
enum class At { panel, free_surface, bottom };

// The field point of a term with its normal, axes from 1.
struct FieldPoint {
    f32 P[4], N[4];
};

FieldPoint field_point(const RankineInput &in, const DirectedPair &pair, At at) {
    const Panel &field = in.panel(pair.field);
    const f32 sx = in.images.sx[pair.image - 1], sy = in.images.sy[pair.image - 1];
    const f32 up = at == At::panel ? 1.0f : -1.0f; // an image in a horizontal plane turns the vertical
    const f32 bottom = at == At::bottom ? -2 * in.opt.HBOT : 0;
    return {{0, sx * field.XCT[1], sy * field.XCT[2], bottom + up * field.XCT[3]},
            {0, sx * field.TRM[3][1], sy * field.TRM[3][2], up * field.TRM[3][3]}};
}

// What a term of a pair adds: D and S, with the logarithm LZ and L, and the gradients of the source (of a
// dipole panel of the dipole) and of its logarithm, in global axes, with their components along the field
// normal.
struct Term {
    f32 D, S, LZ, L;
    f32 G[2][4], N[2];
};

// The terms of the pairs of a chunk at one of the images. Those of equal kind (far or not, with gradient or
// not) are worked eight at a time.
class TermSums {
  public:
    TermSums(const RankineInput &in, At at, PairChunk &chunk)
        : in_(in), at_(at), logarithm_(at == At::free_surface ? in.opt.ILOG : 0), chunk_(chunk) {}

    // False: an integral has no value.
    bool add(int i) {
        const DirectedPair &pair = chunk_.pair[i];
        const int gradient = pair.surface ? 0 : in_.opt.ISOR;
        const FieldPoint x = field_point(in_, pair, at_);
        if (in_.dipole(pair.field) || in_.dipole(pair.source))
            return add_alone(i, gradient, x);
        const std::size_t source = static_cast<std::size_t>(pair.source) - 1;
        const PairPoints &c = in_.points;
        const bool far =
            is_far({x.P[1], x.P[2], x.P[3]}, {c.x[source], c.y[source], c.z[source]}, c.reach[source]);
        Queue &q = queue_[far ? 1 : 0][gradient != 0 ? 1 : 0];
        q.pair[q.count] = i;
        q.batch.panel[q.count] = &in_.panel(pair.source);
        for (int c3 = 1; c3 <= 3; ++c3) {
            q.batch.P[c3][q.count] = x.P[c3];
            q.N[c3][q.count] = x.N[c3];
        }
        return ++q.count < ABREAST || work(q, far, gradient);
    }

    // Works what is left.
    bool finish() {
        bool good = true;
        for (int far = 0; far <= 1; ++far)
            for (int gradient = 0; gradient <= 1; ++gradient) {
                Queue &q = queue_[far][gradient];
                if (q.count > 0)
                    good = work(q, far != 0, gradient) && good;
            }
        return good;
    }

  private:
    struct Queue {
        int count = 0;
        int pair[ABREAST];
        PanelBatch batch;
        alignas(32) f32 N[4][ABREAST];
    };

    bool work(Queue &q, bool far, int gradient) {
        for (int l = q.count; l < ABREAST; ++l) {
            q.batch.panel[l] = q.batch.panel[0];
            for (int c = 1; c <= 3; ++c)
                q.batch.P[c][l] = q.batch.P[c][0];
        }
        FieldBatch f;
        (far ? far_fields : near_fields)(q.batch, logarithm_, gradient, f);
        for (int l = 0; l < q.count; ++l) {
            if (f.status[l] == 1)
                return false;
            Term term{f.D[l], f.S[l], 0, 0, {}, {}};
            if (logarithm_ == 1) {
                term.LZ = f.LZ[l];
                term.L = f.L[l];
            }
            const f32 N[4] = {0, q.N[1][l], q.N[2][l], q.N[3][l]};
            for (int k = 0; gradient != 0 && k <= logarithm_; ++k) {
                const auto &g = k == 0 ? f.GS : f.GL;
                for (int c = 1; c <= 3; ++c) {
                    term.G[k][c] = g[c][l];
                    term.N[k] += N[c] * g[c][l];
                }
            }
            put(term, gradient, chunk_.terms[q.pair[l]]);
        }
        q.count = 0;
        return true;
    }

    // A pair with a dipole panel.
    bool add_alone(int i, int gradient, const FieldPoint &x) {
        const DirectedPair &pair = chunk_.pair[i];
        FieldIntegrals f;
        if (!evaluate(pair, gradient, x, f))
            return false;
        Term term{f.D, f.S, 0, 0, {}, {}};
        if (logarithm_ == 1) {
            term.LZ = f.LZ;
            term.L = f.L;
        }
        const bool dipole = in_.dipole(pair.source);
        for (int k = 0; gradient != 0 && k <= logarithm_; ++k) {
            const f32 *g = k == 0 ? (dipole ? f.GD : f.GS) : (dipole ? f.GLZ : f.GL);
            for (int c = 1; c <= 3; ++c) {
                term.G[k][c] = g[c];
                term.N[k] += x.N[c] * g[c];
            }
        }
        put(term, gradient, chunk_.terms[i]);
        return true;
    }

    // By the kinds of the panels.
    bool evaluate(const DirectedPair &pair, int gradient, const FieldPoint &x, FieldIntegrals &f) const {
        const Panel &source = in_.panel(pair.source);
        if (in_.dipole(pair.field))
            return PANDNF(x.P, x.N, in_.dipoles.DEPS(pair.field), source, logarithm_, f) != 1;
        if (at_ == At::free_surface && in_.opt.ILOG != 0)
            return PANDPS(x.P, in_.dipoles.DEPS(pair.source), source, logarithm_, gradient, f) != 1;
        return PANFLD(x.P, source, logarithm_, gradient, f) != 1;
    }

    void put(const Term &term, int gradient, RankineTerms &t) const {
        t.D[0] += term.D;
        t.S[0] += term.S;
        if (logarithm_ == 1) {
            t.D[1] = -2 * term.LZ;
            t.S[1] = -2 * term.L;
        }
        if (gradient == 0)
            return;
        const f32 up = at_ == At::panel ? 1.0f : -1.0f;
        for (int k = 0; k <= logarithm_; ++k) {
            const f32 factor = k == 0 ? 1.0f : -2.0f;
            t.V[k][1] += factor * term.G[k][1];
            t.V[k][2] += factor * term.G[k][2];
            t.V[k][3] += factor * up * term.G[k][3];
            t.N[k] += factor * term.N[k];
        }
    }

    const RankineInput &in_;
    At at_;
    int logarithm_;
    PairChunk &chunk_;
    Queue queue_[2][2]; // far, with gradient
};

// Starts the terms of a pair: what a panel has of itself, and the digit, which tells the images that count.
void start_terms(const RankineInput &in, const DirectedPair &pair, RankineTerms &t) {
    t = RankineTerms{};
    const Panel &field = in.panel(pair.field);
    if (pair.field == pair.source && pair.image == 1 && !in.dipole(pair.field))
        for (int c = 1; c <= 3; ++c)
            t.V[0][c] = PI2 * field.TRM[3][c];
    if (in.tank())
        return;
    const PairPoints &at = in.points;
    const std::size_t F = static_cast<std::size_t>(pair.field) - 1,
                      G = static_cast<std::size_t>(pair.source) - 1;
    const f32 dx = in.images.sx[pair.image - 1] * at.x[F] - at.x[G];
    const f32 dy = in.images.sy[pair.image - 1] * at.y[F] - at.y[G];
    const f32 dh2 = dx * dx + dy * dy, sum = at.z[F] + at.z[G];
    const f32 near2 = RKNEAR * std::max(at.reach[F], at.reach[G]);
    t.digit = dh2 + sum * sum < near2 ? in.opt.ILOG + 2 : 1;
    const f32 below = 2 * in.opt.HBOT + sum;
    if (in.opt.HBOT > 0 && dh2 + below * below <= near2)
        t.digit += 4;
}

bool has_term(At at, int digit) {
    return at == At::panel || (at == At::free_surface ? (digit & 3) > 1 : (digit & 4) != 0);
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

bool rankine_pairs(const RankineInput &in, PairChunk &chunk) {
    for (int i = 0; i < chunk.count; ++i)
        start_terms(in, chunk.pair[i], chunk.terms[i]);
    for (const At at : {At::panel, At::free_surface, At::bottom}) {
        TermSums sums(in, at, chunk);
        for (int i = 0; i < chunk.count; ++i)
            if (has_term(at, chunk.terms[i].digit) && !sums.add(i))
                return false;
        if (!sums.finish())
            return false;
    }
    return true;
}
