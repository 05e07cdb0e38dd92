// Truth: long waves that a body follows; equations of two modes by hand; one body given as two; spectra whose
// moments are known.
#include "post/incident.hpp"
#include "post/spectra.hpp"
#include "post_run.hpp"

namespace {

constexpr const char *BOX = "box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3";
constexpr double PI = 3.14159265358979;

TEST(Motions, FollowLongWaves) {
    const double K = 2 * PI / 100; // a wave of fifty lengths
    // A flat barge follows the level; a deep one has its own inertia in the way.
    const PostRun box = post_run("box --length 2 --beam 1.2 --draft 0.05 --nu 8 --nv 6 --nw 1",
                                 std::to_string(K), 1, "0 90", 2);
    const Array<c64, 3> xi = box.motions("[[body]]\nradii = [0.4, 0.5, 0.5]\n");
    constexpr double PERCENT = 0.01;
    EXPECT_NEAR(std::abs(xi(3, 1, 1) - 1.0), 0, PERCENT);
    // The slope of exp(-i K x) is -i K; pitch lowers the end x > 0.
    EXPECT_NEAR(std::abs(xi(5, 1, 1) / c64(0, K) - 1.0), 0, PERCENT);
    EXPECT_NEAR(std::abs(xi(4, 2, 1) / c64(0, -K) - 1.0), 0, PERCENT);
    // Along the circles of the water, ahead under the crest; pitch and edges take part.
    EXPECT_NEAR(std::abs(xi(1, 1, 1) - c64(0, -1)), 0, 3 * PERCENT);
    // A point at the end moves with the level there.
    const CasePoint end{"end", 1, {1, 0, 0}};
    const std::array<c64, 3> moves =
        point_motion(box.p2f(), end, View<const c64, 1>(&xi(1, 1, 1), {Range(6)}));
    EXPECT_NEAR(std::abs(moves[2] - incident_elevation(box.p2f(), end, 1, 1)), 0,
                K * K / 2); // what the level is bent
}

TEST(Motions, OfASpringMountedBodyAreThoseOfItsTwoEquations) {
    const PostRun box = post_run(BOX, "0.6 1.4", 2, "0", 1);
    const std::string text = "[[body]]\nmass = 1000\ncentre = [0, 0, -0.1]\nradii = [0.4, 0.5, 0.6]\n"
                             "fixed = ['surge', 'sway', 'roll', 'yaw']\n"
                             "[[spring]]\nat = [0.8, 0.3, -0.2]\nstiffness = [0, 0, 5e4, 0, 0, 0]\n"
                             "damping = [0, 0, 2e3, 0, 0, 0]\n";
    const Array<c64, 3> xi = box.motions(text);
    const double rg = RHO * box.scales.gravity;
    for (int t = 1; t <= 2; ++t) {
        const double w = omega_of(box.p2f(), t);
        const c64 spring = c64(5e4, w * 2e3), zero = 0;
        const c64 a = -w * w * (1000 + box.R.A(3, 3, t)) + c64(0, w) * box.R.B(3, 3, t) + rg * 2.4 + spring;
        const c64 b = -0.8 * spring; // pitch lowers the place by 0.8
        const double I = 1000 * (0.25 + 0.01), C = rg * (1.2 * 8 / 12 - 1.2 * 0.25) + 1000 * 9.80665 * 0.1;
        const c64 d = -w * w * (I + box.R.A(5, 5, t)) + c64(0, w) * box.R.B(5, 5, t) + C + 0.64 * spring;
        const c64 X = box.X.pressure(3, 1, t), Y = box.X.pressure(5, 1, t), det = a * d - b * b;
        EXPECT_NEAR(std::abs(xi(3, 1, t) - (d * X - b * Y) / det), 0, 1e-5) << t; // rounding of vertices
        EXPECT_NEAR(std::abs(xi(5, 1, t) - (a * Y - b * X) / det), 0, 1e-5) << t;
        EXPECT_EQ(xi(1, 1, t), zero);
    }
}

TEST(NaturalPeriods, OfABoxAreThoseOfItsWaterplaneAndMetacentre) {
    const PostRun box = post_run(BOX, "0.3 0.6 0.9 1.2 1.5 1.9 2.5", 7, "0", 1);
    const double m = RHO * 1.2, g = box.scales.gravity, zg = -0.1;
    const std::vector<NaturalMode> modes = box.natural("[[body]]\ncentre = [0, 0, -0.1]\nradii = [0.4, 0.5, "
                                                       "0.6]\nfixed = ['sway', 'surge', 'yaw', 'pitch']\n"
                                                       "critical = {roll = 0.05}\n");
    ASSERT_EQ(modes.size(), 2u);
    for (const NaturalMode &mode : modes) {
        const int k = std::abs(mode.shape[2]) > 0.5 ? 3 : 4;
        const Bracket at = bracket_of(box.p2f(), mode.omega);
        const double GM = 1.44 / 6 - 0.25 - zg, mass = k == 3 ? m : m * (0.16 + zg * zg),
                     C = k == 3 ? RHO * g * 2.4 : m * g * GM;
        EXPECT_FALSE(mode.outside);
        EXPECT_NEAR(mode.omega, std::sqrt(C / (mass + at.of(box.R.A, k, k))), 1e-4 * mode.omega) << k;
        const double radiated = at.of(box.R.B, k, k) / (2 * std::sqrt(C * (mass + at.of(box.R.A, k, k))));
        EXPECT_NEAR(mode.damping, radiated + (k == 4 ? 0.05 : 0), 1e-4) << k;
    }
}

TEST(NaturalPeriods, OfMooredSurgeAreOutsideTheRunAndSaySo) {
    const PostRun box = post_run(BOX, "0.3 0.6", 2, "0", 1);
    const std::vector<NaturalMode> modes =
        box.natural("[[spring]]\nstiffness = [100, 0, 0, 0, 0, 0]\n[[body]]\nfixed = ['sway', 'pitch', "
                    "'roll', 'yaw', 'heave']\n");
    ASSERT_EQ(modes.size(), 1u);
    EXPECT_TRUE(modes[0].outside);
    EXPECT_NEAR(modes[0].omega, std::sqrt(100 / (RHO * 1.2 + box.R.A(1, 1, 1))), 1e-6);
}

// Two hulls along y, as one body or as two that a stiff spring joins.
TEST(JoinedBodies, MoveAsTheOneBodyOfBoth) {
    const std::string hull =
        "box --length 2 --beam 0.5 --draft 0.4 --nu 3 --nv 2 --nw 2 --part full --offset 0 ";
    Pot pot;
    pot.NPER = 3;
    pot.PER = "0.4 0.9 1.6";
    pot.BETA = "35";
    const auto panels = [&](const CaseFolder &folder, const char *y) {
        make_mesh(folder, hull + y + " 0", "part.gdf");
        std::string text = folder.read("part.gdf");
        for (int line = 0; line < 4; ++line)
            text.erase(0, text.find('\n') + 1);
        return text;
    };
    const CaseFolder one, two;
    prepare(one, pot);
    prepare(two, pot);
    one.write("run.gdf", "both\n1 9.80665\n0 0\n 128\n" + panels(one, "0.6") + panels(one, "-0.6"));
    make_mesh(two, hull + "0 0", "hull.gdf");
    two.write("run.gdf",
              "two\n0 9.80665\n2\nhull.gdf\n0 0.6 0 0\n1 1\n1 1 1 1 1 1\nhull.gdf\n0 -0.6 0 180\n1 1\n"
              "1 1 1 1 1 1\n");
    const PostRun whole(solved(one)), parts(solved(two));
    // Each hull of 400 kg with its own inertia; of both, that and the distance of the centres.
    const Array<c64, 3> xi = whole.motions("[[body]]\nmass = 800\ncentre = [0, 0, 0]\nradii = [" +
                                           std::to_string(std::sqrt(0.04 + 0.36)) + ", 0.6, " +
                                           std::to_string(std::sqrt(0.36 + 0.36)) + "]\n");
    const std::string half = "mass = 400\ncentre = [0, 0, 0]\nradii = [0.2, 0.6, 0.6]\n";
    const double k = 1e9; // 1e4 times what the water gives
    std::ostringstream joint;
    joint << "[[spring]]\nbody = 2\nto = 1\nstiffness = [" << k;
    for (int i = 1; i < 6; ++i)
        joint << ", " << k;
    const Array<c64, 3> eta = parts.motions("[[body]]\n" + half + "[[body]]\n" + half + joint.str() + "]\n");
    constexpr double STIFF = 2e-4; // water over spring
    for (int t = 1; t <= 3; ++t) {
        const auto at = [&](const PostRun &run, const Array<c64, 3> &motion, int body, const Vec3 &place) {
            return point_motion(run.p2f(), {"", body, place},
                                View<const c64, 1>(&motion(1, 1, t), {Range(run.p2f().NMODES)}));
        };
        const auto a = at(whole, xi, 1, {0.7, 0.6, 0.2}), b = at(parts, eta, 1, {0.7, 0, 0.2}),
                   c = at(whole, xi, 1, {0.7, -0.6, 0.2}), d = at(parts, eta, 2, {-0.7, 0, 0.2});
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(std::abs(a[i] - b[i]), 0, STIFF) << t << i;
            EXPECT_NEAR(std::abs(c[i] - d[i]), 0, STIFF) << t << i;
        }
        EXPECT_GT(std::abs(a[2]), 0.1);
    }
}

