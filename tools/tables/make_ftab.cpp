// Makes src/green/tables/ftab.cpp: fits the table functions of the infinite-depth wave function on their 48
// boxes. Method: weighted least squares of value and X slope together at Chebyshev nodes, reweighted towards
// the smallest worst error (Lawson 1961), then the coefficients are rounded one after the other, the rest
// being fitted anew each time.
//   make_ftab FILE            writes FILE
//   make_ftab --check FILE    fits anew, compares with the table that is linked and with the head of FILE
#include "f2_definition.hpp"
#include "green/tables/ftab.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr int NODES = 28;  // Chebyshev nodes a side of a box
constexpr int PROBES = 41; // points a side of the check, not nodes of the fit
constexpr int LAWSON_STEPS = 40;
// An error of the slope counts this much of one of the value; where Y >= 4 either counts by its ratio to
// 1/r1^2, the size of a gradient there.
constexpr double SLOPE_WEIGHT = 0.2, DEEP_SLOPE_WEIGHT = 0.7;

// Row 41 as published with the method, kept so. Our fit comes out within 4e-5 of its coefficients, with a
// worst error of 7e-7 in place of 1e-6, most of both the rounding of the evaluation.
constexpr f32 ROW41[FTAB_TERMS] = {-2.0f,
                                   -0.50000286f,
                                   -0.11107845f,
                                   -0.020969886f,
                                   -0.0030787389f,
                                   -0.00067438878f,
                                   2.0f,
                                   0.28124931f,
                                   0.04000463f,
                                   0.0052000149f,
                                   0.00061141182f,
                                   0.000077191711f,
                                   -0.71999937f,
                                   -0.070311844f,
                                   -0.0073521682f,
                                   -0.00071785395f,
                                   -0.000084316685f,
                                   0.13224143f,
                                   0.0098876813f,
                                   0.00081631856f,
                                   0.000065819833f,
                                   0.0000053955064f,
                                   -0.014684912f,
                                   -0.00088981987f,
                                   -0.000060650331f,
                                   -0.0000041485373f,
                                   0.001080853f,
                                   0.000055444125f,
                                   0.0000031038435f,
                                   -0.000049967144f,
                                   -0.0000023552252f};

// A box of the quadrant: local variables v (of X) and t (of Y), both in 0..1.
struct Box {
    int row = 1;
    bool near() const { return row > 40; }                         // X <= 3
    int band() const { return near() ? row - 40 : (row + 4) / 5; } // of Y, 1 to 8
    bool deep() const { return band() > 4; }                       // Y >= 4
    double X(double v) const { return near() ? 3 * std::sqrt(v) : 15 / (5 * band() - row + v); }
    double Y(double t) const { return deep() ? 16 / (8 - band() + t) : band() - 1 + t; }
    // What is fitted for Y < 4 vanishes at X = infinity: the terms without v are left out where this is v =
    // 0. Otherwise the error at great distances would not fall with F2 itself.
    bool left_out(int n) const { return !near() && !deep() && row % 5 == 0 && n == 0; }
    double slope_factor(double X) const { return near() ? 2 * X / 9 : -15 / (X * X); } // dv/dX
    double slope_weight() const { return deep() ? DEEP_SLOPE_WEIGHT : SLOPE_WEIGHT; }
    // An error of B, held to the measure of the errors, counts f times, its slope as f dB/dX + g B.
    ValueSlope factors(double X, double Y) const {
        const double r1 = std::hypot(X, Y), e = std::exp(-Y);
        if (deep())
            return {std::pow(r1, -3), -5 * X * std::pow(r1, -5)}; // F2 = B / r1^5 - T, times r1^2
        return near() ? ValueSlope{e * r1, e * X / r1} : ValueSlope{1, 0};
    }
};

// One equation: the basis row, the target, both times the weight of its error in F2 or its slope.
struct Equation {
    long double basis[FTAB_TERMS];
    long double target;
    double weight = 1; // of the reweighting
};

