// Makes src/green/tables/scoef_table.cpp, pcoef_table.cpp and s3coef_table.cpp: the near-field polynomials of
// finite depth, with coefficients that are polynomials in a variable v of the depth, by intervals. Method:
// the function is expanded in Chebyshev polynomials of t, w (or y) and v, all of 0..1, by interpolation at
// Chebyshev nodes; of the terms that the shape of S or P allows, the small ones are dropped; only what is
// left is written out in powers, in extended precision, and rounded. (Dropped after that, the terms would not
// be small against the sums they belong to.)
//   make_depth_tables S FILE            writes FILE; P and S3 the other tables
//   make_depth_tables --check S FILE    fits anew, compares with the table that is linked and with the head
//   of
//                                       FILE
#include "depth_definition.hpp"
#include "green/depth_coefficients.hpp"
#include "green/depth_polynomial.hpp"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

using Function = DepthDefinition::Function;

constexpr int T_NODES = 34, VERTICAL_NODES = 26, V_NODES = 24;
constexpr int V_TERMS = 12; // a coefficient is of degree 11 in v at most
// Terms below it are dropped, in the function times min(H, 1). A term of the degrees i and j counts more,
// for its first and mixed or second derivatives: the slope of a Chebyshev polynomial grows with the square
// of the degree.
constexpr double SMALLEST_TERM = 2e-9;
constexpr double SLOPE_WEIGHT = 0.1, SECOND_WEIGHT = 0.02;
constexpr double SHARE_OF_S3 = 0.2; // its slope in H counts, too
constexpr int DEEPEST = 0, SHALLOWEST = DEPTH_INTERVALS - 1;
constexpr const char *INTERVAL_NAME[DEPTH_INTERVALS] = {
    "H above 16, v = 16/H",      "12 < H <= 16, v = (H - 12)/4", "8 < H <= 12, v = (H - 8)/4",
    "6 < H <= 8, v = (H - 6)/2", "4 < H <= 6, v = (H - 4)/2",    "3 < H <= 4, v = H - 3",
    "2 < H <= 3, v = H - 2",     "1 < H <= 2, v = H - 1",        "H below 1, v = H",
};

double depth_of(int interval, double v) {
    constexpr double LOWER[DEPTH_INTERVALS] = {0, 12, 8, 6, 4, 3, 2, 1, 0},
                     WIDTH[DEPTH_INTERVALS] = {0, 4, 4, 2, 2, 1, 1, 1, 1};
    return interval == DEEPEST ? 16 / v : LOWER[interval] + WIDTH[interval] * v;
}

double node(int i, int n) {
    return 0.5 + 0.5 * std::cos(PI_D * (i + 0.5) / n);
}

std::vector<double> nodes(int n) {
    std::vector<double> x(n);
    for (int i = 0; i < n; ++i)
        x[i] = node(i, n);
    return x;
}

// T_k at node i of n, times what makes it a row of the interpolation.
double chebyshev_weight(int k, int i, int n) {
    return (k == 0 ? 1.0 : 2.0) / n * std::cos(PI_D * k * (i + 0.5) / n);
}

// Powers of the Chebyshev polynomials of 0..1: row k holds T_k(2 x - 1) by rising power.
constexpr int POWERS = 12;
struct ChebyshevPowers {
    long double c[POWERS][POWERS] = {};
    ChebyshevPowers() {
        c[0][0] = 1;
        c[1][0] = -1;
        c[1][1] = 2;
        for (int k = 2; k < POWERS; ++k) {
            for (int p = 0; p < POWERS; ++p)
                c[k][p] = (p > 0 ? 4 * c[k - 1][p - 1] : 0) - 2 * c[k - 1][p] - c[k - 2][p];
        }
    }
};

// The polynomials of one interval as a table holds them.
struct FittedInterval {
    std::vector<int> first;
    std::vector<f32> value;
    DepthInterval view() const { return {first.data(), value.data()}; }
};

