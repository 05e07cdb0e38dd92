// Truth: section loads of a barge in closed form; the equation of motion, which leaves nothing ahead of the
// bow; the run-up on a cylinder by its series; the forces of the run from the pressures of the panels.
#include "cylinder_series.hpp"
#include "free_body.hpp"
#include "post/panels.hpp"
#include "post/point_waves.hpp"
#include "post/section_loads.hpp"
#include "post/waterline.hpp"

namespace {

constexpr double LENGTH = 2, BEAM = 0.5, DRAUGHT = 0.25, DENSITY = 1000;

SolvedRun barge(const char *wave, int n, int IQUAD) {
    Pot pot;
    pot.PER = wave;
    pot.IQUAD = IQUAD;
    pot.ILOG = pot.ISOR = 1;
    pot.NBETA = 2;
    pot.BETA = "0 40";
    return solve_mesh("box --length 2 --beam 0.5 --draft 0.25 --nu " + std::to_string(n) + " --nv 2 --nw 2",
                      pot);
}

std::vector<SectionLoad> loads_of(const P2fFile &p, int b, Motions xi, const std::vector<MassPart> &parts,
                                  const std::vector<double> &stations) {
    std::vector<SectionLoad> loads;
    std::string error;
    EXPECT_TRUE(form_section_loads(p, 1, b, xi, scales_of(p, DENSITY), {1, parts, stations}, loads, error))
        << error;
    return loads;
}

constexpr double STATIONS[] = {-1.1, -0.73, -0.2, 0.1, 0.55, 1.01};
std::vector<double> stations() {
    return {std::begin(STATIONS), std::end(STATIONS)};
}

// Two halves of unlike mass: the shear is the integral of weight less buoyancy, the bending moment its
// integral and what the pressure on the stern adds, about the waterline.
TEST(SectionLoads, OfABargeInCalmWater) {
    const SolvedRun run = barge("0.2", 4, 0);
    const double g = scales_of(run.p2f, DENSITY).gravity,
                 buoyancy = DENSITY * g * BEAM * DRAUGHT; // per length
    const double heavy = 1.2 * buoyancy, light = 0.8 * buoyancy;
    const std::vector<SectionLoad> loads =
        loads_of(run.p2f, 1, {}, {{heavy / g, -1, 0}, {light / g, 0, 1}}, stations());
    const double size = buoyancy * LENGTH;
    for (const SectionLoad &load : loads) {
        const double x = std::clamp(load.station, -1.0, 1.0);
        const double aft = std::min(x, 0.0) + 1, fore = std::max(x, 0.0);
        const double shear = (heavy - buoyancy) * aft + (light - buoyancy) * fore;
        // About y, of upward forces at x' behind the station at x: (x - x') times the force.
        const double bending = (heavy - buoyancy) * aft * (load.station - (std::min(x, 0.0) - 1) / 2) +
                               (light - buoyancy) * fore * (load.station - fore / 2);
        EXPECT_NEAR(load.calm[2], shear, 1e-5 * size) << load.station;
        const bool within = load.station > -1 && load.station < 1;
        const double stern = within ? DENSITY * g * BEAM * std::pow(DRAUGHT, 3) / 3 : 0;
        EXPECT_NEAR(load.calm[4], bending + stern, 1e-5 * size) << load.station;
        for (const std::size_t c : {1u, 3u, 5u})
            EXPECT_NEAR(load.calm[c], 0, 1e-5 * size) << load.station;
    }
}

// The pressures of the incident wave alone on the barge at rest: a long wave that the barge does not disturb.
TEST(SectionLoads, OfTheUndisturbedWave) {
    SolvedRun run = barge("0.4", 20, 0);
    P2fFile &p = run.p2f;
    const double K = static_cast<double>(p.WVNH(1)), weight = DENSITY * scales_of(p, DENSITY).gravity;
    for (int s = 1; s <= p.NSYMR; ++s)
        for (int J = 1; J <= p.NEQN; ++J) {
            const double a = K * static_cast<double>(p.XCT(1, J));
            const c64 part = p.ICLS[s] == 1   ? c64(std::cos(a))
                             : p.ICLS[s] == 2 ? c64(0, -std::sin(a))
                                              : c64(0);
            p.PHID(J, 1, s, 1) = c32(part * std::exp(K * static_cast<double>(p.XCT(3, J))));
        }
    const c64 i(0, 1);
    for (const SectionLoad &load : loads_of(p, 1, {}, {}, stations())) {
        const double x = std::clamp(load.station, -1.0, 1.0);
        // The integral of exp(-i K x') on the bottom from the stern to x, and that of (x - x') times it.
        const auto first = [&](double at) { return std::exp(-i * K * at) / (-i * K); };
        const auto second = [&](double at) {
            return (load.station - at) * first(at) + std::exp(-i * K * at) / (K * K) * -1.0;
        };
        const double bottom = weight * BEAM * std::exp(-K * DRAUGHT), size = weight * BEAM * LENGTH;
        EXPECT_LT(std::abs(load.wave[2] + bottom * (first(x) - first(-1))), 1e-3 * size) << load.station;
        // The pressure on the stern, and on the bow once it is behind the station, bends as well.
        const double lever = (1 - std::exp(-K * DRAUGHT) * (1 + K * DRAUGHT)) / (K * K);
        const c64 ends = weight * BEAM * lever *
                         (std::exp(i * K) * (load.station > -1 ? 1.0 : 0.0) -
                          std::exp(-i * K) * (load.station > 1 ? 1.0 : 0.0));
        EXPECT_LT(std::abs(load.wave[4] - (-bottom * (second(x) - second(-1)) + ends)), 2e-3 * size)
            << load.station;
    }
}

// What the parts make of the equation of motion is 0 ahead of the bow, and the loads elsewhere are not.
TEST(SectionLoads, EndWithNothing) {
    const SolvedRun run = barge("1.1", 5, 1);
    const std::vector<MassPart> parts = {{DENSITY * LENGTH * BEAM * DRAUGHT, -1, 1, 0, 0, 0.1, 0.05}};
    Mass M = mass_matrix(parts);
    for (auto &row : M)
        for (double &value : row)
            value /= DENSITY;
    Array<c64, 2> xi;
    free_motions(run, 1, xi, M);
    for (int b = 1; b <= 2; ++b) {
        const std::vector<SectionLoad> loads = loads_of(run.p2f, b, xi.view(), parts, stations());
        std::array<double, 6> size{};
        for (const SectionLoad &load : loads)
            for (std::size_t c = 0; c < 6; ++c)
                size[c] = std::max(size[c], std::abs(load.wave[c]));
        for (std::size_t c = 0; c < 6; ++c) {
            if (b == 1 && c != 0 && c != 2 && c != 4)
                continue; // head waves
            EXPECT_GT(size[c], 1e-4 * DENSITY) << c;
            EXPECT_LT(std::abs(loads.back().wave[c]), 2e-4 * size[c]) << c;
            EXPECT_EQ(loads.front().wave[c], 0.0) << c;
        }
    }
}

// The sums of the panels' pressures are the forces of the run, of every load.
TEST(Panels, HaveThePressuresOfTheForces) {
    const SolvedRun run = barge("1.1", 5, 0);
    const P2fFile &p = run.p2f;
    const PanelKinds kinds(p);
    const SurfaceGradient gradient(p, kinds);
    const Scales scales = scales_of(p, DENSITY);
    const std::vector<Image> images = images_of(p);
    Array<c64, 2> xi;
    free_motions(run, 1, xi);
    const auto force = [&](const PanelLoad &load, int mode) {
        PanelValues values;
        std::string error;
        EXPECT_TRUE(form_panels(p, 1, xi.view(), load, scales, gradient, values, error)) << error;
        c64 sum = 0;
        for (std::size_t g = 0; g < images.size(); ++g)
            for (int J = 1; J <= p.NEQN; ++J)
                sum += static_cast<double>(p.PMOM(1, J)) * static_cast<double>(p.VEL(mode, J)) *
                       mode_parity(p, mode, images[g]) * values.pressure(J, static_cast<int>(g) + 1);
        return sum;
    };
    const double omega = omega_of(p, 1), unit = DENSITY * scales.gravity;
    const c64 heave = omega * omega * DENSITY * c64(run.c.A(3, 3, 1), -run.c.B(3, 3, 1));
    EXPECT_LT(std::abs(force({PanelLoad::Kind::mode, 3}, 3) - heave), 1e-5 * unit);
    const c64 X = unit * c64(run.c.X(5, 2, 1));
    EXPECT_LT(std::abs(force({PanelLoad::Kind::diffraction, 2}, 5) - X), 1e-5 * unit);
    // With the depth change of the panels the force is that of the mass.
    const double V = static_cast<double>(p.VOL(3, 1));
    const c64 inertia = -omega * omega * DENSITY * V * xi(3, 2);
    EXPECT_LT(std::abs(force({PanelLoad::Kind::total, 2, true}, 3) - inertia), 1e-4 * unit);
}

TEST(Waterline, RunsUpACylinderAsTheSeriesHasIt) {
    const double K = 1.2, depth = 1.5;
    Pot pot;
    pot.ISOR = pot.ILOG = 1;
    pot.HBOT = "1.5";
    pot.PER = std::to_string(K * std::tanh(K * depth));
    double last = 1;
    for (const int n : {6, 12}) {
        const P2fFile p = solve_mesh("cylinder --radius 1 --draft 1.5 --standing --nu " + std::to_string(n) +
                                         " --nv " + std::to_string(5 * n / 3),
                                     pot)
                              .p2f;
        const SurfaceGradient gradient(p, PanelKinds(p));
        HullState state;
        std::string error;
        ASSERT_TRUE(form_hull_state(p, 1, 1, {}, Part::total, {}, state, error)) << error;
        const std::vector<WaterlineSide> sides = waterline_sides(p);
        EXPECT_EQ(sides.size(), static_cast<std::size_t>(4 * n));
        double worst = 0, size = 0;
        for (const WaterlineSide &side : sides) {
            const c64 truth = series::wave(K, 1, std::atan2(side.middle[1], side.middle[0]));
            worst = std::max(
                worst, std::abs(side_elevation(p, gradient, state, side, deep_wave_number(p, 1)) - truth));
            size = std::max(size, std::abs(truth));
        }
        EXPECT_LT(worst / size, 0.4 * last);
        last = worst / size;

        // Points of the body at any height have the wave beneath them, where there is water.
        CaseFile file = plain_case(p);
        file.points = {
            {"ahead", 1, {-1.6, 0.4, 3}}, {"behind", 1, {1.4, 0.9, -1}}, {"on deck", 1, {0.3, 0.2, 2}}};
        Array<c64, 3> held;
        ASSERT_TRUE(held.alloc(p.NMODES, p.NBETA, p.NPER));
        const PointWaves waves = form_point_waves(p, file, held);
        EXPECT_EQ(waves.none, "");
        for (int k = 1; k <= 2; ++k) {
            const Vec3 &at = file.points[static_cast<std::size_t>(k - 1)].at;
            const c64 truth = series::wave(K, std::hypot(at[0], at[1]), std::atan2(at[1], at[0]));
            EXPECT_NEAR(std::abs(waves.elevation(k, 1, 1) - truth), 0, 0.04 * 36 / (n * n)) << k;
        }
        EXPECT_TRUE(std::isnan(waves.elevation(3, 1, 1).real()));
    }
    EXPECT_LT(last, 0.02);
}

} // namespace