// An extra mode that is heave, with its mass and stiffness.
TEST(ExtraModes, MoveAsTheRigidModeThatTheyAre) {
    const CaseFolder folder;
    Pot pot;
    pot.PER = "0.9";
    pot.BETA = "20";
    prepare(folder, pot, "NEWMDS=1\n");
    make_mesh(folder, BOX);
    folder.solve(); // leaves the panels
    std::istringstream pre(folder.read("run.pre"));
    std::string line, values;
    int panels = 0;
    for (int k = 0; std::getline(pre, line); ++k) {
        double number[7] = {};
        std::istringstream in(line);
        for (int c = 0; k >= 2 && c < 7; ++c)
            in >> number[c];
        if (k >= 2) {
            values += std::to_string(number[6]) + "\n"; // n3
            ++panels;
        }
    }
    std::ostringstream mod;
    mod << "heave\nagain\n1 1 " << panels << "\n1\n3\n" << values;
    for (int i = 1; i <= 7; ++i)
        mod << "0 0 " << (i == 7 ? 2.4 : 0) << " 0 0 0 " << (i == 3 || i == 7 ? 2.4 : 0)
            << "\n"; // waterplane area
    folder.write("run.mod", mod.str());
    const PostRun box(solved(folder));
    ASSERT_EQ(box.p2f().NMODES, 7);
    std::string mass = "[[body]]\nmass_matrix = [";
    for (int i = 1; i <= 7; ++i) {
        mass += "[";
        for (int j = 1; j <= 7; ++j)
            mass += (i == j || (i == 3 && j == 7) || (i == 7 && j == 3) ? "1230" : "0") +
                    std::string(j < 7 ? ", " : "], ");
    }
    mass += "]\n";
    const auto heave = box.motions(mass + "fixed = ['7']\n"),
               extra = box.motions(mass + "fixed = ['heave']\n");
    constexpr double DIGITS = 1e-4; // of the MOD file
    EXPECT_GT(std::abs(heave(3, 1, 1)), 0.1);
    EXPECT_NEAR(std::abs(heave(3, 1, 1) - extra(7, 1, 1)), 0, DIGITS);
    // Both at once: nothing tells them apart.
    Array<c64, 3> xi;
    std::string error;
    EXPECT_FALSE(form_motions(box.p2f(), box.system(mass), box.R, box.X.pressure, xi, error));
    EXPECT_NE(error.find("singular"), std::string::npos) << error;
    EXPECT_LT(relative_difference(box.p2f(), box.X.haskind, box.X.pressure, 7, 1), 0.1);
}

