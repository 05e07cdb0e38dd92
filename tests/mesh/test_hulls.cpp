// Truth: volumes and areas of bodies made of planes, which cutting, turning and joining must keep to
// round-off.
#include "hull_files.hpp"
#include "mesh/cut.hpp"
#include "mesh/join.hpp"
#include "mesh/orient.hpp"
#include "mesh/symmetry.hpp"
#include "mesh/vectors.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double ROUND_OFF = 1e-12; // of sums over some hundred panels of size 1

MergedVertices merged(const Quads &quads, bool triangles = false) {
    MergedVertices mesh;
    std::mt19937 random(7);
    for (const auto &q : quads) {
        const int n = static_cast<int>(mesh.points.size());
        mesh.points.insert(mesh.points.end(), q.begin(), q.end());
        if (!triangles) {
            mesh.of_panel.push_back({n, n + 1, n + 2, n + 3});
        } else {
            const int s = static_cast<int>(random() % 2);
            mesh.of_panel.push_back({n + s, n + s + 1, n + s + 2, n + s + 2});
            mesh.of_panel.push_back({n + s, n + s + 2, n + (s + 3) % 4, n + (s + 3) % 4});
        }
    }
    (void)merge(mesh, 1e-9);
    return mesh;
}
Quads cells(int n, const std::function<bool(const BodyPoint &)> &full) {
    const std::vector<double> line = steps({{-3, 0}, {3, 6 * n}});
    return faces_of_cells({line, line, line}, full);
}
bool in_box(const BodyPoint &p, double half) {
    return std::fabs(p[0]) < half && std::fabs(p[1]) < half && std::fabs(p[2]) < half;
}
// A cube with a hollow, a ring and, beside them, a small cube that touches nothing.
bool hollow(const BodyPoint &p) {
    return in_box(p, 2) && !in_box(p, 1);
}
bool ring(const BodyPoint &p) {
    return std::fabs(p[2]) < 1 && in_box(p, 3) && !(std::fabs(p[0]) < 1 && std::fabs(p[1]) < 1);
}
bool two(const BodyPoint &p) {
    return (std::fabs(p[0] + 2) < 1 && std::fabs(p[1]) < 1 && std::fabs(p[2]) < 1) ||
           (p[0] > 1 && p[1] > 0 && p[2] > -1);
}
struct Body {
    const char *name;
    bool (*full)(const BodyPoint &);
    double volume;
    int parts, inner;
};
const Body BODIES[] = {
    {"hollow cube", hollow, 64 - 8, 2, 1}, {"ring", ring, 72 - 8, 1, 0}, {"two", two, 8 + 24, 2, 0}};

BodyMesh body_of(const MergedVertices &mesh) {
    BodyMesh body;
    body.tank = true; // z = 0 means nothing here
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        body.panels.push_back(panel_of(mesh, p));
    return body;
}
// Turned about all axes, so that no plane of the body is one of the axes.
void tilt(MergedVertices &mesh) {
    const double a = 0.4, b = 0.7;
    for (BodyPoint &p : mesh.points) {
        p = {p[0] * std::cos(a) - p[1] * std::sin(a), p[0] * std::sin(a) + p[1] * std::cos(a), p[2]};
        p = {p[0], p[1] * std::cos(b) - p[2] * std::sin(b), p[1] * std::sin(b) + p[2] * std::cos(b)};
    }
}
std::size_t open_outside_plane(const MergedVertices &mesh, std::size_t axis) {
    std::size_t open = 0;
    for (const PanelSide &s : edges_of(mesh, std::vector<bool>(mesh.of_panel.size(), true)).open)
        open += mesh.points[static_cast<std::size_t>(s.a)][axis] != 0 ||
                mesh.points[static_cast<std::size_t>(s.b)][axis] != 0;
    return open;
}

TEST(Hulls, CutsKeepVolumesAndStayClosed) {
    for (const Body &body : BODIES)
        for (const bool triangles : {false, true})
            for (const double shift : {0.0, 0.3, 0.7071}) {
                SCOPED_TRACE(std::string(body.name) + (triangles ? ", triangles, " : ", ") +
                             std::to_string(shift));
                MergedVertices whole = merged(cells(1, body.full), triangles);
                tilt(whole);
                for (BodyPoint &p : whole.points)
                    p[2] += shift;
                double volume[2] = {0, 0};
                for (const int side : {-1, 1}) {
                    MergedVertices part = whole;
                    const CutCounts n = cut(part, {2, side}, 1e-9);
                    EXPECT_GT(n.cut, 10);
                    EXPECT_EQ(open_outside_plane(part, 2), 0u);
                    const MeshMeasures m = measure(body_of(part));
                    EXPECT_TRUE(side < 0 ? m.high[2] == 0 : m.low[2] == 0);
                    // The missing lid has no part in the integrals over x and y.
                    for (const std::size_t c : {0u, 1u})
                        volume[c] += m.volume[c];
                }
                for (const double v : volume)
                    EXPECT_NEAR(v, body.volume, 1e-4 * body.volume); // slivers move the surface
            }
}