struct FittedTable {
    FittedInterval interval[DEPTH_INTERVALS], logarithm;
    std::vector<int> log_position;
    DepthTable view(int terms) const {
        DepthTable table{
            terms, {}, static_cast<int>(log_position.size()), log_position.data(), logarithm.view()};
        for (int i = 0; i < DEPTH_INTERVALS; ++i)
            table.interval[i] = interval[i].view();
        return table;
    }
};

// Values at the nodes, index t + T_NODES * (vertical + VERTICAL_NODES * v).
using NodeValues = std::vector<double>;

// Polynomials of all coefficients, each by falling power, from the values at the nodes.
template <class Shape>
std::vector<std::vector<long double>> fit(const NodeValues &values, double smallest, int terms_of_v) {
    const ChebyshevPowers powers;
    constexpr int VERTICAL = Shape::ROWS;
    // Chebyshev terms (i, j, k), one dimension after the other.
    std::vector<double> a(static_cast<std::size_t>(POWERS) * VERTICAL_NODES * V_NODES);
    for (int i = 0; i < POWERS; ++i) {
        for (int rest = 0; rest < VERTICAL_NODES * V_NODES; ++rest) {
            for (int n = 0; n < T_NODES; ++n)
                a[i + POWERS * rest] += chebyshev_weight(i, n, T_NODES) * values[n + T_NODES * rest];
        }
    }
    std::vector<long double> power(static_cast<std::size_t>(Shape::TERMS) * V_TERMS);
    for (int row = 0; row < Shape::ROWS; ++row) {
        const int j = VERTICAL - 1 - row;
        for (int i = 0; i <= Shape::DEGREE[row]; ++i) {
            double of_v[V_NODES] = {};
            for (int k = 0; k < V_NODES; ++k) {
                for (int n = 0; n < VERTICAL_NODES; ++n)
                    of_v[k] +=
                        chebyshev_weight(j, n, VERTICAL_NODES) * a[i + POWERS * (n + VERTICAL_NODES * k)];
            }
            const int largest = std::max(i * i, j * j);
            const double weight = std::max({1.0, SLOPE_WEIGHT * largest, SECOND_WEIGHT * j * j * largest});
            for (int k = 0; k < terms_of_v; ++k) {
                long double term = 0;
                for (int n = 0; n < V_NODES; ++n)
                    term += chebyshev_weight(k, n, V_NODES) * of_v[n];
                if (std::abs(static_cast<double>(term)) * weight < smallest)
                    continue;
                for (int pj = 0; pj <= j; ++pj) {
                    const int target = VERTICAL - 1 - pj, start = row_start<Shape>(target);
                    for (int pi = 0; pi <= i; ++pi) {
                        const int coefficient = start + Shape::DEGREE[target] - pi;
                        for (int pk = 0; pk <= k; ++pk)
                            power[pk + V_TERMS * coefficient] +=
                                term * powers.c[i][pi] * powers.c[j][pj] * powers.c[k][pk];
                    }
                }
            }
        }
    }
    std::vector<std::vector<long double>> result(Shape::TERMS);
    for (int n = 0; n < Shape::TERMS; ++n) {
        int degree = V_TERMS - 1; // what no term reaches is exactly 0
        while (degree > 0 && power[degree + V_TERMS * n] == 0)
            --degree;
        for (int k = degree; k >= 0; --k)
            result[n].push_back(power[k + V_TERMS * n]);
    }
    return result;
}

// Rounds a polynomial, given by falling power, from the top: the rounding error of v^n is handed to the lower
// powers by the polynomial of lower degree that is nearest to v^n on 0..1, so that only its share
// 2^(1 - 2n) is left. The powers of v are far from orthogonal, and plain rounding would cost digits.
std::vector<f32> rounded(std::vector<long double> polynomial) {
    const ChebyshevPowers powers;
    const int degree = static_cast<int>(polynomial.size()) - 1;
    std::vector<f32> result;
    for (int n = degree; n >= 0; --n) {
        const f32 c = static_cast<f32>(polynomial[degree - n]);
        const long double error = polynomial[degree - n] - c;
        for (int q = 0; q < n; ++q)
            polynomial[degree - q] -= error * powers.c[n][q] / powers.c[n][n];
        result.push_back(c);
    }
    return result;
}

