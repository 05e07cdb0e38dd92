// Panel quantities against closed forms and against moments by subdivision in double precision.
#include "geometry/panel.hpp"
#include "run_folder.hpp"

#include <cmath>
#include <vector>

namespace {

using Corners = std::array<std::array<double, 3>, 4>;

struct Made {
    Panel p{};
    Status status = Status::ok;
};

Made make(const Corners &corners, int IDIAG = 0, int ordinal = 7) {
    Array<f32, 2> vertex;
    EXPECT_TRUE(vertex.alloc(4, 3));
    for (int v = 1; v <= 4; ++v)
        for (int c = 1; c <= 3; ++c)
            vertex(v, c) = static_cast<f32>(corners[v - 1][c - 1]);
    Made made;
    made.status = PANGEO(vertex.view(), IDIAG, ordinal, made.p);
    return made;
}

// Seen from +z the vertices run clockwise, so that the normal is +z and the first axis +x.
const Corners UNIT_SQUARE = {{{0.5, 0.5, 0}, {0.5, -0.5, 0}, {-0.5, -0.5, 0}, {-0.5, 0.5, 0}}};
const Corners SKEWED = {{{1.3, 0.9, 0.2}, {0.9, -0.4, 0.5}, {-0.7, -0.8, 0.1}, {-0.6, 0.7, -0.3}}};
const Corners LOOKS_DOWN = {{{0.5, -0.5, 0}, {0.5, 0.5, 0}, {-0.5, 0.5, 0}, {-0.5, -0.5, 0}}};
const Corners TRIANGLE = {{{1, 0, 0}, {0, -1, 0}, {-1, 1, 0}, {-1, 1, 0}}};
const Corners DART = {{{1, 1, 0}, {0.1, 0, 0}, {1, -1, 0}, {-1, 0, 0}}};
const Corners BOW_TIE = {{{1, 1, 0}, {-1.1, -1, 0}, {1.2, -1, 0}, {-1, 1, 0}}};

Corners scaled(Corners corners, double factor) {
    for (auto &vertex : corners)
        for (double &c : vertex)
            c *= factor;
    return corners;
}

// Moments x^a y^b of the polygon XIV, ETV: two triangles (signed), each by the closed form in barycentric
// powers, evaluated with a tensor Gauss rule that is exact for degree 9.
double polygon_moment(const Panel &p, int a, int b) {
    const double node[5] = {0.046910077030668, 0.230765344947158, 0.5, 0.769234655052842, 0.953089922969332};
    const double weight[5] = {0.118463442528095, 0.239314335249683, 0.284444444444444, 0.239314335249683,
                              0.118463442528095};
    double sum = 0;
    for (int k = 2; k <= 3; ++k) {
        const double x1 = p.XIV[1], y1 = p.ETV[1];
        const double ux = p.XIV[k] - x1, uy = p.ETV[k] - y1;
        const double vx = p.XIV[k + 1] - x1, vy = p.ETV[k + 1] - y1;
        const double jacobian = uy * vx - ux * vy; // clockwise is positive
        for (int i = 0; i < 5; ++i)
            for (int j = 0; j < 5; ++j) {
                const double s = node[i], t = node[j] * (1 - node[i]);
                sum += weight[i] * weight[j] * (1 - s) * jacobian * std::pow(x1 + s * ux + t * vx, a) *
                       std::pow(y1 + s * uy + t * vy, b);
            }
    }
    return sum;
}

constexpr int POWER_A[14] = {0, 0, 2, 1, 0, 3, 2, 1, 0, 4, 3, 2, 1, 0};
constexpr int POWER_B[14] = {0, 0, 0, 1, 2, 0, 1, 2, 3, 0, 1, 2, 3, 4};
// Rounding of a sum of some ten single-precision terms of the size of the largest moment.
constexpr double MOMENT_ERROR = 3e-6;

TEST(Pangeo, MomentsAndCentroidOfAnyShape) {
    for (const Corners &corners : {UNIT_SQUARE, LOOKS_DOWN, SKEWED, TRIANGLE, DART}) {
        const RunFolder list;
        const Panel p = make(corners).p;
        const double scale = polygon_moment(p, 0, 0);
        EXPECT_NEAR(polygon_moment(p, 1, 0), 0, MOMENT_ERROR * scale) << "the centroid is the centre of area";
        EXPECT_NEAR(polygon_moment(p, 0, 1), 0, MOMENT_ERROR * scale);
        double gauss[4] = {}; // area and first moments by the Gauss points, which are exact for both
        for (int k = 1; k <= 4; ++k)
            for (int c = 0; c <= 3; ++c)
                gauss[c] += static_cast<double>(p.GJAC[k]) * (c == 0 ? 1 : p.XGP[k][c]);
        EXPECT_NEAR(gauss[0], scale, MOMENT_ERROR * scale);
        for (int c = 1; c <= 3; ++c)
            EXPECT_NEAR(gauss[c], scale * p.XCT[c], MOMENT_ERROR * scale);
        for (int k = 1; k <= 4; ++k)
            EXPECT_NEAR(p.SIDE[k], std::hypot(p.XIV[k % 4 + 1] - p.XIV[k], p.ETV[k % 4 + 1] - p.ETV[k]),
                        1e-6);
        for (std::size_t k = 0; k < 4; ++k)
            EXPECT_EQ(p.SIDE[k + 1] == 0, corners[k] == corners[(k + 1) % 4]);
        EXPECT_EQ(list.list_text().find("Warning") != std::string::npos, corners == DART);
        for (int n = 1; n <= 13; ++n) {
            const double exact = MOMENT_FACTOR[n] * polygon_moment(p, POWER_A[n], POWER_B[n]);
            EXPECT_NEAR(p.PMOM[n], exact, 2 * MOMENT_ERROR * scale) << "moment " << n;
        }
    }
}

TEST(Pangeo, FrameIsRightHandedAndFlattensAWarpedPanel) {
    for (const Corners &corners : {UNIT_SQUARE, LOOKS_DOWN, SKEWED}) {
        const Panel panel = make(corners).p;
        const auto &E = panel.TRM;
        for (int r = 1; r <= 3; ++r)
            for (int q = 1; q <= 3; ++q)
                EXPECT_NEAR(E[r][1] * E[q][1] + E[r][2] * E[q][2] + E[r][3] * E[q][3], r == q ? 1 : 0, 3e-7);
        for (int c = 1; c <= 3; ++c) {
            const int d = c % 3 + 1, e = d % 3 + 1;
            EXPECT_NEAR(E[1][d] * E[2][e] - E[1][e] * E[2][d], E[3][c], 1e-6);
        }
    }
    EXPECT_EQ(make(UNIT_SQUARE).p.TRM[3][3], 1);
    EXPECT_EQ(make(LOOKS_DOWN).p.TRM[3][3], -1);
    EXPECT_EQ(make(LOOKS_DOWN).p.TRM[1][1], 1) << "the first axis is the same from both sides";
    const Panel p = make(SKEWED).p;
    // The vertices lie on both sides of the plane through their mean, at equal distance.
    double height = 0;
    for (int i = 0; i < 4; ++i)
        for (int c = 1; c <= 3; ++c)
            height += p.TRM[3][c] * (SKEWED[i][c - 1] - p.XCT[c]);
    EXPECT_NEAR(height, 0, 1e-6);
}

TEST(Pangeo, BadShapes) {
    struct Case {
        Corners corners;
        Status status;
        const char *line;
    };
    const Corners tiny = scaled(UNIT_SQUARE, 3.16e-6); // area 1e-11
    const Corners point = {{{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}}};
    const Corners line = {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}};
    const char *small = "  Error: panel area is less than 1.E-10 for panel I=7";
    const Case cases[] = {
        {DART, Status::ok, "  Warning: panel side is convex, panel I=7"},
        {BOW_TIE, Status::failed, "  Error: two sides intersect on panel I=7"},
        {tiny, Status::failed, small},
        {point, Status::failed, small},
        {line, Status::failed, small},
    };
    for (const Case &c : cases) {
        const RunFolder list;
        EXPECT_EQ(make(c.corners).status, c.status) << c.line;
        EXPECT_EQ(list.count(c.line), 1) << c.line << list.list_text();
    }
}

TEST(Pangeo, SizeScales) {
    const Corners square = scaled(UNIT_SQUARE, 3);
    const Panel area = make(square, 0).p, diagonal = make(square, 1).p;
    EXPECT_EQ(area.PSIZ[1], 1);
    EXPECT_FLOAT_EQ(area.PSIZ[2], 9);
    EXPECT_FLOAT_EQ(diagonal.PSIZ[1], 3 / std::sqrt(2.0f));
    EXPECT_FLOAT_EQ(diagonal.PSIZ[2], 18);
}

TEST(Pangeo, PowersOfATinyCoordinateVanish) {
    // A triangle with a vertex almost straight above its centroid: cubes of what remains would be denormal.
    const Corners corners = {{{1, -1, 0}, {-1, -1, 0}, {1e-20, 2, 0}, {1e-20, 2, 0}}};
    const Panel p = make(corners).p;
    for (int n = 1; n <= 13; ++n)
        EXPECT_TRUE(p.PMOM[n] == 0 || std::isnormal(p.PMOM[n])) << n;
}

} // namespace
