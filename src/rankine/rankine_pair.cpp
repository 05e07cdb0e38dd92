#include "rankine/rankine_pair.hpp"

#include "base/simd.hpp"
#include "rankine/panint_eight.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

constexpr f32 FAR_AWAY = 1.0e15f; // coordinate of padding points; its square is finite

constexpr int SIZE = PairChunk::SIZE;

// Where a term of a pair has its field point: the panel itself, or its image in the free surface or
// in the bottom.
enum At { PANEL, FREE_SURFACE, BOTTOM, PLACES };

// Field points and source centroids of the pairs of a chunk.
struct PairPlaces {
    alignas(64) f32 x[SIZE], y[SIZE], z[SIZE]; // field panel at its image, not yet one in a horizontal plane
    alignas(64) f32 cx[SIZE], cy[SIZE], cz[SIZE], reach[SIZE]; // of the source
    alignas(64) f32 larger[SIZE];                              // the larger reach of the two
    alignas(64) int far[PLACES][SIZE]; // 1: the multipoles stand for the source at the field point
};

void find_places(const RankineInput &in, const PairChunk &chunk, PairPlaces &at) {
    const PairPoints &points = in.points;
    for (int i = 0; i < chunk.count; ++i) {
        const DirectedPair &pair = chunk.pair[i];
        const std::size_t F = static_cast<std::size_t>(pair.field) - 1;
        const std::size_t G = static_cast<std::size_t>(pair.source) - 1;
        at.x[i] = in.images.sx[pair.image - 1] * points.x[F];
        at.y[i] = in.images.sy[pair.image - 1] * points.y[F];
        at.z[i] = points.z[F];
        at.cx[i] = points.x[G];
        at.cy[i] = points.y[G];
        at.cz[i] = points.z[G];
        at.reach[i] = points.reach[G];
        at.larger[i] = points.reach[F] > points.reach[G] ? points.reach[F] : points.reach[G];
    }
}

// Height of a place of the field panel at z.
[[gnu::always_inline]] inline f32 height(int place, f32 z, f32 HBOT) {
    return place == PANEL ? z : place == FREE_SURFACE ? -z : -(2 * HBOT + z);
}

// The digits of the pairs, which tell the images that count, and which places are far. HBOT <= 0: no bottom.
VORDA_SIMD void judge_places(int count, f32 HBOT, int ILOG, PairPlaces &at, int *digit) {
    const int bottom = HBOT > 0 ? 4 : 0;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const f32 dx = at.x[i] - at.cx[i], dy = at.y[i] - at.cy[i];
        const f32 dh2 = dx * dx + dy * dy, sum = at.z[i] + at.cz[i], below = 2 * HBOT + sum;
        const f32 near2 = RKNEAR * at.larger[i];
        const int image = dh2 + sum * sum < near2 ? ILOG + 2 : 1;
        digit[i] = image + (dh2 + below * below <= near2 ? bottom : 0);
    }
    for (int place = 0; place < PLACES; ++place) {
#pragma omp simd
        for (int i = 0; i < count; ++i)
            at.far[place][i] = is_far({at.x[i], at.y[i], height(place, at.z[i], HBOT)},
                                      {at.cx[i], at.cy[i], at.cz[i]}, at.reach[i])
                                   ? 1
                                   : 0;
    }
}

// Adds the terms of a chunk at one of the places, eight pairs at a time.
class PlaceTerms {
  public:
    PlaceTerms(const RankineInput &in, At place, const PairPlaces &places, PairChunk &chunk)
        : in_(in), place_(place), logarithm_(place == FREE_SURFACE ? in.opt.ILOG : 0),
          up_(place == PANEL ? 1.0f : -1.0f), places_(places), chunk_(chunk) {}

    // The pairs `list`, all of them far or none, with gradient or not. False: an integral has no value.
    bool add(const int *list, int count, bool far, int gradient) {
        for (int first = 0; first < count; first += ABREAST) {
            const int lanes = std::min(ABREAST, count - first);
            PanelBatch batch;
            for (int l = 0; l < ABREAST; ++l)
                take_pair(list[first + (l < lanes ? l : 0)], l, batch);
            if (gradient != 0)
                for (int l = 0; l < ABREAST; ++l)
                    take_normal(list[first + (l < lanes ? l : 0)], l);
            FieldBatch f;
            (far ? far_fields : near_fields)(batch, logarithm_, gradient, f);
            for (int l = 0; l < lanes; ++l)
                if (f.status[l] == 1)
                    return false;
            put(f, list + first, lanes, gradient);
        }
        return true;
    }

