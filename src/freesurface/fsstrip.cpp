#include "freesurface/fsstrip.hpp"

#include "geometry/panel.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <vector>

namespace {

constexpr f32 COINCIDE2 = 1.0e-8f; // squared distance below which two points are one
constexpr f32 TRIANGLE = 0.01f;    // a shorter side, in perimeters, is that of a triangle
constexpr f32 ROUNDING = 1.0e-4f;  // lengths that differ by less of themselves are equal
constexpr f32 MIN_PERIMETER = 1.0e-30f;
constexpr int OPPOSITE[5] = {0, 3, 4, 1, 2}; // first vertex of the side across from a side

struct Point {
    f32 x, y;
};

Point vertex_of(const Mesh &mesh, int v, int panel) {
    return {mesh.XVER(v, 1, panel), mesh.XVER(v, 2, panel)};
}
f32 distance2(Point a, Point b) {
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

bool is_triangle(const Mesh &mesh, int panel) {
    f32 perimeter = 0;
    f32 shortest = std::numeric_limits<f32>::max();
    for (int k = 1; k <= 4; ++k) {
        const f32 side = std::sqrt(distance2(vertex_of(mesh, k, panel), vertex_of(mesh, JP[k], panel)));
        perimeter += side;
        shortest = std::min(shortest, side);
    }
    return perimeter < MIN_PERIMETER || shortest < TRIANGLE * perimeter;
}

// The vertex j of the panel from which a side runs to P, having started in Q; 0 when there is none.
int shared_side(const Mesh &mesh, int panel, Point P, Point Q) {
    for (int j = 1; j <= 4; ++j) {
        if (distance2(P, vertex_of(mesh, JP[j], panel)) < COINCIDE2 &&
            distance2(Q, vertex_of(mesh, j, panel)) < COINCIDE2)
            return j;
    }
    return 0;
}

// A strip that grows.
struct Growth {
    int head;                // its waterline panel, over the whole mesh
    Point P, Q;              // the side that its next panel shares, in opposite sense
    f32 offset;              // of the wet side from x = 0
    bool is_open;            // its last panel was no triangle
    std::vector<int> panels; // so far
};

Growth start_strip(const RunState &run, int head, int side) {
    const Point P = vertex_of(run.mesh, side, head), Q = vertex_of(run.mesh, JP[side], head);
    return {head, P, Q, std::fabs(P.x + Q.x) / 2, distance2(P, Q) >= COINCIDE2, {}};
}

// A panel that one or more strips want next, and the one that gets it.
struct Claim {
    Growth *strip;
    int side; // the shared side of the panel
    f32 distance2;
};

// The nearest waterline panel wins, of equals the one farther from x = 0, of these the first: an order that
// mirror images have in common, so that it is the same on full, half and quarter meshes.
bool is_better(const Claim &a, const Claim &b) {
    if (std::fabs(a.distance2 - b.distance2) > ROUNDING * b.distance2)
        return a.distance2 < b.distance2;
    return a.strip->offset > (1 + ROUNDING) * b.strip->offset;
}

// The next panels of all strips, out of those in `pool`.
std::map<int, Claim> next_panels(const Mesh &mesh, const std::vector<int> &pool,
                                 std::vector<Growth> &strips) {
    std::map<int, Claim> claims;
    for (Growth &strip : strips) {
        if (!strip.is_open)
            continue;
        int side = 0;
        const auto found = std::find_if(pool.begin(), pool.end(), [&](int p) {
            side = shared_side(mesh, p, strip.P, strip.Q);
            return side != 0;
        });
        strip.is_open = found != pool.end();
        if (!strip.is_open)
            continue;
        const int p = *found, h = strip.head;
        const Claim claim{&strip, side,
                          distance2({mesh.XCT(1, p), mesh.XCT(2, p)}, {mesh.XCT(1, h), mesh.XCT(2, h)})};
        const auto [entry, is_first] = claims.try_emplace(p, claim);
        if (!is_first && is_better(claim, entry->second))
            entry->second = claim;
    }
    return claims;
}

} // namespace

void FSSTRP(const RunState &run, int body, int first, int w1, int w2, View<int, 1> IRRP, int &used) {
    const Mesh &mesh = run.mesh;
    std::vector<int> pool;
    for (int p = first; p < first + run.bodies.NEQNB(body); ++p) {
        if (mesh.IFSP(p) == 1)
            pool.push_back(p);
    }
    std::vector<Growth> strips;
    for (int w = w1; w <= w2; ++w)
        strips.push_back(start_strip(run, first - 1 + run.waterline.IWLP(w), run.waterline.IWLE(w)));
    for (;;) {
        const std::map<int, Claim> claims = next_panels(mesh, pool, strips);
        if (claims.empty())
            break;
        for (const auto &[panel, claim] : claims) {
            Growth &strip = *claim.strip;
            strip.panels.push_back(panel);
            strip.P = vertex_of(mesh, OPPOSITE[claim.side], panel);
            strip.Q = vertex_of(mesh, JP[OPPOSITE[claim.side]], panel);
            strip.is_open = !is_triangle(mesh, panel);
        }
        std::erase_if(pool, [&](int p) { return claims.contains(p); });
    }
    for (const Growth &strip : strips) {
        IRRP(++used) = static_cast<int>(strip.panels.size());
        for (const int p : strip.panels)
            IRRP(++used) = p;
    }
}

void FSNEAR(const Mesh &mesh, View<const int, 1> head, View<int, 1> IRRP, int &used) {
    const int NWL = static_cast<int>(head.dim(1));
    std::vector<std::vector<int>> strip(static_cast<std::size_t>(NWL));
    for (int i = 1; NWL > 0 && i <= mesh.NEQN; ++i) {
        if (mesh.IFSP(i) != 1)
            continue;
        const auto to = [&](int w) {
            return distance2({mesh.XCT(1, i), mesh.XCT(2, i)}, {mesh.XCT(1, head(w)), mesh.XCT(2, head(w))});
        };
        int nearest = 1;
        f32 least = to(1);
        for (int w = 2; w <= NWL; ++w) {
            const f32 d = to(w);
            if (d < least) {
                least = d;
                nearest = w;
            }
        }
        strip[static_cast<std::size_t>(nearest) - 1].push_back(i);
    }
    for (const std::vector<int> &panels : strip) {
        IRRP(++used) = static_cast<int>(panels.size());
        for (const int p : panels)
            IRRP(++used) = p;
    }
}

Status fill_strips(const RunState &run, Strips &strips) {
    const int NWL = run.waterline.NWL;
    const int N = run.mesh.NEQN;
    int interior = 0;
    for (int i = 1; i <= N; ++i)
        interior += run.mesh.IFSP(i) == 1 ? 1 : 0;
    if (!strips.IRRP.alloc(std::max<std::int64_t>(N, static_cast<std::int64_t>(NWL) + interior)) ||
        !strips.head.alloc(NWL))
        return MSGOUT(" RAM too small ");
    int used = 0;
    int first = 1;
    int listed = 0;
    for (int b = 1; b <= run.bodies.NBODY; ++b) {
        const int w2 = listed + run.bodies.NWLB(b);
        // The lists count within the body, but for IRR=4.
        for (int w = listed + 1; w <= w2; ++w)
            strips.head(w) = run.waterline.IWLP(w) + (run.opt.IRR == 4 ? 0 : first - 1);
        if (run.opt.IRR != 4)
            FSSTRP(run, b, first, listed + 1, w2, strips.IRRP, used);
        listed = w2;
        first += run.bodies.NEQNB(b);
    }
    if (run.opt.IRR == 4)
        FSNEAR(run.mesh, strips.head, strips.IRRP, used);
    return Status::ok;
}
