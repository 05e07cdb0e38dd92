#include "rankine/panint_eight.hpp"

#include "rankine/far_multipoles.hpp"
#include "rankine/near_logarithm.hpp"

namespace {

constexpr int P = ABREAST;
using Single = f32[P];

// Four numbers of each panel, the q-th ones from to[q P] on; `from` tells where those of a panel stand.
template <class From>
[[gnu::always_inline]] inline void gather_four(const PanelBatch &batch, const From &from, f32 *to) {
    using Four [[gnu::vector_size(4 * sizeof(f32))]] = f32;
    using Eight [[gnu::vector_size(P * sizeof(f32))]] = f32;
    Eight row[4]; // of panels l and l + 4
    for (int l = 0; l < 4; ++l) {
        Four low, high;
        std::memcpy(&low, from(*batch.panel[l]), sizeof low);
        std::memcpy(&high, from(*batch.panel[l + 4]), sizeof high);
        row[l] = __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
    }
    const Eight a = __builtin_shufflevector(row[0], row[1], 0, 8, 1, 9, 4, 12, 5, 13),
                b = __builtin_shufflevector(row[2], row[3], 0, 8, 1, 9, 4, 12, 5, 13),
                c = __builtin_shufflevector(row[0], row[1], 2, 10, 3, 11, 6, 14, 7, 15),
                d = __builtin_shufflevector(row[2], row[3], 2, 10, 3, 11, 6, 14, 7, 15);
    const Eight column[4] = {__builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13),
                             __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15),
                             __builtin_shufflevector(c, d, 0, 1, 8, 9, 4, 5, 12, 13),
                             __builtin_shufflevector(c, d, 2, 3, 10, 11, 6, 7, 14, 15)};
    std::memcpy(to, column, sizeof column);
}

// Centroids and axes of the panels, and the field points in their frames.
struct Frames {
    alignas(32) Single XCT[4], TRM[4][4]; // indices from 1
    alignas(32) Single local[4];

    [[gnu::always_inline]] explicit Frames(const PanelBatch &batch) {
        gather_four(
            batch, [](const Panel &p) { return p.XCT; }, XCT[0]);
        for (int r = 1; r <= 3; ++r)
            gather_four(
                batch, [r](const Panel &p) { return p.TRM[r]; }, TRM[r][0]);
        for (int r = 1; r <= 3; ++r) {
#pragma omp simd
            for (int l = 0; l < P; ++l)
                local[r][l] = local_coordinate({batch.P[1][l], batch.P[2][l], batch.P[3][l]},
                                               {XCT[1][l], XCT[2][l], XCT[3][l]},
                                               {TRM[r][1][l], TRM[r][2][l], TRM[r][3][l]});
        }
    }

    // Local components to global ones, axes from 1.
    [[gnu::always_inline]] void to_global(const Single &a, const Single &b, const Single &c,
                                          Single *g) const {
        for (int axis = 1; axis <= 3; ++axis) {
#pragma omp simd
            for (int l = 0; l < P; ++l)
                g[axis][l] = TRM[1][axis][l] * a[l] + TRM[2][axis][l] * b[l] + TRM[3][axis][l] * c[l];
        }
    }
};

template <class Real> [[gnu::always_inline]] inline void single(const Real (&from)[P], f32 sign, Single &to) {
#pragma omp simd
    for (int l = 0; l < P; ++l)
        to[l] = sign * static_cast<f32>(from[l]);
}

template <class Real>
[[gnu::always_inline]] inline void to_fields(const Frames &frames, const LaneIntegrals<P, Real> &I, int ILOGF,
                                             int IGRAD, FieldBatch &out) {
    // A value, minus its Z derivative and its other two.
    const auto family = [&](const Real(&value)[P], const Real(&minus_z)[P], const Real(&by_x)[P],
                            const Real(&by_y)[P], Single &to, Single &to_z, Single *gradient)
        __attribute__((always_inline)) {
        single(value, 1, to);
        single(minus_z, 1, to_z);
        if (IGRAD == 0)
            return;
        alignas(32) Single x, y, z;
        single(by_x, 1, x);
        single(by_y, 1, y);
        single(minus_z, -1, z);
        frames.to_global(x, y, z, gradient);
    };
    family(I.S, I.D, I.SX, I.SY, out.S, out.D, out.GS);
    if (ILOGF != 0)
        family(I.L, I.LZ, I.LX, I.LY, out.L, out.LZ, out.GL);
}

} // namespace

VORDA_SIMD void near_fields(const PanelBatch &batch, int ILOGF, int IGRAD, FieldBatch &out) {
    const Frames frames(batch);
    PanelLanes<P> p;
    gather_four(
        batch, [](const Panel &q) { return &q.XIV[1]; }, p.XIV);
    gather_four(
        batch, [](const Panel &q) { return &q.ETV[1]; }, p.ETV);
    gather_four(
        batch, [](const Panel &q) { return &q.SIDE[1]; }, p.SIDE);
    for (int l = 0; l < P; ++l) {
        p.width[l] = batch.panel[l]->width;
        p.area[l] = batch.panel[l]->PMOM[1];
    }
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        p.X[l] = static_cast<double>(frames.local[1][l]);
        p.Y[l] = static_cast<double>(frames.local[2][l]);
        p.Z[l] = static_cast<double>(frames.local[3][l]);
    }
    for (int r = 0; r < 3; ++r)
        std::memcpy(p.up[r], frames.TRM[r + 1][3], sizeof p.up[r]);
    NearIntegrals<P> I;
    const int order = IGRAD != 0 ? 1 : 0;
    near_field::source<P>(p, order, I);
    if (ILOGF != 0)
        near_field::logarithm<P>(p, order, I);
    to_fields(frames, I, ILOGF, IGRAD, out);
    for (int l = 0; l < P; ++l)
        out.status[l] = ILOGF != 0 ? I.status[l] : 0;
}

VORDA_SIMD void far_fields(const PanelBatch &batch, int ILOGF, int IGRAD, FieldBatch &out) {
    const Frames frames(batch);
    far_field::Lanes<P> p;
    for (const int first : {1, 5, 9, 10})
        gather_four(
            batch, [first](const Panel &q) { return &q.PMOM[first]; }, p.PMOM[first]);
    for (int l = 0; l < P; ++l)
        p.region2[l] = batch.panel[l]->region2;
    std::memcpy(p.X, frames.local[1], sizeof p.X);
    std::memcpy(p.Y, frames.local[2], sizeof p.Y);
    std::memcpy(p.Z, frames.local[3], sizeof p.Z);
    for (int r = 0; r < 3; ++r)
        std::memcpy(p.up[r], frames.TRM[r + 1][3], sizeof p.up[r]);
    LaneIntegrals<P, f32> I;
    const int order = IGRAD != 0 ? 1 : 0;
    far_field::source<P>(p, order, I);
    if (ILOGF != 0)
        far_field::logarithm<P>(p, order, I);
    to_fields(frames, I, ILOGF, IGRAD, out);
    for (int &status : out.status)
        status = 0;
}