// The two equations (value and X slope) at a point of the box. What is fitted is F2, so an error of B counts
// with the factor by which it enters F2 and dF2/dX.
void add_point(const F2Definition &definition, Box box, double v, double t, std::vector<Equation> &all) {
    const double X = box.X(v), Y = box.Y(t), r1 = std::hypot(X, Y), slope_weight = box.slope_weight();
    Equation value, slope;
    const ValueSlope factor = box.factors(X, Y);
    const double f = factor.value, g = factor.slope;
    double B = 0, BX = 0;
    if (box.deep()) {
        const ValueSlope N = definition.beyond_tail(X, Y, box.near());
        const double r3 = r1 * r1 * r1;
        B = r3 * r1 * r1 * N.value;
        BX = r3 * (r1 * r1 * N.slope + 5 * X * N.value);
    } else if (box.near()) {
        const ValueSlope n = definition.near_numerator(X, Y);
        B = n.value / r1;
        BX = n.slope / r1 - n.value * X / (r1 * r1 * r1);
    } else {
        const ValueSlope s = definition.smooth_part(X, Y);
        B = s.value;
        BX = s.slope;
    }
    const double dv = box.slope_factor(X);
    long double vn = 1, vm = 0; // v^n, n v^(n-1)
    for (int n = 0; n < 7; ++n) {
        long double tk = 1;
        for (int k = 0; k <= FTAB_DEGREE[n]; ++k) {
            value.basis[FTAB_FIRST[n] + k] = f * vn * tk;
            slope.basis[FTAB_FIRST[n] + k] = slope_weight * (f * dv * vm + g * vn) * tk;
            tk *= t;
        }
        vm = (n + 1) * vn;
        vn *= v;
    }
    value.target = f * B;
    slope.target = slope_weight * (f * BX + g * B);
    all.push_back(value);
    all.push_back(slope);
}

// Weighted least squares for the coefficients that are not fixed, by Householder reflections.
void solve(const std::vector<Equation> &all, const bool (&fixed)[FTAB_TERMS], long double (&c)[FTAB_TERMS]) {
    const int m = static_cast<int>(all.size());
    std::vector<int> free_term;
    for (int k = 0; k < FTAB_TERMS; ++k) {
        if (!fixed[k])
            free_term.push_back(k);
    }
    const int n = static_cast<int>(free_term.size());
    std::vector<std::vector<long double>> A(n + 1,
                                            std::vector<long double>(m)); // columns, the last one the target
    for (int i = 0; i < m; ++i) {
        const long double w = std::sqrt(static_cast<long double>(all[i].weight));
        long double rest = all[i].target;
        for (int k = 0; k < FTAB_TERMS; ++k) {
            if (fixed[k])
                rest -= all[i].basis[k] * c[k];
        }
        for (int k = 0; k < n; ++k)
            A[k][i] = w * all[i].basis[free_term[k]];
        A[n][i] = w * rest;
    }
    std::vector<long double> diagonal(n);
    for (int k = 0; k < n; ++k) {
        long double norm = 0;
        for (int i = k; i < m; ++i)
            norm += A[k][i] * A[k][i];
        norm = std::sqrt(norm);
        diagonal[k] = A[k][k] > 0 ? -norm : norm;
        A[k][k] -= diagonal[k];
        const long double scale = -diagonal[k] * A[k][k]; // half the squared length of the reflection vector
        for (int j = k + 1; j <= n; ++j) {
            long double s = 0;
            for (int i = k; i < m; ++i)
                s += A[k][i] * A[j][i];
            s /= scale;
            for (int i = k; i < m; ++i)
                A[j][i] -= s * A[k][i];
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        long double s = A[n][k];
        for (int j = k + 1; j < n; ++j)
            s -= A[j][k] * c[free_term[j]];
        c[free_term[k]] = s / diagonal[k];
    }
}

double residual(const Equation &e, const long double (&c)[FTAB_TERMS]) {
    long double r = -e.target;
    for (int k = 0; k < FTAB_TERMS; ++k)
        r += e.basis[k] * c[k];
    return static_cast<double>(std::abs(r));
}

void fit(const F2Definition &definition, Box box, f32 (&coefficients)[FTAB_TERMS]) {
    std::vector<Equation> all;
    for (int i = 0; i < NODES; ++i) {
        for (int k = 0; k < NODES; ++k) {
            const double v = 0.5 - 0.5 * std::cos(PI_D * (i + 0.5) / NODES);
            const double t = 0.5 - 0.5 * std::cos(PI_D * (k + 0.5) / NODES);
            add_point(definition, box, v, t, all);
        }
    }
    bool fixed[FTAB_TERMS] = {}; // left out, or rounded already
    long double c[FTAB_TERMS] = {};
    int rounded = 0;
    for (int n = 0; n < 7; ++n) {
        for (int k = 0; k <= FTAB_DEGREE[n]; ++k) {
            const int term = FTAB_FIRST[n] + k;
            fixed[term] = box.left_out(n);
            if (fixed[term]) {
                coefficients[term] = 0;
                ++rounded;
            }
        }
    }
    std::vector<double> weight_of_best(all.size(), 1.0);
    double best = 1e30;
    for (int step = 0; step < LAWSON_STEPS; ++step) {
        solve(all, fixed, c);
        double worst = 0, sum = 0;
        for (const Equation &e : all)
            worst = std::max(worst, residual(e, c));
        if (worst < best) {
            best = worst;
            for (std::size_t i = 0; i < all.size(); ++i)
                weight_of_best[i] = all[i].weight;
        }
        for (Equation &e : all) {
            e.weight *= residual(e, c) / worst;
            sum += e.weight;
        }
        for (Equation &e : all)
            e.weight = e.weight * static_cast<double>(all.size()) / sum;
    }
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i].weight = weight_of_best[i] + 0.05; // no point without weight while the rounding is made good
    solve(all, fixed, c);
    // Largest first: its rounding error is the largest, and the others make up for it.
    while (rounded < FTAB_TERMS) {
        int next = -1;
        for (int k = 0; k < FTAB_TERMS; ++k) {
            if (!fixed[k] && (next < 0 || std::abs(c[k]) > std::abs(c[next])))
                next = k;
        }
        coefficients[next] = static_cast<f32>(c[next]);
        c[next] = coefficients[next];
        fixed[next] = true;
        if (++rounded < FTAB_TERMS)
            solve(all, fixed, c);
    }
}

