// What sound configuration and control files put into the run state. Wanted values are worked out by hand
// from the meaning of each input.
#include "input_files.hpp"

#include <cmath>

namespace {

constexpr f32 EPS = 4 * 1.2e-7f; // a few roundings of single precision

TEST(Configuration, settings_win_and_shorten_the_control_file) {
    const SoundRun in(
        good_files({{"config.vrd", "\xEF\xBB\xBFmaxscr = 100\r\n"
                                   "no setting\n= 3\n   = 4\nUNKNOWN = 5\n"
                                   " IsOlVe_note=0 ignored\nISOLVE = 9\nISOLVE = -1\n"
                                   "ISOR=1\nIRR=12\nXBODY=1.D0,2 3*0\nIQUAD=1\nILOG=1\nIDIAG=1\nI2ND=0\n"
                                   "IUSESCR=1\nNTRD=3\nISCATT=1\nIPERIO=2\nIFSLID=1\n"},
                    {"box.pot", "short\n 50.\n 0 -1\n 1 0 1 0 0 0\n 1\n 2.\n 1\n 90.\n"}}));
    const Options &opt = in.run.opt;
    const std::vector<int> got = {opt.MAXSCR, opt.ISOLVE, opt.ISOLVN, opt.ISOR,  opt.IRR,
                                  opt.IRRX,   opt.IQUAD,  opt.ILOG,   opt.IDIAG, opt.IUSESCR,
                                  opt.NTRD,   opt.ISCATT, opt.IFSLID};
    EXPECT_EQ(got, (std::vector<int>{100, 0, 1, 1, 0, 2, 1, 1, 1, 1, 3, 1, 1}));
    EXPECT_FLOAT_EQ(in.run.bodies.XBODY(1, 1), 0.5f); // ULEN is 2
    EXPECT_FLOAT_EQ(in.run.bodies.XBODY(2, 1), 1.0f);
    EXPECT_FLOAT_EQ(opt.HBOT, 25.0f);
    EXPECT_FLOAT_EQ(in.run.periods.PER(1), PI2 / 2);
    EXPECT_NEAR(in.run.periods.SINBET(1), 1, EPS);
    EXPECT_NEAR(in.run.periods.COSBET(1), 0, EPS);
}

TEST(Configuration, some_options_stay_in_the_control_file) {
    const SoundRun in(
        good_files({{"config.vrd", "ILOG=0\nXBODY = 0 0 0 0\n"},
                    {"box.pot", with_line(with_line(GOOD_POT, 6, " 1 0"), 5, " -7. 4 4 4 4")}}));
    EXPECT_EQ(in.run.opt.IQUAD, 1);
    EXPECT_EQ(in.run.opt.ILOG + in.run.opt.IDIAG, 0);
    EXPECT_EQ(in.run.bodies.XBODY(1, 1), 0);
}

TEST(Configuration, a_line_ends_after_80_columns) {
    const InputRun in(good_files({{"config.vrd", "MAXSCR = 5" + std::string(69, ' ') + "17\n"}}));
    EXPECT_EQ(in.run.opt.MAXSCR, 5);
    // Column 80 holds the 1.
    const InputRun cut(good_files({{"config.vrd", "MAXSCR =" + std::string(71, ' ') + "17\n"}}));
    EXPECT_EQ(cut.status, Status::failed);
    EXPECT_EQ(cut.run.opt.MAXSCR, 1);
}

TEST(Configuration, extra_modes_of_a_body) {
    struct Row {
        const char *text;
        int wanted;
        const char *warning = "";
    };
    constexpr const char *NO_BODY = "WARNING: NEWMDS of a body that does not exist, N=";
    const Row rows[] = {{"NEWMDS = 2\n", 2},
                        {"newmds(2000000000) = 2\n", 0, NO_BODY},
                        {"NEWMDS( 2 ) = 2\nNEWMDS = 1\n", 1, NO_BODY},
                        {"NEWMDS( = 2\n", 2},
                        {"NEWMDS() = 2\n", 2},
                        {"NEWMDS = 2 (3)\n", 2},
                        {"NEWMDS(2) = 4\nNEWMDS(2) = 0\n", 0}};
    for (const Row &row : rows) {
        const SoundRun in(good_files({{"config.vrd", row.text}}));
        EXPECT_EQ(std::abs(in.run.bodies.NEWMDS(1)), row.wanted) << row.text; // negative in a first pass
        EXPECT_EQ(in.run.bodies.NMODES, 6 + row.wanted);
        EXPECT_TRUE(in.folder.list_has(row.warning)) << row.text;
        for (int m = 7; m <= in.run.bodies.NMODES; ++m)
            EXPECT_EQ(in.run.bodies.MODE(m), 1);
    }
}

constexpr double PI = 3.14159265358979;
// Of a period, and the period of a wave number, with ULEN = 2 and g = 9.80665.
double k_of(double T) {
    return std::pow(2 * PI / T, 2) * 2 / 9.80665;
}
double T_of(double k) {
    return 2 * PI / std::sqrt(k * 9.80665 / 2);
}
const double FINITE = 1.5 * std::tanh(1.5 * 1.5); // depth 3 is 1.5 ULEN
TEST(WaveNumber, is_that_of_infinite_depth) {
    const struct {
        int IPERIO;
        const char *HBOT;
        double typed, WVN0, PER;
        const char *limit = ""; // as the report calls it
        bool warned = false;
    } rows[] = {
        {1, "-1.", 8, k_of(8), 8},
        {0, "-1.", 8, k_of(8), 8},
        {2, "-1.", 0.5, k_of(4 * PI), 4 * PI},
        {3, "4.", 1.5, 1.5, T_of(1.5)},
        {5, "4.", 1.5, 1.5, T_of(1.5)},
        {4, "-1.", 1.5, 1.5, T_of(1.5)},
        {4, "3.", 1.5, FINITE, T_of(FINITE)},
        {1, "-1.", 0, 0, 0, "infinite"},
        {1, "-1.", -1, -1, -1, "zero"},
        {2, "-1.", 0, 0, 0, "infinite", true},
        {3, "-1.", -2, -2, -2, "zero"},
        {1, "-1.", 4000, k_of(4000), 4000, "infinite", true}, // a wave of no more than 1e-6
    };
    EXPECT_EQ(InputRun(good_files({{"box.pot", with_line(GOOD_POT, 5, " 0. 0 0 0 0")}})).run.opt.HBOT, -0.5f);
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.IPERIO << ' ' << row.HBOT << ' ' << row.typed);
        const std::string pot = with_line(GOOD_POT, 10, " " + std::to_string(row.typed) + " 1");
        const SoundRun in(good_files({{"config.vrd", "IPERIO = " + std::to_string(row.IPERIO) + "\n"},
                                      {"box.pot", with_line(pot, 5, std::string(row.HBOT) + " 0 0 0 0")}}));
        EXPECT_NEAR(in.run.periods.WVN0(1), row.WVN0, EPS * std::fabs(row.WVN0));
        EXPECT_NEAR(in.run.periods.PER(1), row.PER, EPS * std::fabs(row.PER));
        EXPECT_EQ(in.folder.list_has("WARNING: a period counts as infinite frequency, period 1"), row.warned);
        EXPECT_EQ(in.folder.list_has(" Limit frequency: period     1 is " + std::string(row.limit)),
                  row.limit[0] != 0);
    }
}

