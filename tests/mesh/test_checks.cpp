// Truth: meshes that are sound, and the same with one fault planted in a known panel.
#include "mesh/checks.hpp"
#include "mesh/edges.hpp"
#include "planted_faults.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

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

TEST(Meshes, BelowTheBottomAreTold) {
    BodyMesh mesh = box();
    mesh.depth = 0.9;
    const std::vector<MeshFinding> findings = check_mesh(mesh, {});
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(told(findings.front()).rfind("panels below the bottom: panel 1, 5, 9, 13, 17", 0), 0u)
        << told(findings.front());
    mesh.depth = 1;
    EXPECT_TRUE(check_mesh(mesh, {}).empty());
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
    EXPECT_EQ(m.waterline, 24);
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
