// Truth: transforms in closed form; added mass and damping of the run, which the impulse response has to give
// back.
#include "post/impulse.hpp"
#include "post/spline.hpp"
#include "post_run.hpp"

namespace {

TEST(Spline, TransformIsThatOfTheFunction) {
    std::vector<double> x, y;
    for (int k = 0; k <= 400; ++k) {
        x.push_back(0.1 * k);
        y.push_back(std::exp(-0.5 * x.back() * x.back()));
    }
    const CubicSpline spline(x, y, true);
    // Half of sqrt(2 pi) exp(-t^2/2) in the cosine; the pieces change their rule at t = 30.
    for (const double t : {0.0, 0.7, 3.0, 29.9, 30.1})
        EXPECT_NEAR(spline.transform(t).real(), 1.2533141373155 * std::exp(-t * t / 2), 3e-6) << t; // h^4
    const CubicSpline line({1, 2, 4}, {1, 2, 4}, false); // exact for x itself
    for (const double t : {0.5, 1.4, 1.6, 2.9, 3.1, 40.0}) {
        const c64 i(0, 1),
            at = (std::exp(i * 4.0 * t) * (1.0 - 4.0 * i * t) - std::exp(i * t) * (1.0 - i * t)) / (t * t);
        EXPECT_NEAR(std::abs(line.transform(t) - at), 0, 1e-12) << t;
    }
}

std::string sixty(double step) {
    std::string text;
    for (int k = 1; k <= 60; ++k)
        text += std::to_string(step * k) + " ";
    return text + "0";
}

struct Shape {
    const char *label;
    bool pair;
};
void PrintTo(const Shape &row, std::ostream *out) {
    *out << row.label;
}
class Impulse : public testing::TestWithParam<Shape> {};

TEST_P(Impulse, ResponseGivesBackTheCoefficientsOfTheRun) {
    const CaseFolder folder;
    Pot pot;
    pot.NPER = 61;
    pot.PER = sixty(0.14); // up to K = 7.2, and infinite frequency
    pot.BETA = "0";
    pot.IRR = 3;
    pot.ILOG = 1;
    prepare(folder, pot, "IPERIO=2\n");
    if (GetParam().pair)
        make_mesh(folder, "hemisphere --nu 8 --nv 8 --part half-y", "one.gdf");
    else
        make_mesh(folder, "hemisphere --nu 20 --nv 20");
    if (GetParam().pair)
        folder.write("run.gdf", "pair\n0 9.80665\n2\none.gdf\n1.6 0 0 0\n1 1\n1 1 1 1 1 1\n"
                                "one.gdf\n-1.6 0 0 0\n1 1\n1 1 1 1 1 1\n");
    const PostRun run(solved(folder));
    ImpulseResponses r;
    std::string error;
    ASSERT_TRUE(form_impulse(run.p2f(), run.scales, run.R, run.X.pressure, {}, r, error)) << error;
    ASSERT_GE(r.radiation.size(), 3u);
    constexpr double PERCENT = 0.01, LIMIT = 0.005;
    // Between two bodies B oscillates at the last frequency: what is behind it is not known.
    constexpr double INTERACTION = 0.02;
    int compared = 0;
    for (const RadiationResponse &pair : r.radiation) {
        SCOPED_TRACE(std::to_string(pair.i) + " " + std::to_string(pair.j));
        const bool own = body_of_mode(run.p2f(), pair.i) == body_of_mode(run.p2f(), pair.j);
        EXPECT_LT(pair.error_A, GetParam().pair ? INTERACTION : PERCENT);
        EXPECT_LT(pair.error_B, PERCENT);
        // Surge of the coarser pair has the error of its mesh.
        if (own && pair.i == pair.j && (pair.i % 6 == 3 || (pair.i == 1 && !GetParam().pair))) {
            ++compared;
            EXPECT_NEAR(pair.added_mass_B / pair.added_mass_run, 1, LIMIT);
        }
    }
    EXPECT_EQ(compared, 2);
    ASSERT_GE(r.exciting.size(), 2u);
    for (const ExcitingResponse &x : r.exciting)
        EXPECT_LT(x.error, PERCENT) << x.mode;
    // Times beyond what the frequencies tell, and a step that is too long for them.
    ASSERT_TRUE(form_impulse(run.p2f(), run.scales, run.R, {}, {0.5, 40}, r, error)) << error;
    ASSERT_GE(r.notes.size(), 2u);
    EXPECT_NE(r.notes[0].find("tell nothing of times beyond"), std::string::npos);
    EXPECT_NE(r.notes[1].find("too long"), std::string::npos);
    EXPECT_TRUE(r.exciting.empty());
}
INSTANTIATE_TEST_SUITE_P(Bodies, Impulse, testing::Values(Shape{"hemisphere", false}, Shape{"pair", true}));

} // namespace
