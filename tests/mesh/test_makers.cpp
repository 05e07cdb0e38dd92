// Truth: volumes and areas of bodies in closed form (areas of parabolic hulls by quadrature of their
// definition), which the panels meet to the second order; the check of meshes; added masses of bodies in
// unbounded fluid in closed form.
#include "../cases/panel_lists.hpp"
#include "mesh/checks.hpp"

namespace {

constexpr double PI = 3.14159265358979;
constexpr double LEAST_ORDER = 3.4, MOST_ORDER = 4.6; // of the error at twice the panels: 4 in the limit
constexpr double WRITTEN = 1e-7;                      // files have nine digits
constexpr double WARPED = 0.01; // volume over either diagonal of the bent panels at a bow, coarse meshes

// Area of one side of y = B/2 (1 - (2 x / L)^2) (1 - (z / T)^2), by the rule of middles.
double parabolic_area(double L, double B, double T) {
    constexpr int N = 1000;
    double sum = 0;
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j) {
            const double u = 2 * (i + 0.5) / N - 1, v = (j + 0.5) / N;
            const double y_x = -2 * B / L * u * (1 - v * v), y_z = -B / T * v * (1 - u * u);
            sum += std::sqrt(1 + y_x * y_x + y_z * y_z);
        }
    return sum * L * T / N / N;
}
// A spheroid with the long half axis a and two of b.
double spheroid_area(double a, double b) {
    const double e = std::sqrt(1 - b * b / (a * a));
    return 2 * PI * b * b * (1 + a / (b * e) * std::asin(e));
}
// A ring whose section, of width W and draft T with corners of radius b, is symmetric about the radius R
// (Pappus).
double ring_volume(double R, double W, double T, double b) {
    return 2 * PI * R * (W * T - (2 - PI / 2) * b * b);
}
double ring_area(double R, double W, double T, double b) {
    return 2 * PI * R * (2 * (T - b) + PI * b + W - 2 * b);
}

void write_table(const CaseFolder &folder, int stations, int waterlines) {
    std::ostringstream table;
    table.precision(12);
    table << "# parabolic hull of 4 x 0.8 x 1\n";
    for (int j = 0; j <= waterlines; ++j)
        table << " " << double(j) / waterlines;
    for (int i = 0; i <= stations; ++i) {
        const double x = 2.0 * i / stations - 1;
        table << "\n" << 2 * x;
        for (int j = 0; j <= waterlines; ++j)
            table << "," << 0.4 * (1 - x * x) * (1 - std::pow(1 - double(j) / waterlines, 2));
    }
    folder.write("table.txt", table.str());
}

struct Row {
    const char *arguments;
    std::vector<std::pair<const char *, int>> counts;
    double volume, area;
    bool flat = false, bent = false; // flat: met exactly; bent: some panels are warped
};
const Row ROWS[] = {
    {"sphere", {{"nu", 4}, {"nv", 8}}, 4 * PI / 3, 4 * PI},
    {"ellipsoid --length 4 --beam 2 --draft 1", {{"nu", 5}, {"nv", 5}}, 4 * PI / 3, spheroid_area(2, 1) / 2},
    {"closed-ellipsoid --length 2 --beam 1 --height 1",
     {{"nu", 5}, {"nv", 8}},
     PI / 3,
     spheroid_area(1, 0.5)},
    {"closed-cylinder --radius 0.5 --length 3",
     {{"nu", 3}, {"nv", 6}, {"nw", 2}},
     PI * 3 / 4,
     PI * 3 + PI / 2},
    {"closed-cylinder --horizontal --radius 0.5 --length 3",
     {{"nu", 3}, {"nv", 4}, {"nw", 2}},
     PI * 3 / 4,
     PI * 3 + PI / 2},
    {"closed-box --length 3 --beam 2 --height 1", {{"nu", 3}, {"nv", 2}, {"nw", 2}}, 6, 22, true},
    {"moonpool",
     {{"nu", 4}, {"nb", 3}},
     ring_volume(0.75, 0.5, 0.25, 0.25),
     ring_area(0.75, 0.5, 0.25, 0.25)},
    {"moonpool --radius 2 --inner 0.8 --draft 1 --bilge 0.3",
     {{"nu", 4}, {"nv", 2}, {"nw", 2}, {"nb", 2}},
     ring_volume(1.4, 1.2, 1, 0.3),
     ring_area(1.4, 1.2, 1, 0.3)},
    {"catamaran --length 4 --beam 0.8 --draft 1 --distance 2",
     {{"nu", 6}, {"nv", 4}},
     2 * 4 / 9.0 * 3.2,
     4 * parabolic_area(4, 0.8, 1),
     false,
     true},
    {"semisub --columns 3",
     {{"nu", 1}, {"nv", 2}, {"nw", 2}, {"nb", 1}},
     2 * 80 * 14 * 8 + 6 * PI * 25 * 12,
     4 * (80 * 14 + 80 * 8 + 14 * 8) - 6 * PI * 25 + 6 * 2 * PI * 5 * 12},
    {"ship --table table.txt",
     {{"nu", 12}, {"nv", 6}},
     4 / 9.0 * 3.2,
     2 * parabolic_area(4, 0.8, 1),
     false,
     true},
};

