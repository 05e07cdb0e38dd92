// Truth: differences of the displacement; rigid motions; closed forms of beams and boxes.
#include "mode_folder.hpp"

#include <cmath>

namespace {

constexpr const char *ALL_KINDS = R"(
[[mode]]
type = "free-free"
number = 2
from = -2
to = 2
z = -0.3
[[mode]]
type = "cantilever"
direction = "horizontal"
from = -1.5
to = 3
y = 0.2
[[mode]]
type = "free-free"
direction = "torsion"
from = -2
to = 2
z = 0.4
[[mode]]
type = "polynomial"
dx = [[2, 1, 1, 0], [-0.5, 0, 0, 3]]
dy = [[1, 2, 0, 1]]
dz = [[1, 0, 0, 0], [0.3, 3, 1, 0]]
[[mode]]
type = "hinge"
at = [0.3, 0, -0.2]
axis = "z"
aft = -0.5
[[mode]]
type = "points"
file = "turn.csv"
[[mode]]
type = "points"
file = "turn.csv"
number = 2
method = "inverse-distance"
)";

// Points around the box that turn about (0.1, 0, -0.4), and the same once more as a second displacement.
std::string turning_points() {
    std::string text = "x,y,z,ux,uy,uz,vx,vy,vz\n";
    for (int k = 0; k < 200; ++k) {
        const double x = 2.1 * std::sin(1.7 * k), y = 1.1 * std::sin(2.3 * k),
                     z = -0.5 + 0.6 * std::sin(0.9 * k);
        char line[200];
        std::snprintf(line, sizeof line, "%.9f,%.9f,%.9f,%.9f,0,%.9f,%.9f,0,%.9f\n", x, y, z, z + 0.4,
                      0.1 - x, z + 0.4, 0.1 - x);
        text += line;
    }
    return text;
}

} // namespace

TEST(Shapes, HaveTheirSlopes) {
    const ModeFolder folder;
    folder.write("turn.csv", turning_points());
    ModeFile file;
    PreFile pre;
    const BodyModes modes = folder.modes_of(ALL_KINDS, file, pre);
    ASSERT_EQ(modes.shapes.size(), 13u);
    constexpr double H = 1e-5;
    for (std::size_t m = 0; m < 13; ++m)
        for (const Vec3 &r : {Vec3{0.7, 0.3, -0.6}, Vec3{-1.2, -0.9, -0.1}, Vec3{2.5, 0.4, -0.4}})
            for (std::size_t l = 0; l < 3; ++l) {
                Vec3 ahead = r, behind = r;
                ahead[l] += H;
                behind[l] -= H;
                for (std::size_t k = 0; k < 3; ++k)
                    EXPECT_NEAR((modes.shapes[m].at(ahead).u[k] - modes.shapes[m].at(behind).u[k]) / (2 * H),
                                modes.shapes[m].at(r).slope[k][l], 2e-5)
                        << "mode " << m + 1 << ", " << k << l;
            }
}

// An Euler beam has no shear; at the tip of torsion the section turns by 1 about x, right-handed.
TEST(Shapes, OfBeamsHaveNoShear) {
    const ModeFolder folder;
    folder.write("turn.csv", turning_points());
    ModeFile file;
    PreFile pre;
    const BodyModes modes = folder.modes_of(ALL_KINDS, file, pre);
    for (const Vec3 &r : {Vec3{0.7, 0.3, -0.6}, Vec3{-1.2, -0.9, -0.1}, Vec3{2.5, 0.4, -0.4}})
        for (const auto &[m, k, l] : {std::array{6, 0, 2}, std::array{6, 0, 1}, std::array{7, 0, 1},
                                      std::array{7, 1, 2}, std::array{8, 1, 2}}) {
            const Matrix3 slope = modes.shapes[static_cast<std::size_t>(m)].at(r).slope;
            const std::size_t a = static_cast<std::size_t>(k), b = static_cast<std::size_t>(l);
            EXPECT_NEAR(slope[a][b] + slope[b][a], 0, 1e-12) << m << k << l;
        }
    EXPECT_NEAR(modes.shapes[6].at({2, 0.5, -0.3}).u[2], 1, 1e-12);
    EXPECT_NEAR(modes.shapes[7].at({3, 0.2, -0.3}).u[1], 1, 1e-12);
    const Vec3 tip = modes.shapes[8].at({2, 0.5, 0.6}).u;
    EXPECT_NEAR(tip[1], -0.2, 1e-12);
    EXPECT_NEAR(tip[2], 0.5, 1e-12);
}