    // A pair with a dipole panel.
    bool add_alone(int i, int gradient) {
        PanelBatch batch;
        take_pair(i, 0, batch);
        take_normal(i, 0);
        const f32 P[4] = {0, batch.P[1][0], batch.P[2][0], batch.P[3][0]};
        const f32 N[4] = {0, N_[1][0], N_[2][0], N_[3][0]};
        FieldIntegrals single{};
        if (!evaluate(chunk_.pair[i], gradient, P, N, single))
            return false;
        const bool dipole = in_.dipole(chunk_.pair[i].source);
        FieldBatch f{};
        f.D[0] = single.D;
        f.S[0] = single.S;
        f.LZ[0] = single.LZ;
        f.L[0] = single.L;
        for (int c = 1; c <= 3; ++c) {
            f.GS[c][0] = dipole ? single.GD[c] : single.GS[c];
            f.GL[c][0] = dipole ? single.GLZ[c] : single.GL[c];
        }
        put(f, &i, 1, gradient);
        return true;
    }

  private:
    // Put pair i into lane l.
    void take_pair(int i, int l, PanelBatch &batch) const {
        batch.panel[l] = &in_.panel(chunk_.pair[i].source);
        batch.P[1][l] = places_.x[i];
        batch.P[2][l] = places_.y[i];
        batch.P[3][l] = height(place_, places_.z[i], in_.opt.HBOT);
    }
    void take_normal(int i, int l) {
        const DirectedPair &pair = chunk_.pair[i];
        const f32 *normal = in_.panel(pair.field).TRM[3];
        N_[1][l] = in_.images.sx[pair.image - 1] * normal[1];
        N_[2][l] = in_.images.sy[pair.image - 1] * normal[2];
        N_[3][l] = up_ * normal[3];
    }

    // By the kinds of the panels.
    bool evaluate(const DirectedPair &pair, int gradient, const f32 *P, const f32 *N,
                  FieldIntegrals &f) const {
        const Panel &source = in_.panel(pair.source);
        if (in_.dipole(pair.field))
            return PANDNF(P, N, in_.dipoles.DEPS(pair.field), source, logarithm_, f) != 1;
        if (place_ == FREE_SURFACE && in_.opt.ILOG != 0)
            return PANDPS(P, in_.dipoles.DEPS(pair.source), source, logarithm_, gradient, f) != 1;
        return PANFLD(P, source, logarithm_, gradient, f) != 1;
    }

    void put(const FieldBatch &f, const int *pairs, int lanes, int gradient) {
        const auto add = [&](int level, int term, f32 factor, const f32 *value) {
            f32 *to = chunk_.term[level][term];
            for (int l = 0; l < lanes; ++l)
                to[pairs[l]] += factor * value[l];
        };
        for (int level = 0; level <= logarithm_; ++level) {
            const f32 factor = level == 0 ? 1.0f : -2.0f;
            add(level, DIPOLE, factor, level == 0 ? f.D : f.LZ);
            add(level, SOURCE, factor, level == 0 ? f.S : f.L);
            if (gradient == 0)
                continue;
            const auto &G = level == 0 ? f.GS : f.GL;
            f32 along[ABREAST];
            for (int l = 0; l < ABREAST; ++l)
                along[l] = N_[1][l] * G[1][l] + N_[2][l] * G[2][l] + N_[3][l] * G[3][l];
            add(level, NORMAL, factor, along);
            add(level, VELOCITY, factor, G[1]);
            add(level, VELOCITY + 1, factor, G[2]);
            add(level, VELOCITY + 2, factor * up_, G[3]); // a horizontal mirror turns the vertical
        }
    }

    const RankineInput &in_;
    At place_;
    int logarithm_;
    f32 up_;
    const PairPlaces &places_;
    PairChunk &chunk_;
    alignas(32) f32 N_[4][ABREAST]; // field normals of the lanes
};

// The pairs with a dipole panel that have the place.
bool add_dipoles(const RankineInput &in, const int *has, const PairChunk &chunk, PlaceTerms &terms) {
    for (int i = 0; i < chunk.count; ++i) {
        const DirectedPair &pair = chunk.pair[i];
        if (has[i] != 0 && (in.dipole(pair.field) || in.dipole(pair.source)) &&
            !terms.add_alone(i, pair.surface ? 0 : in.opt.ISOR))
            return false;
    }
    return true;
}

