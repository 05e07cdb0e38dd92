// Files for other programs, read by their libraries. Truth: the tables of vorda-p2f; forces as sums of
// pressures; motions as the solution of the equations that the file holds.
#include "../cases/case_folder.hpp"
#include "exchange/export.hpp"
#include "optional.hpp"

namespace {

struct ExportCase {
    const char *name;
    int bodies, modes; // of each body
};
void PrintTo(const ExportCase &row, std::ostream *out) {
    *out << row.name;
}
constexpr ExportCase CASES[] = {{"one", 1, 6}, {"pair", 2, 6}, {"bending", 1, 7}};

constexpr const char *HULL = "box --length 2 --beam 1.2 --draft 0.3 --nu 4 --nv 2 --nw 2";

// Solves it, with limits among the periods, headings that fall and modes that hold each other.
void solve_case(const CaseFolder &folder, const ExportCase &row) {
    Pot pot;
    pot.NPER = 7;
    pot.PER = "0 0.3 0.6 -1 0.9 1.3 1.8";
    pot.NBETA = 2;
    pot.BETA = "40 0";
    pot.ISOR = pot.ILOG = 1;
    prepare(folder, pot, row.modes > 6 ? "NEWMDS=1\n" : "");
    std::string text = "density = 1000\n";
    for (int b = 1; b <= row.bodies && row.modes == 6; ++b)
        text += "[[body]]\nmass = 700\ncentre = [0.05, 0, 0.1]\nradii = [0.4, 0.5, 0.6]\n";
    if (row.modes > 6)
        text += "[[body]]\nmass_matrix = "
                "[[700,0,0,0,70,0,0],[0,700,0,-70,0,35,0],[0,0,700,0,-35,0,50],[0,-70,0,130,0,0,0],"
                "[70,0,-35,0,190,0,0],[0,35,0,0,0,260,0],[0,0,50,0,0,0,400]]\n";
    text +=
        "[[spring]]\nat = [1, 0.2, 0]\nstiffness = [300, 200, 0, 0, 0, 50]\ndamping = [20, 30, 0, 0, 0, 0]\n";
    folder.write("case.toml", text);
    if (row.bodies > 1) {
        make_mesh(folder, HULL, "one.gdf");
        folder.write("run.gdf", "pair\n0 9.80665\n2\none.gdf\n0 1.5 0 0\n1 1\n1 1 1 1 1 1\n"
                                "one.gdf\n0 -1.5 0 180\n1 1\n1 1 1 1 1 1\n");
    } else {
        make_mesh(folder, HULL);
    }
    folder.solve();
    if (row.modes > 6) { // the heave again, twice as large
        ASSERT_EQ(folder.shell("awk 'NR==2 {print \"extra\\nheave\"; print $1,$2,$3; print 1; print 3} "
                               "NR>2 {print 2*$7} END {for(i=0;i<7;i++) print \"0 0 0 0 0 0 0\"}' run.pre"),
                  0);
        folder.write("run.mod", folder.read("stdout.txt"));
        folder.solve();
    }
    ASSERT_TRUE(folder.exists("run.p2f")) << folder.list();
}

// An interpreter with these modules, blanks between them; empty when there is none. They are looked for, not
// loaded, which takes a second.
std::string python_with(const CaseFolder &folder, const std::string &modules) {
    const std::string look = " -c 'import importlib.util as u, sys\n"
                             "sys.exit(any(u.find_spec(m) is None for m in sys.argv[1:]))' ";
    for (const std::string name : {"python3", "/usr/bin/python3"})
        if (folder.shell(name + look + modules) == 0)
            return name;
    return "";
}
const std::string READERS = VORDA_SOURCE_DIR "/tests/exchange/readers.py";

class Exported : public testing::TestWithParam<ExportCase> {};
INSTANTIATE_TEST_SUITE_P(Runs, Exported, testing::ValuesIn(CASES),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_P(Exported, IsReadByTheProgramsItIsFor) {
    VORDA_NEEDS(WITH_NETCDF && WITH_HDF5);
    const CaseFolder folder;
    const ExportCase row = GetParam();
    const std::string python = python_with(folder, "numpy xarray netCDF4 h5py meshio");
    if (python.empty())
        GTEST_SKIP() << "no Python with numpy, xarray, netCDF4, h5py and meshio";
    solve_case(folder, row);
    const std::string animate = row.bodies == 1 && row.modes == 6
                                    ? " && vorda-p2f export run.p2f --case case.toml -o "
                                      "a.vtu --animate 2 1 --amplitude 0.001"
                                    : "";
    for (const std::string name : {"r.nc", "r.h5", "r.vtu", "r.json"})
        ASSERT_EQ(folder.shell("vorda-p2f export run.p2f --case case.toml -o " + name + animate), 0)
            << folder.read("stderr.txt");
    const std::pair<const char *, const char *> TABLES[] = {
        {"raos.csv", "motions --case case.toml --convention exp-iwt --csv raos run.p2f"},
        {"raos_plus.csv", "motions --case case.toml --csv raos run.p2f"},
        {"forces.csv", "forces --density 1000 --csv exciting run.p2f"},
        {"radiation.csv", "forces --density 1000 --csv radiation run.p2f"},
        {"kernel.csv", "impulse --density 1000 --csv radiation run.p2f"},
        {"drift.csv", "drift --case case.toml --csv drift run.p2f"}};
    for (const auto &[name, arguments] : TABLES)
        ASSERT_EQ(folder.shell(std::string("vorda-p2f ") + arguments + " >" + name), 0)
            << arguments << folder.read("stderr.txt");
    folder.shell("sha256sum run.p2f >sum.txt");
    P2fFile p2f;
    Coefficients c;
    folder.results(p2f, c);
    folder.write("panels.txt", std::to_string(p2f.NEQN * p2f.NSYMG));
    const auto read = [&](const std::string &checks) {
        EXPECT_EQ(folder.shell(python + " '" + READERS + "' " + checks + " " + std::to_string(row.bodies) +
                               " " + std::to_string(row.modes)),
                  0)
            << folder.read("stderr.txt");
    };
    const bool vtk = folder.shell(python + " -c 'import vtkmodules.vtkIOXML'") == 0;
    read(std::string("netcdf,hdf5,vtu,json,reader") + (vtk ? ",vtk" : ""));
    if (!animate.empty()) {
        read("points");
        folder.write("points.txt", folder.read("stdout.txt"));
        EXPECT_EQ(
            folder.shell("vorda-p2f field --points points.txt --case case.toml --period 2 --heading 1 --csv "
                         "wave run.p2f >field.csv"),
            0);
        read("animation");
    }
}

TEST(ExportedFiles, HaveTheFreeSurfaceAroundTheBody) {
    const CaseFolder folder;
    const std::string python = python_with(folder, "numpy meshio");
    if (python.empty())
        GTEST_SKIP() << "no Python with numpy and meshio";
    ASSERT_EQ(folder.shell("cp '" VORDA_SOURCE_DIR "/examples/05_drift_damping/'* . && vorda"), 0)
        << folder.list();
    P2fFile p2f;
    Coefficients c;
    folder.results(p2f, c, "hemisphere.p2f");
    folder.write("panels.txt", std::to_string(p2f.NEQN * p2f.NSYMG));
    folder.write("surface.txt", std::to_string(p2f.NFSP * p2f.NSYMG));
    ASSERT_GT(p2f.NFSP, 0);
    ASSERT_EQ(folder.shell("vorda-p2f export hemisphere.p2f -o r.vtu"), 0) << folder.read("stderr.txt");
    EXPECT_EQ(folder.shell(python + " '" + READERS + "' surface 1 6"), 0) << folder.read("stderr.txt");
}

TEST(ExportedFiles, FolderHasTheTablesOfTheCommands) {
    const CaseFolder folder;
    solve_case(folder, CASES[0]);
    folder.write("out/motions_raos.csv", "old");
    folder.write("out/mine.txt", "stays");
    for (const char *name : {"out", "new.csv"})
        ASSERT_EQ(folder.shell(std::string("vorda-p2f export run.p2f --case case.toml -o ") + name), 0)
            << folder.read("stderr.txt");
    EXPECT_EQ(folder.read("out/mine.txt"), "stays");
    for (const std::string table :
         {"hydrostatics particulars", "hydrostatics stiffness", "forces exciting", "motions raos",
          "motions natural", "drift drift", "drift bodies", "drift energy", "impulse check",
          "impulse radiation", "impulse exciting"}) {
        const std::size_t gap = table.find(' ');
        const std::string command = table.substr(0, gap), name = table.substr(gap + 1),
                          density = command == "forces" || command == "impulse" ? " --density 1000 "
                                                                                : " --case case.toml ";
        EXPECT_EQ(folder.shell("vorda-p2f " + command + density + "--csv " + name + " run.p2f"), 0);
        EXPECT_GT(folder.read("stdout.txt").size(), 40u);
        EXPECT_EQ(folder.read("out/" + command + "_" + name + ".csv"), folder.read("stdout.txt")) << table;
        EXPECT_EQ(folder.read("new.csv/" + command + "_" + name + ".csv"), folder.read("stdout.txt"))
            << table;
    }
    EXPECT_NE(folder.read("out/about.csv").find("convention"), std::string::npos);
    // A series of periods.
    ASSERT_EQ(folder.shell("vorda-p2f export run.p2f -o s.vtu --period 2 5"), 0);
    for (const char *name : {"s.pvd", "s_period2.vtu", "s_period5.vtu"})
        EXPECT_TRUE(folder.exists(name)) << name;
}

// What a run does not have is told and left out.
TEST(ExportedFiles, LacksWhatTheRunLacks) {
    VORDA_NEEDS(WITH_NETCDF && WITH_HDF5);
    for (const bool radiation : {true, false}) {
        const CaseFolder folder;
        Pot pot;
        pot.IRAD = radiation ? 1 : -1;
        pot.IDIFF = radiation ? -1 : 1;
        prepare(folder, pot);
        make_mesh(folder, HULL);
        folder.solve();
        for (const char *name : {"r.nc", "r.h5", "r.vtu", "r.json", "r.csv", "r"}) {
            EXPECT_EQ(folder.shell(std::string("vorda-p2f export run.p2f -o ") + name), 0)
                << name << folder.read("stderr.txt");
            EXPECT_NE(folder.read("stdout.txt").find(radiation ? "set IDIFF=1" : "set IRAD=1"),
                      std::string::npos);
            EXPECT_TRUE(folder.exists(name));
        }
        const std::string made = folder.read("r.json");
        EXPECT_EQ(made.find("\"added_mass\"") != std::string::npos, radiation);
        EXPECT_EQ(made.find("\"excitation_force\"") != std::string::npos, !radiation);
        EXPECT_EQ(folder.shell("vorda-p2f plot run.p2f -o pictures"), 0) << folder.read("stderr.txt");
        // The wave past a body that is held.
        EXPECT_EQ(folder.shell("vorda-p2f export run.p2f -o a.vtu --animate 1 1"), radiation ? 1 : 0)
            << folder.read("stderr.txt");
        EXPECT_EQ(folder.exists("a.pvd"), !radiation);
    }
}

TEST(ExportedFiles, HaveFormatsThatAreDocumented) {
    const CaseFolder folder;
    ASSERT_EQ(folder.shell("vorda-p2f export --help"), 0);
    std::ifstream in(VORDA_SOURCE_DIR "/docs/export.md");
    const std::string document{std::istreambuf_iterator<char>(in), {}};
    for (const ExportFormat &format : export_formats()) {
        EXPECT_NE(document.find("| `" + std::string(format.extension) + "`"), std::string::npos)
            << format.extension;
        EXPECT_NE(folder.read("stdout.txt").find(format.extension), std::string::npos) << format.extension;
        if (format.package != nullptr) {
            EXPECT_NE(message_without_library(format.extension).find(format.package), std::string::npos);
        }
    }
}

TEST(ExportedFiles, IsNotThereAfterAFault) {
    VORDA_NEEDS(WITH_NETCDF && WITH_HDF5);
    const CaseFolder folder;
    solve_case(folder, CASES[0]);
    folder.write("short.p2f", folder.read("run.p2f").substr(0, 3000));
    const std::vector<std::string> before = folder.files();
    const struct {
        const char *arguments, *message;
    } rows[] = {
        {"export none.p2f -o x.nc", "none.p2f cannot be opened"},
        {"export short.p2f -o x.h5", "it is too short"},
        {"export run.gdf -o x.json", "no hand-over file"},
        {"export run.p2f -o x.xyz", "there is no format .xyz: .nc, .h5"},
        {"export run.p2f --case none.toml -o x.nc", "none.toml"},
        {"export run.p2f -o no/such/x.nc", "no/such/x.nc cannot be written"},
        {"export run.p2f -o no/such/x.h5", "no/such/x.h5 cannot be written"},
        {"export run.p2f -o no/such/x.vtu", "no/such/x.vtu cannot be written"},
        {"export run.p2f -o no/such/x", "cannot be made"},
        {"export run.p2f -o x.nc --period 2", "--period and --animate are for .vtu"},
        {"export run.p2f -o x.vtu --period 8", "no period 8"},
        {"export run.p2f -o x.vtu --period 1", "period 1 is a limit frequency"},
        {"export run.p2f -o x.vtu --animate 2 3", "no heading 3"},
        {"export run.p2f -o x.vtu --animate 4 1", "period 4 is a limit frequency"},
        {"plot run.p2f -o x --heading 3", "no heading 3"},
        {"plot run.p2f -o no/such/x", "cannot be made"},
        {"plot none.p2f -o x", "none.p2f cannot be opened"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(folder.shell(std::string("vorda-p2f ") + row.arguments), 1) << row.arguments;
        EXPECT_NE(folder.read("stderr.txt").find(row.message), std::string::npos)
            << row.arguments << ": " << folder.read("stderr.txt");
        EXPECT_EQ(folder.files(), before) << row.arguments;
    }
    // A file that may not grow beyond a block of 1024 bytes.
    for (const char *arguments :
         {"export run.p2f -o x.nc", "export run.p2f -o x.h5", "export run.p2f -o x.vtu",
          "export run.p2f -o x.json", "export run.p2f -o x", "plot run.p2f -o x",
          "export run.p2f -o x.vtu --animate 2 1"}) {
        EXPECT_EQ(folder.shell(std::string("ulimit -f 1; vorda-p2f ") + arguments), 1) << arguments;
        EXPECT_NE(folder.read("stderr.txt"), "") << arguments;
        EXPECT_EQ(folder.files(), before) << arguments;
    }
}

TEST(ExportedFiles, LeavesNothingOnAFullDisk) {
    VORDA_NEEDS(WITH_NETCDF && WITH_HDF5);
    SmallDisk folder("12k");
    if (!folder.mounted)
        GTEST_SKIP() << "a small file system cannot be mounted here";
    solve_case(folder, CASES[0]);
    for (const std::string arguments :
         {"export run.p2f -o small/x.nc", "export run.p2f -o small/x.h5", "export run.p2f -o small/x.vtu",
          "export run.p2f -o small/x.json", "export run.p2f -o small/x", "plot run.p2f -o small/x",
          "export run.p2f -o small/x.vtu --animate 2 1"}) {
        EXPECT_EQ(folder.shell("vorda-p2f " + arguments + " 2>told.txt; code=$?; ls small; exit $code"), 1)
            << arguments;
        EXPECT_EQ(folder.read("stdout.txt"), "") << arguments;
        EXPECT_NE(folder.read("told.txt").find("cannot be"), std::string::npos) << folder.read("told.txt");
    }
}

} // namespace