struct Made {
    MeshMeasures measures;
    std::vector<MeshFinding> findings;
};
// What vorda-mesh makes in the folder, measured with its images.
Made made(const CaseFolder &folder, const Row &row, int times, const std::string &part,
          const std::string &more = "") {
    std::string arguments = row.arguments + std::string(" --part ") + part + more;
    for (const auto &[name, count] : row.counts)
        arguments += std::string(" --") + name + " " + std::to_string(times * count);
    BodyMesh mesh;
    mesh.symmetric[0] = part == "quarter" || part == "half-x";
    mesh.symmetric[1] = part == "quarter" || part == "half-y";
    make_mesh(folder, arguments, "made.gdf");
    std::istringstream in(folder.read("made.gdf"));
    std::string title, line;
    double ULEN, GRAV;
    int ISX, ISY, n;
    std::getline(in, title);
    in >> ULEN >> GRAV >> ISX >> ISY >> n;
    EXPECT_EQ(ISX == 1, mesh.symmetric[0]);
    EXPECT_EQ(ISY == 1, mesh.symmetric[1]);
    mesh.panels.resize(static_cast<std::size_t>(n));
    for (BodyPanel &panel : mesh.panels)
        for (BodyPoint &p : panel.at)
            in >> p[0] >> p[1] >> p[2];
    EXPECT_TRUE(in) << arguments;
    return {measure(mesh), check_mesh(mesh, {})};
}
bool wrong(const Made &made) {
    return std::any_of(made.findings.begin(), made.findings.end(),
                       [](const MeshFinding &f) { return f.wrong; });
}

TEST(Makers, VolumeAndAreaConvergeToTheirClosedForms) {
    const CaseFolder folder;
    write_table(folder, 160, 80);
    for (const Row &row : ROWS) {
        SCOPED_TRACE(row.arguments);
        const bool is_ship = std::string(row.arguments).rfind("ship", 0) == 0;
        const std::string first = is_ship ? "half-y" : "quarter";
        double volume[3], area[3];
        for (int k = 0; k < 3; ++k) {
            const Made m = made(folder, row, 1 << k, first);
            EXPECT_FALSE(wrong(m)) << told(m.findings.front());
            // Triangles at the poles get slender in the end.
            EXPECT_TRUE(row.bent || k == 2 || m.findings.empty()) << told(m.findings.front());
            volume[k] = m.measures.mean_volume / row.volume - 1;
            area[k] = m.measures.surface / row.area - 1;
        }
        for (int k = 1; k < 3; ++k) {
            if (row.flat) {
                EXPECT_NEAR(volume[k], 0, WRITTEN);
                EXPECT_NEAR(area[k], 0, WRITTEN);
                continue;
            }
            EXPECT_GT(volume[k - 1] / volume[k], LEAST_ORDER) << volume[k];
            EXPECT_LT(volume[k - 1] / volume[k], MOST_ORDER) << volume[k];
            EXPECT_GT(area[k - 1] / area[k], LEAST_ORDER) << area[k];
            EXPECT_LT(area[k - 1] / area[k], MOST_ORDER) << area[k];
        }
        const Made one = made(folder, row, 2, first);
        for (const char *part : {"half-x", "half-y", "full"}) {
            if (is_ship && std::string(part) == "half-x")
                continue;
            const Made other = made(folder, row, 2, part);
            EXPECT_FALSE(wrong(other)) << part << told(other.findings.front());
            EXPECT_EQ(other.measures.with_images, one.measures.with_images) << part;
            EXPECT_NEAR(other.measures.surface / one.measures.surface, 1, WRITTEN) << part;
            EXPECT_NEAR(other.measures.mean_volume / one.measures.mean_volume, 1,
                        row.bent ? WARPED : WRITTEN);
        }
    }
}

