#include "rankine/near_pairs.hpp"

#include "base/simd.hpp"
#include "state/state.hpp"

VORDA_SIMD
void near_pairs(const PairPoints &points, int a, const PairImages &images, std::uint8_t *mask) {
    const f32 *x = points.x.data(), *y = points.y.data(), *z = points.z.data(), *size = points.size.data();
    const f32 *reach = points.reach.data();
    const f32 za = z[a], sa = size[a], ra = reach[a];
    std::int32_t bits[BATCH];
    for (int first = 0; first < points.padded; first += BATCH) {
#pragma omp simd
        for (int i = 0; i < BATCH; ++i) {
            const f32 sum = za + z[first + i];
            const f32 larger = size[first + i] > sa ? size[first + i] : sa;
            bits[i] = sum * sum <= SURFACE2 * larger ? PAIR_SURFACE : 0;
        }
        for (int p = 0; p < images.count; ++p) {
            const f32 xa = images.sx[p] * x[a], ya = images.sy[p] * y[a];
            const std::int32_t bit = 1 << p;
#pragma omp simd
            for (int i = 0; i < BATCH; ++i) {
                const f32 dx = xa - x[first + i], dy = ya - y[first + i], dz = za - z[first + i];
                const f32 larger = reach[first + i] > ra ? reach[first + i] : ra;
                bits[i] |= dz * dz + (dx * dx + dy * dy) < RKNEAR * larger ? bit : 0;
            }
        }
        for (int i = 0; i < BATCH; ++i)
            mask[first + i] = static_cast<std::uint8_t>(bits[i]);
    }
}
