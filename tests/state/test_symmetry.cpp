// Truth: the parities themselves. A rigid mode's velocity under a reflection gives its class; the parts of
// the incident wave that share the parities in the symmetry planes of a class make up that class.
#include "state/symmetry.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Parity of the normal velocity of rigid modes 1..6 in x and y: +1 even, -1 odd.
constexpr int MODE_X[7] = {0, -1, 1, 1, 1, -1, -1};
constexpr int MODE_Y[7] = {0, 1, -1, 1, -1, 1, -1};

struct Plane {
    int ISX;
    int ISY;
};

void expect_classes(int ISX, int ISY) {
    SCOPED_TRACE(testing::Message() << ISX << " " << ISY);
    Array<int, 1> MODE;
    ASSERT_TRUE(MODE.alloc(6));
    for (int m = 1; m <= 6; ++m)
        MODE(m) = m;
    Symmetry sym;
    ASSERT_EQ(SYMSET(6, ISX, ISY, MODE, 1, sym), Status::ok);
    EXPECT_EQ(sym.NSYMG, (ISX != 0 ? 2 : 1) * (ISY != 0 ? 2 : 1));
    EXPECT_EQ(sym.NSYMR, (ISX == 1 ? 2 : 1) * (ISY == 1 ? 2 : 1));
    EXPECT_EQ(sym.NSYMD, 6);
    // Parts of the wave that even images share with a class: a plane of symmetry or a wall fixes the parity.
    EXPECT_EQ(sym.NDCLS, (ISX == 0 ? 2 : 1) * (ISY == 0 ? 2 : 1));
    std::vector<int> columns;
    for (int s = 1; s <= sym.NSYMR; ++s) {
        const int *sign = SGN[sym.ICLS[s]];
        for (int k = 1; k <= sym.NMCLS[s]; ++k) {
            const int mode = sym.MODCLS(k, s);
            columns.push_back(sym.MODPOS(mode));
            EXPECT_EQ(sym.MODLST(sym.MODPOS(mode)), mode);
            if (ISX == 1) {
                EXPECT_EQ(sign[2], MODE_X[mode]);
            }
            if (ISY == 1) {
                EXPECT_EQ(sign[4], MODE_Y[mode]);
            }
        }
        for (int d = 1; d <= sym.NDCLS; ++d) {
            const int part = sym.IDCLS[(s - 1) * sym.NDCLS + d];
            if (ISX != 0) {
                EXPECT_EQ(SGN[part][2], sign[2]);
            }
            if (ISY != 0) {
                EXPECT_EQ(SGN[part][4], sign[4]);
            }
        }
    }
    std::sort(columns.begin(), columns.end());
    EXPECT_EQ(columns, (std::vector<int>{1, 2, 3, 4, 5, 6}));
    // Walls are planes of even symmetry.
    if (ISX == -1 || ISY == -1) {
        for (int s = 1; s <= sym.NSYMR; ++s) {
            EXPECT_TRUE(ISX != -1 || SGN[sym.ICLS[s]][2] == 1);
            EXPECT_TRUE(ISY != -1 || SGN[sym.ICLS[s]][4] == 1);
        }
    }
}

TEST(Symmetry, ClassesHoldWhatTheirParityTells) {
    for (const int ISX : {-1, 0, 1})
        for (const int ISY : {-1, 0, 1})
            expect_classes(ISX, ISY);
}

// A derivative by x turns the parity in x over, one by y that in y, and the angular one both.
TEST(Symmetry, SlowMotionsMoveClassesAsDerivativesDo) {
    Array<int, 1> MODE;
    ASSERT_TRUE(MODE.alloc(6));
    for (const int m : {1, 2, 3, 4, 6}) // pitch is off
        MODE(m) = m;
    for (const auto &[ISX, ISY] : {Plane{0, 0}, Plane{0, 1}, Plane{1, 0}, Plane{1, 1}}) {
        Symmetry sym;
        ASSERT_EQ(SYMSET(6, ISX, ISY, MODE, 1, sym), Status::ok);
        ASSERT_EQ(WDDCLS(6, ISX, ISY, sym), Status::ok);
        ASSERT_EQ(WDDLFM(6, ISX, ISY, sym), Status::ok);
        const struct {
            const int *W, *N;
            const Array<int, 2> &M;
            bool turns_x, turns_y;
        } maps[] = {{sym.WCLS1, sym.NMCLS1, sym.MODCLS1, true, false},
                    {sym.WCLS2, sym.NMCLS2, sym.MODCLS2, false, true},
                    {sym.WCLS3, sym.NMCLS3, sym.MODCLS3, true, true}};
        for (const auto &map : maps) {
            for (int k = 1; k <= sym.NSYMR; ++k) {
                const int *from = SGN[sym.ICLS[k]], *to = SGN[sym.ICLS[map.W[k]]];
                EXPECT_TRUE(ISX == 0 || to[2] == (map.turns_x ? -1 : 1) * from[2]);
                EXPECT_TRUE(ISY == 0 || to[4] == (map.turns_y ? -1 : 1) * from[4]);
                ASSERT_EQ(map.N[map.W[k]], sym.NMCLS[k]);
                for (int i = 1; i <= sym.NMCLS[k]; ++i)
                    EXPECT_EQ(map.M(i, map.W[k]), sym.MODCLS(i, k));
            }
        }
        std::vector<int> flows;
        for (int k = 1; k <= sym.NSYMR; ++k) {
            const int *sign = SGN[sym.ICLS[k]];
            for (int i = 1; i <= sym.WMODC[k]; ++i) {
                const int mode = sym.WMODM(i, k);
                flows.push_back(sym.WMODP(mode));
                EXPECT_TRUE(ISX == 0 || sign[2] == MODE_X[mode]) << mode;
                EXPECT_TRUE(ISY == 0 || sign[4] == MODE_Y[mode]) << mode;
            }
        }
        std::sort(flows.begin(), flows.end());
        EXPECT_EQ(flows, (std::vector<int>{1, 2, 3}));
    }
}

TEST(Symmetry, ClassesWithoutAWantedModeGo) {
    Array<int, 1> MODE;
    ASSERT_TRUE(MODE.alloc(8));
    MODE(3) = 3;
    MODE(7) = 5; // extra modes share the class of a rigid mode
    Symmetry sym;
    ASSERT_EQ(SYMSET(8, 1, 1, MODE, 0, sym), Status::ok);
    EXPECT_EQ(sym.NSYMR, 2);
    EXPECT_EQ(sym.ICLS[1], 1);
    EXPECT_EQ(sym.ICLS[2], 2);
    EXPECT_EQ(sym.MODCLS(1, 2), 7);
    EXPECT_EQ(sym.IDCLS[2], 2);
    MODE.fill(0);
    ASSERT_EQ(SYMSET(8, 1, 1, MODE, 1, sym), Status::ok);
    EXPECT_EQ(sym.NSYMR, 4);
    EXPECT_EQ(sym.NSYMD, 0);
    EXPECT_EQ(sym.NMCLS[3], 0);
}

} // namespace
