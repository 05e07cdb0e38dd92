// Truth: the same run by a deck written by hand; what a user changes and what follows from it.
#include "optional.hpp"
#include "program.hpp"

#include "post/case_file.hpp"

#include <chrono>

namespace {

constexpr const char *CASE = R"(depth = 10
[waves]
periods = [3, 4.5]
headings = [0, 90]
[[body]]
maker = "box"
sizes = {length = 4, beam = 2, draft = 1, nu = 4, nv = 3, nw = 3}
[treatment]
irregular = "off"
[outputs]
drift = false
csv = true
)";
constexpr double AT_ONCE = 1.0; // [s], for a run that has nothing to do; it takes a tenth of that

void replace(const TemporaryFolder &folder, const std::string &from, const std::string &to) {
    std::string text = folder.read("case.toml");
    ASSERT_NE(text.find(from), std::string::npos) << from;
    folder.write("case.toml", text.replace(text.find(from), from.size(), to));
}
bool tells(const Answer &answer, const char *words) {
    return answer.text.find(words) != std::string::npos;
}

} // namespace

TEST(VordaRun, SolvesWhatADeckByHandDoes) {
    const TemporaryFolder folder;
    folder.write("case.toml", CASE);
    const Answer answer = command(folder, "vorda-run case.toml");
    ASSERT_EQ(answer.code, 0) << answer.text;
    folder.write("hand/fnames.vrd", "box.gdf\nbox.pot\n");
    folder.write("hand/config.vrd", "MAXSCR=500\nISOLVE=1\n");
    folder.write("hand/box.pot", "Box\n0\n0\n0\n10 0 0 0 0\n0 1 0\n1 1\n1 1 1 1 1 1\n2\n3 4.5\n2\n0 90\n");
    ASSERT_EQ(command(folder,
                      "cd hand && vorda-mesh box --length 4 --beam 2 --draft 1 --nu 4 --nv 3 --nw 3 -o "
                      "box.gdf && vorda")
                  .code,
              0);
    for (const char *table : {"radiation", "exciting"}) {
        const std::string words = std::string("vorda-p2f coef --density 1025 --csv ") + table;
        const Answer ours = command(folder, words + " case.run/case.p2f"),
                     hand = command(folder, words + " hand/box.p2f");
        EXPECT_EQ(ours.code, 0);
        EXPECT_GT(hand.text.size(), 500u);
        EXPECT_EQ(ours.text, hand.text);
    }
    // What is for this program alone does not disturb the other one, and the other way round.
    EXPECT_EQ(command(folder, "vorda-p2f hydrostatics --case case.toml case.run/case.p2f").code, 0);
}

TEST(VordaRun, MakesAgainWhatChangedAlone) {
    const TemporaryFolder folder;
    folder.write("case.toml", CASE);
    ASSERT_EQ(command(folder, "vorda-run case.toml").code, 0);
    const std::string solution = folder.read("case.run/case.p2f"),
                      report = folder.read("case.run/report.html");
    const auto start = std::chrono::steady_clock::now();
    Answer again = command(folder, "vorda-run case.toml");
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), AT_ONCE);
    EXPECT_TRUE(tells(again, "case.p2f stays") && tells(again, "2 unchanged")) << again.text;

    replace(folder, "depth = 10", "density = 2050\ndepth = 10");
    again = command(folder, "vorda-run case.toml");
    EXPECT_TRUE(tells(again, "case.p2f stays") && !tells(again, "unchanged, in")) << again.text;
    EXPECT_EQ(folder.read("case.run/case.p2f"), solution);
    EXPECT_NE(folder.read("case.run/report.html"), report);
    EXPECT_NE(folder.read("case.run/report.html").find("density 2050"), std::string::npos);

    replace(folder, "csv = true", "csv = false");
    again = command(folder, "vorda-run case.toml");
    EXPECT_FALSE(folder.exists("case.run/tables"));

    replace(folder, "draft = 1", "draft = 1.1");
    again = command(folder, "vorda-run case.toml");
    EXPECT_TRUE(tells(again, "meshes/body1.gdf") && !tells(again, "stays")) << again.text;
    EXPECT_NE(folder.read("case.run/case.p2f"), solution);

    // A result that somebody removed comes back; a solver that fails leaves no old results behind.
    std::filesystem::remove(folder.path() / "case.run/case.p2f");
    EXPECT_EQ(command(folder, "vorda-run case.toml").code, 0);
    EXPECT_TRUE(folder.exists("case.run/case.p2f"));
    std::filesystem::remove(folder.path() / "case.run/case.p2f");
    std::filesystem::create_directory(folder.path() / "case.run/case.p2f");
    folder.write("case.run/case.p2f/x", "");
    again = command(folder, "vorda-run case.toml");
    EXPECT_EQ(again.code, 1);
    EXPECT_TRUE(tells(again, "case.p2f")) << again.text;
}

