// The Green function at the limit frequencies. Truth: the image series in double precision, the boundary
// conditions.
#include "green/vgrn0.hpp"
#include "green_points.hpp"

#include <algorithm>
#include <random>

namespace {

// Sum over all images of the pair between the surface and the bottom, less those that the selectors leave
// out. With the lid all have the sign +, and 2/(n H) is taken off each four to make the sum finite; the
// constant is such that far away G tends to -ln(R^2/H^2)/H, as the sum of 1/sqrt(R^2 + (2 n H)^2) tells.
double image_series(double R, double z, double zeta, double H, int ISNG, int IBOT, int IPLIM) {
    constexpr int N = 300;
    constexpr double EULER = 0.57721566490153286061;
    const double D = z - zeta, Y = z + zeta, sigma = IPLIM == 1 ? 1 : -1;
    const auto image = [&](double Z) { return 1 / std::hypot(R, Z); };
    double sum = image(D) + sigma * image(Y), last = 0;
    for (int n = 1; n <= N; ++n) {
        const double s = 2 * n * H, sign = IPLIM == 1 || n % 2 == 0 ? 1 : -1;
        last = sign * (image(D + s) + image(D - s) + sigma * (image(Y + s) + image(Y - s)));
        sum += last - (IPLIM == 1 ? 2 / (n * H) : 0);
    }
    if (IPLIM == 1) {
        // What is left falls as n^-3: its sum from N + 1 on.
        const double cubic = (D * D + Y * Y - R * R) / (4 * H * H * H), n = N;
        sum += cubic * (1 / (2 * n * n) - 1 / (2 * n * n * n) + 1 / (4 * n * n * n * n));
        sum += 2 / H * (EULER - std::log(4.0));
    } else {
        sum -= 0.5 * last; // an alternating series
    }
    if (ISNG >= 1)
        sum -= image(D);
    if (ISNG >= 2)
        sum -= sigma * image(Y);
    if (IBOT >= 1)
        sum -= image(2 * H - Y);
    return sum;
}

} // namespace

// All eight values, near and far with both sides of R = H, either side of Y = H, all selectors.
TEST(Vgrn0, EqualsTheImageSeries) {
    constexpr double TOLERANCE = 2e-6;
    constexpr double ABOVE = 1 + 2e-7; // one step of f32
    for (const f32 H : {2.0f, 0.03f}) {
        for (const int IPLIM : {1, 2}) {
            for (const double ratio : {0.01, 0.3, 1.0, ABOVE, 2.0, 5.0}) {
                for (const auto &[a, b] :
                     {std::pair{0.1, 0.15}, {0.45, 0.3}, {0.02, 0.93}, {0.7, 0.5}, {0.95, 0.9}}) {
                    for (int selector = 0; selector < 8; ++selector) {
                        const int ISNG = selector / 2, IBOT = selector % 2;
                        const f32 R = static_cast<f32>(ratio * H), z = static_cast<f32>(a * H),
                                  zeta = static_cast<f32>(b * H);
                        const double r = std::hypot(R, z - zeta), r1 = std::hypot(R, z + zeta),
                                     rb = std::hypot(R, 2 * H - z - zeta);
                        const double h = 4e-3 * std::min({r, r1, rb});
                        if (selector > 1 && ratio != 0.3 && ratio != ABOVE)
                            continue;
                        const auto exact = record_by_differences(
                            [&](double s, double u, double v) {
                                return Complex(image_series(s, u, v, H, ISNG, IBOT, IPLIM));
                            },
                            R, z, zeta, h);
                        f32 record[16];
                        VGRN0(R, z, zeta, H, ISNG, IBOT, IPLIM, record);
                        for (int j = 0; j < GREEN_VALUES; ++j) {
                            const double scale = std::pow(H, -ORDER[j] - 1) +
                                                 (ISNG < 1 || ratio > 1 ? std::pow(r, -ORDER[j] - 1) : 0) +
                                                 (ISNG < 2 || ratio > 1 ? std::pow(r1, -ORDER[j] - 1) : 0) +
                                                 (IBOT < 1 || ratio > 1 ? std::pow(rb, -ORDER[j] - 1) : 0);
                            const double error = std::abs(record[2 * j] - exact[j].real());
                            EXPECT_LT(error, TOLERANCE * scale)
                                << "IPLIM " << IPLIM << " H " << H << " R/H " << ratio << " z/H " << a
                                << " zeta/H " << b << " ISNG " << ISNG << " IBOT " << IBOT << " value " << j
                                << ": " << record[2 * j] << " for " << exact[j].real();
                            EXPECT_EQ(record[2 * j + 1], 0);
                        }
                    }
                }
            }
        }
    }
}

