// Prints, row by row of FTAB, the worst error of the deep-water record that VGRN98 leaves, as the table of
// docs/numerics.md. Of the rows of Y < 4 an error is absolute where the value is below 1, else relative; of
// the others, where F2 falls as 1/r1, it is one in units of 1/r1, of a first derivative in 1/r1^2, of a
// second in 1/r1^3.
#include "f2_definition.hpp"
#include "green/tables/ftab.hpp"
#include "green/vgrn98.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr int POINTS = 48; // a side of a box

double worse(double worst, f32 value, double exact, double unit) {
    return std::max(worst, std::abs(value - exact) / unit);
}

struct RowError {
    double G = 0, GR = 0, GZ = 0, GRZ = 0, GZZ = 0, im = 0, imR = 0;
};

// ISNG 2: F2 alone; 3: with the logarithm.
RowError row_error(const F2Definition &definition, int row, int ISNG) {
    const bool near = row > 40;
    const int band = near ? row - 40 : (row + 4) / 5;
    const GSTATE state;
    RowError worst;
    for (int i = 0; i < POINTS; ++i) {
        for (int k = 0; k < POINTS; ++k) {
            const double v = (i + 0.5) / POINTS, t = (k + 0.5) / POINTS;
            // The variables of the box are squared where the axis or the surface is near.
            const f32 X = static_cast<f32>(near ? 3 * v * v : 15 / (5 * band - row + v));
            const f32 Y = static_cast<f32>(band == 1 ? t * t : band > 4 ? 16 / (8 - band + t) : band - 1 + t);
            f32 record[16];
            VGRN1P(X, Y, 0, -1, state, ISNG, 0, record);
            const double x = X, y = Y, r = std::hypot(x, y), r3 = r * r * r, c = 2 * PI_D * std::exp(-y);
            const ValueSlope F = definition(x, y);
            const double FY = -F.value - 2 / r, with_log = ISNG == 3 ? 2 : 0;
            const auto add = [&](double &to, f32 value, double exact, int order) {
                to = worse(to, value, exact,
                           band > 4 ? std::pow(r, -order - 1) : std::max(1.0, std::abs(exact)));
            };
            add(worst.G, record[0], F.value + with_log * std::log(r + y), 0);
            add(worst.GR, record[2], F.slope + with_log * x / (r * (r + y)), 1);
            add(worst.GZ, record[4], FY + with_log / r, 1);
            add(worst.GRZ, record[6], 2 * x / r3 - F.slope - with_log * x / r3, 2);
            add(worst.GZZ, record[8], 2 * y / r3 - FY - with_log * y / r3, 2);
            add(worst.im, record[1], -c * ::j0(x), 0);
            add(worst.imR, record[3], c * ::j1(x), 1);
        }
    }
    return worst;
}

void print(const char *what, const RowError &e) {
    std::printf("| %s | %.1e | %.1e | %.1e | %.1e | %.1e | %.1e | %.1e |\n", what, e.G, e.GR, e.GZ, e.GRZ,
                e.GZZ, e.im, e.imR);
}

} // namespace

int main() {
    const F2Definition definition;
    std::printf("| row | G | G_R | G_z | G_Rz | G_zz | Im G | Im G_R |\n|---|---|---|---|---|---|---|---|\n");
    char name[40];
    for (int row = 1; row <= FTAB_ROWS; ++row) {
        std::snprintf(name, sizeof name, "%d", row);
        print(name, row_error(definition, row, 2));
    }
    for (int row = 41; row <= 44; ++row) {
        std::snprintf(name, sizeof name, "%d, no logarithm", row);
        print(name, row_error(definition, row, 3));
    }
}
