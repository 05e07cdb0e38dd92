// The second-order arrays of whole runs. Truth: differences between runs, Green's formula against the
// sources, the limit of great depth, reciprocity of forces, a turning body of revolution.
#include "drift_fields.hpp"

namespace {

using namespace drift;

// Whether the error of a coarse mesh over that of a fine one is that of the order of the panels.
void expect_order(double coarse, double fine, double least, double most) {
    EXPECT_GT(coarse, least * fine);
    EXPECT_LT(coarse, most * fine);
}
std::string hemisphere(int n) {
    return "hemisphere --part quarter --nu " + std::to_string(n) + " --nv " + std::to_string(n);
}

// Fields at five equal steps of a variable: the derivative at the middle one.
template <class Of> std::vector<Field> derivative(double step, Of of) {
    std::vector<Field> result = of(3);
    const std::vector<Field> at[4] = {of(1), of(2), of(4), of(5)};
    for (std::size_t f = 0; f < result.size(); ++f)
        for (std::size_t c = 0; c < result[f].columns.size(); ++c)
            for (std::size_t i = 0; i < result[f].columns[c].size(); ++i) {
                const auto value = [&](int k) { return std::complex<double>(at[k][f].columns[c][i]); };
                result[f].columns[c][i] =
                    c32((value(0) - 8.0 * value(1) + 8.0 * value(2) - value(3)) / (12 * step));
            }
    return result;
}
TEST(SecondOrder, SecondFieldsAreHeadingDerivatives) {
    constexpr double STEP = 2; // degrees
    for (const char *depth : {"0.0", "1.5"}) {
        Pot pot = drift_pot();
        pot.HBOT = depth;
        pot.BETA = "26 28 30 32 34";
        pot.NBETA = 5;
        const auto all = fields_of(drift_run(pot, BOX + "quarter"));
        const auto heading = [&](int b) { // the columns of one heading, the components of velocities too
            std::vector<Field> fields = all;
            for (Field &field : fields) {
                if (field.name.find("D") == std::string::npos || field.columns.size() % 5 != 0)
                    continue;
                const std::size_t parts = field.columns.size() / 5,
                                  first = parts * static_cast<std::size_t>(b - 1);
                field.columns = {field.columns.begin() + static_cast<std::ptrdiff_t>(first),
                                 field.columns.begin() + static_cast<std::ptrdiff_t>(first + parts)};
            }
            return fields;
        };
        const auto slope = derivative(STEP * 0.017453292519943295, heading);
        const auto middle = heading(3);
        for (const auto &[name, of] : {std::pair{"PHID2", "PHID"},
                                       {"SRCD2", "SRCD"},
                                       {"VELD2", "VELD"},
                                       {"FSD4", "FSD2"},
                                       {"FSD5", "FSD3"},
                                       {"W2D0B", "W2D0"}})
            EXPECT_LT(rms(named(slope, of), named(middle, name)), 1e-3) << name;
    }
}

TEST(SecondOrder, ZeroSpeedSetsAreDerivativesByFrequency) {
    constexpr double STEP = 0.02;
    const std::vector<const char *> names[2] = {{"W2R0", "PHIR"}, {"W2D0", "PHID"}};
    for (const char *depth : {"0.0", "1.5"}) {
        double error[2][2];
        for (const int fine : {0, 1}) {
            Pot pot = drift_pot();
            pot.HBOT = depth;
            pot.PER = "0.86 0.88 0.90 0.92 0.94";
            pot.NPER = 5;
            const P2fFile p = drift_run(pot, hemisphere(fine == 1 ? 8 : 4), NO_PANELS);
            const auto slope = derivative(STEP, [&](int t) { return fields_of(p, t); });
            const auto middle = fields_of(p, 3);
            for (const int k : {0, 1})
                error[fine][k] = rms(named(slope, names[k][1]), named(middle, names[k][0]));
        }
        for (const int k : {0, 1}) { // panels of half the size: second order
            EXPECT_LT(error[1][k], 1e-3) << names[k][0];
            expect_order(error[0][k], error[1][k], 2.5, 6);
        }
    }
}

// The potential on the free surface by Green's formula and by the sources.
TEST(SecondOrder, BothWaysToTheFreeSurfaceAgree) {
    double error[2][2];
    for (const int fine : {0, 1}) {
        const auto fields = fields_of(
            drift_run(drift_pot(), hemisphere(fine == 1 ? 8 : 4),
                      "a few panels\n0\n3 0\n0\n1.2 1.2 1.5 1.5 0.1 0.4 0.4 0.1\n2 2 2.5 2.5 2 2.5 2.5 2\n"
                      "0.5 0.5 1 1 3 4 4 3\n"));
        error[fine][0] = rms(named(fields, "FSR1"), named(fields, "FSR2"));
        error[fine][1] = rms(named(fields, "FSD1"), named(fields, "FSD2"));
    }
    EXPECT_LT(error[1][0], 0.06);
    EXPECT_LT(error[1][1], 0.02);
    for (const int k : {0, 1}) // panels of half the size: first order
        expect_order(error[0][k], error[1][k], 1.4, 3);
}

// Errors of the steady flows past a sphere of radius 1 (double body), as root of the sum of squares over that
// of the values: velocity on the hull; potential, gradient and second derivative on the free surface, further
// off the waterline than `gap`, where the sources are felt panel by panel; potential at the waterline.
constexpr std::size_t ERRORS = 5;
std::array<double, ERRORS> errors_of_sphere_flows(const P2fFile &p, double gap) {
    std::array<double, ERRORS> error{}, size{};
    const auto add = [&](std::size_t k, f32 value, double exact) {
        error[k] += std::pow(static_cast<double>(value) - exact, 2);
        size[k] += exact * exact;
    };
    const auto at = [](const Array<f32, 2> &points, int i) {
        return std::array<double, 4>{0, points(1, i), points(2, i), points(3, i)};
    };
    for (std::size_t d = 1; d <= 2; ++d) {
        const int column = static_cast<int>(d);
        for (int i = 1; i <= p.NEQN; ++i) {
            const auto x = at(p.XCT, i);
            const double r2 = x[1] * x[1] + x[2] * x[2] + x[3] * x[3];
            for (std::size_t a = 1; a <= 3; ++a)
                add(0, p.STB3(i, static_cast<int>(a), column), 1.5 * (x[d] * x[a] / r2 - (a == d ? 1 : 0)));
        }
        for (int u = 1; u <= p.NWLB(1); ++u)
            add(4, p.STB1(u, column), -1.5 * at(p.XCT, p.IWLP(u))[d]);
        for (int J = 1; J <= p.NFSP; ++J) {
            const auto x = at(p.XCTF, J);
            const double r = std::hypot(x[1], x[2]), r3 = std::pow(r, 3), r5 = r3 * r * r;
            if (r < 1 + gap)
                continue;
            add(1, p.STF1(J, column), -x[d] * (1 + 0.5 / r3));
            add(3, p.STF3(J, column), 1.5 * x[d] / r5);
            for (std::size_t a = 1; a <= 2; ++a)
                add(2, p.STF2(J, static_cast<int>(a), column),
                    1.5 * x[d] * x[a] / r5 - (a == d ? 0.5 : 0) / r3);
        }
    }
    for (std::size_t k = 0; k < ERRORS; ++k)
        error[k] = std::sqrt(error[k] / size[k]);
    return error;
}

TEST(SecondOrder, SteadyFlowsPastAHemisphereAreThoseOfASphere) {
    std::array<double, ERRORS> error[2];
    for (const int fine : {0, 1}) {
        Pot pot = drift_pot();
        pot.IDIFF = -1;
        const P2fFile p = drift_run(pot, hemisphere(fine == 1 ? 12 : 6));
        error[fine] = errors_of_sphere_flows(p, fine == 1 ? 0.08 : 0.16); // 0.6 sides of a hull panel
        for (int i = 1; i <= p.NEQN; ++i) { // a sphere turns without disturbance
            EXPECT_NEAR(p.STB3(i, 1, 3), p.XCT(2, i), 1e-6);
            EXPECT_NEAR(p.STB3(i, 2, 3), -p.XCT(1, i), 1e-6);
            EXPECT_NEAR(p.STB3(i, 3, 3), 0, 1e-6);
        }
    }
    const double limit[ERRORS] = {0.02, 0.01, 0.05, 0.05, 0.04};
    for (std::size_t k = 0; k < ERRORS; ++k) {
        EXPECT_LT(error[0][k], limit[k]) << k;
        EXPECT_GT(error[0][k], 1.2 * error[1][k]) << k;
    }
}

TEST(SecondOrder, DeepWaterIsTheLimitOfGreatDepth) {
    Pot deep = drift_pot(), finite = drift_pot();
    deep.HBOT = "0.0";
    finite.HBOT = "30.0";
    expect_same(drift_run(finite, BOX + "quarter"), drift_run(deep, BOX + "quarter"), 5e-3);
}

// Class of a mode.
int class_of(const P2fFile &p, int mode) {
    for (int s = 1; s <= p.NSYMR; ++s)
        for (int k = 1; k <= p.NMCLS[s]; ++k)
            if (p.MODCLS(k, s) == mode)
                return s;
    return 0;
}

// The force coefficient on mode i from mode j that is linear in the slow motion d, over the part of the hull
// that there is: the set and what the steady flow makes of the velocity (Bernoulli).
std::complex<double> slow_coefficient(const P2fFile &p, int d, int i, int j, double nu) {
    const Array<c32, 3> &set = d == 1 ? p.W2R1 : d == 2 ? p.W2R2 : p.W2R3;
    const std::complex<double> factor(0, -1.0 / (d == 3 ? 1 : nu));
    const int column = p.MODPOS(j);
    std::complex<double> sum = 0;
    for (int ip = 1; ip <= p.NEQN; ++ip) {
        std::complex<double> flow = 0;
        for (int c = 1; c <= 3; ++c)
            flow += std::complex<double>(p.STB3(ip, c, d) * p.VELR(ip, 3 * (column - 1) + c, 1));
        const std::complex<double> pressure = std::complex<double>(set(ip, column, 1)) + factor * flow;
        sum += static_cast<double>(p.PMOM(1, ip) * p.VEL(i, ip)) * pressure;
    }
    return sum;
}

// Forces of slow motion change sign when the modes change places (Timman and Newman, Journal of Ship Research
// 5, 1962).
double asymmetry(const P2fFile &p, int d, double nu) {
    const int *W = d == 1 ? p.WCLS1 : d == 2 ? p.WCLS2 : p.WCLS3;
    double mismatch = 0, size = 0;
    for (int i = 1; i <= 6; ++i) {
        for (int j = 1; j <= i; ++j) {
            if (W[class_of(p, j)] != class_of(p, i))
                continue; // zero over the whole hull
            const auto a = slow_coefficient(p, d, i, j, nu), b = slow_coefficient(p, d, j, i, nu);
            mismatch += std::norm(a + b);
            size += std::norm(a) + std::norm(b);
        }
    }
    return std::sqrt(mismatch / size);
}

TEST(SecondOrder, ForcesOfSlowMotionAreAntisymmetric) {
    const std::string meshes[2] = {" --nu 4 --nv 3 --nw 2", " --nu 6 --nv 5 --nw 4"};
    for (const char *depth : {"0.0", "1.5"}) {
        double mismatch[2][4];
        for (const int fine : {0, 1}) {
            Pot pot = drift_pot();
            pot.IDIFF = -1;
            pot.HBOT = depth;
            const std::string box = "box --length 2.4 --beam 1.4 --draft 0.7 --part quarter" + meshes[fine];
            const P2fFile p = drift_run(pot, box), other = drift_run(pot, box, NO_PANELS);
            for (int d = 1; d <= 3; ++d)
                mismatch[fine][d] = asymmetry(p, d, 0.9);
            // Without the free surface it is another problem.
            EXPECT_GT(asymmetry(other, 1, 0.9), 2.5 * mismatch[fine][1]);
            EXPECT_GT(asymmetry(other, 2, 0.9), 2.5 * mismatch[fine][2]);
        }
        for (int d = 1; d <= 3; ++d) { // panels of 0.6 the size: first order
            EXPECT_LT(mismatch[1][d], 0.08) << depth << " " << d;
            expect_order(mismatch[0][d], mismatch[1][d], 1.4, 2.8);
        }
    }
}

// A body of revolution that turns about its axis makes no steady flow. Seen from it, waves change their
// heading and modes of motion their direction, that is their frequency: a turning surge is half of each of
// two motions of neighbouring frequencies with a sway in quadrature.
TEST(SecondOrder, TurningBodyOfRevolution) {
    const std::string meshes[2] = {" --nu 4 --nv 3 --nw 2", " --nu 8 --nv 6 --nw 4"};
    const auto norm = [](const Field &field, std::size_t column) {
        double sum = 0;
        for (const c32 value : field.columns[column])
            sum += std::norm(value);
        return std::sqrt(sum);
    };
    for (const char *depth : {"0.0", "1.5"}) {
        double surge[2], roll[2], waves[2];
        for (const int fine : {0, 1}) {
            Pot pot = drift_pot();
            pot.HBOT = depth;
            const auto fields =
                fields_of(drift_run(pot, "cylinder --radius 1 --draft 1 --part quarter" + meshes[fine]));
            const Field &W2R3 = named(fields, "W2R3");
            const f32 nu = 0.9f;
            const auto error = [&](std::size_t from, std::size_t to, f32 sign) {
                Field wanted = named(fields, "PHIR");
                for (std::size_t i = 0; i < wanted.columns[to].size(); ++i)
                    wanted.columns[from][i] = c32(0, sign) * (wanted.columns[to][i] +
                                                              2 * nu * named(fields, "W2R0").columns[to][i]);
                return rms(W2R3, wanted, from, 6);
            };
            surge[fine] = error(0, 1, -1);
            EXPECT_NEAR(error(1, 0, 1), surge[fine], 1e-4);
            roll[fine] = error(3, 4, -1);
            EXPECT_NEAR(error(4, 3, 1), roll[fine], 1e-4);
            EXPECT_LT(norm(W2R3, 2), 1e-5 * norm(named(fields, "PHIR"), 2));
            waves[fine] = norm(named(fields, "W2D3"), 0) / norm(named(fields, "PHID"), 0);
        }
        EXPECT_LT(surge[1], 0.04); // panels of half the size: first order
        EXPECT_LT(roll[1], 0.11);
        EXPECT_LT(waves[1], 0.001); // second order
        expect_order(surge[0], surge[1], 1.5, 2.5);
        expect_order(roll[0], roll[1], 1.5, 2.5);
        expect_order(waves[0], waves[1], 2.5, 6);
    }
}

} // namespace
