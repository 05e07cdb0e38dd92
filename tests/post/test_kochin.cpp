// Truth: the energy that the waves carry away, against the damping of the pressures; the Haskind relation,
// against the exciting forces of the pressures; the far field of the sources against that of the potentials.
#include "../cases/case_folder.hpp"
#include "post/kochin.hpp"

#include <numbers>

namespace {

struct Setting {
    const char *name;
    std::string coarse, fine;
    const char *depth;
    int IRR, IQUAD;
};
void PrintTo(const Setting &s, std::ostream *out) {
    *out << s.name;
}
std::string sphere(int n, const char *more = "") {
    const std::string count = std::to_string(n);
    return "hemisphere --nu " + count + " --nv " + count + more;
}
std::string barge(int n, const char *more = "") {
    return "box --length 2 --beam 1.2 --draft 0.5 --nu " + std::to_string(2 * n) + " --nv " +
           std::to_string(n) + " --nw " + std::to_string(n) + more;
}

struct Errors {
    double energy = 0, haskind = 0, sources = 0;
};

Errors errors_of(const std::string &mesh, const Setting &is) {
    Pot pot;
    pot.HBOT = is.depth;
    pot.ISOR = 1;
    pot.IQUAD = is.IQUAD;
    pot.IRR = is.IRR;
    pot.ILOG = is.IRR;
    pot.NPER = 2;
    pot.PER = "0.6 1.3";
    pot.NBETA = 2;
    pot.BETA = "30 200";
    const SolvedRun run = solve_mesh(mesh, pot);
    const P2fFile &p = run.p2f;
    Errors e;
    std::string error;
    for (int t = 1; t <= 2; ++t) {
        Kochin round, by_sources, back;
        Array<double, 2> B;
        EXPECT_TRUE(form_kochin(p, t, kochin_angles(p, t), FarFieldOf::potentials, round, error)) << error;
        EXPECT_TRUE(form_kochin(p, t, round.theta, FarFieldOf::sources, by_sources, error)) << error;
        EXPECT_TRUE(far_field_damping(p, t, round, B));
        std::vector<double> opposite;
        for (int b = 1; b <= 2; ++b)
            opposite.push_back((static_cast<double>(p.BETA(b)) + 180) * std::numbers::pi / 180);
        EXPECT_TRUE(form_kochin(p, t, opposite, FarFieldOf::potentials, back, error)) << error;
        double largest_x = 0, largest_h = 0, x_error = 0, h_error = 0, b_error = 0, largest_b = 0;
        for (int i : {1, 2, 3, 4, 5}) {
            for (int j : {1, 2, 3, 4, 5}) {
                const double of_pressure = static_cast<double>(run.c.B(i, j, t));
                b_error = std::max(b_error, std::abs(of_pressure - B(i, j)));
                largest_b = std::max(largest_b, std::abs(of_pressure));
            }
            for (int b = 1; b <= 2; ++b) {
                const c64 X(run.c.X(i, b, t));
                largest_x = std::max(largest_x, std::abs(X));
                x_error = std::max(x_error, std::abs(X - back.motion(b, i)));
            }
            for (int k = 1; k <= static_cast<int>(round.theta.size()); ++k) {
                largest_h = std::max(largest_h, std::abs(round.motion(k, i)));
                h_error = std::max(h_error, std::abs(round.motion(k, i) - by_sources.motion(k, i)));
            }
        }
        for (int k = 1; k <= static_cast<int>(round.theta.size()); ++k)
            for (int b = 1; b <= 2; ++b) {
                largest_h = std::max(largest_h, std::abs(round.scatter(k, b)));
                h_error = std::max(h_error, std::abs(round.scatter(k, b) - by_sources.scatter(k, b)));
            }
        e.energy = std::max(e.energy, b_error / largest_b);
        e.haskind = std::max(e.haskind, x_error / largest_x);
        e.sources = std::max(e.sources, h_error / largest_h);
    }
    return e;
}

class FarField : public testing::TestWithParam<Setting> {};

TEST_P(FarField, CarriesTheDampingAndTheExcitingForce) {
    const Errors coarse = errors_of(GetParam().coarse, GetParam()),
                 fine = errors_of(GetParam().fine, GetParam());
    EXPECT_LT(fine.energy, 0.01);
    EXPECT_LT(fine.haskind, 0.01);
    EXPECT_LT(fine.energy, 0.6 * coarse.energy);
    // Constant sources are of first order.
    EXPECT_LT(fine.sources, 0.06);
    EXPECT_LT(fine.sources, 0.7 * coarse.sources);
}

INSTANTIATE_TEST_SUITE_P(All, FarField,
                         testing::Values(Setting{"sphere", sphere(5), sphere(10), "0", 0, 0},
                                         Setting{"sphere_gauss", sphere(5), sphere(10), "0", 0, 1},
                                         Setting{"shallow_sphere", sphere(5), sphere(10), "1.5", 0, 1},
                                         Setting{"barge_with_lid", barge(3, " --lid"), barge(6, " --lid"),
                                                 "0", 1, 1},
                                         Setting{"barge", barge(3), barge(6), "0.9", 0, 0}),
                         testing::PrintToStringParamName());

} // namespace