TEST(PointShape, TurnsAsItsPointsDo) {
    const ModeFolder folder;
    folder.write("turn.csv", turning_points());
    ModeFile file;
    PreFile pre;
    const BodyModes modes = folder.modes_of(ALL_KINDS, file, pre);
    double worst = 0;
    for (const PrePanel &panel : pre.panels) {
        const Vec3 turn = {panel.at[2] + 0.4, 0, 0.1 - panel.at[0]};
        for (std::size_t k = 0; k < 3; ++k) { // a linear field is one of the fits
            EXPECT_NEAR(modes.shapes[11].at(panel.at).u[k], turn[k], 1e-6);
            worst = std::max(worst, std::fabs(modes.shapes[12].at(panel.at).u[k] - turn[k]));
        }
    }
    EXPECT_LT(worst, 0.8); // of a mean over neighbours that are up to that far away
    EXPECT_GT(worst, 1e-3);
    // At a point it is what stands there.
    EXPECT_NEAR(modes.shapes[12]
                    .at({2.1 * std::sin(1.7 * 9), 1.1 * std::sin(2.3 * 9), -0.5 + 0.6 * std::sin(0.9 * 9)})
                    .u[0],
                -0.1 + 0.6 * std::sin(0.9 * 9), 1e-6);
}

// Omega^2 = beta^4 EI / (m L^4) and beta^2 GJ / (J L^2); free modes share no mass with rigid ones or each
// other.
TEST(GeneralisedMass, IsThatOfAUniformBeam) {
    const ModeFolder folder;
    std::string text;
    for (const char *direction : {"vertical", "horizontal", "torsion"})
        for (const char *number : {"1", "2"})
            text += "[[mode]]\ntype = 'free-free'\nfrom = -1\nto = 3\nz = -0.2\ndirection = '" +
                    std::string(direction) + "'\nnumber = " + number + "\n";
    text += "[[part]]\nmass = 800\nfrom = -1\nto = 3\nz = -0.2\nradius_y = 0.5\nradius_z = 0.3\n"
            "[[beam]]\nfrom = -1\nto = 3\nei_vertical = 5e4\nei_horizontal = 7e4\ngj = 3e4\n";
    ModeFile file;
    PreFile pre;
    const BodyModes modes = folder.modes_of(text, file, pre);
    const Rows M = mass_of_modes(modes, file.parts), K = beam_stiffness(modes, file.beams);
    const RigidMatrix rigid = mass_matrix(file.parts);
    constexpr double L = 4, PER_LENGTH = 200;
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = 0; j < 6; ++j)
            EXPECT_NEAR(M[i][j], rigid[i][j], 1e-8 * 800);
    for (const std::size_t n : {1u, 2u}) {
        const double beta = n == 1 ? 4.730040745 : 7.853204624;
        const std::size_t up = 5 + n, across = 7 + n, turn = 9 + n;
        // Sections have rotary inertia as well, radius^2 times the integral of w'^2 (from below by
        // differences).
        EXPECT_NEAR(K[up][up], 5e4 * std::pow(beta / L, 4) * L / 4, 1e-5 * K[up][up]);
        EXPECT_NEAR(K[across][across], 7e4 * std::pow(beta / L, 4) * L / 4, 1e-5 * K[across][across]);
        EXPECT_GT(M[up][up], PER_LENGTH * L / 4);
        const double J = PER_LENGTH * (0.25 + 0.09), pi = static_cast<double>(n) * 3.14159265358979;
        EXPECT_NEAR(M[turn][turn], J * L / 2, 1e-8 * M[turn][turn]);
        EXPECT_NEAR(K[turn][turn] / M[turn][turn], pi * pi * 3e4 / (J * L * L),
                    1e-8 * K[turn][turn] / M[turn][turn]);
    }
    // Without rotary inertia nothing is left of their products.
    file.parts[0].radius_z = file.parts[0].radius_y = 0;
    const Rows thin = mass_of_modes(modes, file.parts);
    for (std::size_t i = 0; i < 10; ++i)
        for (std::size_t j = 6; j < 10; ++j)
            EXPECT_NEAR(thin[i][j], i == j ? PER_LENGTH * L / 4 : 0, 1e-6) << i << j;
}

