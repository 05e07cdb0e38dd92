// Sums of a second-order period. Truth: the sums as they are defined, pair by pair in double precision; the
// same body given whole, as a half or as a quarter; differences by the heading.
#include "boundary/wdd_sums.hpp"

#include "boundary/incident_wave.hpp"
#include "green/field_kernels.hpp"
#include "green/wdkern.hpp"
#include "wdd_bodies.hpp"

#include <cstring>
#include <omp.h>
#include <random>

namespace {

using c64 = std::complex<double>;
constexpr int HEADINGS = 2;
constexpr f32 NU = 1.1f;
constexpr int TYPE_OF_MODE[7] = {0, 2, 4, 1, 4, 2, 3}; // parity of rigid modes
constexpr int TYPE_OF_FLOW[4] = {0, 2, 4, 3};

// What the sums fill: sets of radiation and of diffraction, on the body (8 each at most) and on the free
// surface.
struct Case {
    RunState run;
    ThreadState thread;
    PeriodWave wave;
    std::vector<Array<c32, 2> *> radiation() {
        SecondOrder &s = thread.second;
        return {&s.W2R0, &s.W2R1, &s.W2R2, &s.W2R3, &s.FSR1, &s.FSR2, &s.FSR3};
    }
    std::vector<Array<c32, 3> *> diffraction() {
        SecondOrder &s = thread.second;
        return {&s.W2D0, &s.W2D0B, &s.W2D1, &s.W2D2, &s.W2D3, &s.FSD1, &s.FSD2, &s.FSD3, &s.FSD4, &s.FSD5};
    }
};

hulls::Quads free_surface() {
    hulls::Quads quads;
    hulls::add_patch(quads, {0.5, 0, 0}, {0.8, 0, 0}, {0, 1.1, 0}, 2, 2);
    hulls::add_patch(quads, {0, 0.4, 0}, {0.5, 0, 0}, {0, 0.7, 0}, 2, 2);
    return quads;
}

// Made-up solutions that have the parities of their modes and classes: random numbers on the quarter,
// continued to the panels of the mesh.
void make(Case &c, int ISX, int ISY, f32 HBOT) {
    RunState &run = c.run;
    wdd::make(run, hulls::quarter_box(1, 0.8, -0.5, 0, 2, false), free_surface(), ISX, ISY);
    run.opt.HBOT = HBOT;
    run.opt.IRAD = run.opt.IDIFF = 1;
    run.periods.NBETA = run.periods.NBETAM = HEADINGS;
    const int N = run.mesh.NEQN, NFSP = run.surface.NFSP, D = run.sym.NSYMD, R = run.sym.NSYMR;
    ThreadState &t = c.thread;
    SecondOrder &s = t.second;
    ASSERT_TRUE(run.periods.SINBET.alloc(HEADINGS) && run.periods.COSBET.alloc(HEADINGS) &&
                t.PHIR.alloc(N, D) && t.SRCR.alloc(N, D));
    for (int b = 1; b <= HEADINGS; ++b) {
        run.periods.SINBET(b) = std::sin(0.7f * static_cast<f32>(b));
        run.periods.COSBET(b) = std::cos(0.7f * static_cast<f32>(b));
    }
    for (Array<c32, 2> *set : c.radiation())
        ASSERT_TRUE(set->alloc(set == &s.FSR1 || set == &s.FSR2 || set == &s.FSR3 ? NFSP : N, D));
    std::size_t k = 0;
    for (Array<c32, 3> *set : c.diffraction())
        ASSERT_TRUE(set->alloc(k++ < 5 ? N : NFSP, HEADINGS, R));
    for (Array<c32, 3> *set : {&t.PHID, &t.SRCD, &s.PHID2, &s.SRCD2})
        ASSERT_TRUE(set->alloc(N, HEADINGS, R));
    f32 ratio = 1;
    if (HBOT > 0) {
        ASSERT_EQ(HGRN98(NU * HBOT, ratio, t.gstate), 0);
    }
    c.wave = frequency_variables(NU, HBOT, ratio);

    const std::vector<int> images = wdd::images_in_mesh(ISX, ISY);
    std::mt19937 random(11);
    std::uniform_real_distribution<f32> unit(-1, 1);
    const auto number = [&]() { return c32(unit(random), unit(random)); };
    const auto in_mesh = [&](int type, auto set) { // set(offset of the image, image, its sign)
        for (std::size_t g = 0; g < images.size(); ++g)
            set(static_cast<int>(g), images[g], static_cast<f32>(SGN[type][images[g]]));
    };
    const int quarter = N / static_cast<int>(images.size()), flat = NFSP / static_cast<int>(images.size());
    for (int i = 1; i <= quarter; ++i) {
        for (int mode = 1; mode <= 6; ++mode)
            for (Array<c32, 2> *set : {&t.PHIR, &t.SRCR}) {
                const c32 value = number();
                in_mesh(TYPE_OF_MODE[mode], [&](int g, int, f32 sign) {
                    (*set)(g * quarter + i, run.sym.MODPOS(mode)) = sign * value;
                });
            }
        for (Array<c32, 3> *set : {&t.PHID, &t.SRCD, &s.PHID2, &s.SRCD2, &s.W2D0, &s.W2D0B})
            for (int b = 1; b <= HEADINGS; ++b)
                for (int type = 1; type <= 4; ++type) {
                    const c32 value = number();
                    int at = 1; // class that holds this parity: the same signs in all images
                    for (int k2 = 1; k2 <= R; ++k2) {
                        bool same = true;
                        for (int g = 1; g <= run.sym.NSYMG; ++g)
                            same = same &&
                                   SGN[type][run.sym.ISYMG[g]] == SGN[run.sym.ICLS[k2]][run.sym.ISYMG[g]];
                        at = same ? k2 : at;
                    }
                    in_mesh(type,
                            [&](int g, int, f32 sign) { (*set)(g * quarter + i, b, at) += sign * value; });
                }
        for (int d = 1; d <= 3; ++d) {
            const f32 v[3] = {unit(random), unit(random), unit(random)};
            in_mesh(TYPE_OF_FLOW[d], [&](int g, int image, f32 sign) {
                run.flow.STB3(g * quarter + i, 1, d) = sign * static_cast<f32>(SGX[image]) * v[0];
                run.flow.STB3(g * quarter + i, 2, d) = sign * static_cast<f32>(SGY[image]) * v[1];
                run.flow.STB3(g * quarter + i, 3, d) = sign * v[2];
            });
        }
    }
    for (int J = 1; J <= flat; ++J)
        for (int d = 1; d <= 3; ++d) {
            const f32 v[3] = {unit(random), unit(random), unit(random)};
            in_mesh(TYPE_OF_FLOW[d], [&](int g, int image, f32 sign) {
                run.flow.STF2(g * flat + J, 1, d) = sign * static_cast<f32>(SGX[image]) * v[0];
                run.flow.STF2(g * flat + J, 2, d) = sign * static_cast<f32>(SGY[image]) * v[1];
                run.flow.STF3(g * flat + J, d) = sign * v[2];
            });
        }
}

void run_sums(Case &c) {
    ASSERT_EQ(WDDFS(c.run, c.wave, c.thread), Status::ok);
    ASSERT_EQ(WDDRHS(c.run, c.wave, c.thread), Status::ok);
}

// Rounding of sums of some hundred products of either sign, over the largest value of an array.
constexpr double ROUNDING = 2e-5;

// Parity of the k-th radiation set in column `mode`: of the class to which it moves.
int moved_class(const Symmetry &sym, std::size_t set, int c) {
    const int *const maps[4] = {nullptr, sym.WCLS1, sym.WCLS2, sym.WCLS3};
    return set >= 1 && set <= 3 ? maps[set][c] : c;
}

class Meshes : public ::testing::TestWithParam<std::tuple<int, int, f32>> {}; // ISX, ISY, HBOT

TEST_P(Meshes, HoldWhatTheWholeBodyHas) {
    const auto [ISX, ISY, HBOT] = GetParam();
    Case whole, part;
    make(whole, 0, 0, HBOT);
    make(part, ISX, ISY, HBOT);
    run_sums(whole);
    run_sums(part);
    const Symmetry &sym = part.run.sym;
    const std::vector<int> images = wdd::images_in_mesh(ISX, ISY);
    const int parts = static_cast<int>(images.size());
    // Panel of the whole mesh that is image m of panel i: images of the quarter follow each other there.
    const auto place = [&](int i, int rows, int m) {
        const int quarter = rows / parts, own = images[static_cast<std::size_t>((i - 1) / quarter)];
        int g = 1;
        while (SGX[g] != SGX[own] * SGX[m] || SGY[g] != SGY[own] * SGY[m])
            ++g;
        return (g - 1) * quarter + (i - 1) % quarter + 1;
    };
    const auto expect_equal = [&](const char *what, std::size_t set, int rows, auto in_whole, auto in_part) {
        double error = 0, largest = 0;
        for (int g = 1; g <= sym.NSYMG; ++g)
            for (int i = 1; i <= rows; ++i) {
                const c64 expected(in_whole(place(i, rows, sym.ISYMG[g])));
                error = std::max(error, std::abs(expected - c64(in_part(i, sym.ISYMG[g]))));
                largest = std::max(largest, std::abs(expected));
            }
        EXPECT_GT(largest, 0.01) << what << set;
        EXPECT_LT(error, ROUNDING * largest) << what << set;
    };
    for (std::size_t set = 0; set < 7; ++set)
        for (int c = 1; c <= sym.NSYMR; ++c)
            for (int k = 1; k <= sym.NMCLS[c]; ++k) {
                const int mode = sym.MODCLS(k, c), type = sym.ICLS[moved_class(sym, set, c)];
                const auto &a = *whole.radiation()[set], &b = *part.radiation()[set];
                expect_equal(
                    "radiation ", set, static_cast<int>(b.dim(1)),
                    [&](int i) { return a(i, whole.run.sym.MODPOS(mode)); },
                    [&](int i, int m) { return static_cast<f32>(SGN[type][m]) * b(i, sym.MODPOS(mode)); });
            }
    for (std::size_t set = 0; set < 10; ++set)
        for (int h = 1; h <= HEADINGS; ++h) {
            const auto &a = *whole.diffraction()[set], &b = *part.diffraction()[set];
            expect_equal(
                "diffraction ", set, static_cast<int>(b.dim(1)), [&](int i) { return a(i, h, 1); },
                [&](int i, int m) {
                    c32 sum = 0;
                    for (int c = 1; c <= sym.NSYMR; ++c)
                        sum += static_cast<f32>(SGN[sym.ICLS[c]][m]) * b(i, h, c);
                    return sum;
                });
        }
}
INSTANTIATE_TEST_SUITE_P(Symmetries, Meshes,
                         ::testing::Values(std::tuple{0, 1, -1.0f}, std::tuple{1, 0, -1.0f},
                                           std::tuple{1, 1, -1.0f}, std::tuple{1, 1, 0.9f}));

TEST(WddSums, SameBytesWithAnyNumberOfThreads) {
    const int threads = omp_get_max_threads();
    Case one, three;
    make(one, 0, 0, -1);
    make(three, 0, 0, -1);
    omp_set_num_threads(1);
    run_sums(one);
    omp_set_num_threads(3);
    run_sums(three);
    omp_set_num_threads(threads);
    for (std::size_t set = 0; set < 7; ++set) {
        const auto &a = *one.radiation()[set], &b = *three.radiation()[set];
        EXPECT_EQ(std::memcmp(a.data(), b.data(), static_cast<std::size_t>(a.size()) * sizeof(c32)), 0)
            << set;
    }
    for (std::size_t set = 0; set < 10; ++set) {
        const auto &a = *one.diffraction()[set], &b = *three.diffraction()[set];
        EXPECT_EQ(std::memcmp(a.data(), b.data(), static_cast<std::size_t>(a.size()) * sizeof(c32)), 0)
            << set;
    }
}

// The sums of one field point over a body without symmetry, for radiation column `col` and heading `b`.
struct PlainSums {
    c64 W2R[4], W2D[4], W2D0B, FSR[4], FSD[6];
};
PlainSums plain_sums(const Case &c, int i, int J, int col, int b) {
    const RunState &run = c.run;
    const ThreadState &t = c.thread;
    const FieldWave wave{run.opt.HBOT, NU, &t.gstate};
    const c64 I(0, 1);
    const double K = double(c.wave.W) * c.wave.F, cb = run.periods.COSBET(b), sb = run.periods.SINBET(b);
    FieldPanels body, surface;
    FieldWork on_body, on_surface;
    WdkernWork wdkern;
    KernelValues U, GP, Q, ABC;
    EXPECT_TRUE(body.make(run.mesh, 1) && surface.make(run.surface, 1) && on_body.alloc(body) &&
                on_surface.alloc(surface) && wdkern.alloc(body) && U.alloc(body, 8) && GP.alloc(body, 6) &&
                Q.alloc(surface, 3) && ABC.alloc(body, 3));
    const f32 P[4] = {0, run.mesh.XCT(1, i), run.mesh.XCT(2, i), run.mesh.XCT(3, i)};
    const f32 F[4] = {0, run.surface.XCTF(1, J), run.surface.XCTF(2, J), 0};
    EXPECT_EQ(WDKERN(P, body, wave, wdkern, U), Status::ok);
    EXPECT_EQ(PANGRD(P, body, wave, 1, WANT_HORIZONTAL | WANT_GP3, on_body, GP), Status::ok);
    EXPECT_EQ(FSFLD(F, body, wave, DZSTEP(body.n, run.mesh.PMOM), on_body, ABC), Status::ok);
    EXPECT_EQ(FSKERN(P, surface, wave, run.flow, on_surface, Q), Status::ok);
    PlainSums r{};
    for (int NP = 1; NP <= body.n; ++NP) {
        const c64 f = t.PHIR(NP, col), phi = t.PHID(NP, b, 1), phi2 = t.second.PHID2(NP, b, 1);
        const double g = run.mesh.VEL(col, NP);
        const auto u = [&](int k) { return c64(U(NP, k)); };
        r.W2R[0] += u(7) * g - u(8) * f;
        r.W2D[0] -= u(8) * phi;
        r.W2D0B -= u(8) * phi2;
        r.W2D[1] += 2 * K * cb * u(8) * phi;
        r.W2D[2] += 2 * K * sb * u(8) * phi;
        r.W2D[3] -= 2.0 * I * double(NU) * u(8) * phi2;
        for (int d = 1; d <= 3; ++d) {
            c64 T = 0;
            for (int a = 1; a <= 3; ++a)
                T += double(run.flow.STB3(NP, a, d)) * c64(GP(NP, PG_GP1 + a - 1));
            r.W2R[d] += ((d == 3 ? I : I / double(NU)) * T - u(d)) * g + u(3 + d) * f;
            r.W2D[d] += u(3 + d) * phi;
        }
        const c64 A(ABC(NP, 1)), B(ABC(NP, 2)), C(ABC(NP, 3)), source(t.SRCR(NP, col));
        const c64 s1(t.SRCD(NP, b, 1)), s2(t.second.SRCD2(NP, b, 1));
        r.FSR[1] += (g * A - f * B) / double(PI4);
        r.FSR[2] += source * A;
        r.FSR[3] += source * C;
        r.FSD[1] -= phi * B / double(PI4);
        r.FSD[2] += s1 * A;
        r.FSD[3] += s1 * C;
        r.FSD[4] += s2 * A;
        r.FSD[5] += s2 * C;
    }
    for (int j = 1; j <= surface.n; ++j)
        for (int d = 1; d <= 3; ++d) {
            const c64 a = I * (d == 3 ? double(NU) : 1.0) * c64(Q(j, d));
            r.W2R[d] += a * c64(t.second.FSR1(j, col));
            r.W2D[d] += a * c64(t.second.FSD1(j, b, 1));
        }
    const double x = F[1], y = F[2];
    const auto incident = [&](double heading) {
        return std::exp(-I * K * (x * std::cos(heading) + y * std::sin(heading)));
    };
    const double beta = std::atan2(sb, cb);
    const c64 turned = (incident(beta + 1e-5) - incident(beta - 1e-5)) / 2e-5;
    for (const auto &[k, value] : {std::pair{1, incident(beta)},
                                   {2, incident(beta)},
                                   {3, K * K * incident(beta)},
                                   {4, turned},
                                   {5, K * K * turned}})
        r.FSD[k] += value;
    return r;
}

TEST(WddSums, EqualThePlainSums) {
    for (const f32 HBOT : {-1.0f, 0.9f}) {
        Case c;
        make(c, 0, 0, HBOT);
        SecondOrder &s = c.thread.second;
        const int i = 21, J = 18, col = 5, b = 2;
        const c64 before[2] = {s.W2D0(i, b, 1), s.W2D0B(i, b, 1)};
        run_sums(c);
        PlainSums r = plain_sums(c, i, J, col, b);
        r.W2D[0] += before[0];
        r.W2D0B += before[1];
        const std::pair<c32, c64> pairs[] = {
            {s.W2R0(i, col), r.W2R[0]},  {s.W2R1(i, col), r.W2R[1]},  {s.W2R2(i, col), r.W2R[2]},
            {s.W2R3(i, col), r.W2R[3]},  {s.W2D0(i, b, 1), r.W2D[0]}, {s.W2D1(i, b, 1), r.W2D[1]},
            {s.W2D2(i, b, 1), r.W2D[2]}, {s.W2D3(i, b, 1), r.W2D[3]}, {s.W2D0B(i, b, 1), r.W2D0B},
            {s.FSR1(J, col), r.FSR[1]},  {s.FSR2(J, col), r.FSR[2]},  {s.FSR3(J, col), r.FSR[3]},
            {s.FSD1(J, b, 1), r.FSD[1]}, {s.FSD2(J, b, 1), r.FSD[2]}, {s.FSD3(J, b, 1), r.FSD[3]},
            {s.FSD4(J, b, 1), r.FSD[4]}, {s.FSD5(J, b, 1), r.FSD[5]}};
        for (std::size_t k = 0; k < std::size(pairs); ++k)
            EXPECT_LT(std::abs(c64(pairs[k].first) - pairs[k].second),
                      ROUNDING * (1 + std::abs(pairs[k].second)))
                << k;
    }
}

// Only the problems that are asked for: the incident wave is always there, what is not asked for stays as it
// was.
TEST(WddSums, OnlyWhatIsSolved) {
    Case all, diffraction, radiation;
    for (Case *c : {&all, &diffraction, &radiation})
        make(*c, 1, 1, -1);
    diffraction.run.opt.IRAD = -1;
    radiation.run.opt.IDIFF = -1;
    radiation.thread.second.W2D1.fill(7);
    const c32 before = radiation.thread.second.W2D0(1, 1, 1);
    for (Case *c : {&all, &diffraction, &radiation})
        run_sums(*c);
    EXPECT_EQ(diffraction.thread.second.W2D3(3, 1, 2), all.thread.second.W2D3(3, 1, 2));
    EXPECT_EQ(radiation.thread.second.W2R3(3, 2), all.thread.second.W2R3(3, 2));
    for (std::size_t set = 0; set < 7; ++set)
        EXPECT_EQ((*diffraction.radiation()[set])(2, 1), c32(0)) << set;
    EXPECT_EQ(radiation.thread.second.W2D1(1, 1, 1), c32(7));
    EXPECT_EQ(radiation.thread.second.W2D0(1, 1, 1), before);
    EXPECT_EQ(radiation.thread.second.FSD1(1, 1, 1), radiation.thread.second.FSD2(1, 1, 1));
    EXPECT_NE(radiation.thread.second.FSD1(1, 1, 1), c32(0));
}

} // namespace