TEST(Vgrn0, NoStepAtYEqualToH) {
    for (const f32 H : {1.0f, 8.0f}) {
        for (const f32 R : {0.2f * H, 0.9f * H}) {
            for (int choice = 0; choice < 16; ++choice) { // ISNG, IBOT, IPLIM
                f32 a[16], b[16];
                const int IPLIM = 1 + choice % 2, IBOT = choice / 2 % 2, ISNG = choice / 4;
                VGRN0(R, 0.7f * H, 0.3f * H, H, ISNG, IBOT, IPLIM, a);
                VGRN0(R, std::nextafter(0.7f * H, 0.0f), 0.3f * H, H, ISNG, IBOT, IPLIM, b);
                for (int j = 0; j < GREEN_VALUES; ++j)
                    EXPECT_NEAR(a[2 * j], b[2 * j], 2e-6 * std::pow(R, -ORDER[j] - 1)) << R << " " << choice;
            }
        }
    }
}

TEST(Vgrn0, DeepWater) {
    f32 record[16];
    for (const int IPLIM : {1, 2}) {
        const double sigma = IPLIM == 1 ? 1 : -1;
        for (int ISNG = 0; ISNG <= 3; ++ISNG) {
            const auto exact = record_by_differences(
                [&](double R, double z, double zeta) {
                    return Complex((ISNG < 1 ? 1 / std::hypot(R, z - zeta) : 0) +
                                   (ISNG < 2 ? sigma / std::hypot(R, z + zeta) : 0));
                },
                0.7, 0.3, 0.5, 1e-3);
            VGRN0(0.7f, 0.3f, 0.5f, 0, ISNG, 1, IPLIM, record);
            for (int j = 0; j < GREEN_VALUES; ++j)
                EXPECT_NEAR(record[2 * j], exact[j].real(), 2e-6 * (1 + std::abs(exact[j])))
                    << ISNG << " " << j;
        }
    }
}

// Many pairs together: each has the value that it has alone, wherever it stands.
TEST(Vgrn0, ResultDependsOnThePairAlone) {
    std::mt19937 random(3);
    std::uniform_real_distribution<f32> part(0, 1);
    for (const f32 H : {-1.0f, 0.3f, 5.0f}) {
        const f32 depth = H > 0 ? H : 1.0f;
        Points points;
        for (int i = 0; i < 601; ++i)
            points.add(2.5f * depth * part(random), depth * part(random), depth * part(random), i % 4,
                       i / 4 % 2);
        for (const int IPLIM : {1, 2}) {
            Results first(points.size()), second(points.size());
            limit_points(points.view(), H, IPLIM, GreenOrder::first, first.arrays);
            limit_points(points.view(), H, IPLIM, GreenOrder::second, second.arrays);
            for (int i = 0; i < points.size(); ++i) {
                f32 record[16];
                VGRN0(points.R[i], points.Z[i], points.ZETA[i], H, points.ISNG[i], points.IBOT[i], IPLIM,
                      record);
                for (int j = 0; j < GREEN_VALUES; ++j) {
                    ASSERT_EQ(second.arrays.re[j][i], record[2 * j]) << j << " " << i << " H " << H;
                    ASSERT_EQ(second.arrays.im[j][i], 0);
                    ASSERT_EQ(first.arrays.re[j][i], ORDER[j] < 2 ? record[2 * j] : -77.0f)
                        << j << " " << i << " H " << H;
                }
            }
        }
    }
}