// Each station of a hull with a flat bottom, a transom, a raked stem and a skeg, at less than its depth.
TEST(Makers, ShipsOfManyFormsAreClosed) {
    const CaseFolder folder;
    folder.write("table.txt", "0 1 2 3 4 5 6\n-30 0 0 1 3 5 5.5 5.6 # transom\n-25 0 1 3.5 5 5.8 6 6\n"
                              "-15 3 4.6 5.6 6 6 6 6\n0 4.5 5.6 6 6 6 6 6\n15 3 4.6 5.4 5.8 6 6 6\r\n"
                              "25 0.5 1.4 2 2.5 3 3.5 4\n30 0 0.3 0.5 .7 .9 1.2 1.5\n33 0 0 0 0 0 0.1 .3\n"
                              "34 0 0 0 0 0 0 0\n");
    const Row row{"ship --table table.txt --draft 4.5", {{"nu", 16}, {"nv", 8}}, 0, 0};
    double volume = 0;
    for (const char *part : {"half-y", "full"})
        for (const char *more : {"", " --cosine"}) {
            const Made m = made(folder, row, 2, part, more);
            EXPECT_FALSE(wrong(m)) << told(m.findings.front());
            for (const double v : m.measures.volume)
                EXPECT_NEAR(v / m.measures.mean_volume, 1, WRITTEN * 10);
            EXPECT_FLOAT_EQ(static_cast<float>(m.measures.low[2]), -4.5f);
            EXPECT_EQ(m.measures.high[2], 0);
            volume = volume == 0 ? m.measures.mean_volume : volume;
            EXPECT_NEAR(m.measures.mean_volume / volume, 1, WARPED);
        }
}

// Panels across the corners of a box are those of cosines, towards edges and the waterline.
TEST(Makers, CosineSpacing) {
    std::vector<double> x, z;
    for (const auto &panel : panel_lists::made("box --length 2 --nu 5 --nv 3 --nw 4 --cosine"))
        for (const panel_lists::Point &p : panel.vertex) {
            x.push_back(p[0]);
            z.push_back(-p[2]);
        }
    for (std::vector<double> *v : {&x, &z}) {
        std::sort(v->begin(), v->end());
        v->erase(std::unique(v->begin(), v->end()), v->end());
    }
    ASSERT_EQ(x.size(), 6u);
    ASSERT_EQ(z.size(), 5u);
    for (std::size_t i = 0; i < x.size(); ++i)
        EXPECT_NEAR(x[i], std::sin(PI / 2 * double(i) / 5), WRITTEN);
    for (std::size_t i = 0; i < z.size(); ++i)
        EXPECT_NEAR(z[i], (1 - std::cos(PI * double(i) / 4)) / 2, WRITTEN);
    const CaseFolder folder;
    write_table(folder, 20, 10);
    for (const Row &row : ROWS)
        if (std::string(row.arguments).find("ellipsoid") == std::string::npos && row.arguments[1] != 'p') {
            const Made m =
                made(folder, row, 2, std::string(row.arguments)[1] == 'h' ? "full" : "quarter", " --cosine");
            EXPECT_FALSE(wrong(m)) << row.arguments << told(m.findings.front());
        }
}

