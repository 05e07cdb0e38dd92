#include "rankine/rankine_planes.hpp"

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

void scatter_terms(const RankineInput &in, const Planes &planes, const RankineTerms &t,
                   const DirectedPair &pair, PlaneElement element, f32 *rhs) {
    const Symmetry &sym = in.sym;
    const int m = sym.ISYMG[pair.image];
    const std::int64_t plane = element.plane;
    const bool surface = pair.surface;
    const f32 source_mark = surface ? static_cast<f32>(in.mesh.IFSP(pair.source)) : 0;
    const f32 field_mark = surface ? static_cast<f32>(in.mesh.IFSP(pair.field)) : 0;
    const bool feeds = rhs != nullptr && !in.dipole(pair.source);
    for (int s = 1; s <= planes.classes; ++s) {
        const f32 e = static_cast<f32>(SGN[sym.ICLS[s]][m]);
        for (int k = 0; k < planes.levels; ++k) {
            f32 *to = element.at + planes.first(s, k) * plane;
            to[0] += e * (surface ? source_mark * t.S[k] : t.D[k]);
            if (planes.source > 0)
                to[planes.source * plane] += e * t.S[k];
            if (planes.normal > 0) {
                to[planes.normal * plane] += e * (surface ? field_mark * t.S[k] : t.N[k]);
                if (!surface) {
                    to[planes.velocity * plane] += static_cast<f32>(SGX[m]) * e * t.V[k][1];
                    to[(planes.velocity + 1) * plane] += static_cast<f32>(SGY[m]) * e * t.V[k][2];
                    to[(planes.velocity + 2) * plane] += e * t.V[k][3];
                }
            }
            for (int n = 1; feeds && n <= sym.NMCLS[s]; ++n) {
                const int q = sym.MODCLS(n, s);
                rhs[sym.MODPOS(q) - 1 + k * sym.NSYMD] += in.mesh.VEL(q, pair.source) * t.S[k] * e;
            }
        }
    }
}

void add_half_solid_angle(const Planes &planes, PlaneElement element) {
    for (int s = 1; s <= planes.classes; ++s) {
        f32 *to = element.at + planes.first(s, 0) * element.plane;
        to[0] += PI2;
        if (planes.normal > 0)
            to[planes.normal * element.plane] += PI2;
    }
}

Status surface_panels_allowed(const RankineInput &in) {
    const int row = in.opt.ILOG == 0 ? first_surface_row(in) : 0;
    if (row == 0)
        return Status::ok;
    (void)MSGOUT(" ILOG=0 and panel NP in free surface, NP=", row);
    return MSGOUT(" Error in evaluating Rankine matrix");
}
