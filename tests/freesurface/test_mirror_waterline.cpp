// Mirrored panels and waterline panels. Truth: the definition of an image, and wet sides looked up by hand on
// panels with every choice of vertices in the surface.
#include "freesurface/mirror.hpp"
#include "freesurface/waterline.hpp"
#include "geometry/dipoles.hpp"
#include "run_folder.hpp"

namespace {

// Panels with x = number of the vertex + 10 p, y = 1, z as given.
Array<f32, 3> panels(int n) {
    Array<f32, 3> XVER;
    EXPECT_TRUE(XVER.alloc(4, 3, n));
    for (int p = 1; p <= n; ++p)
        for (int v = 1; v <= 4; ++v) {
            XVER(v, 1, p) = static_cast<f32>(10 * p + v);
            XVER(v, 2, p) = static_cast<f32>(100 * p + v);
            XVER(v, 3, p) = static_cast<f32>(-v);
        }
    return XVER;
}

TEST(REFLEC, images_stand_behind_their_originals) {
    const RunFolder folder;
    Array<f32, 3> XVER = panels(3);
    int NP = 2;
    int ISX = -2;
    int ISY = 1;
    ASSERT_EQ(REFLEC(2, NP, ISX, ISY, XVER), Status::ok);
    EXPECT_EQ(NP, 8);
    EXPECT_EQ(ISX, -1);
    EXPECT_EQ(ISY, 0);
    const int order[5] = {0, 2, 1, 4, 3};
    // Panels 2, 3, then their images in x = 0, then those of all four in y = 0.
    for (int k = 0; k < 8; ++k) {
        const int source = 2 + k % 2;
        const bool in_x = k / 2 % 2 == 1;
        const bool in_y = k / 4 == 1;
        for (int v = 1; v <= 4; ++v) {
            const int w = in_x != in_y ? order[v] : v; // two reversals restore the order
            EXPECT_EQ(XVER(v, 1, 2 + k), (in_x ? -1 : 1) * (10 * source + w));
            EXPECT_EQ(XVER(v, 2, 2 + k), (in_y ? -1 : 1) * (100 * source + w));
            EXPECT_EQ(XVER(v, 3, 2 + k), -w);
        }
    }
}

TEST(REFLEC, refuses_more_panels_than_can_be_counted) {
    const RunFolder folder;
    Array<f32, 3> XVER = panels(1);
    int NP = 2000000000, ISX = 1, ISY = 0;
    EXPECT_EQ(REFLEC(1, NP, ISX, ISY, XVER), Status::failed);
    EXPECT_TRUE(folder.told("RAM too small for reflected panels"));
}

TEST(WLFIND, finds_the_wet_side) {
    // clang-format off
    const struct {
        const char *label;
        int wet; // bits 1, 2, 4, 8 for the vertices 1 to 4
        int twin, of; // vertex `twin` lies where vertex `of` lies
        int side; // 0: no waterline panel; -1: refused
    } rows[] = {
        {"dry", 0, 0, 0, 0},
        {"corner", 4, 0, 0, 0},
        {"side_12", 3, 0, 0, 1},
        {"side_23", 6, 0, 0, 2},
        {"side_34", 12, 0, 0, 3},
        {"side_41", 9, 0, 0, 4},
        {"lid", 15, 0, 0, 0},
        {"three_apart_1", 14, 0, 0, -1},
        {"three_apart_4", 7, 0, 0, -1},
        {"twins_12_of_123", 7, 2, 1, 2},
        {"twins_23_of_123", 7, 3, 2, 1},
        {"twins_12_of_124", 11, 2, 1, 4},
        {"twins_41_of_124", 11, 4, 1, 1},
        {"twins_34_of_134", 13, 4, 3, 4},
        {"twins_41_of_134", 13, 4, 1, 3},
        {"twins_23_of_234", 14, 3, 2, 3},
        {"twins_34_of_234", 14, 4, 3, 2},
    };
    // clang-format on
    for (const auto &row : rows) {
        SCOPED_TRACE(row.label);
        const RunFolder folder;
        constexpr f32 ZB = -0.5f; // the surface is at z = 0.5 in body axes
        Array<f32, 3> XVER = panels(2);
        for (int v = 1; v <= 4; ++v)
            XVER(v, 3, 2) = (row.wet >> (v - 1) & 1) != 0 ? 0.5f + (v % 2 == 0 ? 9e-6f : -9e-6f) : 0.4999f;
        for (int c = 1; c <= 3 && row.twin != 0; ++c)
            XVER(row.twin, c, 2) = XVER(row.of, c, 2);
        Array<int, 1> IWLP, IWLE;
        ASSERT_TRUE(IWLP.alloc(2) && IWLE.alloc(2));
        int NWLB = -1;
        EXPECT_EQ(WLFIND(XVER, ZB, IWLP, IWLE, NWLB), row.side < 0 ? Status::failed : Status::ok);
        ASSERT_EQ(NWLB, row.side > 0 ? 1 : 0) << folder.list_text();
        if (row.side > 0) {
            EXPECT_EQ(IWLP(1), 2);
            EXPECT_EQ(IWLE(1), row.side);
        }
        EXPECT_EQ(folder.told("Error: Three vertices on the free surface of panel I= 2"), row.side < 0);
        EXPECT_EQ(folder.told("Warning: Some panels have four vertices on the free surface"), row.wet == 15);
    }
}

TEST(Dipoles, step_is_an_eighth_of_the_panel) {
    const RunFolder folder;
    Dipoles dipoles;
    ASSERT_EQ(DIPGRW(3, dipoles), Status::ok);
    dipoles.IDIP(2) = 1;
    Mesh mesh;
    mesh.NEQN = 3;
    ASSERT_TRUE(mesh.PMOM.alloc(13, 3) && mesh.IFSP.alloc(3));
    mesh.PMOM.fill(4);
    mesh.IFSP(3) = 1; // an ordinary panel may lie in the surface
    ASSERT_EQ(INIT_DIPOLE(mesh, dipoles), Status::ok);
    EXPECT_EQ(dipoles.DEPS(1), 0);
    EXPECT_EQ(dipoles.DEPS(2), 0.25f);
    EXPECT_EQ(dipoles.DEPS(3), 0);
    mesh.IFSP(2) = -1;
    EXPECT_EQ(INIT_DIPOLE(mesh, dipoles), Status::failed);
    EXPECT_TRUE(folder.told("Dipole not allowed on the free surface!"));
}

} // namespace
