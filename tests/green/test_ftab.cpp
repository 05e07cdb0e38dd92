// The table of the infinite-depth wave function against its definition. Truth: the principal value integral
// by brute quadrature for the double-precision definition, the definition for the table.
#include "../../tools/tables/f2_definition.hpp"
#include "green/tables/ftab.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

// 2 PV integral of exp(-s Y) J0(s X) / (s - 1) ds: the pole is taken out by symmetry about s = 1.
double principal_value(const GaussRule &gauss, double X, double Y) {
    const auto f = [&](double s) { return std::exp(-s * Y) * ::j0(s * X); };
    double sum = 0;
    const int panels = 40 + static_cast<int>(4 * X);
    for (int p = 0; p < panels; ++p) // (f(1 + h) - f(1 - h)) / h, h from 0 to 1
        sum += gauss(p / double(panels), (p + 1) / double(panels),
                     [&](double h) { return (f(1 + h) - f(1 - h)) / h; });
    const double step = std::min(0.25 / Y, 1 / X), end = 2 + 45 / Y;
    for (double a = 2; a < end; a += step)
        sum += gauss(a, a + step, [&](double s) { return f(s) / (s - 1); });
    return 2 * sum;
}

// Band of Y, 0 to 7.
int band_of(int row) {
    return row > 40 ? row - 41 : (row - 1) / 5;
}

struct Place {
    int row;
    f32 v, t;
    double X, Y;
};

// F2 as the row of the place gives it, with the exact functions in place of the fitted ones.
double from_row(const Place &place) {
    const f32 *c = FTAB[place.row - 1];
    f32 B = 0;
    for (int n = 6; n >= 0; --n) {
        f32 p = 0;
        for (int d = FTAB_DEGREE[n]; d >= 0; --d)
            p = p * place.t + c[FTAB_FIRST[n] + d];
        B = B * place.v + p;
    }
    const double X = place.X, Y = place.Y, r1 = std::hypot(X, Y), e = std::exp(-Y);
    const bool near = place.row > 40;
    const double waves = near ? 0 : 2 * PI_D * e * ::y0(X);
    if (band_of(place.row) >= 4)
        return B * std::pow(r1, -5) - waves - F2Definition::tail(X, Y).value;
    if (near)
        return e * (r1 * B - 2 * ::j0(X) * std::log((r1 + Y) / X) - PI_D * ::y0(X));
    return B - waves;
}

Place place_of(int row, double v, double t) {
    const int band = band_of(row) + 1;
    Place p{row, static_cast<f32>(v), static_cast<f32>(t), 0, 0};
    p.X = row > 40 ? 3 * std::sqrt(v) : 15 / (5 * band - row + v);
    p.Y = band > 4 ? 16 / (8 - band + t) : band - 1 + t;
    return p;
}

} // namespace

TEST(F2, DefinitionIsThePrincipalValueIntegral) {
    const F2Definition F2;
    for (const double X : {0.02, 0.5, 1.7, 2.99, 3.01, 5.0, 12.0, 40.0}) {
        for (const double Y : {0.15, 0.7, 1.9, 3.99, 4.01, 9.0, 30.0})
            EXPECT_NEAR(F2(X, Y).value, principal_value(F2.gauss, X, Y), 1e-11) << X << " " << Y;
    }
}

// Rounded table, evaluated in single precision, at points off the fitted nodes and on all edges of the boxes:
// an edge is so seen from the boxes on both its sides.
TEST(Ftab, EachRowMeetsTheDefinition) {
    // By band of Y, of the boxes near the axis and of the others: the errors behind the rows of the table.
    // Row 41 is a sum of terms up to 2 times r1 up to 3.2: its rounding alone is near 1e-6 at the far corner.
    // From Y = 4 on the error counts in units of 1/r1^2, the size of a gradient there.
    constexpr double TOLERANCE[8][2] = {{1.2e-6, 1.5e-7}, {5e-7, 1.2e-7},   {3.2e-7, 1e-7},   {3.2e-7, 1e-7},
                                        {9.5e-6, 7e-7},   {8.5e-6, 2.5e-6}, {1.5e-5, 5.5e-6}, {5e-7, 4.5e-6}};
    const F2Definition F2;
    for (int row = 1; row <= FTAB_ROWS; ++row) {
        for (int i = 0; i <= 12; ++i) {
            for (int k = 0; k <= 12; ++k) {
                const Place p = place_of(row, std::max(1e-6, i / 12.0), std::max(1e-4, k / 12.0));
                const int band = band_of(row);
                const double unit = band < 4 ? 1 : 1 / (p.X * p.X + p.Y * p.Y);
                const double F = F2(p.X, p.Y).value, rounding = 1e-12 * std::abs(F); // of the definition
                EXPECT_NEAR(from_row(p), F, TOLERANCE[band][row <= 40] * unit + rounding)
                    << row << " " << p.X << " " << p.Y;
            }
        }
    }
}
