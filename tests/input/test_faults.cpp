// Each message of the input stage, reached by spoiling one line or one file of a sound run. The truth is the
// list of messages itself.
#include "input_files.hpp"

namespace {

// A way to spoil a file: it is kept up to a line, a line is replaced, the whole file is, or it is gone.
struct Spoil {
    enum Way { cut, put, whole, gone } way;
    int line;
    std::string text;
};
Spoil cut(int line) {
    return {Spoil::cut, line, ""};
}
Spoil put(int line, const std::string &text) {
    return {Spoil::put, line, text};
}
Spoil whole(const std::string &text) {
    return {Spoil::whole, 0, text};
}
Spoil gone() {
    return {Spoil::gone, 0, ""};
}

struct Fault {
    const char *file;
    Spoil spoil;
    std::vector<std::string> messages; // the first fault first
    std::string config = {};           // contents of config.vrd
};
void expect_fault(const Fault &row, InputFiles files) {
    SCOPED_TRACE(row.messages.front());
    const Spoil &spoil = row.spoil;
    const std::string good = files[row.file];
    files[row.file] = spoil.way == Spoil::cut   ? first_lines(good, spoil.line)
                      : spoil.way == Spoil::put ? with_line(good, spoil.line, spoil.text)
                                                : spoil.text;
    if (spoil.way == Spoil::gone)
        files.erase(row.file);
    if (!row.config.empty())
        files["config.vrd"] = row.config;
    const InputRun in(files, "box.fdf\n"); // the name that a row with IWADD=1 is asked for
    EXPECT_EQ(in.status, Status::failed);
    for (const std::string &text : row.messages)
        EXPECT_TRUE(in.folder.told(text)) << "no message '" << text << "' in\n" << in.folder.list_text();
    EXPECT_EQ(first_fault(), row.messages.front());
    EXPECT_FALSE(in.folder.exists("box.p2f"));
}

const char *const CONFIG_FAULT = " Error in reading input file CONFIG.VRD";
constexpr auto POT = "box.pot";
constexpr auto GDF = "box.gdf";
constexpr auto CONFIG = "config.vrd";

// clang-format off
TEST(SingleFaults, of_config) {
    for (const Fault &row : std::vector<Fault>{
        {CONFIG, whole("MAXSCR = many\n"), {CONFIG_FAULT}},
        {CONFIG, whole("XBODY = 1 2 3\n"), {CONFIG_FAULT}},
        {CONFIG, whole("NEWMDS(0) = 1\n"), {CONFIG_FAULT}},
        {CONFIG, whole("NEWMDS(x) = 1\n"), {CONFIG_FAULT}},
        {CONFIG, whole("NEWMDS(2) = -1\n"), {"Value of NEWMDS is illegal In CONFIG file: NEWMDS=    -1"}},
        {CONFIG, whole("NEWMDS = 2000000000\n"), {"Insufficient memory to allocate .pot file arrays"}},
        {CONFIG, whole("IWADD = 2\n"), {"Illegal value of IWADD=2"}},
        {CONFIG, whole("ISCATT = 2\n"), {"Illegal value of ISCATT=2"}},
        {CONFIG, whole("IWADD=1\nNEWMDS=1\n"), {"Value of NEWMDS is not possible when IWADD=1"}},
        {CONFIG, whole("ISOLVE=-2\nMAXSCR=1\n"),
         {"Value of ISOLVE is illegal In CONFIG file: ISOLVE=    -2", "Value of MAXSCR is illegal In CONFIG file: MAXSCR=1"}},
        {CONFIG, whole("I2ND=3\n"), {"Value of I2ND is illegal in CONFIG file: I2ND=3"}},
        {CONFIG, whole("ISOR=-3\n"), {"Value of ISOR is illegal in CONFIG file: ISOR=    -3"}},
        {CONFIG, whole("IRR=10\n"), {"Value of IRR is illegal:", "                               IRR =:10"}},
    })
        expect_fault(row, good_files());
}

TEST(SingleFaults, of_pot) {
    for (const Fault &row : std::vector<Fault>{
        {POT, gone(), {"Error opening POT file "}},
        {POT, put(2, " 2"), {"Value of I2ND is illegal in POT file: I2ND=2"}},
        {POT, put(3, " -1"), {"Value of ISOR is illegal in POT file: ISOR=    -1"}},
        {POT, put(2, " 1\n 0"), {"Error: I2ND = 1 requires ISOR = 1"}},
        {POT, put(4, " 5"), {"Value of IRR is illegal:", "                               IRR =:5"}},
        {POT, put(5, " inf 0 0 0 0"), {"Error reading POT file, HBOT,XBODY,,... line"}},
        {POT, put(4, " 1\n 50. 0 0 0 0\n 0 0 0"), {"Set ILOG = 1, when IRR > 0"}},
        {POT, put(7, " 2 0"), {"Value of IRAD index is illegal in POT file"}},
        {POT, put(7, " 0 -2"), {"Value of IDIFF index is illegal in POT file"}},
        {POT, put(7, " 0 0"), {"IDIFF must be -1 or 1 when IWADD=1"}, "IWADD=1\n"},
        {POT, put(8, " 1 0 1 O 0 0"), {"Error reading POT file, MODE indices line"}},
        {POT, put(9, " 9"), {"Error reading POT file, array of periods PER"}},
        {POT, put(10, " 8. NaN"), {"Error reading POT file, array of periods PER"}},
        {POT, put(10, " 8. 1e25"), {"Error reading POT file, array of periods PER"}},
        {POT, put(11, " 100000000"), {"Error reading POT file, array of heading angles BETA"}},
        {POT, put(7, " 0 1\n 1 1 1 1 1 1\n 1\n 0.\n 1\n 0."),
         {"Do not use IWADD=1 option for zero or infinite periods"}, "IWADD=1\n"},
    })
        expect_fault(row, good_files());
}

TEST(SingleFaults, of_gdf) {
    for (const Fault &row : std::vector<Fault>{
        {GDF, gone(), {"Error opening GDF file "}},
        {GDF, put(2, " 1. 0."), {"Error reading GDF file, ULEN,GRAV line"}},
        {GDF, put(2, " 1.E-6 9.8"), {"Error in GDF file: Body length ULEN less than 1.E-5"}},
        {GDF, put(4, " 0"), {"Error reading GDF file, NEQN line"}},
        {GDF, put(4, " 1000000"), {"Error reading GDF file, vertices XVER of panel N=3"}},
        {GDF, put(7, " 4 2 -2  4 0 -2  0 0 -2  0 2 -z"), {"Error reading GDF file, vertices XVER of panel N=2"}},
        {GDF, put(7, " 4 2 -2  4 0 -2  0 0 -2  0 2 0.1"), {"Error in GDF file: vertex above free surface for panel N=2"}},
        {GDF, put(4, " 2 1"), {"Error reading GDF file, incorrect dipole input"}},
        {GDF, put(7, " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\n 7"), {"Error:  Extra data at end of geometric data file"}},
        {GDF, put(7, " 4 2 0  4 0 0  0 0 0  0 2 -2"), {"Error: Three vertices on the free surface of panel I= 2"}},
        {GDF, put(2, " 0. 9.8\n -4"), {" Value of NBODY in global GDF is illegal:  NBODY=    -4"}},
    })
        expect_fault(row, good_files());
}

// What only the cross-checks see, first fault first.
TEST(SingleFaults, of_cross_checks) {
    for (const Fault &row : std::vector<Fault>{
        {GDF, put(3, " 2 0"), {"Value of a symmetry index is illegal"}},
        {GDF, put(3, " -2 0"), {"Value of a symmetry index is illegal"}},
        {POT, put(8, " 1 0 1 0 7 0"), {"Value of a mode index is illegal, I=5"}},
        {POT, put(6, " 2 2 2"),
         {" Value of IQUAD index is illegal ", " Value of ILOG index is illegal ", " Value of IDIAG index is illegal "}},
        {POT, put(7, " -1 -1"), {"Error return: both IRAD=-1 and IDIFF=-1"}},
        {POT, put(8, " 0 0 0 0 0 0"),
         {"IRAD=0 and all mode indices IMODE(I)=0", "Error return: IDIFF=0 and all mode indices IMODE(I)=0"}},
        {POT, put(9, " -3\n -2"),
         {"Number of wave periods is negative: NPER=    -3", "Number of wave headings is negative: NBETA=    -2"}},
        {POT, put(11, " 0"), {"No wave headings specified for diffraction problem"}},
        {POT, put(4, " 11"), {"IDIFF must be -1 for a fully filled tank"}},
        {POT, put(4, " 13"), {"Reference panel of the tank is above NEQN: IRR-10=3"}},
    })
        expect_fault(row, good_files());
}

const char *const BODY_FAULT = "Error reading GDF file for body N=2";
TEST(BodiesFaults, of_index) {
    for (const Fault &row : std::vector<Fault>{
        {GDF, put(3, " 0"), {" Value of NBODY in global GDF is illegal:  NBODY="}},
        {GDF, put(3, " 2000000000"), {"Insufficient memory to allocate NBODY arrays"}},
        {GDF, put(3, " 1000"), {"Error reading GDF filename in global GDF file for body N=3"}},
        {GDF, put(6, " 2 0"), {"Value of IRAD index is illegal for body N=1"}},
        {GDF, put(10, " 0 3"), {"Value of IDIFF index is illegal for body N=2"}},
        {GDF, put(0, ""), {"Error reading array BDTYP/FSDMP in global GDF file "}, "IFSLID=1\n"},
    })
        expect_fault(row, good_bodies());
}
TEST(BodiesFaults, of_files) {
    for (const Fault &row : std::vector<Fault>{
        {"b.gdf", gone(), {"Error opening GDF file for body N=2"}},
        {"a.gdf", put(2, " 0. 9.8"), {" Body length ULEN less than 1.E-05 for body N=1"}},
        {"b.gdf", put(2, " 2. 32.2"), {"Error in value of GRAV in GDF file for body N=2"}},
        {"b.gdf", put(3, " 0 -1"), {"ISX=-1 or ISY=-1 for body N=2"}},
        {"a.gdf", put(3, " 3 0"), {"Value of a symmetry index is illegal"}},
        {"b.gdf", put(4, " 0"), {"Error reading GDF file, NEQN line for body N=2"}},
        {"b.gdf", put(4, " 2147483647"), {"RAM is not sufficient to read .gdf inputs for body N=2"}},
        {"b.gdf", put(6, " 4 0 -2  4 2 2"), {"Error in GDF file: vertex above free surface for panel N=1", BODY_FAULT}},
        {"b.gdf", put(4, " 2 1"), {"Error reading GDF file, incorrect dipole input", BODY_FAULT}},
        {"b.gdf", put(7, " 4 2 -2  4 0 -2  0 0 -2  0 2 -2\n 0"),
         {"Error in GDF file: extra data at end of file for body N=2"}},
        {"b.gdf", put(7, " 4 2 0  4 0 0  0 0 0  0 2 -2"),
         {"Error: Three vertices on the free surface of panel I= 2", BODY_FAULT}},
    })
        expect_fault(row, good_bodies());
}

// clang-format on

// Every file, cut before any of its lines.
TEST(InputFaults, a_file_that_ends_early) {
    const std::string in_global = " in global GDF file for body N=", body2 = " for body N=2";
    const struct {
        const char *file;
        InputFiles files;
        std::string prefix;
        std::vector<std::string> ends;
    } rows[] = {
        {POT,
         good_files(),
         "Error reading POT file, ",
         {"header line", "parameter I2ND", "parameter ISOR", "parameter IRR:", "HBOT,XBODY,,... line",
          "IQUAD,ILOG,IDIAG line", "IRAD,IDIFF line", "MODE indices line", "parameter NPER",
          "array of periods PER", "parameter NBETA", "array of heading angles BETA"}},
        {GDF,
         good_files(),
         "Error reading GDF file, ",
         {"header line", "ULEN,GRAV line", "symmetry indices ISX,ISY", "NEQN line",
          "vertices XVER of panel N=1", "vertices XVER of panel N=1", "vertices XVER of panel N=2"}},
        {GDF,
         good_bodies(),
         "Error reading ",
         {"GDF file, header line", "GDF file, ULEN,GRAV line", "global GDF file:  parameter NBODY ",
          "GDF filename" + in_global + "1", "XBODY coordinates" + in_global + "1",
          "IRAD,IDIFF" + in_global + "1", "array MODE" + in_global + "1", "GDF filename" + in_global + "2"}},
        {"b.gdf",
         good_bodies(),
         "Error reading GDF file",
         {" header" + body2, ", ULEN,GRAV line" + body2, ", symmetry indices ISX,ISY" + body2,
          ", NEQN line" + body2, ", vertices XVER of panel N=1"}},
    };
    for (const auto &row : rows)
        for (std::size_t k = 0; k < row.ends.size(); ++k)
            expect_fault({row.file, cut(static_cast<int>(k)), {row.prefix + row.ends[k]}}, row.files);
}

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
void drift(RunState &run) {
    run.opt.IWADD = 1;
    run.opt.ISOR = 1;
}
// clang-format off
TEST(CrossChecks, of_the_state) {
    for (const Check &check : std::vector<Check>{
        {"                               MAXSCR=2", [](RunState &r) { r.opt.ISOLVE = 1, r.mesh.NEQN = 7; }},
        {"                                 NEQN=7", [](RunState &r) { r.opt.ISOLVE = 1, r.mesh.NEQN = 7; }},
        {" MAXSCR too small for block iteration:", [](RunState &r) { r.opt.ISOLVE = 3, r.opt.NBLKSZ = 5; }},
        {"                  Dimension of blocks=5", [](RunState &r) { r.opt.ISOLVE = 3, r.opt.NBLKSZ = 5; }},
        {"Combination of wall plus NBODY is illegal", [](RunState &r) { r.opt.ISY = -1, r.bodies.NBODY = 2; }},
        {"Value of IDIFF index is illegal", [](RunState &r) { r.opt.IDIFF = 2; }},
        {"It is not possible with walls when IWADD=1", [](RunState &r) { drift(r), r.opt.ISY = -1; }},
        {"NBODY must be 1 when IWADD=1", [](RunState &r) { drift(r), r.bodies.NBODY = 2; }},
        {"IRR must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.IRR = 1; }},
        {"IRR must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.IRRX = 1; }},
        {"ISOR must be 1 when IWADD=1", [](RunState &r) { drift(r), r.opt.ISOR = 0; }},
        {"ISOLVE must be 0 or 1 when IWADD=1", [](RunState &r) { drift(r), r.opt.ISOLVE = 2; }},
        {"ISCATT must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.ISCATT = 1; }},
        {"I2ND must be 0 when IWADD=1", [](RunState &r) { drift(r), r.opt.I2ND = 1; }},
        {"I2ND must be 0 when there are dipoles", [](RunState &r) { r.dipoles.IDIPOL = true, r.opt.I2ND = 1; }},
        {"IWADD must be 0 when there are dipoles", [](RunState &r) { drift(r), r.dipoles.IDIPOL = true; }},
    }) {
        SoundRun in(good_files());
        check.spoil(in.run);
        EXPECT_EQ(INCHK(in.run), Status::failed);
        EXPECT_TRUE(in.folder.told(check.text)) << check.text << in.folder.list_text();
    }
}
// clang-format on

TEST(CrossCheckFirstPass, leaves_the_modes_alone) {
    InputRun in(good_files());
    in.run.bodies.MODE.fill(0);
    in.run.bodies.MODE(6) = 9;
    in.run.opt.IMDRUN = -1;
    EXPECT_EQ(INCHK(in.run), Status::ok) << in.folder.list_text();
}

// What is no fault and may be a mistake is told, with its place.
TEST(Warnings, name_the_place_and_what_was_taken) {
    const struct {
        const char *name;
        InputFiles files;
        std::vector<const char *> told;
    } rows[] = {
        {"ISOR in both files",
         {{"config.vrd", "ISOR = 0\n"}},
         {"WARNING: a read of the POT file", "box.pot, line 4: HBOT, XBODY"}},
        {"one number too many",
         {{"box.pot", with_line(GOOD_POT, 5, " 3. 0 0 0 0 7")}},
         {"WARNING: a line of the POT file holds more numbers", "left over: \"7\""}},
        {"a mistyped keyword",
         {{"config.vrd", "IPRIO=3\n"}},
         {"WARNING: unknown keyword in the configuration file: IPRIO",
          "config.vrd, line 1; the nearest is IPERIO"}},
        {"behind column 80",
         {{"config.vrd", "MAXSCR=5" + std::string(75, ' ') + "17\n"}},
         {"WARNING: text behind column 80", "config.vrd, line 1"}},
        {"a marker in the wrong column",
         {{"box.gdf", with_line(GOOD_GDF, 4, "2 1")}},
         {"WARNING: a second number behind NEQN does not count as NDIPB", "box.gdf, line 4: \"1\""}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const InputRun in(good_files(row.files));
        for (const char *text : row.told)
            EXPECT_TRUE(in.folder.list_has(text)) << text << in.folder.list_text();
    }
    const SoundRun silent(good_files({{"config.vrd", "! a comment = 3\nMAXSCR = 99 of 100\n"}}));
    EXPECT_FALSE(silent.folder.list_has("WARNING")) << silent.folder.list_text();
}

// Faults of value tell where the value stands and what it is.
TEST(FaultDetails, name_file_line_and_value) {
    const struct {
        InputFiles files;
        const char *told;
    } rows[] = {
        {good_files({{"box.pot", with_line(GOOD_POT, 7, " 3 0")}}), "box.pot, line 7: found 3"},
        {good_files({{"box.gdf", with_line(GOOD_GDF, 3, " 3 0")}}), "ISX=3, ISY=0"},
        {good_files({{"box.gdf", with_line(GOOD_GDF, 2, " 1. -9.8")}}),
         "box.gdf, line 2: gravity must be above 0, found -9.8000E+00"},
        {good_files({{"box.gdf", with_line(GOOD_GDF, 4, " 0")}}), "box.gdf, line 4: the number of panels"},
        {good_files({{"box.gdf", std::string(GOOD_GDF) + "1 0 0 0\n"}}), "dipole records without NDIPB"},
        {good_bodies({{"box.gdf", with_line(GOOD_GLOBAL, 3, " 0")}}), "box.gdf, line 3"},
        {good_bodies({{"box.gdf", with_line(GOOD_GLOBAL, 4, " ")}}), "box.gdf, line 4: the line is empty"},
        {good_bodies({{"b.gdf", with_line(GOOD_GDF, 2, " 2. 1.6")}}),
         "found  1.6000E+00, the global file has"},
        {good_files({{"box.pot", with_line(GOOD_POT, 5, " 3e6 0 0 0 0")}}), "give HBOT = 0 for deep water"},
        {good_files({{"box.pot", with_line(GOOD_POT, 5, " 0.5 0 0 0 0")}}), "of body 1, vertex"},
        {good_bodies({{"box.gdf", with_line(GOOD_GLOBAL, 9, " 0 -10 -49 0")}}),
         "Error: vertex below the bottom, z below -HBOT, for panel I=3"},
        {good_bodies({{"box.gdf", with_line(GOOD_GLOBAL, 9, " 0 -10 -49 0")}}),
         "panel 1 of body 2, vertex 3"},
    };
    for (const auto &row : rows) {
        const InputRun in(row.files);
        EXPECT_EQ(in.status, Status::failed) << row.told;
        EXPECT_TRUE(in.folder.list_has(row.told)) << row.told << in.folder.list_text();
    }
}

} // namespace
