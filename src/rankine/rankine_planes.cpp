#include "rankine/rankine_planes.hpp"

#include "base/simd.hpp"
#include "state/messages.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

// The first panel that lies in z = 0 with itself or a panel before it; 0: there is none.
int first_surface_row(const RankineInput &in) {
    if (in.tank())
        return 0;
    const PairPoints &at = in.points;
    f32 largest = 0;
    for (const f32 size : at.size)
        largest = std::max(largest, size);
    const auto in_surface = [](f32 sum, f32 size) { return sum * sum <= SURFACE2 * size; };
    for (std::size_t A = 0; A < in.panels.size(); ++A) {
        if (!in_surface(at.z[A], largest))
            continue;
        for (std::size_t B = 0; B <= A; ++B)
            if (in_surface(at.z[A] + at.z[B], std::max(at.size[A], at.size[B])))
                return static_cast<int>(A) + 1;
    }
    return 0;
}

} // namespace

Planes::Planes(const Options &opt, const Symmetry &sym) : levels(opt.ILOG + 1) {
    std::vector<int> terms = {DIPOLE};
    if (keeps_source(opt))
        terms.push_back(SOURCE);
    if (opt.ISOR == 1)
        terms.insert(terms.end(), {NORMAL, VELOCITY, VELOCITY + 1, VELOCITY + 2});
    for (int s = 1; s <= sym.NSYMR; ++s)
        for (int k = 0; k < levels; ++k)
            for (const int term : terms)
                list.push_back({term, k, s});
}

void scatter_terms(const RankineInput &in, const Planes &planes, const PairChunk &chunk,
                   const PairTargets &to) {
    const Symmetry &sym = in.sym;
    std::int64_t offset = 0;
    for (const PlaneTerm &plane : planes.list) {
        f32 sign[5] = {}; // by image
        for (int p = 1; p <= sym.NSYMG; ++p) {
            const int m = sym.ISYMG[p];
            sign[p] = static_cast<f32>(SGN[sym.ICLS[plane.cls]][m]);
            if (plane.term == VELOCITY)
                sign[p] *= static_cast<f32>(SGX[m]);
            if (plane.term == VELOCITY + 1)
                sign[p] *= static_cast<f32>(SGY[m]);
        }
        const f32 *term = chunk.term[plane.level][plane.term];
        const auto add = [&](int i) { to.element[i][offset] += sign[chunk.pair[i].image] * term[i]; };
        if (plane.level == 0)
            for (int i = 0; i < chunk.count; ++i)
                add(i);
        else
            for (int n = 0; n < chunk.holders[1]; ++n)
                add(chunk.holder[1][n]);
        offset += to.plane;
    }
}

constexpr int BLOCK = 8;

ModeFeed::ModeFeed(const RankineInput &in)
    : modes_(in.opt.IRAD != -1 ? in.sym.NSYMD : 0), padded_((modes_ + BLOCK - 1) / BLOCK * BLOCK),
      velocity_(static_cast<std::size_t>(padded_) * static_cast<std::size_t>(in.mesh.NEQN), 0.0f),
      sign_(static_cast<std::size_t>(padded_) * 5, 0.0f) {
    const Symmetry &sym = in.sym;
    for (int s = 1; s <= sym.NSYMR && modes_ > 0; ++s)
        for (int n = 1; n <= sym.NMCLS[s]; ++n) {
            const int q = sym.MODCLS(n, s);
            const std::size_t at = static_cast<std::size_t>(sym.MODPOS(q)) - 1,
                              padded = static_cast<std::size_t>(padded_);
            for (int p = 1; p <= sym.NSYMG; ++p)
                sign_[static_cast<std::size_t>(p) * padded + at] =
                    static_cast<f32>(SGN[sym.ICLS[s]][sym.ISYMG[p]]);
            for (int NP = 1; NP <= in.mesh.NEQN; ++NP)
                velocity_[(static_cast<std::size_t>(NP) - 1) * padded + at] =
                    in.dipole(NP) ? 0 : in.mesh.VEL(q, NP);
        }
}

namespace {

// Eight modes and the source influence of the pairs of a chunk.
struct EightModes {
    const f32 *velocity, *sign;
    std::int64_t stride; // from panel to panel, and from image to image
    const f32 *S;
};

// Adds the listed pairs, which have one field panel, to eight of its right-hand sides.
VORDA_SIMD void add_modes(const EightModes &modes, const DirectedPair *pair, const int *list, int count,
                          f32 *sum) {
    f32 total[BLOCK];
    for (int q = 0; q < BLOCK; ++q)
        total[q] = sum[q];
    for (int n = 0; n < count; ++n) {
        const DirectedPair &p = pair[list[n]];
        const f32 *v = modes.velocity + (p.source - 1) * modes.stride;
        const f32 *e = modes.sign + p.image * modes.stride;
        const f32 S = modes.S[list[n]];
#pragma omp simd
        for (int q = 0; q < BLOCK; ++q)
            total[q] += v[q] * S * e[q];
    }
    for (int q = 0; q < BLOCK; ++q)
        sum[q] = total[q];
}

} // namespace

void ModeFeed::add(const PairChunk &chunk, int levels, const PairTargets &to) const {
    for (int k = 0; k < levels; ++k) {
        const int *holder = chunk.holder[k];
        for (int first = 0, last = 0; first < chunk.holders[k]; first = last) {
            f32 *sums = to.rhs[holder[first]];
            while (last < chunk.holders[k] && to.rhs[holder[last]] == sums)
                ++last;
            for (int q = 0; q < modes_ && sums != nullptr; q += BLOCK) {
                f32 *rhs = sums + k * modes_ + q;
                const int n = std::min(BLOCK, modes_ - q);
                f32 sum[BLOCK] = {};
                std::copy_n(rhs, n, sum);
                add_modes({velocity_.data() + q, sign_.data() + q, padded_, chunk.term[k][SOURCE]},
                          chunk.pair, holder + first, last - first, sum);
                std::copy_n(sum, n, rhs);
            }
        }
    }
}

void add_half_solid_angle(const Planes &planes, PlaneElement element) {
    f32 *to = element.at;
    for (const PlaneTerm &plane : planes.list) {
        if (plane.level == 0 && (plane.term == DIPOLE || plane.term == NORMAL))
            *to += PI2;
        to += element.plane;
    }
}

Status surface_panels_allowed(const RankineInput &in) {
    const int row = in.opt.ILOG == 0 ? first_surface_row(in) : 0;
    if (row == 0)
        return Status::ok;
    (void)MSGOUT(" ILOG=0 and panel NP in free surface, NP=", row);
    return MSGOUT(" Error in evaluating Rankine matrix");
}
