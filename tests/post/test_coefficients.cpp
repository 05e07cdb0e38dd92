// Coefficients from the potentials of a hand-over file. Truth: sums over two panels by hand.
#include "post/coefficients.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Rotations, AreThreeOfTheRigidModesOfEachBody) {
    P2fFile p;
    p.NBODY = 2;
    ASSERT_TRUE(p.NEWMDS.alloc(2));
    p.NEWMDS(1) = 2;
    p.NEWMDS(2) = 1;
    for (int mode = 1; mode <= 15; ++mode)
        EXPECT_EQ(is_rotation(p, mode), (mode >= 4 && mode <= 6) || (mode >= 12 && mode <= 14)) << mode;
}

// Sea water of 1025 kg/m^3 weighs 63.99 lbf a cubic foot.
TEST(Scales, AreOfSeaWaterInTheUnitsOfTheFile) {
    P2fFile p;
    ASSERT_TRUE(p.ULEN.alloc(1));
    p.ULEN(1) = 1;
    Scales scales;
    std::string error;
    for (const auto &[gravity, density] : {std::pair{9.80665, 1025.0}, std::pair{32.174, 63.99 / 32.174}}) {
        p.GRAV = static_cast<f32>(gravity);
        ASSERT_TRUE(dimensional_scales(p, 0, scales, error));
        EXPECT_NEAR(scales.density / density, 1, 1e-4) << gravity;
    }
    p.GRAV = 1; // the user's own units
    EXPECT_FALSE(dimensional_scales(p, 0, scales, error));
    EXPECT_NE(error.find("density"), std::string::npos);
    EXPECT_TRUE(dimensional_scales(p, 7, scales, error));
    EXPECT_EQ(scales.density, 7);
}

// Two modes of one class and one of another; mode 4 and those above are off.
TEST(Coefficients, AreSumsOfPotentialTimesNormal) {
    for (const int mark : {0, 1, 3}) { // of panel 2: hull, moving plate, plate that is held
        P2fFile p;
        p.NEQN = 2;
        p.NBODY = p.NPER = p.NBETA = p.IRAD = p.IDIFF = 1;
        p.NMODES = 6;
        p.NSYMR = p.NSYMD = 2;
        p.ISX = -1; // a wall has no image that counts, the plane y = 0 has
        p.ISY = 1;
        p.NMCLS[1] = 2;
        p.NMCLS[2] = 1;
        ASSERT_TRUE(p.MODCLS.alloc(6, 4) && p.MODPOS.alloc(6) && p.PMOM.alloc(13, 2) && p.VEL.alloc(6, 2) &&
                    p.PHIR.alloc(2, 3, 1) && p.PHID.alloc(2, 1, 2, 1));
        p.MODCLS(1, 1) = 1;
        p.MODCLS(2, 1) = 3;
        p.MODCLS(1, 2) = 2;
        p.MODPOS(1) = 1;
        p.MODPOS(3) = 2;
        p.MODPOS(2) = 3;
        if (mark != 0) {
            ASSERT_TRUE(p.IDIP.alloc(2));
            p.IDIP(2) = mark;
        }
        const f32 area[2] = {2, 3}, normal[2] = {0.5f, -0.25f}; // of mode 3
        for (int ip = 1; ip <= 2; ++ip) {
            p.PMOM(1, ip) = area[ip - 1];
            p.VEL(3, ip) = normal[ip - 1];
            p.VEL(2, ip) = 1;
            for (int k = 1; k <= 3; ++k)
                p.PHIR(ip, k, 1) = c32(static_cast<f32>(10 * k + ip), static_cast<f32>(-k));
            p.PHID(ip, 1, 1, 1) = c32(0, 4);
            p.PHID(ip, 1, 2, 1) = 7;
        }
        Coefficients c;
        ASSERT_TRUE(form_coefficients(p, c));
        const f32 second = mark == 3 ? 0.0f : 1.0f;
        EXPECT_EQ(c.A(3, 1, 1), 2 * (2 * 0.5f * 11 - second * 3 * 0.25f * 12));
        EXPECT_EQ(c.A(3, 3, 1), 2 * (2 * 0.5f * 21 - second * 3 * 0.25f * 22));
        EXPECT_EQ(c.B(3, 3, 1), 2 * (2 * 0.5f - second * 3 * 0.25f) * 2);
        EXPECT_EQ(c.X(3, 1, 1), c32(0, 2 * (2 * 0.5f - second * 3 * 0.25f) * 4));
        EXPECT_EQ(c.X(2, 1, 1), c32(2 * (2 + second * 3) * 7));
        for (const auto &[i, j] : {std::pair{2, 3}, {3, 2}, {4, 3}, {3, 4}})
            EXPECT_EQ(c.A(i, j, 1), 0) << i << j; // of another class, or off
    }
}

} // namespace
