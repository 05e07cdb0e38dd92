#include "green/depth_coefficients.hpp"

#include "green/depth_polynomial.hpp"

#include <cmath>

namespace {

struct ValueSlope {
    double value = 0, slope = 0;
};

// Polynomial n (from 1) of an interval and its slope in v. In double precision: its rounding would be lost in
// every value of the period, and it is done once.
ValueSlope polynomial(const DepthInterval &interval, int n, double v) {
    ValueSlope sum;
    for (int i = interval.first[n - 1]; i < interval.first[n]; ++i) {
        sum.slope = sum.slope * v + sum.value;
        sum.value = sum.value * v + interval.value[i - 1];
    }
    return sum;
}

} // namespace

DepthVariable depth_variable(f32 H, bool one_is_small) {
    constexpr f32 LOWER[DEPTH_INTERVALS - 1] = {16, 12, 8, 6, 4, 3, 2, 1};
    constexpr f32 WIDTH[DEPTH_INTERVALS - 1] = {0, 4, 4, 2, 2, 1, 1, 1};
    const double depth = H;
    if (H > LOWER[0])
        return {0, 16 / depth, -16 / (depth * depth)};
    for (int i = 1; i < DEPTH_INTERVALS - 1; ++i) {
        if (H > LOWER[i] || (H == 1 && LOWER[i] == 1 && !one_is_small))
            return {i, (depth - LOWER[i]) / WIDTH[i], 1.0 / WIDTH[i]};
    }
    return {DEPTH_INTERVALS - 1, depth, 1};
}

void depth_coefficients(const DepthTable &table, DepthVariable at, f32 H, f32 M, f32 *coefficients, f32 DM,
                        f32 *slopes) {
    const bool small = at.interval == DEPTH_INTERVALS - 1;
    const double logarithm = std::log(static_cast<double>(M)), log_slope = static_cast<double>(DM) / M;
    int log_term = 1;
    for (int n = 1; n <= table.terms; ++n) {
        ValueSlope c = polynomial(table.interval[at.interval], n, at.v);
        c.slope *= at.slope;
        if (small) {
            if (log_term <= table.log_terms && table.log_position[log_term - 1] == n) {
                const ValueSlope L = polynomial(table.logarithm, log_term, at.v);
                c.value -= L.value * logarithm;
                c.slope -= L.slope * logarithm + L.value * log_slope;
                ++log_term;
            }
            c.value /= H;
            c.slope = (c.slope - c.value) / H;
        }
        coefficients[n - 1] = static_cast<f32>(c.value);
        if (slopes != nullptr)
            slopes[n - 1] = static_cast<f32>(c.slope);
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

void S3COEF(f32 H, f32 M, f32 DM, f32 (&C33)[33], f32 (&DC33)[33]) {
    static_assert(ShapeS3::TERMS == 33);
    depth_coefficients(S3COEF_TABLE, depth_variable(H, false), H, M, C33, DM, DC33);
}