// The terms of all pairs that have the place.
bool add_place(const RankineInput &in, At place, const PairPlaces &places, PairChunk &chunk) {
    const int mask = place == BOTTOM ? 4 : 2; // of digit, of those that have it
    int has[SIZE] = {}, any = 0;
    for (int i = 0; i < chunk.count; ++i) {
        has[i] = place == PANEL || (chunk.digit[i] & mask) != 0 ? 1 : 0;
        any |= has[i];
    }
    if (any == 0)
        return true;
    PlaceTerms terms(in, place, places, chunk);
    if (in.dipole_panels && !add_dipoles(in, has, chunk, terms))
        return false;
    // By kind: far or not; pairs in z = 0 have no gradient.
    int list[4][SIZE], near = 0, far = 0, surface_near = 0, surface_far = 0;
    for (int i = 0; i < chunk.count; ++i) {
        const DirectedPair &pair = chunk.pair[i];
        const bool alone = in.dipole_panels && (in.dipole(pair.field) || in.dipole(pair.source));
        const int one = alone ? 0 : has[i], is_surface = pair.surface ? one : 0, f = places.far[place][i];
        list[0][near] = list[1][far] = list[2][surface_near] = list[3][surface_far] = i;
        near += (one - is_surface) & (f ^ 1);
        far += (one - is_surface) & f;
        surface_near += is_surface & (f ^ 1);
        surface_far += is_surface & f;
    }
    return terms.add(list[0], near, false, in.opt.ISOR) && terms.add(list[1], far, true, in.opt.ISOR) &&
           terms.add(list[2], surface_near, false, 0) && terms.add(list[3], surface_far, true, 0);
}

// Nothing but what a panel has of itself.
void start_terms(const RankineInput &in, PairChunk &chunk) {
    const int terms = in.opt.ISOR == 1 ? static_cast<int>(PAIR_TERMS) : SOURCE + 1;
    for (int level = 0; level <= in.opt.ILOG; ++level)
        for (int term = 0; term < terms; ++term)
            std::fill_n(chunk.term[level][term], chunk.count, 0.0f);
    for (int i = 0; i < chunk.count; ++i) {
        const DirectedPair &pair = chunk.pair[i];
        if (pair.field != pair.source || pair.image != 1 || in.dipole(pair.field))
            continue;
        for (int c = 0; c < 3; ++c)
            chunk.term[0][VELOCITY + c][i] = PI2 * in.panel(pair.field).TRM[3][c + 1];
    }
}

// The influence of pairs in z = 0.
void mark_surface_pairs(const RankineInput &in, PairChunk &chunk) {
    for (int i = 0; i < chunk.count; ++i) {
        const DirectedPair &pair = chunk.pair[i];
        if (!pair.surface)
            continue;
        for (auto &term : chunk.term) {
            const f32 S = term[SOURCE][i];
            term[DIPOLE][i] = static_cast<f32>(in.mesh.IFSP(pair.source)) * S;
            term[NORMAL][i] = static_cast<f32>(in.mesh.IFSP(pair.field)) * S;
            for (int c = 0; c < 3; ++c)
                term[VELOCITY + c][i] = 0;
        }
    }
}

// Most pairs have no logarithm.
void list_holders(int ILOG, PairChunk &chunk) {
    int with_logarithm = 0;
    for (int i = 0; i < chunk.count; ++i) {
        chunk.holder[0][i] = i;
        chunk.holder[1][with_logarithm] = i;
        with_logarithm += (chunk.digit[i] & 3) > 1 ? ILOG : 0;
    }
    chunk.holders[0] = chunk.count;
    chunk.holders[1] = with_logarithm;
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
        dipole_panels = dipole_panels || dipole(i);
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
    start_terms(in, chunk);
    PairPlaces places;
    find_places(in, chunk, places);
    judge_places(chunk.count, in.opt.HBOT, in.opt.ILOG, places, chunk.digit);
    if (in.tank())
        std::fill_n(chunk.digit, chunk.count, 0);
    for (const At place : {PANEL, FREE_SURFACE, BOTTOM})
        if (!add_place(in, place, places, chunk))
            return false;
    mark_surface_pairs(in, chunk);
    list_holders(in.opt.ILOG, chunk);
    return true;
}