void append(FittedInterval &interval, const std::vector<f32> &polynomial) {
    if (interval.first.empty())
        interval.first.push_back(1);
    interval.value.insert(interval.value.end(), polynomial.begin(), polynomial.end());
    interval.first.push_back(static_cast<int>(interval.value.size()) + 1);
}

template <class Shape> FittedTable fit_table(Function which) {
    const std::vector<double> t = nodes(T_NODES), vertical = nodes(VERTICAL_NODES);
    const DepthDefinition definition(which, t, vertical);
    const double smallest = which == Function::S3 ? SHARE_OF_S3 * SMALLEST_TERM : SMALLEST_TERM;
    FittedTable table;
    for (int interval = 0; interval < DEPTH_INTERVALS; ++interval) {
        NodeValues values, logarithm;
        for (int k = 0; k < V_NODES; ++k) {
            const double H = depth_of(interval, node(k, V_NODES));
            const double lnm = std::log(propagating_root_definition(H));
            const std::vector<DepthValues> times_depth = definition.times_depth(H, false);
            for (int at = 0; at < T_NODES * VERTICAL_NODES; ++at) {
                double value = times_depth[at].f;
                if (interval == SHALLOWEST) {
                    const double L =
                        DepthDefinition::logarithm_factor(which, H, t[at % T_NODES], vertical[at / T_NODES]);
                    logarithm.push_back(L);
                    value += L * lnm;
                } else if (interval != DEEPEST) {
                    value /= H;
                }
                values.push_back(value);
            }
        }
        // Above 16 H times the function is fitted and the result multiplied by v/16 = 1/H, so that the
        // relative error does not grow with the depth.
        const bool deepest = interval == DEEPEST;
        for (const std::vector<long double> &polynomial :
             fit<Shape>(values, deepest ? 16 * smallest : smallest, deepest ? V_TERMS - 1 : V_TERMS)) {
            std::vector<f32> values_of_v = rounded(polynomial);
            if (deepest) {
                for (f32 &c : values_of_v)
                    c /= 16;
                if (polynomial.size() > 1 || polynomial[0] != 0)
                    values_of_v.push_back(0);
            }
            append(table.interval[interval], values_of_v);
        }
        if (interval == SHALLOWEST) {
            // ln m reaches -6.
            int n = 0;
            for (const std::vector<long double> &polynomial : fit<Shape>(logarithm, smallest / 4, V_TERMS)) {
                ++n;
                if (polynomial.size() == 1 && polynomial[0] == 0)
                    continue;
                table.log_position.push_back(n);
                append(table.logarithm, rounded(polynomial));
            }
        }
    }
    return table;
}

// Errors of the value and the derivatives on points that were not fitted; last, of S3 alone, H times the
// slope in H.
constexpr int ERRORS = DepthValues::N + 1;
struct Errors {
    double worst[ERRORS] = {}, most[ERRORS] = {}; // most: 99.9 % are below it
};

constexpr int CHECKED_DEPTHS = 150, CHECKED_SIDE = 26;