TEST(Stiffness, OfRigidShapesIsThatOfTheBody) {
    const ModeFolder folder;
    ModeFile file;
    PreFile pre;
    const BodyModes modes =
        folder.modes_of("[[mode]]\ntype = 'polynomial'\ndz = [[1, 0, 0, 0]]\n"
                        "[[mode]]\ntype = 'polynomial'\ndy = [[-1, 0, 0, 1]]\ndz = [[1, 0, 1, 0]]\n"
                        "[[mode]]\ntype = 'polynomial'\ndx = [[1, 0, 0, 1]]\ndz = [[-1, 1, 0, 0]]\n"
                        "[[mode]]\ntype = 'polynomial'\ndx = [[0.5, 2, 0, 0]]\n"
                        "[[part]]\nmass = 100\nfrom = -1\nto = 2\nz = 0.7\n",
                        file, pre);
    const Rows C = pressure_stiffness(modes, pre), W = weight_stiffness(modes, file.parts, 10);
    // Waterplane 4 x 2, volume 8, its centre 0.5 deep: S, S_yy + V z, S_xx + V z, by the midpoint rule in
    // 1/4.
    constexpr double MIDPOINT = 0.015;
    EXPECT_NEAR(C[6][6], 8, 1e-4);
    EXPECT_NEAR(C[7][7], 8.0 / 3 - 4, MIDPOINT * 8);
    EXPECT_NEAR(C[8][8], 32.0 / 3 - 4, MIDPOINT * 8);
    EXPECT_NEAR(C[8][2], 0, 1e-4);
    EXPECT_NEAR(C[2][6], 8, 1e-4);
    EXPECT_NEAR(C[0][9], 0, 1e-4); // no force along x at rest, however the body is bent
    EXPECT_NEAR(W[7][7], -100 * 10 * 0.7, 1e-8);
    EXPECT_NEAR(W[8][8], -100 * 10 * 0.7, 1e-8);
    EXPECT_NEAR(W[8][4], -100 * 10 * 0.7, 1e-8);
    EXPECT_NEAR(W[7][5], 100 * 10 * 0, 1e-8);
    EXPECT_EQ(W[3][3], 0);
}

TEST(Symmetry, IsFoundOrToldNeeded) {
    const ModeFolder folder;
    ModeFile file;
    PreFile pre;
    const BodyModes modes = folder.modes_of("[[mode]]\ntype = 'polynomial'\ndx = [[1, 1, 1, 0]]\n"
                                            "[[mode]]\ntype = 'polynomial'\ndy = [[1, 1, 0, 0]]\n"
                                            "[[mode]]\ntype = 'hinge'\nat = [0, 0, 0]\n",
                                            file, pre);
    pre.ISX = pre.ISY = 1;
    char plane = 0;
    for (int m = 1; m <= 6; ++m) { // a rigid mode has its own class
        const int found = symmetry_of(modes.shapes[static_cast<std::size_t>(m - 1)], pre, plane);
        EXPECT_EQ(found, m == 1 ? 5 : m == 2 ? 4 : m);
    }
    EXPECT_EQ(symmetry_of(modes.shapes[6], pre, plane), 4); // even as surge is odd about x, odd about y
    EXPECT_EQ(symmetry_of(modes.shapes[7], pre, plane), 6);
    EXPECT_EQ(symmetry_of(modes.shapes[8], pre, plane), 0);
    EXPECT_EQ(plane, 'x');
}
