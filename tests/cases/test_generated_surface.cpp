// Runs with a generated free surface. Truth: the run with the generated file as its geometry; the same body
// as full and quarter mesh, moved, beside another one.
#include "whole_fields.hpp"

namespace {

constexpr const char *CYLINDER = "cylinder --radius 1 --draft 0.5 --nu 8 --nv 6 --nw 6";

SolvedRun solve(const CaseFolder &folder, Pot pot, int IRR, int ISOR) {
    pot.ILOG = 1;
    pot.IRR = IRR;
    pot.ISOR = ISOR;
    folder.write("run.pot", pot.text());
    SolvedRun run = solved(folder);
    EXPECT_EQ(folder.list().find("not completed"), std::string::npos) << folder.list();
    return run;
}
void start(const CaseFolder &folder, const std::string &mesh) {
    prepare(folder, Pot());
    make_mesh(folder, mesh);
}

// Largest difference of potentials, sources and velocities, each over its largest value.
double difference(const SolvedRun &a, const SolvedRun &b) {
    const auto [largest, rms] = whole_fields::difference(a, b);
    return *std::max_element(std::begin(largest), std::end(largest));
}

// The first irregular frequency of the heaving cylinder, radius a = 1 and draft 0.5: K = k / tanh(0.5 k) with
// J0(k) = 0, k = 2.4048; the panels are a little smaller than the circle.
TEST(GeneratedSurface, IsSmoothThroughTheIrregularFrequency) {
    Pot pot;
    pot.NPER = 3;
    pot.PER = "2.80 2.884 2.968";
    const auto jump = [](const SolvedRun &run) {
        const double between = (run.c.A(3, 3, 1) + run.c.A(3, 3, 3)) / 2;
        return std::abs(run.c.A(3, 3, 2) / between - 1);
    };
    CaseFolder folder;
    start(folder, CYLINDER);
    const SolvedRun untreated = solve(folder, pot, 0, 0);
    EXPECT_GT(jump(untreated), 0.2);
    CaseFolder other;
    start(other, std::string(CYLINDER) + " --lid");
    const SolvedRun given = solve(other, pot, 1, 0);
    for (const int ISOR : {0, 1}) {
        const SolvedRun run = solve(folder, pot, 3, ISOR);
        EXPECT_LT(jump(run), 0.01);
        EXPECT_GT(run.p2f.NEQN, untreated.p2f.NEQN);
        for (int t = 1; t <= 3; ++t) // panels of another shape cover the same surface
            EXPECT_NEAR(run.c.A(3, 3, t), given.c.A(3, 3, t), 0.01 * std::abs(given.c.A(3, 3, t)));
    }
}

// Single precision of a run that reads the same panels.
constexpr double SAME = 1e-6;

TEST(GeneratedSurface, ItsFileIsAGeometryFileOfTheSameBody) {
    struct Row {
        const char *mesh;
        const char *XBODY;
    };
    const Row rows[] = {
        {CYLINDER, "0 0 0 0"},
        {"box --length 7.3 --beam 4.1 --draft 2 --nu 6 --nv 4 --nw 3 --ulen 3.7 --offset 0 0 -46.27",
         "0 0 46.27 0"},
        {"box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3", "3.5 -2 0 25"}, // mirrored
        {"wigley --length 4 --beam 0.8 --draft 0.5 --nu 12 --nv 4 --part half-y", "1.5 0 0 0"},
    };
    Pot pot;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.mesh);
        for (const int ISOR : {0, 1}) {
            CaseFolder folder;
            start(folder, row.mesh);
            pot.XBODY = row.XBODY;
            const SolvedRun made = solve(folder, pot, 3, ISOR);
            ASSERT_EQ(folder.shell("mv run.idf run.gdf"), 0);
            const SolvedRun read = solve(folder, pot, 1, ISOR);
            EXPECT_EQ(made.p2f.NEQN, read.p2f.NEQN);
            EXPECT_LE(difference(made, read), SAME);
        }
    }
}

TEST(GeneratedSurface, RingsAreTheSameAsFullHalfAndQuarterMesh) {
    SolvedRun quarter;
    for (const char *part : {"quarter", "half-x", "half-y", "full"}) {
        SCOPED_TRACE(part);
        CaseFolder folder;
        start(folder,
              std::string("box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3 --part ") + part);
        SolvedRun run = solve(folder, Pot(), 3, 1);
        if (quarter.p2f.NEQN == 0)
            quarter = std::move(run);
        else
            EXPECT_LT(difference(quarter, run), 1e-4);
    }
}

TEST(GeneratedSurface, OfTwoBodies) {
    CaseFolder folder;
    start(folder, CYLINDER);
    make_mesh(folder, CYLINDER, "a.gdf");
    make_mesh(folder, "box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3 --offset 0 0 -0.3",
              "b.gdf");
    const auto global = [](const char *end) {
        return std::string("pair\n0 9.80665\n2\na.") + end + "\n2 0 0 0\n1 1\n1 1 1 1 1 1\nb." + end +
               "\n-2 0 0.3 30\n1 1\n1 1 1 1 1 1\n";
    };
    folder.write("run.gdf", global("gdf"));
    const SolvedRun made = solve(folder, Pot(), 3, 0);
    EXPECT_TRUE(folder.exists("a.idf") && folder.exists("b.idf"));
    folder.write("run.gdf", global("idf"));
    const SolvedRun read = solve(folder, Pot(), 1, 0);
    EXPECT_EQ(made.p2f.NEQN, read.p2f.NEQN);
    EXPECT_LE(difference(made, read), SAME);
}

TEST(GeneratedSurface, ItsFileNeverReplacesItsSource) {
    Pot pot;
    pot.ILOG = 1;
    pot.IRR = 3;
    CaseFolder folder;
    prepare(folder, pot);
    make_mesh(folder, CYLINDER, "run.idf");
    folder.write("fnames.vrd", "run.idf\nrun.pot\n");
    const std::string before = folder.read("run.idf");
    folder.solve();
    EXPECT_EQ(folder.read("run.idf"), before);
    EXPECT_TRUE(folder.lists("The generated geometry file would replace another file"));
    EXPECT_FALSE(folder.exists("run.p2f"));
}

TEST(GeneratedSurface, IsDrawn) {
    CaseFolder folder;
    start(folder, CYLINDER);
    const SolvedRun run = solve(folder, Pot(), 3, 0);
    ASSERT_EQ(folder.shell("vorda-mesh show run.idf --view top -o run.svg"), 0) << folder.read("stderr.txt");
    const std::string svg = folder.read("run.svg");
    // From above nothing hides the panels in the free surface.
    int interior = 0, polygons = 0;
    for (int i = 1; i <= run.p2f.NEQN; ++i)
        interior += run.p2f.IFSP(i) != 0 ? 1 : 0;
    for (std::size_t at = 0; (at = svg.find("<polygon", at)) != std::string::npos; ++at)
        ++polygons;
    EXPECT_GT(interior, 10);
    EXPECT_GE(polygons, interior);
    EXPECT_NE(svg.find("interior free surface " + std::to_string(interior) + "<"), std::string::npos);
}

} // namespace
