// Truth: the parities themselves. A rigid mode's velocity under a reflection gives its class; the parts of
// the incident wave that share the parities in the symmetry planes of a class make up that class.
#include "state/symmetry.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Parity of the normal velocity of rigid modes 1..6 in x and y: +1 even, -1 odd.
constexpr int MODE_X[7] = {0, -1, 1, 1, 1, -1, -1};
constexpr int MODE_Y[7] = {0, 1, -1, 1, -1, 1, -1};

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