struct Refused {
    const char *arguments, *option, *table;
};
const Refused REFUSED[] = {
    {"sphere --depth 1", "--depth", ""},
    {"sphere --radius -1", "--radius", ""},
    {"sphere --radius nan", "--radius", ""},
    {"sphere --nu 10000 --nv 10000", "--nu", ""},
    {"closed-box --height 3 --depth 1.5", "--depth", ""},
    {"closed-cylinder --length 5", "--depth", ""},
    {"closed-cylinder --horizontal --radius 2", "--depth", ""},
    {"closed-ellipsoid --height 0", "--height", ""},
    {"moonpool --inner 1", "--inner", ""},
    {"moonpool --bilge 0.26", "--bilge", ""},
    {"moonpool --bilge -0.1", "--bilge", ""},
    {"catamaran --beam 1.2", "--distance", ""},
    {"semisub --radius 7", "--radius", ""},
    {"semisub --height 20", "--height", ""},
    {"semisub --distance 14", "--distance", ""},
    {"semisub --columns 6", "--columns", ""},
    {"semisub --columns 0", "--columns", ""},
    {"semisub --length 69", "--length", ""},
    {"semisub --length 1e12", "--nu", ""},
    {"box --length 1e300 --beam 1e300", "single precision", ""},
    {"ship", "--table", ""},
    {"ship --table none.txt", "--table", ""},
    {"ship --table /dev/zero", "--table", ""},
    {"ship --table table.txt --part quarter", "--part", "0 1\n0 1 1\n1 1 1\n"},
    {"ship --table table.txt --draft 1.1", "--draft", "0 1\n0 1 1\n1 1 1\n"},
    {"ship --table table.txt", "line 1", "0\n0 1\n1 1\n"},
    {"ship --table table.txt", "line 1", "1 0\n0 1 1\n1 1 1\n"},
    {"ship --table table.txt", "line 2", "0 1\n0 1\n1 1 1\n"},
    {"ship --table table.txt", "line 3", "0 1\n0 1 1\n0 1 1\n"},
    {"ship --table table.txt", "line 3", "0 1\n\n0 1 -1\n1 1 1\n"},
    {"ship --table table.txt", "line 3", "0 1\n0 1 1\n1 1 inf\n"},
    {"ship --table table.txt", "line 2", "0 1\n0 1 one\n1 1 1\n"},
    {"ship --table table.txt", "--table", "0 1\n0 1 1\n"},
    {"ship --table table.txt", "--table", "0 1\n0 0 0\n1 0 0\n"},
    {"ship --table table.txt", "--table", ""},
};
TEST(Makers, RefuseWhatDoesNotFitByTheNameOfTheOption) {
    for (const Refused &refused : REFUSED) {
        const CaseFolder folder;
        folder.write("table.txt", refused.table);
        EXPECT_GT(folder.shell(std::string("vorda-mesh ") + refused.arguments + " -o x.gdf"), 0)
            << refused.arguments;
        EXPECT_NE(folder.read("stderr.txt").find(refused.option), std::string::npos)
            << refused.arguments << "\n"
            << folder.read("stderr.txt");
        EXPECT_EQ(folder.files(), (std::vector<std::string>{"stderr.txt", "stdout.txt", "table.txt"}));
    }
    const CaseFolder folder;
    folder.write("there.gdf/file", "");
    EXPECT_EQ(folder.shell("vorda-mesh sphere -o there.gdf"), 1);
    EXPECT_FALSE(folder.exists("there.gdf.part"));
}

// Added mass over the mass displaced, of an ellipsoid far below the surface: H. Lamb, Hydrodynamics, art.
// 114.
double lamb(const std::array<double, 3> &axes, std::size_t along) {
    constexpr int N = 20000;
    double alpha = 0; // the integral over 0 .. infinity by l = t / (1 - t)
    for (int i = 0; i < N; ++i) {
        const double t = (i + 0.5) / N, l = t / (1 - t);
        double root = 1;
        for (const double a : axes)
            root *= a * a + l;
        alpha += 1 / ((axes[along] * axes[along] + l) * std::sqrt(root) * (1 - t) * (1 - t)) / N;
    }
    alpha *= axes[0] * axes[1] * axes[2];
    return alpha / (2 - alpha);
}
constexpr double PANEL_ERROR = 0.02; // of added mass with the coarse panels here

TEST(Makers, DeepBodiesHaveTheAddedMassOfUnboundedFluid) {
    struct Body {
        const char *arguments;
        std::array<double, 3> axes;
    };
    for (const Body &body :
         {Body{"sphere --depth 40 --nu ", {1, 1, 1}},
          Body{"closed-ellipsoid --length 4 --beam 2 --height 1.2 --depth 40 --nu ", {2, 1, 0.6}}}) {
        double defect[2][3];
        for (const int k : {0, 1}) {
            Pot pot;
            pot.PER = "0";
            pot.IDIFF = -1;
            pot.NBETA = 0;
            const SolvedRun run = solve_mesh(body.arguments + std::to_string(k == 0 ? 5 : 10) + " --nv " +
                                                 std::to_string(k == 0 ? 10 : 20),
                                             pot);
            for (std::size_t mode = 0; mode < 3; ++mode) {
                const double volume = 4 * PI / 3 * body.axes[0] * body.axes[1] * body.axes[2];
                const int m = static_cast<int>(mode) + 1;
                defect[k][mode] =
                    std::fabs(static_cast<double>(run.c.A(m, m, 1)) / (volume * lamb(body.axes, mode)) - 1);
            }
        }
        for (std::size_t mode = 0; mode < 3; ++mode) {
            EXPECT_LT(defect[1][mode], PANEL_ERROR) << body.arguments << mode;
            EXPECT_LT(defect[1][mode], 0.6 * defect[0][mode]) << body.arguments << mode;
        }
    }
}

} // namespace
