// Whole runs for wave drift damping. Truth: the same body with and without its symmetry planes, in other
// stores, by other solvers and on other numbers of threads; the condition on the hull; differences between
// runs.
#include "base/text.hpp"
#include "case_folder.hpp"

#include <cmath>

namespace {

using Vertices = std::array<std::array<double, 2>, 4>;

// Panels of an FDF file.
std::vector<Vertices> read_fdf(const CaseFolder &folder) {
    FreeReader in;
    std::string title;
    f32 radius = 0;
    int n = 0, other = 0;
    EXPECT_TRUE(in.open((folder.path() / "run.fdf").string()) && in.line(title, 72) && in.read(radius) &&
                in.read(n, other) && in.read(other));
    std::vector<Vertices> panels(static_cast<std::size_t>(n));
    for (Vertices &panel : panels) {
        f32 xy[8];
        EXPECT_TRUE(in.read_array(xy, 8));
        for (std::size_t v = 0; v < 4; ++v)
            panel[v] = {xy[v], xy[v + 4]};
    }
    return panels;
}

// The file of these panels and their images in the planes that are not planes of symmetry any more.
void write_fdf(const CaseFolder &folder, const std::vector<Vertices> &panels, bool mirror_x, bool mirror_y) {
    std::ostringstream out;
    const std::size_t images = (mirror_x ? 2 : 1) * (mirror_y ? 2 : 1);
    out << "images\n0\n" << images * panels.size() << " 0\n0\n";
    for (const double sx : {1, -1}) {
        for (const double sy : {1, -1}) {
            if ((sx < 0 && !mirror_x) || (sy < 0 && !mirror_y))
                continue;
            for (const Vertices &panel : panels) {
                for (const std::size_t c : {0, 1}) {
                    for (std::size_t v = 0; v < 4; ++v) // an image runs the other way
                        out << (c == 0 ? sx : sy) * panel[sx * sy > 0 ? v : 3 - v][c] << ' ';
                }
                out << '\n';
            }
        }
    }
    folder.write("run.fdf", out.str());
}

Pot drift_pot() {
    Pot pot;
    pot.ISOR = 1;
    pot.PER = "0.9";
    pot.BETA = "30.0";
    return pot;
}
void prepare_drift(const CaseFolder &folder, const Pot &pot, const std::string &mesh,
                   const std::string &config = "MAXSCR=5000\nISOLVE=1\n") {
    prepare(folder, pot);
    folder.write("config.vrd", "IPERIO=3\nIWADD=1\n" + config);
    folder.write("fnames.vrd", "run.gdf\nrun.pot\n\n\nrun.fdf\n");
    make_mesh(folder, mesh);
}
const std::string CYLINDER = "cylinder --radius 1 --draft 1 --nu 4 --nv 3 --nw 2 --part ";
const std::string BOX = "box --length 2.4 --beam 1.4 --draft 0.7 --nu 4 --nv 3 --nw 2 --part ";
void run_drift(const CaseFolder &folder, P2fFile &p2f) {
    Coefficients c;
    folder.solve();
    folder.results(p2f, c);
}

// Values of an array of a period on the panels: one column of numbers for each mode and component,
// diffraction summed over the classes.
struct Field {
    std::string name;
    bool surface; // on free-surface panels, not on the hull
    std::vector<std::vector<c32>> columns;
};

template <class T> std::vector<c32> column_of(const T *values, std::int64_t n) {
    return {values, values + n};
}

void add_real(std::vector<Field> &fields, const char *name, bool surface, const auto &array) {
    Field field{name, surface, {}};
    const std::int64_t n = array.dim(1);
    for (std::int64_t c = 0; n > 0 && c < array.size() / n; ++c)
        field.columns.push_back(column_of(array.data() + c * n, n));
    fields.push_back(field);
}
// Columns by mode, each of `parts` components.
void add_radiation(std::vector<Field> &fields, const P2fFile &p, const char *name, const Array<c32, 3> &array,
                   int t, int parts = 1) {
    const std::int64_t n = array.dim(1);
    Field field{name, n != p.NEQN, {}};
    for (int mode = 1; mode <= 6; ++mode)
        for (int a = 1; a <= parts; ++a)
            field.columns.push_back(column_of(&array(1, parts * (p.MODPOS(mode) - 1) + a, t), n));
    fields.push_back(field);
}
void add_diffraction(std::vector<Field> &fields, const P2fFile &p, const char *name,
                     const Array<c32, 4> &array, int t) {
    const std::int64_t n = array.dim(1);
    Field field{name, n != p.NEQN, {}};
    for (std::int64_t c = 1; c <= array.dim(2); ++c) {
        std::vector<c32> sum(static_cast<std::size_t>(n));
        for (int s = 1; s <= p.NSYMR; ++s)
            for (std::int64_t i = 1; i <= n; ++i)
                sum[static_cast<std::size_t>(i - 1)] += array(i, c, s, t);
        field.columns.push_back(sum);
    }
    fields.push_back(field);
}

std::vector<Field> fields_of(const P2fFile &p, int t = 1) {
    std::vector<Field> fields;
    Field waterline{"STB1", false, {{}, {}}};
    for (int d = 1; d <= 2; ++d) {
        std::vector<c32> &column = waterline.columns[static_cast<std::size_t>(d - 1)];
        column.resize(static_cast<std::size_t>(p.NEQN));
        for (int u = 1; u <= p.NWLB(1); ++u)
            column[static_cast<std::size_t>(p.IWLP(u) - 1)] = p.STB1(u, d);
    }
    fields.push_back(waterline);
    add_real(fields, "STB2", false, p.STB2);
    add_real(fields, "STB3", false, p.STB3);
    add_real(fields, "STF1", true, p.STF1);
    add_real(fields, "STF2", true, p.STF2);
    add_real(fields, "STF3", true, p.STF3);
    for (const auto &[name, array] : {std::pair{"PHIR", &p.PHIR},
                                      {"SRCR", &p.SRCR},
                                      {"W2R0", &p.W2R0},
                                      {"W2R1", &p.W2R1},
                                      {"W2R2", &p.W2R2},
                                      {"W2R3", &p.W2R3},
                                      {"FSR1", &p.FSR1},
                                      {"FSR2", &p.FSR2},
                                      {"FSR3", &p.FSR3}})
        add_radiation(fields, p, name, *array, t);
    add_radiation(fields, p, "VELR", p.VELR, t, 3);
    for (const auto &[name, array] : {std::pair{"PHID", &p.PHID},
                                      {"SRCD", &p.SRCD},
                                      {"VELD", &p.VELD},
                                      {"PHID2", &p.PHID2},
                                      {"SRCD2", &p.SRCD2},
                                      {"VELD2", &p.VELD2},
                                      {"W2D0", &p.W2D0},
                                      {"W2D0B", &p.W2D0B},
                                      {"W2D1", &p.W2D1},
                                      {"W2D2", &p.W2D2},
                                      {"W2D3", &p.W2D3},
                                      {"FSD1", &p.FSD1},
                                      {"FSD2", &p.FSD2},
                                      {"FSD3", &p.FSD3},
                                      {"FSD4", &p.FSD4},
                                      {"FSD5", &p.FSD5}})
        add_diffraction(fields, p, name, *array, t);
    return fields;
}

// For each centroid of `few` the nearest of `many`, from 0.
std::vector<std::size_t> matches(const Array<f32, 2> &few, const Array<f32, 2> &many) {
    std::vector<std::size_t> place;
    for (int i = 1; i <= few.dim(2); ++i) {
        std::int64_t best = 1;
        const auto squared = [&](std::int64_t j) {
            f32 sum = 0;
            for (int c = 1; c <= 3; ++c)
                sum += (few(c, i) - many(c, j)) * (few(c, i) - many(c, j));
            return sum;
        };
        for (std::int64_t j = 1; j <= many.dim(2); ++j)
            best = squared(j) < squared(best) ? j : best;
        EXPECT_LT(squared(best), 1e-8f);
        place.push_back(static_cast<std::size_t>(best - 1));
    }
    return place;
}

// Largest difference of each array on the panels of `few`, as part of its largest value.
void expect_same(const P2fFile &few, const P2fFile &many, double tolerance) {
    const auto a = fields_of(few), b = fields_of(many);
    const auto hull = matches(few.XCT, many.XCT), surface = matches(few.XCTF, many.XCTF);
    for (std::size_t f = 0; f < a.size(); ++f) {
        const auto &place = a[f].surface ? surface : hull;
        double worst = 0, largest = 0;
        ASSERT_EQ(a[f].columns.size(), b[f].columns.size()) << a[f].name;
        for (std::size_t c = 0; c < a[f].columns.size(); ++c) {
            for (std::size_t i = 0; i < place.size(); ++i) {
                worst = std::max(
                    worst, static_cast<double>(std::abs(a[f].columns[c][i] - b[f].columns[c][place[i]])));
                largest = std::max(largest, static_cast<double>(std::abs(b[f].columns[c][place[i]])));
            }
        }
        EXPECT_LT(worst, tolerance * largest) << a[f].name;
        EXPECT_GT(largest, 0) << a[f].name;
    }
}

TEST(DriftDamping, PartsOfAMeshGiveTheWhole) {
    for (const std::string &mesh : {CYLINDER, BOX}) {
        P2fFile quarter;
        CaseFolder first;
        prepare_drift(first, drift_pot(), mesh + "quarter");
        run_drift(first, quarter);
        EXPECT_NE(first.list().find("Creates the free surface data file FDF"), std::string::npos);
        const auto panels = read_fdf(first);
        for (const std::string part : {"half-x", "half-y", "full"}) {
            SCOPED_TRACE(mesh + part);
            CaseFolder folder;
            prepare_drift(folder, drift_pot(), mesh + part);
            write_fdf(folder, panels, part != "half-x", part != "half-y");
            P2fFile p2f;
            run_drift(folder, p2f);
            EXPECT_NE(folder.list().find(" Input from Free Surface Data File:      run.fdf"),
                      std::string::npos);
            expect_same(quarter, p2f, 1e-3);
        }
    }
}

// The matrices in memory and on scratch files, direct and by iteration: every setting that is admitted.
TEST(DriftDamping, StoresAndSolversGiveTheSame) {
    P2fFile direct;
    for (const char *config :
         {"MAXSCR=5000\nISOLVE=1\n", "MAXSCR=5000\nISOLVE=0\n", "MAXSCR=5000\nISOLVE=1\nIUSESCR=1\n",
          "MAXSCR=5000\nISOLVE=0\nIUSESCR=1\n", "MAXSCR=2\nISOLVE=0\n", "MAXSCR=9\nISOLVE=0\n",
          "MAXSCR=5000\nISOLVE=-1\n", "MAXSCR=9\nISOLVE=-1\n", "MAXSCR=9\nISOLVE=400\n"}) {
        SCOPED_TRACE(config);
        CaseFolder folder;
        Pot pot = drift_pot();
        pot.PER = "0.9 1.4";
        pot.NPER = 2;
        prepare_drift(folder, pot, BOX + "half-y", config);
        P2fFile p2f;
        run_drift(folder, direct.NEQN == 0 ? direct : p2f);
        if (p2f.NEQN > 0)
            expect_same(direct, p2f, 1e-4);
        const bool by_iteration = std::string(config).find("ISOLVE=1") == std::string::npos;
        EXPECT_EQ(folder.list().find("-1 (-1)  -1 (-1)") == std::string::npos, by_iteration) << folder.list();
        for (const std::string &name : folder.files())
            EXPECT_EQ(name.find("SCRATCH"), std::string::npos) << name;
    }
}

// Periods side by side, or the rows of one period: the same bytes.
TEST(DriftDamping, DoesNotDependOnTheThreads) {
    for (const int NPER : {1, 3}) {
        P2fFile p2f[2];
        for (const int threads : {1, 2}) {
            CaseFolder folder;
            Pot pot = drift_pot();
            pot.PER = "0.9 1.4 2.0";
            pot.NPER = NPER;
            pot.HBOT = "2.0";
            prepare_drift(folder, pot, BOX + "quarter");
            folder.solve("OMP_NUM_THREADS=" + std::to_string(threads));
            Coefficients c;
            folder.results(p2f[threads - 1], c);
        }
        for (int t = 1; t <= NPER; ++t) {
            const auto a = fields_of(p2f[0], t), b = fields_of(p2f[1], t);
            for (std::size_t f = 0; f < a.size(); ++f)
                EXPECT_TRUE(a[f].columns == b[f].columns) << a[f].name;
        }
    }
}

// No flow goes through the hull, with the incident wave and in the modes of motion.
TEST(DriftDamping, VelocitiesMeetTheHull) {
    CaseFolder folder;
    Pot pot = drift_pot();
    pot.HBOT = "3.0";
    prepare_drift(folder, pot, BOX + "half-x");
    P2fFile p;
    run_drift(folder, p);
    for (int i = 1; i <= p.NEQN; ++i) {
        const auto through = [&](auto velocity) {
            c32 sum = 0;
            for (int c = 1; c <= 3; ++c)
                sum += p.VEL(c, i) * velocity(c);
            return sum;
        };
        constexpr f32 ROUNDING = 3e-6f;
        for (int mode = 1; mode <= 6; ++mode) {
            const int column = 3 * (p.MODPOS(mode) - 1);
            const c32 normal = through([&](int c) { return p.VELR(i, column + c, 1); });
            EXPECT_LT(std::abs(normal - p.VEL(mode, i)), ROUNDING);
        }
        for (int d = 1; d <= 3; ++d)
            EXPECT_LT(std::abs(through([&](int c) { return p.STB3(i, c, d); })), ROUNDING);
        for (int s = 1; s <= p.NSYMR; ++s) {
            EXPECT_LT(std::abs(through([&](int c) { return p.VELD(i, c, s, 1); })), ROUNDING);
            EXPECT_LT(std::abs(through([&](int c) { return p.VELD2(i, c, s, 1); })), ROUNDING);
        }
    }
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
const Field &named(const std::vector<Field> &fields, const std::string &name) {
    for (const Field &field : fields)
        if (field.name == name)
            return field;
    ADD_FAILURE() << name;
    return fields.front();
}
// Root mean square of the difference as part of that of the second, columns of `a` from its first, of `b`
// from `first` in steps of `stride`.
double rms(const Field &a, const Field &b, std::size_t first = 0, std::size_t stride = 1) {
    double difference = 0, size = 0;
    for (std::size_t c = first; c < b.columns.size(); c += stride)
        for (std::size_t i = 0; i < b.columns[c].size(); ++i) {
            difference += std::norm(a.columns[c][i] - b.columns[c][i]);
            size += std::norm(b.columns[c][i]);
        }
    return std::sqrt(difference / size);
}

TEST(DriftDamping, SecondFieldsAreHeadingDerivatives) {
    constexpr double STEP = 2; // degrees
    for (const char *depth : {"0.0", "1.5"}) {
        CaseFolder folder;
        Pot pot = drift_pot();
        pot.HBOT = depth;
        pot.BETA = "26 28 30 32 34";
        pot.NBETA = 5;
        prepare_drift(folder, pot, BOX + "quarter");
        P2fFile p;
        run_drift(folder, p);
        const auto all = fields_of(p);
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

TEST(DriftDamping, ZeroSpeedSetsAreDerivativesByFrequency) {
    constexpr double STEP = 0.02;
    const std::vector<const char *> names[2] = {{"W2R0", "PHIR"}, {"W2D0", "PHID"}};
    for (const char *depth : {"0.0", "1.5"}) {
        double error[2][2];
        for (const int fine : {0, 1}) {
            CaseFolder folder;
            Pot pot = drift_pot();
            pot.HBOT = depth;
            pot.PER = "0.86 0.88 0.90 0.92 0.94";
            pot.NPER = 5;
            prepare_drift(folder, pot,
                          std::string("hemisphere --part quarter") +
                              (fine == 1 ? " --nu 8 --nv 8" : " --nu 4 --nv 4"));
            folder.write("run.fdf", "none\n0\n0 0\n0\n");
            P2fFile p;
            run_drift(folder, p);
            const auto slope = derivative(STEP, [&](int t) { return fields_of(p, t); });
            const auto middle = fields_of(p, 3);
            for (const int k : {0, 1})
                error[fine][k] = rms(named(slope, names[k][1]), named(middle, names[k][0]));
        }
        for (const int k : {0, 1}) { // panels of half the size: second order
            EXPECT_LT(error[1][k], 1e-3) << names[k][0];
            EXPECT_GT(error[0][k], 2.5 * error[1][k]) << names[k][0];
            EXPECT_LT(error[0][k], 6 * error[1][k]) << names[k][0];
        }
    }
}

// The potential on the free surface by Green's formula and by the sources.
TEST(DriftDamping, BothWaysToTheFreeSurfaceAgree) {
    double error[2][2];
    for (const int fine : {0, 1}) {
        CaseFolder folder;
        prepare_drift(folder, drift_pot(),
                      std::string("hemisphere --part quarter") +
                          (fine == 1 ? " --nu 8 --nv 8" : " --nu 4 --nv 4"));
        folder.write("run.fdf",
                     "a few panels\n0\n3 0\n0\n1.2 1.2 1.5 1.5 0.1 0.4 0.4 0.1\n2 2 2.5 2.5 2 2.5 2.5 2\n"
                     "0.5 0.5 1 1 3 4 4 3\n");
        P2fFile p;
        run_drift(folder, p);
        const auto fields = fields_of(p);
        error[fine][0] = rms(named(fields, "FSR1"), named(fields, "FSR2"));
        error[fine][1] = rms(named(fields, "FSD1"), named(fields, "FSD2"));
    }
    EXPECT_LT(error[1][0], 0.06);
    EXPECT_LT(error[1][1], 0.02);
    for (const int k : {0, 1}) { // panels of half the size: first order
        EXPECT_GT(error[0][k], 1.4 * error[1][k]);
        EXPECT_LT(error[0][k], 3 * error[1][k]);
    }
}

TEST(DriftDamping, DeepWaterIsTheLimitOfGreatDepth) {
    P2fFile p[2];
    for (const int deep : {0, 1}) {
        CaseFolder folder;
        Pot pot = drift_pot();
        pot.HBOT = deep == 1 ? "0.0" : "30.0";
        prepare_drift(folder, pot, BOX + "quarter");
        run_drift(folder, p[deep]);
    }
    expect_same(p[0], p[1], 5e-3);
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

TEST(DriftDamping, ForcesOfSlowMotionAreAntisymmetric) {
    const std::string meshes[2] = {" --nu 4 --nv 3 --nw 2", " --nu 6 --nv 5 --nw 4"};
    for (const char *depth : {"0.0", "1.5"}) {
        double mismatch[2][4];
        for (const int fine : {0, 1}) {
            CaseFolder folder;
            Pot pot = drift_pot();
            pot.IDIFF = -1;
            pot.HBOT = depth;
            prepare_drift(folder, pot,
                          "box --length 2.4 --beam 1.4 --draft 0.7 --part quarter" + meshes[fine]);
            P2fFile p;
            run_drift(folder, p);
            for (int d = 1; d <= 3; ++d)
                mismatch[fine][d] = asymmetry(p, d, 0.9);
            folder.write("run.fdf", "none\n0\n0 0\n0\n"); // without the free surface it is another problem
            run_drift(folder, p);
            EXPECT_GT(asymmetry(p, 1, 0.9), 2.5 * mismatch[fine][1]);
            EXPECT_GT(asymmetry(p, 2, 0.9), 2.5 * mismatch[fine][2]);
        }
        for (int d = 1; d <= 3; ++d) { // panels of 0.6 the size: first order
            EXPECT_LT(mismatch[1][d], 0.08) << depth << " " << d;
            EXPECT_GT(mismatch[0][d], 1.4 * mismatch[1][d]) << depth << " " << d;
            EXPECT_LT(mismatch[0][d], 2.8 * mismatch[1][d]) << depth << " " << d;
        }
    }
}

// Faults that are told before anything is computed.
TEST(DriftDamping, BadInputIsTold) {
    const struct {
        const char *config, *HBOT, *XBODY, *mesh, *fdf;
        const char *message;
    } rows[] = {
        {"", "0.0", "0 0 0 1", "", "", "XBODY must be 0.0 when IWADD=1"},
        {"", "0.09", "0 0 0 0", "", "", "Error return in HGRN98: depth HBOT is illegal "},
        {"ISCATT=1\n", "0.0", "0 0 0 0", "", "", "ISCATT must be 0 when IWADD=1"},
        {"", "0.0", "0 0 0 0", "", "t\n6\n2 0\n0\n1 2 2 1 1 1 0 0\n",
         "Unable to read free-surface panel I=2"},
        {"", "0.0", "0 0 0 0", "", "t\n6\n1 0\n0\n1 2 2 1 1 one 0 0\n",
         "Unable to read free-surface panel I=1"},
        {"", "0.0", "0 0 0 0", "", "t\n6\n1 0\n0\n1 2 2 1 1 1 0 0\nend\n",
         "Extra data at the end of f-s data file"},
        {"", "0.0", "0 0 0 0", " --offset 0 0 -1", "", "Unable to open or create FDF file"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.message);
        CaseFolder folder;
        Pot pot = drift_pot();
        pot.HBOT = row.HBOT;
        pot.XBODY = row.XBODY;
        prepare_drift(
            folder, pot,
            std::string("box --length 2 --beam 1 --draft 0.05 --nu 3 --nv 1 --nw 2 --part quarter") +
                row.mesh,
            std::string("MAXSCR=5000\nISOLVE=1\n") + row.config);
        if (*row.fdf != 0)
            folder.write("run.fdf", row.fdf);
        folder.solve();
        EXPECT_NE(folder.list().find(row.message), std::string::npos) << folder.list();
        EXPECT_FALSE(folder.exists("run.p2f"));
    }
}

// A body of revolution that turns about its axis makes no steady flow. Seen from it, waves change their
// heading and modes of motion their direction, that is their frequency: a turning surge is half of each of
// two motions of neighbouring frequencies with a sway in quadrature.
TEST(DriftDamping, TurningBodyOfRevolution) {
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
            CaseFolder folder;
            Pot pot = drift_pot();
            pot.HBOT = depth;
            prepare_drift(folder, pot, "cylinder --radius 1 --draft 1 --part quarter" + meshes[fine]);
            P2fFile p;
            run_drift(folder, p);
            const auto fields = fields_of(p);
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
        for (const auto &[coarse_error, fine_error] : {std::pair{surge[0], surge[1]}, {roll[0], roll[1]}}) {
            EXPECT_GT(coarse_error, 1.5 * fine_error) << depth;
            EXPECT_LT(coarse_error, 2.5 * fine_error) << depth;
        }
        EXPECT_GT(waves[0], 2.5 * waves[1]);
        EXPECT_LT(waves[0], 6 * waves[1]);
    }
}

} // namespace