// Worst error of F2 and of its X slope, where Y >= 4 times r1^2, that the coefficients, evaluated in single
// precision, leave; at points that are not nodes of the fit, the edges of the box among them.
ValueSlope worst_error(const F2Definition &definition, Box box, const f32 (&c)[FTAB_TERMS]) {
    ValueSlope worst;
    for (int i = 0; i < PROBES; ++i) {
        for (int k = 0; k < PROBES; ++k) {
            const double v = std::max(1e-9, i / (PROBES - 1.0)), t = std::max(1e-6, k / (PROBES - 1.0));
            std::vector<Equation> pair;
            add_point(definition, box, v, t, pair);
            const f32 vf = static_cast<f32>(v), tf = static_cast<f32>(t);
            f32 B = 0, Bv = 0;
            for (int n = 6; n >= 0; --n) {
                f32 p = 0;
                for (int d = FTAB_DEGREE[n]; d >= 0; --d)
                    p = p * tf + c[FTAB_FIRST[n] + d];
                Bv = Bv * vf + B;
                B = B * vf + p;
            }
            const ValueSlope factor = box.factors(box.X(v), box.Y(t));
            const double f = factor.value, slope = f * Bv * box.slope_factor(box.X(v)) + factor.slope * B;
            worst.value = std::max(worst.value, std::abs(f * B - static_cast<double>(pair[0].target)));
            worst.slope = std::max(
                worst.slope, std::abs(slope - static_cast<double>(pair[1].target) / box.slope_weight()));
        }
    }
    return worst;
}

