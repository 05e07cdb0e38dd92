// Lists of pairs, their evaluation, and fourth-order differences, for the tests of the Green function.
#pragma once

#include "green/vgrn98.hpp"

#include <array>
#include <cmath>
#include <complex>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

using Complex = std::complex<double>;

// Order of the derivative of each value of the record.
constexpr int ORDER[GREEN_VALUES] = {0, 1, 1, 2, 2, 2, 1, 2};

struct Points {
    std::vector<f32> R, Z, ZETA;
    std::vector<int> ISNG, IBOT;
    void add(f32 r, f32 z, f32 zeta, int isng, int ibot = 0) {
        R.push_back(r);
        Z.push_back(z);
        ZETA.push_back(zeta);
        ISNG.push_back(isng);
        IBOT.push_back(ibot);
    }
    int size() const { return static_cast<int>(R.size()); }
    GreenPoints view() const { return {size(), R.data(), Z.data(), ZETA.data(), ISNG.data(), IBOT.data()}; }
};

struct Results {
    std::vector<f32> store;
    GreenArrays arrays;
    explicit Results(int n) : store(16 * static_cast<std::size_t>(n), -77.0f) {
        for (int j = 0; j < GREEN_VALUES; ++j) {
            arrays.re[j] = store.data() + 2 * j * n;
            arrays.im[j] = store.data() + (2 * j + 1) * n;
        }
    }
};

inline Results evaluate(const Points &points, GreenOrder order, f32 H = -1, const GSTATE &state = {},
                        GreenPath path = GreenPath::best) {
    Results results(points.size());
    GreenWork work;
    work.path = path;
    EXPECT_TRUE(work.alloc(points.size()));
    VGRN98(points.view(), H, state, order, work, results.arrays);
    return results;
}

// Central differences of fourth order.
template <class F> Complex difference(F f, double x, double h) {
    return (8.0 * (f(x + h) - f(x - h)) - (f(x + 2 * h) - f(x - 2 * h))) / (12 * h);
}

// f of an array of variables, differenced times[i] times in variable i by steps h[i].
template <std::size_t N, class F>
Complex derivative(F &f, std::array<double, N> x, std::array<int, N> times, std::array<double, N> h) {
    for (std::size_t i = 0; i < N; ++i)
        if (times[i] > 0) {
            --times[i];
            return difference(
                [&](double a) {
                    auto at = x;
                    at[i] = a;
                    return derivative<N>(f, at, times, h);
                },
                x[i], h[i]);
        }
    return f(x);
}

// All eight values, the derivatives as differences of G(R, z, zeta).
template <class F>
std::array<Complex, GREEN_VALUES> record_by_differences(F G, double R, double z, double zeta, double h) {
    const auto GZ = [&](double a, double b, double c) {
        return difference([&](double s) { return G(a, s, c); }, b, h);
    };
    const auto GF = [&](double a, double b, double c) {
        return difference([&](double s) { return G(a, b, s); }, c, h);
    };
    std::array<Complex, GREEN_VALUES> e;
    e[G_] = G(R, z, zeta);
    e[G_R] = difference([&](double s) { return G(s, z, zeta); }, R, h);
    e[G_Z] = GZ(R, z, zeta);
    e[G_ZETA] = GF(R, z, zeta);
    e[G_RZ] = difference([&](double s) { return GZ(s, z, zeta); }, R, h);
    e[G_RZETA] = difference([&](double s) { return GF(s, z, zeta); }, R, h);
    e[G_ZZ] = difference([&](double s) { return GZ(R, s, zeta); }, z, h);
    e[G_ZZETA] = difference([&](double s) { return GZ(R, z, s); }, zeta, h);
    return e;
}

// A point has one result, wherever it stands and whoever its neighbours are; VGRN1P and the first-order call
// agree with it (VGRN1P with the best path). `place`: the order of the points in a second call.
inline void expect_result_depends_on_point_alone(const Points &points, const std::vector<int> &place, f32 H,
                                                 const GSTATE &state, GreenPath path) {
    Points shuffled;
    for (const int i : place)
        shuffled.add(points.R[i], points.Z[i], points.ZETA[i], points.ISNG[i], points.IBOT[i]);
    const Results a = evaluate(points, GreenOrder::second, H, state, path),
                  b = evaluate(shuffled, GreenOrder::second, H, state, path),
                  first = evaluate(points, GreenOrder::first, H, state, path);
    const auto same = [](const f32 &x, const f32 &y) { return std::memcmp(&x, &y, sizeof(f32)) == 0; };
    for (int i = 0; i < points.size(); ++i) {
        f32 record[16];
        const int o = place[i];
        VGRN1P(points.R[o], points.Z[o], points.ZETA[o], H, state, points.ISNG[o], points.IBOT[o], record);
        for (int j = 0; j < GREEN_VALUES; ++j) {
            ASSERT_TRUE(same(a.arrays.re[j][o], b.arrays.re[j][i])) << j << " " << o << " H " << H;
            ASSERT_TRUE(same(a.arrays.im[j][o], b.arrays.im[j][i])) << j << " " << o << " H " << H;
            if (path == GreenPath::best) {
                ASSERT_TRUE(same(a.arrays.re[j][o], record[2 * j])) << j << " " << o << " H " << H;
                ASSERT_TRUE(same(a.arrays.im[j][o], record[2 * j + 1])) << j << " " << o << " H " << H;
            }
            if (ORDER[j] < 2) {
                ASSERT_TRUE(same(a.arrays.re[j][o], first.arrays.re[j][o])) << j << " " << o << " H " << H;
                ASSERT_TRUE(same(a.arrays.im[j][o], first.arrays.im[j][o])) << j << " " << o << " H " << H;
            } else {
                ASSERT_EQ(first.arrays.re[j][o], -77.0f) << "a value not asked for was written";
            }
        }
    }
}
