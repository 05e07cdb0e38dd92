// Truth: the boundary condition that the sources were solved for, the potentials of the other equation, of
// which the velocities are differences, and the runs without sources.
#include "source_fields.hpp"

namespace {

bool everywhere(const P2fFile &, int) {
    return true;
}
// The velocity is infinite at the edges of a barge.
bool away_from_edges(const P2fFile &p2f, int panel) {
    const double far[3] = {1 - static_cast<double>(p2f.XCT(1, panel)),
                           0.6 - static_cast<double>(p2f.XCT(2, panel)),
                           0.5 + static_cast<double>(p2f.XCT(3, panel))};
    int near = 0;
    for (const double distance : far)
        near += distance < 0.16 ? 1 : 0;
    return near < 2;
}

struct Hull {
    const char *name;
    std::string coarse, fine;
    double reach; // between neighbours of the coarse mesh
    bool (*regular)(const P2fFile &, int);
};
const Hull HEMISPHERE{"hemisphere", "hemisphere --nu 6 --nv 6", "hemisphere --nu 12 --nv 12", 0.30,
                      everywhere};
const Hull BARGE{"barge", "box --length 2 --beam 1.2 --draft 0.5 --nu 5 --nv 3 --nw 3",
                 "box --length 2 --beam 1.2 --draft 0.5 --nu 10 --nv 6 --nw 6", 0.21, away_from_edges};

// Both are of rows of the same coefficients in single precision.
constexpr double NORMAL_TOLERANCE = 2e-5;

Pot two_waves(double depth, int IQUAD, int ILOG) {
    Pot pot;
    pot.ISOR = 1;
    pot.IQUAD = IQUAD;
    pot.ILOG = ILOG;
    pot.HBOT = std::to_string(depth);
    pot.NPER = 2;
    pot.PER = "0.7 1.6";
    pot.NBETA = 2;
    pot.BETA = "30 90";
    return pot;
}

struct Setting {
    const Hull *hull;
    double depth;
    int IQUAD, ILOG;
    const char *config = "";
};
void PrintTo(const Setting &setting, std::ostream *out) {
    *out << setting.hull->name << " depth " << setting.depth << " IQUAD " << setting.IQUAD << " ILOG "
         << setting.ILOG;
}
class Sources : public testing::TestWithParam<Setting> {};

TEST_P(Sources, MakeTheVelocitiesOfTheBoundaryConditionAndOfThePotentials) {
    const Setting &is = GetParam();
    const Pot pot = two_waves(is.depth, is.IQUAD, is.ILOG);
    const P2fFile coarse = solve_mesh(is.hull->coarse, pot, is.config).p2f,
                  fine = solve_mesh(is.hull->fine, pot, is.config).p2f;
    for (const P2fFile *p2f : {&coarse, &fine})
        EXPECT_LT(fields::normal_velocity_error(*p2f), NORMAL_TOLERANCE);
    // Sources that are constant over a panel give its velocity with an error of the order of its size.
    const double error = fields::tangential_velocity_error(coarse, is.hull->reach, is.hull->regular);
    const double finer = fields::tangential_velocity_error(fine, is.hull->reach / 2, is.hull->regular);
    EXPECT_LT(finer, 0.1);
    EXPECT_GT(error / finer, 1.8);
    EXPECT_LT(error / finer, 3.5);
}

INSTANTIATE_TEST_SUITE_P(All, Sources,
                         testing::Values(Setting{&HEMISPHERE, 0, 0, 0},
                                         Setting{&HEMISPHERE, 0, 1, 1, "ISOLVE=0\n"},
                                         Setting{&HEMISPHERE, 1.8, 1, 0}, Setting{&HEMISPHERE, 1.8, 0, 1},
                                         Setting{&BARGE, 0, 1, 0}, Setting{&BARGE, 0, 0, 1},
                                         Setting{&BARGE, 1.0, 0, 0}, Setting{&BARGE, 1.0, 1, 1}));

TEST(SourceRun, LeavesThePotentialsAsTheyAre) {
    Pot pot = two_waves(1.8, 1, 1);
    const P2fFile with = solve_mesh(HEMISPHERE.coarse, pot).p2f;
    pot.ISOR = 0;
    const P2fFile without = solve_mesh(HEMISPHERE.coarse, pot).p2f;
    ASSERT_EQ(with.PHIR.size(), without.PHIR.size());
    for (std::int64_t i = 0; i < with.PHIR.size(); ++i)
        ASSERT_EQ(with.PHIR.data()[i], without.PHIR.data()[i]);
    for (std::int64_t i = 0; i < with.PHID.size(); ++i)
        ASSERT_EQ(with.PHID.data()[i], without.PHID.data()[i]);
}

// At zero and infinite frequency there is no incident wave, and the motions have sources like any other.
TEST(SourceRun, AtTheLimitFrequencies) {
    for (const double depth : {0.0, 1.8}) {
        Pot pot = two_waves(depth, 0, 1);
        pot.PER = "-1 0";
        const P2fFile p2f = solve_mesh(HEMISPHERE.coarse, pot).p2f;
        EXPECT_LT(fields::normal_velocity_error(p2f), NORMAL_TOLERANCE);
        EXPECT_LT(fields::tangential_velocity_error(p2f, HEMISPHERE.reach, everywhere), 0.1);
        for (std::int64_t i = 0; i < p2f.SRCD.size(); ++i)
            ASSERT_EQ(p2f.SRCD.data()[i], c32(0));
    }
}

} // namespace
