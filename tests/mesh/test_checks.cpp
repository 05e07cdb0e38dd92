// Truth: meshes that are sound, and the same with one fault planted in a known panel.
#include "mesh/checks.hpp"
#include "mesh/edges.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include <chrono>
#include <cmath>
#include <functional>

namespace {

using Patch = std::function<BodyPoint(double, double)>;

// nu by nv panels of a surface over the unit square, anti-clockwise from the side that u x v points to.
void add_patch(BodyMesh &mesh, int nu, int nv, const Patch &at) {
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j) {
            const double u = double(i) / nu, v = double(j) / nv, du = 1.0 / nu, dv = 1.0 / nv;
            mesh.panels.push_back({{at(u, v), at(u + du, v), at(u + du, v + dv), at(u, v + dv)}});
        }
}
// A box of 4 x 2 x 1, 112 panels; the first 16 are the end x = 2, of which panel 4 touches the surface.
BodyMesh box() {
    BodyMesh m;
    add_patch(m, 4, 4, [](double u, double v) { return BodyPoint{2, 2 * u - 1, v - 1}; });
    add_patch(m, 4, 4, [](double u, double v) { return BodyPoint{-2, 1 - 2 * u, v - 1}; });
    add_patch(m, 8, 4, [](double u, double v) { return BodyPoint{2 - 4 * u, 1, v - 1}; });
    add_patch(m, 8, 4, [](double u, double v) { return BodyPoint{4 * u - 2, -1, v - 1}; });
    add_patch(m, 4, 8, [](double u, double v) { return BodyPoint{4 * v - 2, 2 * u - 1, -1}; });
    return m;
}
// Half a ship with parabolic lines, y > 0, symmetric about y = 0.
BodyMesh ship() {
    BodyMesh m;
    m.symmetric[1] = true;
    add_patch(m, 16, 4, [](double u, double v) {
        const double x = 1 - 2 * u, z = v - 1;
        return BodyPoint{2 * x, 0.4 * (1 - x * x) * (1 - z * z), 0.3 * z};
    });
    return m;
}

BodyPoint middle(const BodyPoint &a, const BodyPoint &b) {
    return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
}

void turn(BodyMesh &m, std::size_t p) {
    std::reverse(m.panels[p].at.begin(), m.panels[p].at.end());
}

struct Fault {
    const char *name;
    void (*plant)(BodyMesh &);
    std::vector<std::pair<const char *, std::vector<int>>>
        told; // words and, unless empty, panels that are named
};
// Panel 6 lies in the middle of the end of the box and of the ship's side; panel 8 touches the surface.
const Fault FAULTS[] = {
    {"one turned", [](BodyMesh &m) { turn(m, 5); }, {{"turned against", {6}}}},
    {"three turned",
     [](BodyMesh &m) {
         for (const std::size_t p : {5u, 6u, 30u})
             turn(m, p);
     },
     {{"turned against", {6, 7, 31}}}},
    {"all turned",
     [](BodyMesh &m) {
         for (std::size_t p = 0; p < m.panels.size(); ++p)
             turn(m, p);
     },
     {{"all normals point into the water", {}}}},
    {"missing",
     [](BodyMesh &m) { m.panels.erase(m.panels.begin() + 5); },
     {{"a panel is missing", {2, 5, 6, 9}}, {"volumes differ", {}}}},
    {"doubled",
     [](BodyMesh &m) { m.panels.push_back(m.panels[5]); },
     {{"on the same place", {6}}, {"more than two", {}}}},
    {"shifted by a hundredth",
     [](BodyMesh &m) {
         for (BodyPoint &p : m.panels[5].at)
             p[2] += 0.0025;
     },
     {{"do not meet", {2, 5, 6, 7, 10}}}},
    {"T-junction",
     [](BodyMesh &m) {
         const auto [a, b, c, d] = m.panels[5].at;
         m.panels[5].at = {a, b, middle(b, c), middle(a, d)};
         m.panels.push_back({{middle(a, d), middle(b, c), c, d}});
     },
     {{"in the middle of a neighbour's side", {2, 6, 10}}}},
    {"crack along a seam",
     [](BodyMesh &m) {
         for (std::size_t p = 4; p < 8; ++p)
             for (BodyPoint &v : m.panels[p].at)
                 v[0] -= 0.002;
     },
     {{"do not meet", {5, 6, 7, 8}}}},
    {"waterline gap", [](BodyMesh &m) { m.panels[7].at[2][2] = m.panels[7].at[3][2] = -0.004; }, {{"", {8}}}},
    {"doubled with another order",
     [](BodyMesh &m) {
         m.panels.push_back(m.panels[5]);
         std::rotate(m.panels.back().at.begin(), m.panels.back().at.begin() + 1, m.panels.back().at.end());
     },
     {{"on the same place", {6}}}},
    {"below the bottom", [](BodyMesh &m) { m.depth = 0.2; }, {{"below the bottom", {5, 6}}}},
    {"just below the surface",
     [](BodyMesh &m) {
         for (BodyPanel &p : m.panels)
             for (BodyPoint &v : p.at)
                 v[2] -= 0.002;
     },
     {{"no waterline", {}}}},
};

