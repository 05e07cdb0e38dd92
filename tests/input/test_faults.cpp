// Each message of the input stage, reached by spoiling one line or one file of a sound run. The truth is the
// list of messages itself.
#include "input_files.hpp"

namespace {

enum class Spoil { line, cut, all, remove };

struct Fault {
    const char *label;
    const char *file;
    Spoil how;
    int line;         // line: replaced; cut: lines kept
    std::string text; // what is put there
    std::vector<std::string> messages;
    std::string config = {}; // contents of config.vrd
};

void PrintTo(const Fault &row, std::ostream *out) {
    *out << row.label;
}

std::string spoiled(const Fault &row, const std::string &good) {
    switch (row.how) {
    case Spoil::line:
        return with_line(good, row.line, row.text);
    case Spoil::cut:
        return first_lines(good, row.line);
    default:
        return row.text;
    }
}

void expect_fault(const Fault &row, InputFiles files) {
    if (row.how == Spoil::remove)
        files.erase(row.file);
    else
        files[row.file] = spoiled(row, files[row.file]);
    if (!row.config.empty())
        files["config.vrd"] = row.config;
    const InputRun in(files, "box.fdf\n"); // the name that a row with IWADD=1 is asked for
    EXPECT_EQ(in.status, Status::failed);
    for (const std::string &text : row.messages)
        EXPECT_TRUE(in.folder.told(text)) << "no message '" << text << "' in\n" << in.folder.list_text();
    EXPECT_EQ(first_fault(), row.messages.front());
    EXPECT_FALSE(in.folder.exists("box.p2f"));
}

std::string label_of(const testing::TestParamInfo<Fault> &info) {
    return info.param.label;
}

class SingleFault : public testing::TestWithParam<Fault> {};
TEST_P(SingleFault, is_told) {
    expect_fault(GetParam(), good_files());
}

const char *const CONFIG_FAULT = " Error in reading input file CONFIG.VRD";
constexpr auto POT = "box.pot";
constexpr auto GDF = "box.gdf";
constexpr auto CONFIG = "config.vrd";

INSTANTIATE_TEST_SUITE_P(
    config, SingleFault,
    testing::Values(
        Fault{"letters", CONFIG, Spoil::all, 0, "MAXSCR = many\n", {CONFIG_FAULT}},
        Fault{"no_value", CONFIG, Spoil::all, 0, "MAXSCR =\n", {CONFIG_FAULT}},
        Fault{"real_for_int", CONFIG, Spoil::all, 0, "ISOLVE = 1.5\n", {CONFIG_FAULT}},
        Fault{"short_xbody", CONFIG, Spoil::all, 0, "XBODY = 1 2 3\n", {CONFIG_FAULT}},
        Fault{"nan_xbody", CONFIG, Spoil::all, 0, "XBODY = 1 2 nan 0\n", {CONFIG_FAULT}},
        Fault{"body_zero", CONFIG, Spoil::all, 0, "NEWMDS(0) = 1\n", {CONFIG_FAULT}},
        Fault{"body_letters", CONFIG, Spoil::all, 0, "NEWMDS(x) = 1\n", {CONFIG_FAULT}},
        Fault{"newmds_letters", CONFIG, Spoil::all, 0, "NEWMDS(2) = x\n", {CONFIG_FAULT}},
        Fault{"newmds_negative",
              CONFIG,
              Spoil::all,
              0,
              "NEWMDS(2) = -1\n",
              {"Value of NEWMDS is illegal In CONFIG file: NEWMDS=    -1"}},
        Fault{"newmds_huge",
              CONFIG,
              Spoil::all,
              0,
              "NEWMDS = 2000000000\n",
              {"Insufficient memory to allocate .pot file arrays"}},
        Fault{"iwadd", CONFIG, Spoil::all, 0, "IWADD = 2\n", {"Illegal value of IWADD=2"}},
        Fault{"iscatt", CONFIG, Spoil::all, 0, "ISCATT = 2\n", {"Illegal value of ISCATT=2"}},
        Fault{"iwadd_newmds",
              CONFIG,
              Spoil::all,
              0,
              "IWADD=1\nNEWMDS=1\n",
              {"Value of NEWMDS is not possible when IWADD=1"}},
        Fault{"isolve",
              CONFIG,
              Spoil::all,
              0,
              "ISOLVE=-2\nMAXSCR=1\n",
              {"Value of ISOLVE is illegal In CONFIG file: ISOLVE=    -2",
               "Value of MAXSCR is illegal In CONFIG file: MAXSCR=1"}},
        Fault{"i2nd", CONFIG, Spoil::all, 0, "I2ND=3\n", {"Value of I2ND is illegal in CONFIG file: I2ND=3"}},
        Fault{"isor",
              CONFIG,
              Spoil::all,
              0,
              "ISOR=-3\n",
              {"Value of ISOR is illegal in CONFIG file: ISOR=    -3"}},
        Fault{"irr",
              CONFIG,
              Spoil::all,
              0,
              "IRR=10\n",
              {"Value of IRR is illegal:", "                               IRR =:10"}}),
    label_of);

INSTANTIATE_TEST_SUITE_P(
    pot, SingleFault,
    testing::Values(
        Fault{"missing", POT, Spoil::remove, 0, "", {"Error opening POT file "}},
        Fault{"title", POT, Spoil::all, 0, "", {"Error reading POT file, header line"}},
        Fault{"i2nd_end", POT, Spoil::cut, 1, "", {"Error reading POT file, parameter I2ND"}},
        Fault{"i2nd_value", POT, Spoil::line, 2, " 2", {"Value of I2ND is illegal in POT file: I2ND=2"}},
        Fault{"isor_end", POT, Spoil::cut, 2, "", {"Error reading POT file, parameter ISOR"}},
        Fault{
            "isor_value", POT, Spoil::line, 3, " -1", {"Value of ISOR is illegal in POT file: ISOR=    -1"}},
        Fault{"i2nd_needs_isor", POT, Spoil::line, 2, " 1\n 0", {"Error: I2ND = 1 requires ISOR = 1"}},
        Fault{"irr_end", POT, Spoil::cut, 3, "", {"Error reading POT file, parameter IRR:"}},
        Fault{"irr_value",
              POT,
              Spoil::line,
              4,
              " 5",
              {"Value of IRR is illegal:", "                               IRR =:5"}},
        Fault{"irr_negative",
              POT,
              Spoil::line,
              4,
              " -1",
              {"Value of IRR is illegal:", "                               IRR =:    -1"}},
        Fault{"hbot_end", POT, Spoil::cut, 4, "", {"Error reading POT file, HBOT,XBODY,,... line"}},
        Fault{"hbot_inf",
              POT,
              Spoil::line,
              5,
              " inf 0 0 0 0",
              {"Error reading POT file, HBOT,XBODY,,... line"}},
        Fault{"options_end", POT, Spoil::cut, 5, "", {"Error reading POT file, IQUAD,ILOG,IDIAG line"}},
        Fault{"ilog", POT, Spoil::line, 4, " 1\n 50. 0 0 0 0\n 0 0 0", {"Set ILOG = 1, when IRR > 0"}},
        Fault{"problems_end", POT, Spoil::cut, 6, "", {"Error reading POT file, IRAD,IDIFF line"}},
        Fault{"irad", POT, Spoil::line, 7, " 2 0", {"Value of IRAD index is illegal in POT file"}},
        Fault{"idiff", POT, Spoil::line, 7, " 0 -2", {"Value of IDIFF index is illegal in POT file"}},
        Fault{
            "idiff_iwadd", POT, Spoil::line, 7, " 0 0", {"IDIFF must be -1 or 1 when IWADD=1"}, "IWADD=1\n"},
        Fault{"mode_end", POT, Spoil::cut, 7, "", {"Error reading POT file, MODE indices line"}},
        Fault{"mode_letters",
              POT,
              Spoil::line,
              8,
              " 1 0 1 O 0 0",
              {"Error reading POT file, MODE indices line"}},
        Fault{"nper_end", POT, Spoil::cut, 8, "", {"Error reading POT file, parameter NPER"}},
        Fault{"per_end", POT, Spoil::cut, 9, "", {"Error reading POT file, array of periods PER"}},
        Fault{"per_short", POT, Spoil::line, 9, " 9", {"Error reading POT file, array of periods PER"}},
        Fault{"per_huge_count",
              POT,
              Spoil::line,
              9,
              " 100000000",
              {"Error reading POT file, array of periods PER"}},
        Fault{"per_nan", POT, Spoil::line, 10, " 8. NaN", {"Error reading POT file, array of periods PER"}},
        Fault{
            "per_range", POT, Spoil::line, 10, " 8. 1e25", {"Error reading POT file, array of periods PER"}},
        Fault{"nbeta_end", POT, Spoil::cut, 10, "", {"Error reading POT file, parameter NBETA"}},
        Fault{"beta_end", POT, Spoil::cut, 11, "", {"Error reading POT file, array of heading angles BETA"}},
        Fault{"beta_huge_count",
              POT,
              Spoil::line,
              11,
              " 100000000",
              {"Error reading POT file, array of heading angles BETA"}},
        Fault{"limit_period_iwadd",
              POT,
              Spoil::line,
              7,
              " 0 1\n 1 1 1 1 1 1\n 1\n 0.\n 1\n 0.",
              {"Do not use IWADD=1 option for zero or infinite periods"},
              "IWADD=1\n"}),
    label_of);

INSTANTIATE_TEST_SUITE_P(
    gdf, SingleFault,
    testing::Values(
        Fault{"missing", GDF, Spoil::remove, 0, "", {"Error opening GDF file "}},
        Fault{"title", GDF, Spoil::all, 0, "", {"Error reading GDF file, header line"}},
        Fault{"ulen_end", GDF, Spoil::cut, 1, "", {"Error reading GDF file, ULEN,GRAV line"}},
        Fault{"gravity", GDF, Spoil::line, 2, " 1. 0.", {"Error reading GDF file, ULEN,GRAV line"}},
        Fault{"ulen_small",
              GDF,
              Spoil::line,
              2,
              " 1.E-6 9.8",
              {"Error in GDF file: Body length ULEN less than 1.E-5"}},
        Fault{"symmetry_end", GDF, Spoil::cut, 2, "", {"Error reading GDF file, symmetry indices ISX,ISY"}},
        Fault{"count_end", GDF, Spoil::cut, 3, "", {"Error reading GDF file, NEQN line"}},
        Fault{"count_zero", GDF, Spoil::line, 4, " 0", {"Error reading GDF file, NEQN line"}},
        Fault{"count_negative", GDF, Spoil::line, 4, " -2", {"Error reading GDF file, NEQN line"}},
        Fault{
            "count_too_large_int", GDF, Spoil::line, 4, " 3000000000", {"Error reading GDF file, NEQN line"}},
        Fault{"count_million",
              GDF,
              Spoil::line,
              4,
              " 1000000",
              {"Error reading GDF file, vertices XVER of panel N=3"}},
        Fault{"vertices_end", GDF, Spoil::cut, 5, "", {"Error reading GDF file, vertices XVER of panel N=1"}},
        Fault{"vertices_letters",
              GDF,
              Spoil::line,
              7,
              " 4 2 -2  4 0 -2  0 0 -2  0 2 -z",
              {"Error reading GDF file, vertices XVER of panel N=2"}},
        Fault{"vertex_above",
              GDF,
              Spoil::line,
              7,
              " 4 2 -2  4 0 -2  0 0 -2  0 2 0.1",
              {"Error in GDF file: vertex above free surface for panel N=2"}},
        Fault{"dipoles_end", GDF, Spoil::line, 4, " 2 1", {"Error reading GDF file, incorrect dipole input"}},
        Fault{"extra",
              GDF,
              Spoil::line,
              7,
              " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\n 7",
              {"Error:  Extra data at end of geometric data file"}},
        Fault{"extra_text",
              GDF,
              Spoil::line,
              7,
              " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\nend",
              {"Error:  Extra data at end of geometric data file"}},
        Fault{"three_in_surface",
              GDF,
              Spoil::line,
              7,
              " 4 2 0  4 0 0  0 0 0  0 2 -2",
              {"Error: Three vertices on the free surface of panel I= 2"}},
        Fault{"forgotten_length",
              GDF,
              Spoil::line,
              2,
              " 0. 9.8\n -4",
              {" Value of NBODY in global GDF is illegal:  NBODY=    -4"}}),
    label_of);

// What only the cross-checks see, first fault first.
INSTANTIATE_TEST_SUITE_P(
    cross_checks, SingleFault,
    testing::Values(
        Fault{"symmetry_index", GDF, Spoil::line, 3, " 2 0", {"Value of a symmetry index is illegal"}},
        Fault{"unmirrored_wall", GDF, Spoil::line, 3, " -2 0", {"Value of a symmetry index is illegal"}},
        Fault{"mode_index", POT, Spoil::line, 8, " 1 0 1 0 7 0", {"Value of a mode index is illegal, I=5"}},
        Fault{"two_options",
              POT,
              Spoil::line,
              6,
              " 2 2 2",
              {" Value of IQUAD index is illegal ", " Value of ILOG index is illegal ",
               " Value of IDIAG index is illegal "}},
        Fault{"nothing_wanted", POT, Spoil::line, 7, " -1 -1", {"Error return: both IRAD=-1 and IDIFF=-1"}},
        Fault{"no_modes",
              POT,
              Spoil::line,
              8,
              " 0 0 0 0 0 0",
              {"IRAD=0 and all mode indices IMODE(I)=0",
               "Error return: IDIFF=0 and all mode indices IMODE(I)=0"}},
        Fault{"negative_counts",
              POT,
              Spoil::line,
              9,
              " -3\n -2",
              {"Number of wave periods is negative: NPER=    -3",
               "Number of wave headings is negative: NBETA=    -2"}},
        Fault{"no_headings",
              POT,
              Spoil::line,
              11,
              " 0",
              {"No wave headings specified for diffraction problem"}},
        Fault{"tank_panel",
              POT,
              Spoil::line,
              4,
              " 13",
              {"Reference panel of the tank is above NEQN: IRR-10=3"}}),
    label_of);

class BodiesFault : public testing::TestWithParam<Fault> {};
TEST_P(BodiesFault, is_told) {
    expect_fault(GetParam(), good_bodies());
}

const char *const BODY_FAULT = "Error reading GDF file for body N=2";
INSTANTIATE_TEST_SUITE_P(
    index, BodiesFault,
    testing::Values(
        Fault{"nbody_end", GDF, Spoil::cut, 2, "", {"Error reading global GDF file:  parameter NBODY "}},
        Fault{"nbody_zero", GDF, Spoil::line, 3, " 0", {" Value of NBODY in global GDF is illegal:  NBODY="}},
        Fault{"nbody_huge",
              GDF,
              Spoil::line,
              3,
              " 2000000000",
              {"Insufficient memory to allocate NBODY arrays"}},
        Fault{"nbody_above_file",
              GDF,
              Spoil::line,
              3,
              " 1000",
              {"Error reading GDF filename in global GDF file for body N=3"}},
        Fault{"name_end",
              GDF,
              Spoil::cut,
              7,
              "",
              {"Error reading GDF filename in global GDF file for body N=2"}},
        Fault{"place_end",
              GDF,
              Spoil::cut,
              4,
              "",
              {"Error reading XBODY coordinates in global GDF file for body N=1"}},
        Fault{"problem_end",
              GDF,
              Spoil::cut,
              5,
              "",
              {"Error reading IRAD,IDIFF in global GDF file for body N=1"}},
        Fault{"irad", GDF, Spoil::line, 6, " 2 0", {"Value of IRAD index is illegal for body N=1"}},
        Fault{"idiff", GDF, Spoil::line, 10, " 0 3", {"Value of IDIFF index is illegal for body N=2"}},
        Fault{"mode_end",
              GDF,
              Spoil::cut,
              10,
              "",
              {"Error reading array MODE in global GDF file for body N=2"}},
        Fault{"type_end",
              GDF,
              Spoil::line,
              0,
              "",
              {"Error reading array BDTYP/FSDMP in global GDF file "},
              "IFSLID=1\n"}),
    label_of);
INSTANTIATE_TEST_SUITE_P(
    files, BodiesFault,
    testing::Values(
        Fault{"missing", "b.gdf", Spoil::remove, 0, "", {"Error opening GDF file for body N=2"}},
        Fault{"title", "b.gdf", Spoil::all, 0, "", {"Error reading GDF file header for body N=2"}},
        Fault{
            "ulen_end", "b.gdf", Spoil::cut, 1, "", {"Error reading GDF file, ULEN,GRAV line for body N=2"}},
        Fault{"ulen_small",
              "a.gdf",
              Spoil::line,
              2,
              " 0. 9.8",
              {" Body length ULEN less than 1.E-05 for body N=1"}},
        Fault{"gravity",
              "b.gdf",
              Spoil::line,
              2,
              " 2. 32.2",
              {"Error in value of GRAV in GDF file for body N=2"}},
        Fault{"symmetry_end",
              "b.gdf",
              Spoil::cut,
              2,
              "",
              {"Error reading GDF file, symmetry indices ISX,ISY for body N=2"}},
        Fault{"wall", "b.gdf", Spoil::line, 3, " 0 -1", {"ISX=-1 or ISY=-1 for body N=2"}},
        Fault{"mirrored_wall", "b.gdf", Spoil::line, 3, " -2 0", {"ISX=-1 or ISY=-1 for body N=2"}},
        Fault{"symmetry_index", "a.gdf", Spoil::line, 3, " 3 0", {"Value of a symmetry index is illegal"}},
        Fault{"count_end", "b.gdf", Spoil::cut, 3, "", {"Error reading GDF file, NEQN line for body N=2"}},
        Fault{
            "count_zero", "b.gdf", Spoil::line, 4, " 0", {"Error reading GDF file, NEQN line for body N=2"}},
        Fault{"sum_above_int",
              "b.gdf",
              Spoil::line,
              4,
              " 2147483647",
              {"RAM is not sufficient to read .gdf inputs for body N=2"}},
        Fault{"vertices_end",
              "b.gdf",
              Spoil::cut,
              6,
              "",
              {"Error reading GDF file, vertices XVER of panel N=2", BODY_FAULT}},
        Fault{"vertex_above",
              "b.gdf",
              Spoil::line,
              6,
              " 4 0 -2  4 2 2",
              {"Error in GDF file: vertex above free surface for panel N=1", BODY_FAULT}},
        Fault{"dipoles",
              "b.gdf",
              Spoil::line,
              4,
              " 2 1",
              {"Error reading GDF file, incorrect dipole input", BODY_FAULT}},
        Fault{"extra_zero",
              "b.gdf",
              Spoil::line,
              7,
              " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\n 0",
              {"Error in GDF file: extra data at end of file for body N=2"}},
        Fault{"extra_text",
              "b.gdf",
              Spoil::line,
              7,
              " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\n x",
              {"Error in GDF file: extra data at end of file for body N=2"}},
        Fault{"three_in_surface",
              "b.gdf",
              Spoil::line,
              7,
              " 4 2 0  4 0 0  0 0 0  0 2 -2",
              {"Error: Three vertices on the free surface of panel I= 2", BODY_FAULT}}),
    label_of);

TEST(InputFaults, the_drift_damping_run_has_no_global_file) {
    InputFiles files = good_bodies();
    files["config.vrd"] = "IWADD=1\n";
    files["box.pot"] = with_line(GOOD_POT, 7, " 0 1");
    for (const int bodies : {1, 2}) {
        files["box.gdf"] = with_line(GOOD_GLOBAL, 3, std::to_string(bodies));
        const InputRun in(files, "box.fdf\n");
        EXPECT_EQ(in.status, Status::failed);
        EXPECT_EQ(first_fault(), bodies == 1 ? "A global GDF file is not possible when IWADD=1"
                                             : "NBODY must be 1 when IWADD=1");
    }
}

// Tests of INCHK that the files of one small body do not reach: a sound state, one thing wrong.
struct Check {
    const char *text;
    void (*spoil)(RunState &);
};
void PrintTo(const Check &row, std::ostream *out) {
    *out << row.text;
}
class CrossCheck : public testing::TestWithParam<Check> {};
TEST_P(CrossCheck, is_told) {
    InputRun in(good_files());
    ASSERT_EQ(in.status, Status::ok) << in.folder.list_text();
    GetParam().spoil(in.run);
    EXPECT_EQ(INCHK(in.run), Status::failed);
    EXPECT_TRUE(in.folder.told(GetParam().text)) << in.folder.list_text();
}
void drift(RunState &run) {
    run.opt.IWADD = 1;
    run.opt.ISOR = 1;
}
INSTANTIATE_TEST_SUITE_P(
    state, CrossCheck,
    testing::Values(
        Check{"                               MAXSCR=2",
              [](RunState &r) { r.opt.ISOLVE = 1, r.mesh.NEQN = 7; }},
        Check{"                                 NEQN=7",
              [](RunState &r) { r.opt.ISOLVE = 1, r.mesh.NEQN = 7; }},
        Check{" MAXSCR too small for block iteration:",
              [](RunState &r) { r.opt.ISOLVE = 3, r.opt.NBLKSZ = 5; }},
        Check{"                  Dimension of blocks=5",
              [](RunState &r) { r.opt.ISOLVE = 3, r.opt.NBLKSZ = 5; }},
        Check{"Combination of wall plus NBODY is illegal",
              [](RunState &r) { r.opt.ISY = -1, r.bodies.NBODY = 2; }},
        Check{"Value of IDIFF index is illegal", [](RunState &r) { r.opt.IDIFF = 2; }},
        Check{"It is not possible with walls when IWADD=1", [](RunState &r) { drift(r), r.opt.ISY = -1; }},
        Check{"NBODY must be 1 when IWADD=1", [](RunState &r) { drift(r), r.bodies.NBODY = 2; }},
        Check{"IRR must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.IRR = 1; }},
        Check{"IRR must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.IRRX = 1; }},
        Check{"ISOR must be 1 when IWADD=1", [](RunState &r) { drift(r), r.opt.ISOR = 0; }},
        Check{"ISOLVE must be 0 or 1 when IWADD=1", [](RunState &r) { drift(r), r.opt.ISOLVE = 2; }},
        Check{"ISCATT must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.ISCATT = 1; }},
        Check{"I2ND must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.I2ND = 1; }},
        Check{"I2ND must be 0 when there are dipoles",
              [](RunState &r) { r.dipoles.IDIPOL = true, r.opt.I2ND = 1; }},
        Check{"IWADD must be 0 when there are dipoles",
              [](RunState &r) { drift(r), r.dipoles.IDIPOL = true; }}));

TEST(CrossCheckFirstPass, leaves_the_modes_alone) {
    InputRun in(good_files());
    in.run.bodies.MODE.fill(0);
    in.run.bodies.MODE(6) = 9;
    in.run.opt.IMDRUN = -1;
    EXPECT_EQ(INCHK(in.run), Status::ok) << in.folder.list_text();
}

} // namespace