TEST(ModeRules, settle_problems_and_modes) {
    const struct {
        const char *given; // IRAD, IDIFF and MODE
        int IRAD, IDIFF, MODE[6];
    } rows[] = {
        {" 0 0\n 0 1 0 0 0 0", 0, 0, {0, 1, 0, 0, 0, 0}},
        {" 0 0\n 1 1 1 1 1 1", 1, 1, {1, 1, 1, 1, 1, 1}},
        {" 1 0\n 0 0 0 0 0 0", 1, 1, {1, 1, 1, 1, 1, 1}},
        {" -1 1\n 0 0 1 0 0 0", -1, 1, {1, 1, 1, 1, 1, 1}},
        {" -1 0\n 0 0 1 0 0 0", -1, 0, {0, 0, 1, 0, 0, 0}},
        {" 0 -1\n 0 0 1 0 0 0", 0, -1, {0, 0, 1, 0, 0, 0}},
        {" 0 -1\n 6*1", 1, -1, {1, 1, 1, 1, 1, 1}},
        {" 0 1\n 0 0 1 0 0 0", 0, 1, {0, 0, 1, 0, 0, 0}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.given);
        const SoundRun in(good_files({{"box.pot", with_line(with_line(GOOD_POT, 8, ""), 7, row.given)}}));
        EXPECT_EQ(in.run.opt.IRAD, row.IRAD);
        EXPECT_EQ(in.run.opt.IDIFF, row.IDIFF);
        EXPECT_TRUE(std::equal(row.MODE, row.MODE + 6, in.run.bodies.MODE.data()));
    }
}

TEST(Control, no_periods_and_no_headings) {
    const SoundRun in(
        good_files({{"box.pot", first_lines(with_line(GOOD_POT, 7, " 0 -1"), 8) + " 0\n 0\n"}}));
    EXPECT_EQ(in.run.periods.NBETAM, 1);
    EXPECT_EQ(in.run.periods.PER.size() + in.run.periods.BETA.size(), 0);
}

} // namespace
