#include "green/depth_coefficients.hpp"

#include "green/depth_polynomial.hpp"

#include <cmath>

namespace {

// Polynomial n (from 1) of an interval. In double precision: its rounding would be lost in every value of the
// period, and it is done once.
double polynomial(const DepthInterval &interval, int n, double v) {
    double sum = 0;
    for (int i = interval.first[n - 1]; i < interval.first[n]; ++i)
        sum = sum * v + interval.value[i - 1];
    return sum;
}

} // namespace

DepthVariable depth_variable(f32 H, bool one_is_small) {
    constexpr f32 LOWER[DEPTH_INTERVALS - 1] = {16, 12, 8, 6, 4, 3, 2, 1};
    constexpr f32 WIDTH[DEPTH_INTERVALS - 1] = {0, 4, 4, 2, 2, 1, 1, 1};
    if (H > LOWER[0])
        return {0, 16.0 / H};
    for (int i = 1; i < DEPTH_INTERVALS - 1; ++i) {
        if (H > LOWER[i] || (H == 1 && LOWER[i] == 1 && !one_is_small))
            return {i, (static_cast<double>(H) - LOWER[i]) / WIDTH[i]};
    }
    return {DEPTH_INTERVALS - 1, H};
}

void depth_coefficients(const DepthTable &table, DepthVariable at, f32 H, f32 M, f32 *coefficients) {
    const bool small = at.interval == DEPTH_INTERVALS - 1;
    const double logarithm = std::log(static_cast<double>(M));
    int log_term = 1;
    for (int n = 1; n <= table.terms; ++n) {
        double c = polynomial(table.interval[at.interval], n, at.v);
        if (small) {
            if (log_term <= table.log_terms && table.log_position[log_term - 1] == n) {
                c -= polynomial(table.logarithm, log_term, at.v) * logarithm;
                ++log_term;
            }
            c /= H;
        }
        coefficients[n - 1] = static_cast<f32>(c);
    }
}

void SCOEF(f32 H, f32 M, f32 (&C91)[91]) {
    static_assert(ShapeS::TERMS == 91);
    depth_coefficients(SCOEF_TABLE, depth_variable(H, false), H, M, C91);
}

void PCOEF(f32 H, f32 M, f32 (&C57)[57]) {
    static_assert(ShapeP::TERMS == 57);
    depth_coefficients(PCOEF_TABLE, depth_variable(H, true), H, M, C57);
}