// The f32 evaluation against the definition at random places (the corners and edges among them) and depths
// with even spread of the logarithm; above 16 and below 1 as errors of H times the function.
template <class Shape>
Errors check(const DepthDefinition &definition, const std::vector<f32> &t, const std::vector<f32> &vertical,
             int interval, const DepthTable &table) {
    constexpr double LOWER[DEPTH_INTERVALS] = {16, 12, 8, 6, 4, 3, 2, 1, 1e-5},
                     UPPER[DEPTH_INTERVALS] = {1e5, 16, 12, 8, 6, 4, 3, 2, 1};
    std::mt19937 random(interval + 1);
    std::uniform_real_distribution<double> spread(std::log(LOWER[interval]), std::log(UPPER[interval]));
    constexpr bool S3 = Shape::TERMS == ShapeS3::TERMS;
    std::vector<double> all[ERRORS];
    for (int k = 0; k < CHECKED_DEPTHS; ++k) {
        // The ends of the interval are among the depths, the lower one from inside.
        const f32 lowest = std::nextafter(static_cast<f32>(LOWER[interval]), 1e6f);
        const f32 H = k == 0   ? lowest
                      : k == 1 ? static_cast<f32>(UPPER[interval])
                               : static_cast<f32>(std::exp(spread(random)));
        const DepthVariable at = depth_variable(H, true);
        if (at.interval != interval)
            continue; // rounded across the border
        f32 c[Shape::TERMS], dc[Shape::TERMS];
        const double m = propagating_root_definition(H), T = std::tanh(m),
                     dm = 1 / (T + m * (1 - T) * (1 + T));
        depth_coefficients(table, at, H, static_cast<f32>(m), c, static_cast<f32>(dm), dc);
        const double scale = interval == DEEPEST || interval == SHALLOWEST ? H : 1;
        const std::vector<DepthValues> exact = definition.times_depth(H, true);
        const std::vector<double> slope = S3 ? definition.slope_of_times_depth(H) : std::vector<double>();
        for (int j = 0; j < CHECKED_SIDE; ++j) {
            for (int i = 0; i < CHECKED_SIDE; ++i) {
                const PolynomialSums s = polynomial_sums<Shape, true>(c, t[i], vertical[j]);
                const DepthValues sums{s.f, s.t, s.v, s.tv, 2.0 * s.half_vv};
                for (int d = 0; d < DepthValues::N; ++d)
                    all[d].push_back(scale * std::abs(sums[d] - exact[i + CHECKED_SIDE * j][d] / H));
                if (S3) {
                    const double of_slope = polynomial_sums<Shape, false>(dc, t[i], vertical[j]).f;
                    const int k_ij = i + CHECKED_SIDE * j;
                    all[ERRORS - 1].push_back(scale *
                                              std::abs(H * of_slope - slope[k_ij] + exact[k_ij].f / H));
                }
            }
        }
    }
    Errors errors;
    for (int d = 0; d < ERRORS && !all[d].empty(); ++d) {
        std::sort(all[d].begin(), all[d].end());
        errors.worst[d] = all[d].back();
        errors.most[d] = all[d][all[d].size() * 999 / 1000];
    }
    return errors;
}

template <class Shape> std::vector<Errors> check_all(Function which, const DepthTable &table) {
    std::mt19937 random(99);
    std::uniform_real_distribution<f32> unit(0, 1);
    std::vector<f32> t = {0, 1}, vertical = {0, 1};
    for (int i = 2; i < CHECKED_SIDE; ++i) {
        t.push_back(unit(random));
        vertical.push_back(unit(random));
    }
    const DepthDefinition definition(which, {t.begin(), t.end()}, {vertical.begin(), vertical.end()});
    std::vector<Errors> errors;
    errors.reserve(DEPTH_INTERVALS);
    for (int interval = 0; interval < DEPTH_INTERVALS; ++interval)
        errors.push_back(check<Shape>(definition, t, vertical, interval, table));
    return errors;
}

std::string text_of(const char *format, double value) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

std::string list_of(const std::vector<int> &list) {
    std::string text;
    for (std::size_t i = 0; i < list.size(); ++i)
        text += std::to_string(list[i]) + (i + 1 == list.size() ? "" : i % 20 == 19 ? ",\n    " : ", ");
    return text;
}

std::string list_of(const std::vector<f32> &list) {
    std::string text;
    for (std::size_t i = 0; i < list.size(); ++i)
        text += text_of("%.9ef", list[i]) + (i + 1 == list.size() ? "" : i % 7 == 6 ? ",\n    " : ", ");
    return text;
}

