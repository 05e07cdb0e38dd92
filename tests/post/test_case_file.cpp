// Case files: what is understood, and that every fault is told with its line. Truth: the text of the files,
// and the table of keys that the documents show.
#include "post_run.hpp"

namespace {

const PostRun &hemisphere() {
    static const PostRun run = post_run("hemisphere --nu 2 --nv 2", "0.5", 1, "0", 1);
    return run;
}

TEST(CaseFileReader, TakesWhatTheDocumentsShow) {
    std::string error;
    const CaseFile file = hemisphere().read(
        "density = 1000\n[[body]]\nmass = 5\ncentre = [1, 2, 3]\nradii = [1, 2, 2]\nfixed = ['surge', '6']\n"
        "critical = {roll = 0.1}\n[[spring]]\nat = [1, 0, 0]\nstiffness = [1, 2, 3, 4, 5, 6]\n"
        "[[coupling]]\nmodes = ['heave', '1.5']\nstiffness = 7\n[[point]]\nname = 'bow'\nat = [1, 2, 3]\n"
        "[[spectrum]]\nheight = 2\nperiod = 9\nspreading = 4\n[[spectrum]]\ntype = 'table'\nvalues = [[1, "
        "2], [2, 0]]\n",
        error);
    ASSERT_EQ(error, "");
    EXPECT_EQ(file.density, 1000);
    EXPECT_EQ(file.fixed, (std::vector<int>{1, 6}));
    const BodyMass mass = mass_of(file.bodies[0], hemisphere().bodies[0], 1000);
    EXPECT_EQ(mass.mass, 5);
    EXPECT_EQ(mass.inertia[1][1], 20);
    EXPECT_EQ(file.bodies[0].critical[0], std::pair(4, 0.1));
    EXPECT_EQ(file.springs[0].stiffness[5], 6);
    EXPECT_EQ(file.couplings[0].j, 5);
    EXPECT_EQ(file.points[0].name, "bow");
    EXPECT_EQ(file.spectra[0].gamma, 3.3);
    EXPECT_EQ(file.spectra[1].values[0].second, 2);
}

struct Fault {
    const char *text, *message; // what has to be in the message
};
TEST(CaseFileReader, TellsFaultsWithTheirLine) {
    const Fault rows[] = {
        {"density = 1025\ngravty = 9\n", "line 2: unknown key gravty; the nearest one is gravity"},
        {"[[body]]\nmas = 1\n", "line 2: unknown key mas in [[body]]"},
        {"[body]\nmass = 1\n", "line 1: body has to be a table [[body]]"},
        {"[[body]]\nmass = '1'\n", "line 2: mass in [[body]] has to be a number above 0"},
        {"[[body]]\nmass = -1\n", "line 2: mass in [[body]] has to be a number above 0"},
        {"[[body]]\nmass = inf\n", "line 2: mass"},
        {"[[body]]\n[[body]]\n", "line 2: there is no body 2"},
        {"[[body]]\nnumber = 1\n[[body]]\nnumber = 1\n", "line 3: body 1 stands here a second time"},
        {"[[body]]\ncentre = [1, 2]\n", "line 2: centre in [[body]] has to be three numbers"},
        {"[[body]]\nradii = [1, 2, 2]\ninertia = [[1, 0, 0], [0, 1, 0], [0, 0, 1]]\n", "line 1: only one of"},
        {"[[body]]\nstiffness = [[1]]\n", "line 2: stiffness in [[body]] needs 6 rows"},
        {"[[body]]\nfixed = ['rol']\n", "line 2: rol is no mode"},
        {"[[body]]\ncritical = {jaw = 0.1}\n", "line 2: jaw is no mode"},
        {"[[spring]]\nto = 3\n", "line 2: there is no body 3"},
        {"[[spring]]\nto = 1\n", "line 1: a spring needs two ends"},
        {"[[coupling]]\nmodes = ['heave']\n", "line 2: modes in [[coupling]] has to name two"},
        {"[[coupling]]\nmodes = ['heave', '2.heave']\n", "line 2: 2.heave is no mode"},
        {"[[point]]\nname = 'a'\n", "line 1: at in [[point]] must be given"},
        {"[[spectrum]]\ntype = 'wind'\n", "line 2: type in [[spectrum]] has to be"},
        {"[[spectrum]]\nheight = 1\n", "line 1: period must be given"},
        {"[[spectrum]]\ntype = 'table'\nvalues = [[2, 1], [1, 1]]\n",
         "line 3: values in [[spectrum]] need rising"},
        {"density = \n", "line 1: "},
        {"density = 1\ndensity = 2\n", "line 2: "},
    };
    for (const Fault &row : rows) {
        std::string error;
        static_cast<void>(hemisphere().read(row.text, error));
        EXPECT_NE(error.find(row.message), std::string::npos) << row.text << "gives\n" << error;
    }
    CaseFile file;
    std::string error;
    EXPECT_FALSE(read_case("no such file.toml", hemisphere().p2f(), file, error));
    EXPECT_NE(error.find("no such file.toml"), std::string::npos);
}

TEST(CaseFileReader, KeysStandInTheDocument) {
    std::ifstream in(VORDA_SOURCE_DIR "/docs/case.md");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(text.find(case_key_rows()), std::string::npos) << "docs/case.md needs these rows:\n"
                                                             << case_key_rows();
}

TEST(CaseFileReader, ReadsTheExampleOfTheDocument) {
    std::ifstream in(VORDA_SOURCE_DIR "/docs/case.md");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    const std::size_t begin = text.find("```toml\n") + 8;
    std::string error;
    const CaseFile file = hemisphere().read(text.substr(begin, text.find("```", begin) - begin), error);
    EXPECT_EQ(error, "");
    EXPECT_EQ(file.springs.size() + file.points.size() + file.spectra.size(), 3u);
}

TEST(Systems, WithoutASolutionNameTheMode) {
    const PostRun &run = hemisphere();
    std::string error;
    // No body has a negative mass; a matrix can make one that takes away all inertia and stiffness of heave.
    const double w = omega_of(run.p2f(), 1);
    CaseFile file = plain_case(run.p2f());
    file.couplings.push_back({3, 3,
                              w * w * (RHO * run.bodies[0].volume + run.R.A(3, 3, 1)) -
                                  RHO * run.scales.gravity * run.bodies[0].waterplane_area,
                              -run.R.B(3, 3, 1)});
    MotionSystem system;
    ASSERT_TRUE(form_system(run.p2f(), file, run.bodies, run.R, run.scales, system, error)) << error;
    Array<c64, 3> xi;
    EXPECT_FALSE(form_motions(run.p2f(), system, run.R, run.X.pressure, xi, error));
    EXPECT_NE(error.find("nothing determines heave"), std::string::npos) << error;
    file = plain_case(run.p2f());
    file.bodies[0].critical.emplace_back(1, 0.1);
    EXPECT_FALSE(form_system(run.p2f(), file, run.bodies, run.R, run.scales, system, error));
    EXPECT_NE(error.find("surge has no stiffness"), std::string::npos) << error;
}

} // namespace