TEST(VordaRun, WritesWhatIsAskedForInAnyPlace) {
    VORDA_NEEDS(WITH_NETCDF && WITH_HDF5);
    struct Row {
        const char *body, *more, *planned, *volume; // in [[body]]; other tables; what the plan tells; [m^3]
    };
    // Beside a wall, cut by it, submerged at a place of its own and turned, and solved by iteration.
    const Row rows[] = {
        {"maker = 'box'\npart = 'full'\nwall = 'x'\nplace = [1.5, 0, 0]\n", "", "about 1088 unknowns", "1"},
        {"maker = 'box'\nwall = 'y'\n", "", "frequencies: left", "0.5"},
        {"maker = 'closed-box'\nsizes = {depth = 1}\nplace = [3, 1, -0.5]\nheading = 30\n", "",
         "frequencies: left", "1"},
        {"maker = 'cylinder'\nsizes = {lid = true}\n", "[treatment]\nsolver = 'iterative'\nsources = 'off'\n",
         "panels of the mesh", "3.1"},
    };
    const TemporaryFolder folder;
    for (const Row &row : rows) {
        folder.write("case.toml",
                     std::string("[waves]\nfrequencies = [2, 1.5, 1]\nheadings = [0, 30]\n[[body]]\n") +
                         row.body + row.more +
                         "[outputs]\nreport = false\nnetcdf = true\nhdf5 = true\nvtu = true\ncsv = true\n"
                         "points = [[8, 3, 0], [8, 3, -2]]\n");
        const Answer answer = command(folder, "vorda-run case.toml");
        ASSERT_EQ(answer.code, 0) << row.body << answer.text;
        EXPECT_TRUE(tells(answer, row.planned)) << row.body << answer.text;
        for (const char *name : {"results.nc", "results.h5", "hull.vtu", "tables/motions_raos.csv"})
            EXPECT_TRUE(folder.exists(std::string("case.run/") + name)) << row.body << name;
        EXPECT_NE(folder.read("case.run/tables/hydrostatics_particulars.csv")
                      .find(std::string("1,volume,m^3,") + row.volume),
                  std::string::npos)
            << row.body;
        const std::string field = folder.read("case.run/field.csv");
        EXPECT_EQ(std::count(field.begin(), field.end(), '\n'), 1 + 3 * 2 * 2) << row.body << field;
        EXPECT_FALSE(folder.exists("case.run/report.html"));
    }
}

TEST(VordaRun, WritesACaseForAHullThatRuns) {
    VORDA_NEEDS(WITH_ASSIMP);
    const TemporaryFolder folder;
    ASSERT_EQ(command(folder,
                      "vorda-mesh box --length 40 --beam 10 --draft 4 --nu 8 --nv 3 --nw 3 --part full -o "
                      "hull.gdf && vorda-mesh export hull.gdf -o hull.stl && "
                      "vorda-run --new hull.stl > case.toml")
                  .code,
              0);
    EXPECT_NE(folder.read("case.toml").find("40 m long, 10 m wide, 4 m deep"), std::string::npos);
    const Answer dry = command(folder, "vorda-run case.toml --dry");
    EXPECT_EQ(dry.code, 0) << dry.text;
    EXPECT_TRUE(tells(dry, "panels made inside") && tells(dry, "s, by a trial of this machine") &&
                !folder.exists("case.run/case.p2f"))
        << dry.text;
    const Answer joined =
        command(folder, "sed -i 's/^# recombine/recombine/' case.toml && vorda-run case.toml --dry");
    EXPECT_TRUE(tells(dry, ", 114 panels given") && tells(joined, ", 57 panels given"))
        << dry.text << joined.text;
    EXPECT_EQ(command(folder, "vorda-run --new nothing.stl").code, 1);
    EXPECT_EQ(command(folder, "vorda-run").code, 1);
}

TEST(VordaRun, KeysStandInTheDocument) {
    std::ifstream in(VORDA_SOURCE_DIR "/docs/case-file.md");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(text.find(run_key_rows()), std::string::npos)
        << "docs/case-file.md needs the rows of vorda-run --keys";
    const TemporaryFolder folder;
    EXPECT_NE(command(folder, "vorda-run --keys").text.find(run_key_rows()), std::string::npos);
    const std::size_t begin = text.find("```toml\n") + 8;
    folder.write("case.toml", text.substr(begin, text.find("```", begin) - begin));
    EXPECT_EQ(command(folder, "vorda-run case.toml --dry").code, 0);
}