// What the three tables differ in.
struct Names {
    const char *table, *quantity, *vertical, *domain, *rows, *derivatives;
    int terms;
};
Names names(Function which) {
    if (which == Function::S)
        return {
            "SCOEF",       "S(t, w) of I(R, Z)", "w", "t = R^2/H^2, w = Z^2/H^2", "6 8 9 10 11 11 12 12 12",
            "w, t w, w w", ShapeS::TERMS};
    if (which == Function::P)
        return {"PCOEF",
                "P(t, y) of I(R, 2 H - Y) - F2(R, Y) - 1/sqrt(R^2 + Y^2)",
                "y",
                "t = R^2/H^2, y = Y/H",
                "3 4 5 5 6 6 7 7 7 7",
                "y, t y, y y",
                ShapeP::TERMS};
    return {"S3COEF",
            "S3(t, w) of I(R, Z) - Phi(2 H - Z) - Phi(2 H + Z), Phi(Y) = F2(R, Y) + 1/sqrt(R^2 + Y^2)",
            "w",
            "t = (2 R/H)^2, w = (Z/(2 H))^2",
            "2 3 4 4 5 5 5 5",
            "w, t w, w w and H times that by H",
            ShapeS3::TERMS};
}

std::string head(Function which) {
    const Names name = names(which);
    std::string text = "// Made by tools/tables/make_depth_tables.cpp; not to be edited.\n"
                       "// Quantity: coefficients of the near-field polynomial " +
                       std::string(name.quantity) +
                       ", lengths times nu,\n"
                       "//   I(R, Z) = PV integral over s from 0 to infinity of\n"
                       "//             (s + 1) exp(-s H) cosh(s Z) J0(s R) / (s sinh(s H) - cosh(s H)) ds\n";
    if (which != Function::S)
        text += "//   F2(R, Y) = 2 PV integral over s from 0 to infinity of exp(-s Y) J0(s R) / (s - 1) ds\n";
    text +=
        "// Domain: " + std::string(name.domain) +
        " in 0..1; depth H times nu from 1e-5 to 1e5, in the intervals named below with the local\n"
        "// variable v of each.\n"
        "// Shape and order: a coefficient is a polynomial in v, highest power first; polynomial n of an "
        "interval has the\n"
        "// values FIRST[n-1] to FIRST[n] - 1, counted from 1. Coefficients: row by row, the row of the "
        "highest power of " +
        std::string(name.vertical) +
        "\n"
        "// first, each by falling power of t, rows of " +
        name.rows +
        ".\n"
        "// Below 1 the polynomials give H times the coefficients, from which L ln m is taken, m tanh m = "
        "H, L the\n"
        "// polynomial of the coefficients listed in LOG_POSITION.\n"
        "// Measured: with each interval the worst error (and what 99.9 % stay below) of the function, its "
        "derivatives by\n"
        "// t, " +
        name.derivatives +
        ", evaluated in single precision at random points that were not fitted; above 16 and below 1\n"
        "// as the error of H times the function.\n";
    return text;
}