TEST(Meshes, FaultsAreToldWithTheirPanels) {
    for (const Fault &fault : FAULTS)
        for (BodyMesh mesh : {box(), ship()}) {
            SCOPED_TRACE(std::string(fault.name) + (mesh.symmetric[1] ? ", ship" : ", box"));
            fault.plant(mesh);
            std::string all;
            for (const MeshFinding &finding : check_mesh(mesh, {0, true}))
                all += told(finding) + "\n";
            for (const auto &[words, panels] : fault.told) {
                bool found = false;
                for (const MeshFinding &finding : check_mesh(mesh, {0, true})) {
                    if (finding.what.find(words) == std::string::npos)
                        continue;
                    bool has_all = true;
                    for (const int p : panels)
                        has_all = has_all && std::count(finding.panels.begin(), finding.panels.end(), p) == 1;
                    found = found || has_all;
                }
                EXPECT_TRUE(found) << words << "\n" << all;
            }
        }
}

TEST(Meshes, ThatAreSoundAreSilent) {
    for (const BodyMesh &mesh : {box(), ship()})
        for (const MeshFinding &finding : check_mesh(mesh, {}))
            ADD_FAILURE() << told(finding);
}

TEST(Meshes, HaveTheMeasuresOfTheirBody) {
    BodyMesh mesh = box();
    const MeshMeasures m = measure(mesh);
    for (std::size_t c = 0; c < 3; ++c)
        EXPECT_NEAR(m.volume[c], 8, 1e-12);
    EXPECT_NEAR(m.waterplane, 8, 1e-12);
    EXPECT_NEAR(m.buoyancy[2], -0.5, 1e-12);
    EXPECT_NEAR(m.aspect, 2, 1e-12); // 0.5 by 0.25
    mesh.panels = {{{BodyPoint{0, 0, -1}, {0, 2, -1}, {2, 0, -1}, {2, 0, -1}}}};
    EXPECT_NEAR(measure(mesh).aspect, 2, 1e-12) << "half of a square whose side is the longest one";
}

// One core of a small machine needs a tenth of a second.
TEST(Meshes, OfTwentyThousandPanelsAreJudgedAtOnce) {
    BodyMesh mesh;
    add_patch(mesh, 200, 100, [](double u, double v) {
        const double a = 6.283185307179586 * u;
        return BodyPoint{std::cos(a), -std::sin(a), -v};
    });
    const auto start = std::chrono::steady_clock::now();
    (void)check_mesh(mesh, {});
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    RecordProperty("seconds", std::to_string(seconds));
    EXPECT_LT(seconds, 1);
}

} // namespace
