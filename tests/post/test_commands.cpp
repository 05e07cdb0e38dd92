// The commands of vorda-p2f that derive results. Truth: relations between tables, and what the library gives.
#include "post_run.hpp"

#include <map>

namespace {

// Rows of comma-separated values by the names in their head.
std::vector<std::map<std::string, std::string>> csv(const CaseFolder &folder, const std::string &arguments) {
    EXPECT_EQ(folder.shell("vorda-p2f " + arguments), 0) << folder.read("stderr.txt");
    std::istringstream in(folder.read("stdout.txt"));
    std::vector<std::map<std::string, std::string>> rows;
    std::vector<std::string> head;
    for (std::string line; std::getline(in, line);) {
        std::istringstream cells(line);
        std::map<std::string, std::string> row;
        std::vector<std::string> words;
        for (std::string word; std::getline(cells, word, ',');)
            words.push_back(word);
        words.resize(std::max(words.size(), head.size()));
        for (std::size_t k = 0; k < head.size(); ++k)
            row[head[k]] = words[k];
        if (head.empty())
            head = words;
        else
            rows.push_back(row);
    }
    return rows;
}

void solve_box(const CaseFolder &folder, int IRAD = 1, int IDIFF = 1) {
    Pot pot;
    pot.NPER = 5;
    pot.PER = "-1 0.4 0.8 1.2 0";
    pot.BETA = "30";
    pot.IRAD = IRAD;
    pot.IDIFF = IDIFF;
    prepare(folder, pot);
    make_mesh(folder, "box --length 2 --beam 1.2 --draft 0.3 --nu 3 --nv 2 --nw 2");
    folder.solve();
}

TEST(Commands, ShowTheResultsOfTheLibraryInTheConventionAskedFor) {
    const CaseFolder folder;
    solve_box(folder);
    folder.write("case.toml", "density = 1000\n[[body]]\nradii = [0.4, 0.5, 0.5]\n[[point]]\nat = [1, 0, 0]\n"
                              "[[spectrum]]\ntype = 'table'\nvalues = [[2, 0.1], [5, 0.1]]\nheading = 30\n");
    SolvedRun run;
    folder.results(run.p2f, run.c);
    const PostRun post(std::move(run));
    const auto raos = csv(folder, "motions --case case.toml --csv raos run.p2f"),
               turned = csv(folder, "motions --case case.toml --convention exp-iwt --csv raos run.p2f");
    ASSERT_EQ(raos.size(), 3u * 6u); // limits have no motion
    const Array<c64, 3> xi = post.motions("density = 1000\n[[body]]\nradii = [0.4, 0.5, 0.5]\n");
    for (std::size_t k = 0; k < raos.size(); ++k) {
        const int mode = static_cast<int>(k % 6) + 1, t = static_cast<int>(k / 6) + 2;
        const double unit = mode > 3 ? 180 / 3.14159265358979 : 1, modulus = std::stod(raos[k].at("modulus"));
        // The test's run has another density, which the mass follows: motions are the same.
        EXPECT_NEAR(modulus, unit * std::abs(xi(mode, 1, t)), 1e-6 * unit) << k;
        EXPECT_NEAR(std::stod(raos[k].at("phase [deg]")), -std::stod(turned[k].at("phase [deg]")), 1e-6);
    }
    EXPECT_EQ(csv(folder, "motions --case case.toml --csv points run.p2f").size(), 3u * 5u);
    EXPECT_EQ(csv(folder, "motions --case case.toml --csv seas run.p2f").size(), 1u + 6u + 3u * 5u);
    EXPECT_EQ(csv(folder, "motions --csv natural run.p2f").size(), 3u);
    const auto exciting = csv(folder, "forces --csv exciting run.p2f");
    EXPECT_NEAR(std::stod(exciting[2].at("pressure [N m^k]")), RHO * 9.80665 * 2.4,
                0.2); // heave at zero frequency
    EXPECT_EQ(csv(folder, "forces --csv radiation run.p2f").size(), 5u * 36u);
    double volume = 0;
    for (auto &row : csv(folder, "hydrostatics --csv particulars run.p2f"))
        volume = row["quantity"] == "volume" ? std::stod(row["value"]) : volume;
    EXPECT_NEAR(volume, 0.72, 1e-6);
    EXPECT_EQ(csv(folder, "hydrostatics --global --csv stiffness run.p2f").size(), 36u);
    EXPECT_EQ(folder.shell("vorda-p2f motions --case case.toml run.p2f"), 0);
    for (const char *text :
         {"exp(+i omega t)", "Limit frequencies", "Natural periods", "WARNING: the frequencies"})
        EXPECT_NE(folder.read("stdout.txt").find(text), std::string::npos) << text;
}

struct Lack {
    int IRAD, IDIFF;
    const char *arguments, *message;
};
TEST(Commands, TellWhatTheRunHasToSwitchOn) {
    const Lack rows[] = {
        {-1, 1, "motions run.p2f", "needs IRAD 0 or 1"},
        {1, -1, "motions run.p2f", "needs IDIFF 0 or 1"},
        {-1, 1, "forces --csv radiation run.p2f", "needs IRAD 0 or 1"},
        {1, -1, "forces --csv exciting run.p2f", "needs IDIFF 0 or 1"},
        {-1, 1, "impulse run.p2f", "needs IRAD 0 or 1"},
        {1, 1, "impulse run.p2f", "3 frequencies with waves: impulse responses need many"},
        {1, 1, "motions --csv points run.p2f", "no [[point]]"},
        {1, 1, "motions --case none.toml run.p2f", "none.toml"},
    };
    for (const Lack &row : rows) {
        const CaseFolder folder;
        solve_box(folder, row.IRAD, row.IDIFF);
        EXPECT_EQ(folder.shell(std::string("vorda-p2f ") + row.arguments), 1) << row.arguments;
        EXPECT_NE(folder.read("stderr.txt").find(row.message), std::string::npos)
            << folder.read("stderr.txt");
        EXPECT_EQ(folder.read("stdout.txt"), "");
    }
    const CaseFolder one; // what one problem alone gives is shown
    solve_box(one, 1, -1);
    EXPECT_EQ(one.shell("vorda-p2f forces run.p2f"), 0);
    EXPECT_EQ(one.shell("vorda-p2f motions --csv natural run.p2f"), 0);
}

void solve_barge(const CaseFolder &folder, int ISOR) {
    Pot pot;
    pot.NPER = 3;
    pot.PER = "-1 0.6 1.4";
    pot.NBETA = 2;
    pot.BETA = "0 40";
    pot.ISOR = pot.ILOG = ISOR;
    prepare(folder, pot);
    make_mesh(folder, "box --length 2 --beam 1.2 --draft 0.3 --nu 4 --nv 2 --nw 2");
    folder.solve();
}

TEST(WaveCommands, AgreeWithEachOther) {
    const CaseFolder folder;
    solve_barge(folder, 1);
    folder.write("points.txt", "# x y z\n 1.5, 0.3\n0 0 -0.1 # within\n+3 -1 -0.5\n");
    folder.write("case.toml", "density = 1000\n[[part]]\nmass = 720\nfrom = -1\nto = 1\nradius_y = 0.3\n"
                              "[[section]]\nfrom = -1\nto = 1.01\ncount = 3\n");
    // The first body's surge is that of all; its terms make it up.
    const auto drift = csv(folder, "drift --case case.toml --csv drift run.p2f"),
               bodies = csv(folder, "drift --case case.toml --csv bodies run.p2f"),
               energy = csv(folder, "drift --case case.toml --csv energy run.p2f");
    ASSERT_EQ(drift.size(), 2u * 2u * 3u); // without the limit frequency
    ASSERT_EQ(bodies.size(), 2u * 2u * 6u);
    ASSERT_EQ(energy.size(), 2u * 2u);
    for (std::size_t k = 0; k < 4; ++k) {
        const auto &surge = bodies[6 * k];
        const double whole = std::stod(surge.at("drift"));
        double terms = 0;
        for (const char *term : {"waterline", "velocity", "motion", "rotation"})
            terms += std::stod(surge.at(term));
        EXPECT_NEAR(whole, terms, 1e-6 * (std::abs(terms) + 1));
        EXPECT_NEAR(whole, std::stod(drift[3 * k].at("near")), 1e-6 * (std::abs(whole) + 1));
        EXPECT_NEAR(std::stod(energy[k].at("imbalance")), 0, 0.02);
    }
    // One period and heading are those of the whole table; pressure is density g times head.
    const auto all = csv(folder, "field --points points.txt --csv wave run.p2f"),
               one = csv(folder,
                         "field --points points.txt --period 3 --heading 2 --convention exp-iwt --csv wave "
                         "run.p2f");
    ASSERT_EQ(all.size(), 12u);
    ASSERT_EQ(one.size(), 3u);
    for (const std::size_t k : {0u, 2u}) {
        EXPECT_EQ(one[k].at("head [m/m]"), all[9 + k].at("head [m/m]"));
        EXPECT_NEAR(std::stod(one[k].at("head phase [deg]")), -std::stod(all[9 + k].at("head phase [deg]")),
                    1e-6);
        EXPECT_NEAR(std::stod(one[k].at("pressure [N/m^2/m]")),
                    1025 * 9.80665 * std::stod(one[k].at("head [m/m]")), 0.01);
    }
    EXPECT_EQ(one[1].at("mark"), "inside");
    EXPECT_EQ(csv(folder, "field --grid 2 4 3 0 1 2 --z -0.2 --period 2 --csv velocity run.p2f").size(), 12u);
    EXPECT_EQ(csv(folder, "panels --load modes --period 2 --csv panels run.p2f").size(), 6u * 4u * 20u);
    EXPECT_EQ(csv(folder, "panels --hydrostatic --period 2 --heading 1 --csv panels run.p2f").size(),
              4u * 20u);
    EXPECT_EQ(csv(folder, "panels --period 2 --csv waterline run.p2f").size(), 2u * 4u * 6u);
    EXPECT_EQ(csv(folder, "panels --case case.toml --csv sections run.p2f").size(), 4u * 3u * 6u);
    // The mass is the displacement: nothing in calm water but the pressure on the ends.
    for (const auto &row : csv(folder, "panels --case case.toml --csv calm run.p2f"))
        EXPECT_NEAR(std::stod(row.at("vertical shear [N]")), 0, 0.1);
}

TEST(WaveCommands, TellWhatIsWrong) {
    const CaseFolder folder;
    solve_barge(folder, 0);
    folder.write("letters.txt", "1 2 3\n1 x 3\n");
    folder.write("sections.toml", "[[section]]\nfrom = 0\n");
    folder.write("twice.toml", "[[body]]\nmass = 5\n[[part]]\nmass = 5\nfrom = 0\n");
    const struct {
        const char *arguments, *message;
    } rows[] = {
        {"drift --csv bodies run.p2f", "set ISOR=1"},
        {"drift --sources run.p2f", "set ISOR=1"},
        {"field --velocity --grid 2 3 2 0 1 2 run.p2f", "set ISOR=1"},
        {"panels --csv waterline run.p2f", "set ISOR=1"},
        {"field run.p2f", "--points or --grid"},
        {"field --grid 0 1 0.5 0 1 2 run.p2f", "whole numbers"},
        {"field --points none.txt run.p2f", "none.txt cannot be opened"},
        {"field --points letters.txt run.p2f", "letters.txt, line 2"},
        {"drift --period 4 run.p2f", "no period 4"},
        {"drift --period 1 run.p2f", "no waves"},
        {"drift --heading 0 run.p2f", "no heading 0"},
        {"panels --csv sections run.p2f", "no [[section]]"},
        {"panels --case sections.toml run.p2f", "sections.toml, line 1"},
        {"panels --case twice.toml run.p2f", "twice.toml, line 3"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(folder.shell(std::string("vorda-p2f ") + row.arguments), 1) << row.arguments;
        EXPECT_NE(folder.read("stderr.txt").find(row.message), std::string::npos)
            << row.arguments << ": " << folder.read("stderr.txt");
        EXPECT_EQ(folder.read("stdout.txt"), "");
    }
    EXPECT_EQ(folder.shell("vorda-p2f drift run.p2f"), 0); // far away alone
    EXPECT_NE(folder.read("stdout.txt").find("No drift by pressures"), std::string::npos);
}

} // namespace