std::string head() {
    return "// Made by tools/tables/make_ftab.cpp; not to be edited.\n"
           "// Quantity: the infinite-depth wave function F2(X, Y) = 2 PV integral over s from 0 to infinity "
           "of\n"
           "// exp(-s Y) J0(s X) / (s - 1) ds with its singular and wavy parts taken out, r1 = sqrt(X^2 + "
           "Y^2):\n"
           "//   X <= 3, Y < 4    (exp(Y) F2 + 2 J0(X) ln(r1 + Y) + pi Y0(X) - 2 J0(X) ln X) / r1\n"
           "//   X > 3, Y < 4     F2 + 2 pi exp(-Y) Y0(X)\n"
           "//   X <= 3, Y >= 4   r1^5 (F2 + T)\n"
           "//   X > 3, Y >= 4    r1^5 (F2 + 2 pi exp(-Y) Y0(X) + T)\n"
           "// with the far tail T = 2/r1 + (2 Y - 2)/r1^3 + (6 Y^2 - 18 Y)/r1^5 + 30 Y^3/r1^7.\n"
           "// Domain: bands b of Y, 1 to 4: Y = b - 1 + t; 5 to 8: 16/Y = 8 - b + t; t in 0..1.\n"
           "//   X <= 3: v = (X/3)^2, row 40 + b.  X > 3: 15/X = j + v, j = 0 to 4, row 5 b - j.\n"
           "// Shape and order: a row holds B(v, t) = sum over n = 0..6 of v^n p_n(t), the coefficients of "
           "p_0 to p_6 by\n"
           "// rising power of t, of the degrees 5 5 4 4 3 2 1.\n"
           "// Measured: behind each row the worst error it leaves in F2 and in dF2/dX, of rows 21 to 40 and "
           "45 to 48 times\n"
           "// r1^2, evaluated in single precision on a grid of 41 by 41 points that were not fitted. Row 41 "
           "is "
           "the published\n"
           "// one.\n";
}

} // namespace

int main(int count, char **argument) {
    const bool check = count == 3 && std::strcmp(argument[1], "--check") == 0;
    if (count != 2 && !check) {
        std::fprintf(stderr, "usage: make_ftab FILE | make_ftab --check FILE\n");
        return 2;
    }
    const F2Definition definition;
    std::string text = head() + "#include \"green/tables/ftab.hpp\"\n\n// clang-format off\n"
                                "constexpr f32 FTAB[FTAB_ROWS][FTAB_TERMS] = {\n";
    ValueSlope worst;
    bool good = true;
    for (int row = 1; row <= FTAB_ROWS; ++row) {
        const Box box{row};
        f32 c[FTAB_TERMS];
        fit(definition, box, c);
        if (row == 41) {
            double apart = 0;
            for (int k = 0; k < FTAB_TERMS; ++k)
                apart = std::max(apart, static_cast<double>(std::abs(c[k] - ROW41[k])));
            const ValueSlope own = worst_error(definition, box, c);
            std::fprintf(stderr,
                         "row 41: own fit %.1e, slope %.1e, coefficients %.1e from the published ones\n",
                         own.value, own.slope, apart);
            std::copy(std::begin(ROW41), std::end(ROW41), c);
        }
        const ValueSlope error = worst_error(definition, box, c);
        worst.value = std::max(worst.value, error.value);
        worst.slope = std::max(worst.slope, error.slope);
        std::fprintf(stderr, "row %2d: F2 %.1e, slope %.1e\n", row, error.value, error.slope);
        if (check) {
            // The fit may differ in the last digits with another compiler; its quality may not.
            const ValueSlope linked = worst_error(definition, box, FTAB[row - 1]);
            if (linked.value > 1.5 * error.value + 2e-8 || linked.slope > 1.5 * error.slope + 1e-7) {
                std::fprintf(stderr, "row %2d of the table is worse: F2 %.1e, slope %.1e\n", row,
                             linked.value, linked.slope);
                good = false;
            }
        }
        text += "    {";
        char buffer[80];
        for (int k = 0; k < FTAB_TERMS; ++k) {
            const bool line_ends = k % 7 == 6;
            std::snprintf(buffer, sizeof buffer, "%.9ef%s", c[k],
                          k + 1 == FTAB_TERMS ? "}"
                          : line_ends         ? ","
                                              : ", ");
            text += buffer;
            if (line_ends)
                text += "\n     ";
        }
        std::snprintf(buffer, sizeof buffer, ", // row %d: %.1e, %.1e\n", row, error.value, error.slope);
        text += buffer;
    }
    text += "};\n\nconstinit const FtabByTerm FTAB_BY_TERM = by_term(FTAB);\n";
    std::fprintf(stderr, "worst: F2 %.1e, slope %.1e\n", worst.value, worst.slope);
    if (check) {
        std::ifstream file(argument[2]);
        const std::string old((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        if (old.compare(0, head().size(), head()) != 0) {
            std::fprintf(stderr, "the head of %s is not the one of this generator\n", argument[2]);
            good = false;
        }
        return good ? 0 : 1;
    }
    std::ofstream file(argument[1]);
    file << text;
    return file.good() ? 0 : 1;
}
