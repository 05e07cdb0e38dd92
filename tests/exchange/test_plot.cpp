// Pictures. Truth: the results of the library, and what stands in the files that gnuplot leaves.
#include "../cases/case_folder.hpp"
#include "exchange/plot.hpp"

namespace {

struct PlotRun {
    SolvedRun run;
    DataSet data;
    explicit PlotRun(const Pot &pot)
        : run(solve_mesh("box --length 2 --beam 1.2 --draft 0.3 --nu 3 --nv 2 --nw 2", pot)) {
        std::string error;
        data.p2f = &run.p2f;
        EXPECT_TRUE(load_case("", 1000, run.p2f, data.of_case, error) &&
                    form_data_set({.drift = true}, data, error))
            << error;
    }
};
Pot many_headings() {
    Pot pot;
    pot.NPER = 5;
    pot.PER = "1.2 0 0.4 -1 0.8";
    pot.NBETA = 12;
    pot.BETA = "0 15 30 45 60 75 90 105 120 135 150 165";
    return pot;
}

TEST(Figures, HoldTheResultsInTheOrderOfTheAxis) {
    const PlotRun of(many_headings());
    const P2fFile &p2f = of.run.p2f;
    int zero = 0, infinite = 0;
    for (int t = 1; t <= p2f.NPER; ++t) {
        zero = frequency_kind(p2f, t) == Frequency::zero ? t : zero;
        infinite = frequency_kind(p2f, t) == Frequency::infinite ? t : infinite;
    }
    for (const bool frequency : {false, true}) {
        PlotRequest request;
        request.over_frequency = frequency;
        const std::vector<PlotFigure> figures = figures_of(of.data, request);
        std::vector<std::string> names;
        for (const PlotFigure &figure : figures)
            names.push_back(figure.name);
        EXPECT_EQ(names,
                  (std::vector<std::string>{"radiation_translation", "radiation_rotation",
                                            "radiation_coupling", "exciting_translation", "exciting_rotation",
                                            "rao_translation", "rao_rotation", "drift"}));
        const PlotCurve &heave = figures[0].panels[4].curves.at(0);
        ASSERT_EQ(heave.points.size(), 3u);
        const int order[2][3] = {{1, 5, 3}, {3, 5, 1}};
        for (std::size_t k = 0; k < 3; ++k) {
            const int t = order[frequency ? 1 : 0][k];
            EXPECT_EQ(heave.points[k].first, frequency ? omega_of(p2f, t) : period_of(p2f, t));
            EXPECT_EQ(heave.points[k].second, of.data.R.A(3, 3, t));
            EXPECT_TRUE(k == 0 || heave.points[k].first > heave.points[k - 1].first);
        }
        EXPECT_EQ(heave.at_zero, of.data.R.A(3, 3, zero));
        EXPECT_EQ(heave.at_infinity, of.data.R.A(3, 3, infinite));
        // As many headings as can be told apart, with the first and the last; sway in head waves has no
        // phase.
        const PlotFigure &exciting = figures[3];
        ASSERT_EQ(exciting.panels[3].curves.size(), 8u);
        EXPECT_EQ(exciting.panels[3].curves.front().name, "heading 0°");
        EXPECT_EQ(exciting.panels[3].curves.back().name, "heading 165°");
        EXPECT_TRUE(std::isnan(exciting.panels[3].curves[0].points[0].second));
        EXPECT_NEAR(exciting.panels[3].curves[7].points[0].second,
                    std::arg(of.data.X.pressure(2, 12, order[frequency ? 1 : 0][0])) * 57.29577951, 1e-6);
        request.headings = {3, 1};
        EXPECT_EQ(figures_of(of.data, request)[3].panels[0].curves.size(), 2u);
    }
}

// Long waves are at the right end over the period, at the left over the frequency; large numbers over a power
// of a thousand.
TEST(Figures, HaveLimitsAtTheEndsOfTheAxis) {
    const PlotFigure figure{
        "x", "title", 1, {{"force", "N", {{"", {{2, 1e6}, {4, 2e6}}, false, 7e6, 9e6}}}}, ""};
    for (const bool frequency : {false, true}) {
        PlotRequest request;
        request.over_frequency = frequency;
        const std::string script = gnuplot_script(figure, request, "x.svg"), head = "$L0 << END\n";
        ASSERT_NE(script.find(head), std::string::npos);
        std::istringstream in(script.substr(script.find(head) + head.size()));
        double zero = 0, seven = 0, infinite = 0, nine = 0;
        in >> zero >> seven >> infinite >> nine;
        EXPECT_NEAR(seven, 7, 1e-9);
        EXPECT_NEAR(nine, 9, 1e-9);
        EXPECT_EQ(frequency ? zero : infinite, 0);
        EXPECT_GT(frequency ? infinite : zero, 4);
        EXPECT_NE(script.find("force [10^{6}·N]"), std::string::npos);
        EXPECT_NE(script.find(frequency ? "frequency [rad/s]" : "period [s]"), std::string::npos);
    }
}

TEST(Plot, LeavesWholePictures) {
    const CaseFolder folder;
    prepare(folder, many_headings());
    make_mesh(folder, "box --length 2 --beam 1.2 --draft 0.3 --nu 3 --nv 2 --nw 2");
    folder.solve();
    if (folder.shell("gnuplot --version") != 0)
        GTEST_SKIP() << "no gnuplot";
    ASSERT_EQ(folder.shell("vorda-p2f plot run.p2f -o pictures --heading 1 4"), 0)
        << folder.read("stderr.txt");
    ASSERT_EQ(folder.shell("vorda-p2f plot run.p2f -o pictures --format png --over frequency"), 0)
        << folder.read("stderr.txt");
    const std::string svg = folder.read("pictures/exciting_translation.svg"),
                      png = folder.read("pictures/drift.png");
    for (const char *text : {"Exciting force, translations", "phase, heave [deg]", "period [s]",
                             "heading 45°", "heading 0°", "limits"})
        EXPECT_NE(svg.find(text), std::string::npos) << text;
    EXPECT_EQ(svg.find("heading 15°"), std::string::npos);
    EXPECT_EQ(png.substr(0, 4), "\x89PNG");
    EXPECT_EQ(std::filesystem::exists(folder.path() / "pictures.part"), false);
    // Without the program.
    EXPECT_EQ(folder.shell("PATH=none \"$(command -v vorda-p2f)\" plot run.p2f -o other"), 1);
    EXPECT_NE(folder.read("stderr.txt").find("install gnuplot-nox"), std::string::npos);
    EXPECT_FALSE(folder.exists("other"));
}

} // namespace