TEST(Hulls, TurnOutwardsWhateverTheyWere) {
    std::mt19937 random(3);
    for (const Body &body : BODIES) {
        SCOPED_TRACE(body.name);
        MergedVertices mesh = merged(cells(1, body.full), true);
        for (const bool all : {false, true}) {
            for (std::array<int, 4> &corners : mesh.of_panel)
                if (all || random() % 3 == 0)
                    reverse(corners);
            const OrientCounts n = orient(mesh);
            EXPECT_EQ(n.parts, body.parts);
            EXPECT_EQ(n.inner, body.inner);
            EXPECT_TRUE(all ? n.turned == 0 && n.parts_turned == body.parts : n.turned > 10);
            const MeshMeasures m = measure(body_of(mesh));
            for (const double v : m.volume)
                EXPECT_NEAR(v, body.volume, ROUND_OFF * 100);
        }
    }
}

TEST(Hulls, OfOneSideOnlyAreRefused) {
    MergedVertices band;
    const int n = 12;
    for (int i = 0; i < n; ++i) {
        const double a = 6.283185307179586 * i / n;
        for (const double w : {-0.3, 0.3})
            band.points.push_back({std::cos(a) * (2 + w * std::cos(a / 2)),
                                   std::sin(a) * (2 + w * std::cos(a / 2)), w * std::sin(a / 2) - 1});
        const int from = 2 * i, to = i + 1 < n ? 2 * i + 2 : 0, twist = i + 1 < n ? 0 : 1;
        band.of_panel.push_back({from, to + twist, to + 1 - twist, from + 1});
    }
    EXPECT_TRUE(orient(band).one_sided);
}

TEST(Hulls, SymmetryIsFoundWhereItIs) {
    struct Case {
        const char *name;
        bool triangles; // with diagonals at random: the panels have no images, the surface has
        void (*spoil)(MergedVertices &);
        bool surfaces[2], panels[2];
    };
    const Case CASES[] = {
        {"ring", false, [](MergedVertices &) {}, {true, true}, {true, true}},
        {"triangles", true, [](MergedVertices &) {}, {true, true}, {false, false}},
        {"beside its plane",
         false,
         [](MergedVertices &m) {
             for (BodyPoint &p : m.points)
                 p[0] += 0.01;
         },
         {false, true},
         {false, true}},
        {"with a dent",
         false,
         [](MergedVertices &m) {
             for (BodyPoint &p : m.points)
                 p[2] -= p == BodyPoint{3, 2, 1} ? 0.01 : 0;
         },
         {false, false},
         {false, false}},
    };
    for (const Case &c : CASES) {
        MergedVertices mesh = merged(cells(1, ring), c.triangles);
        c.spoil(mesh);
        for (const int axis : {0, 1}) {
            SCOPED_TRACE(std::string(c.name) + (axis == 0 ? ", x" : ", y"));
            const MirrorMatch match = match_mirrored(mesh, axis, 0.004);
            EXPECT_EQ(match.surfaces, c.surfaces[axis]);
            EXPECT_EQ(match.panels, c.panels[axis]);
        }
    }
}

TEST(Hulls, TrianglesBecomeQuadrilaterals) {
    const Quads quads = cells(2, ring);
    MergedVertices mesh = merged(quads, true);
    const double area = measure(body_of(mesh)).surface;
    const int joined = join_triangles(mesh, 0.01);
    EXPECT_EQ(static_cast<std::size_t>(joined), quads.size()) << "the squares come first";
    const MeshMeasures m = measure(body_of(mesh));
    EXPECT_NEAR(m.surface, area, ROUND_OFF * area);
    EXPECT_NEAR(m.volume[2], 64, ROUND_OFF * 100);
    EXPECT_LE(m.warp, ROUND_OFF);
}

// Two cubes with a common face, given by both; and a face given twice.
TEST(Hulls, PanelsOnTheSamePlace) {
    const auto cube = [](double low) {
        return faces_of_cells(
            {steps({{low, 0}, {low + 1, 2}}), steps({{0, 0}, {1, 2}}), steps({{0, 0}, {1, 2}})},
            [](const BodyPoint &) { return true; });
    };
    Quads pair = cube(0);
    const Quads other = cube(1);
    pair.insert(pair.end(), other.begin(), other.end());
    MergedVertices mesh;
    const auto fill = [&](const Quads &quads) {
        mesh = {};
        for (const auto &q : quads) {
            const int n = static_cast<int>(mesh.points.size());
            mesh.points.insert(mesh.points.end(), q.begin(), q.end());
            mesh.of_panel.push_back({n, n + 1, n + 2, n + 3});
        }
        return merge(mesh, 1e-9);
    };
    MergeCounts n = fill(pair);
    EXPECT_EQ(n.folded, 8);
    EXPECT_EQ(n.doubled, 0);
    EXPECT_NEAR(measure(body_of(mesh)).volume[0], 2, ROUND_OFF);
    Quads twice = cube(0);
    twice.push_back(twice[5]);
    twice.push_back(twice[6]);
    n = fill(twice);
    EXPECT_EQ(n.doubled, 2);
    EXPECT_EQ(n.folded, 0);
    EXPECT_EQ(mesh.of_panel.size(), 24u);
    const Quads again = cube(0);
    twice.insert(twice.end(), again.begin(), again.end());
    n = fill(twice);
    EXPECT_EQ(mesh.of_panel.size(), 24u) << "all of it given twice";
}

} // namespace