std::string table_text(Function which, const FittedTable &table, const std::vector<Errors> &errors) {
    const std::string name = names(which).table;
    const int terms = names(which).terms, error_count = which == Function::S3 ? ERRORS : DepthValues::N;
    std::string text = head(which) + "#include \"green/tables/depth_tables.hpp\"\n\n// clang-format off\n"
                                     "namespace {\n\n";
    std::string record = "const DepthTable " + name + "_TABLE = {\n    " + std::to_string(terms) + ",\n    {";
    for (int i = 0; i < DEPTH_INTERVALS; ++i) {
        const FittedInterval &interval = table.interval[i];
        const std::string number = std::to_string(i + 1);
        text += "// " + std::string(INTERVAL_NAME[i]) + "; errors";
        for (int d = 0; d < error_count; ++d)
            text += text_of(d > 0 ? ", %.1e" : " %.1e", errors[i].worst[d]) +
                    text_of(" (%.1e)", errors[i].most[d]);
        text += "\nconst int FIRST_" + number + "[" + std::to_string(interval.first.size()) + "] = {\n    " +
                list_of(interval.first) + "};\nconst f32 VALUE_" + number + "[" +
                std::to_string(interval.value.size()) + "] = {\n    " + list_of(interval.value) + "};\n\n";
        record += (i > 0 ? (i % 4 == 0 ? ",\n     " : ", ") : "") + std::string("{FIRST_") + number +
                  ", VALUE_" + number + "}";
    }
    const std::string positions = std::to_string(table.log_position.size());
    text += "// The logarithmic terms of the last interval.\nconst int LOG_POSITION[" + positions +
            "] = {\n    " + list_of(table.log_position) + "};\nconst int LOG_FIRST[" +
            std::to_string(table.logarithm.first.size()) + "] = {\n    " + list_of(table.logarithm.first) +
            "};\nconst f32 LOG_VALUE[" + std::to_string(table.logarithm.value.size()) + "] = {\n    " +
            list_of(table.logarithm.value) + "};\n\n} // namespace\n\n";
    return text + record + "},\n    " + positions + ", LOG_POSITION, {LOG_FIRST, LOG_VALUE}};\n";
}

template <class Shape>
int make(Function which, const char *file_name, bool only_check, const DepthTable &linked) {
    const FittedTable table = fit_table<Shape>(which);
    const std::vector<Errors> errors = check_all<Shape>(which, table.view(Shape::TERMS));
    for (int i = 0; i < DEPTH_INTERVALS; ++i) {
        std::fprintf(stderr, "%-30s %3zu values:", INTERVAL_NAME[i], table.interval[i].value.size());
        for (int d = 0; d < ERRORS; ++d)
            std::fprintf(stderr, "  %.1e %.1e", errors[i].worst[d], errors[i].most[d]);
        std::fprintf(stderr, "\n");
    }
    std::fprintf(stderr, "logarithmic terms: %zu, %zu values\n", table.log_position.size(),
                 table.logarithm.value.size());
    if (!only_check) {
        std::ofstream file(file_name);
        file << table_text(which, table, errors);
        return file.good() ? 0 : 1;
    }
    bool good = true;
    // The fit may differ in the last digits with another compiler; its quality may not.
    const std::vector<Errors> of_linked = check_all<Shape>(which, linked);
    for (int i = 0; i < DEPTH_INTERVALS; ++i) {
        for (int d = 0; d < ERRORS; ++d) {
            if (of_linked[i].worst[d] > 1.5 * errors[i].worst[d]) {
                std::fprintf(stderr, "%s: the table is worse, %.1e\n", INTERVAL_NAME[i],
                             of_linked[i].worst[d]);
                good = false;
            }
        }
    }
    std::ifstream file(file_name);
    const std::string old((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (old.compare(0, head(which).size(), head(which)) != 0) {
        std::fprintf(stderr, "the head of %s is not the one of this generator\n", file_name);
        good = false;
    }
    return good ? 0 : 1;
}

} // namespace

int main(int count, char **argument) {
    const bool only_check = count == 4 && std::strcmp(argument[1], "--check") == 0;
    if (count != 3 && !only_check) {
        std::fprintf(stderr, "usage: make_depth_tables [--check] S|P|S3 FILE\n");
        return 2;
    }
    const char *file_name = argument[count - 1];
    if (std::strcmp(argument[count - 2], "P") == 0)
        return make<ShapeP>(Function::P, file_name, only_check, PCOEF_TABLE);
    if (std::strcmp(argument[count - 2], "S3") == 0)
        return make<ShapeS3>(Function::S3, file_name, only_check, S3COEF_TABLE);
    return make<ShapeS>(Function::S, file_name, only_check, SCOEF_TABLE);
}