TEST(Spectra, HaveTheirMomentsAndSpreading) {
    std::string headings, waves;
    for (int b = 0; b < 12; ++b)
        headings += std::to_string(30 * b) + " ";
    for (int t = 1; t <= 60; ++t)
        waves += std::to_string(0.1 * t) + " ";
    const CaseFolder folder;
    Pot pot;
    pot.NPER = 60;
    pot.PER = waves;
    pot.NBETA = 12;
    pot.BETA = headings;
    prepare(folder, pot, "IPERIO=2\n");
    make_mesh(folder, "hemisphere --nu 1 --nv 1");
    const SolvedRun run = solved(folder);
    for (const auto &[type, Tz] : {std::pair("pierson-moskowitz", 0.7104), std::pair("jonswap", 0.7775)}) {
        const CaseSpectrum sea{type, 4, 8, 3.3, 40, 6, 3, {}};
        CaseSpectrum of = sea;
        of.gamma = std::string(type) == "jonswap" ? 3.3 : 1;
        const WaveSpectrum spectrum(of);
        const std::vector<double> shares = heading_shares(run.p2f, of);
        double sum = 0, mean = 0;
        for (int b = 0; b < 12; ++b) {
            sum += shares[static_cast<std::size_t>(b)];
            mean += shares[static_cast<std::size_t>(b)] * std::cos((30 * b - 40) * PI / 180);
        }
        EXPECT_NEAR(sum, 1, 1e-6);
        // The mean cosine of cos^2s is s/(s+1); linear pieces of 30 degrees lessen it by (sin 15 / 15)^2.
        EXPECT_NEAR(mean, 6.0 / 7 * std::pow(std::sin(PI / 12) / (PI / 12), 2), 1e-3);
        const auto m = response_moments(run.p2f, spectrum, shares, [](int, int) { return 1.0; });
        const SeaStatistics s = sea_statistics(m[0], m[1], 3);
        EXPECT_NEAR(s.significant, 2, 0.002);            // half of the height
        EXPECT_NEAR(s.zero_crossing, Tz * 8, 0.015 * 8); // the end of the frequencies takes 1 %
        EXPECT_NEAR(s.largest, s.significant * std::sqrt(std::log(3 * 3600 / s.zero_crossing) / 2), 1e-9);
        EXPECT_GT(frequencies_covered(run.p2f, spectrum), 0.999);
    }
    CaseSpectrum table{"table", 0, 0, 1, 45, 0, 3, {{1, 0}, {2, 2}, {4, 0}}};
    EXPECT_NEAR(WaveSpectrum(table).variance(), 3, 1e-12);
    EXPECT_NEAR(heading_shares(run.p2f, table)[1], 0.5, 1e-3);
}

} // namespace
